#include "manager/TrayIcon_win32.h"

#include <algorithm>
#include <string>

#include "controls/Pictures.h"
#include "core/state/ManagerNames.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr UINT kIconId = 1;

NOTIFYICONDATAW IconData(HWND window) {
  NOTIFYICONDATAW data{};
  data.cbSize = sizeof data;
  data.hWnd = window;
  data.uID = kIconId;
  return data;
}

}  // namespace

void TrayIcon::Add(HWND window) {
  Remove();
  window_ = window;
  icon_ = LoadProgramIcon(::GetSystemMetrics(SM_CXSMICON));
  NOTIFYICONDATAW data = IconData(window);
  data.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP | NIF_SHOWTIP;
  data.uCallbackMessage = kTrayMessage;
  data.hIcon = icon_.Get();
  const std::wstring tip = ToWide(kManagerRunValue);
  std::copy_n(tip.c_str(), std::min(tip.size() + 1, std::size(data.szTip) - 1), data.szTip);
  // A task bar that is busy starting up says no; it says later that it has come.
  if (!notify_(NIM_ADD, &data)) return;
  data.uVersion = NOTIFYICON_VERSION_4;
  notify_(NIM_SETVERSION, &data);
}

void TrayIcon::Remove() {
  if (!window_) return;
  NOTIFYICONDATAW data = IconData(window_);
  notify_(NIM_DELETE, &data);
  window_ = nullptr;
}

}  // namespace zq
