// ManagerWindow: the companion's hidden window. By its title others see that the companion runs, and by
// closing it they end it; the icon's menu belongs to it.
#pragma once

#include <windows.h>

#include <functional>

#include "manager/TrayIcon_win32.h"

namespace zq {

inline constexpr UINT kManagerOpenProgram = 101;
inline constexpr UINT kManagerWipeBin = 102;
inline constexpr UINT kManagerExit = 103;

class ManagerWindow {
 public:
  explicit ManagerWindow(NotifyIcon notify = &::Shell_NotifyIconW) : icon_(notify) {}
  ManagerWindow(const ManagerWindow&) = delete;
  ManagerWindow& operator=(const ManagerWindow&) = delete;
  ~ManagerWindow();

  // Wired before Create.
  std::function<void()> OpenProgram;
  std::function<void()> WipeBin;
  std::function<void()> CloseAsked;
  std::function<void()> Destroyed;  // also when the session ends
  std::function<bool()> IsBusy;     // the menu then offers neither a wipe nor the end
  std::function<void()> WorkWaits;  // posted by PostWork

  // False if the system refuses the window.
  bool Create();
  void Destroy();
  // WorkWaits is called once whatever runs now has come to its end.
  void PostWork();
  HWND Handle() const { return hwnd_; }

 private:
  static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
  void OnTray(UINT event, POINT place);
  void ShowMenu(POINT place);
  void Choose(UINT command);

  HWND hwnd_ = nullptr;
  UINT taskbarCreated_ = 0;
  bool menuIsOpen_ = false;
  TrayIcon icon_;
};

}  // namespace zq
