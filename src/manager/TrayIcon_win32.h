// TrayIcon: the companion's icon in the notification area of the task bar.
#pragma once

#include <windows.h>
#include <shellapi.h>

#include "platform/win32/UniqueHandle.h"

namespace zq {

// What the icon sends to its window: the event in the low word of lParam, the pointer's place in wParam.
inline constexpr UINT kTrayMessage = WM_APP + 0x20;

// Shell_NotifyIcon, for a test to stand in its place.
using NotifyIcon = BOOL(WINAPI*)(DWORD message, NOTIFYICONDATAW* data);

class TrayIcon {
 public:
  explicit TrayIcon(NotifyIcon notify) : notify_(notify) {}
  TrayIcon(const TrayIcon&) = delete;
  TrayIcon& operator=(const TrayIcon&) = delete;
  ~TrayIcon() { Remove(); }

  // Again whenever a task bar has come: a new one knows no icon. Without a task bar nothing is shown, until
  // one comes.
  void Add(HWND window);
  void Remove();

 private:
  NotifyIcon notify_;
  HWND window_ = nullptr;
  UniqueIcon icon_;
};

}  // namespace zq
