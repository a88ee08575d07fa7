#include "manager/ManagerWindow_win32.h"

#include <shellapi.h>
#include <windowsx.h>

#include <exception>
#include <string>

#include "core/state/ManagerNames.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr const wchar_t* kClass = L"ZeroquillExplorerManager";
constexpr UINT kWorkMessage = WM_APP + 0x21;

// Boxes and dialogs stand over their owner, though this one isn't seen.
POINT MiddleOfTheScreen() {
  RECT area{};
  if (!::SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0)) return {0, 0};
  return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

bool AddEntry(HMENU menu, UINT command, const wchar_t* text, bool enabled = true) {
  return ::AppendMenuW(menu, MF_STRING | (enabled ? MF_ENABLED : MF_GRAYED), command, text) != FALSE;
}

}  // namespace

ManagerWindow::~ManagerWindow() {
  Destroy();
}

bool ManagerWindow::Create() {
  taskbarCreated_ = ::RegisterWindowMessageW(L"TaskbarCreated");
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = &ManagerWindow::Procedure;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.lpszClassName = kClass;
  if (!::RegisterClassW(&windowClass) && ::GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return false;
  const POINT place = MiddleOfTheScreen();
  // A message-only window would be found by nobody, and hears of no new task bar.
  if (!::CreateWindowExW(WS_EX_TOOLWINDOW, kClass, ToWide(kManagerTitle).c_str(), WS_POPUP, place.x, place.y,
                         0, 0, nullptr, nullptr, windowClass.hInstance, this))
    return false;
  // The task bar runs with ordinary rights; a companion that has more would else not hear of it.
  ::ChangeWindowMessageFilterEx(hwnd_, taskbarCreated_, MSGFLT_ALLOW, nullptr);
  icon_.Add(hwnd_);
  return true;
}

void ManagerWindow::Destroy() {
  if (hwnd_) ::DestroyWindow(hwnd_);
}

void ManagerWindow::PostWork() {
  ::PostMessageW(hwnd_, kWorkMessage, 0, 0);
}

LRESULT CALLBACK ManagerWindow::Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* const self =
        static_cast<ManagerWindow*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
    self->hwnd_ = hwnd;
    ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* const self = reinterpret_cast<ManagerWindow*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  if (!self) return ::DefWindowProcW(hwnd, message, wParam, lParam);
  try {
    return self->OnMessage(hwnd, message, wParam, lParam);
  } catch (...) {
    ReportAndEnd(std::current_exception());
  }
}

LRESULT ManagerWindow::OnMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == taskbarCreated_ && taskbarCreated_ != 0) {
    icon_.Add(hwnd);
    return 0;
  }
  switch (message) {
    case kTrayMessage:
      OnTray(LOWORD(lParam), {GET_X_LPARAM(wParam), GET_Y_LPARAM(wParam)});
      return 0;
    case kWorkMessage:
      WorkWaits();
      return 0;
    case WM_COMMAND:
      Choose(LOWORD(wParam));
      return 0;
    case WM_CLOSE:
      CloseAsked();
      return 0;
    case WM_ENDSESSION:
      // The process is ended when this returns.
      if (wParam) {
        icon_.Remove();
        Destroyed();
      }
      return 0;
    case WM_DESTROY:
      icon_.Remove();
      Destroyed();
      return 0;
    case WM_NCDESTROY:
      ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
      hwnd_ = nullptr;
      return 0;
    default:
      return ::DefWindowProcW(hwnd, message, wParam, lParam);
  }
}

void ManagerWindow::OnTray(UINT event, POINT place) {
  if (event == WM_CONTEXTMENU) ShowMenu(place);
  // A double click is what opens things; the keyboard has Enter for it.
  if (event == WM_LBUTTONDBLCLK || event == NIN_KEYSELECT) Choose(kManagerOpenProgram);
}

void ManagerWindow::ShowMenu(POINT place) {
  if (menuIsOpen_) return;
  const UniqueMenu menu(::CreatePopupMenu());
  if (!menu) return;
  const bool idle = !IsBusy();
  AddEntry(menu.Get(), kManagerOpenProgram, L"&Open Zeroquill");
  AddEntry(menu.Get(), kManagerWipeBin, L"&Wipe Recycle Bin...", idle);
  ::AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
  AddEntry(menu.Get(), kManagerExit, L"E&xit", idle);
  ::SetMenuDefaultItem(menu.Get(), kManagerOpenProgram, FALSE);
  // Otherwise the menu would stay when the user clicks elsewhere.
  ::SetForegroundWindow(hwnd_);
  const UINT alignment = ::GetSystemMetrics(SM_MENUDROPALIGNMENT) != 0 ? TPM_RIGHTALIGN : TPM_LEFTALIGN;
  menuIsOpen_ = true;
  const BOOL chosen =
      ::TrackPopupMenuEx(menu.Get(), alignment | TPM_BOTTOMALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD, place.x,
                         place.y, hwnd_, nullptr);
  menuIsOpen_ = false;
  ::PostMessageW(hwnd_, WM_NULL, 0, 0);
  if (chosen > 0) ::PostMessageW(hwnd_, WM_COMMAND, static_cast<WPARAM>(chosen), 0);
}

void ManagerWindow::Choose(UINT command) {
  if (command == kManagerOpenProgram) OpenProgram();
  // Something may have begun since the menu was opened.
  if (command == kManagerWipeBin && !IsBusy()) WipeBin();
  if (command == kManagerExit) CloseAsked();
}

}  // namespace zq
