#include "platform/win32/Win32WindowList.h"

#include <windows.h>

#include "platform/win32/Wide.h"

namespace zq {
namespace {

HWND WindowOf(WindowHandle window) {
  return reinterpret_cast<HWND>(window);
}

WindowHandle HandleOf(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

}  // namespace

WindowHandle Win32WindowList::First() {
  return HandleOf(::FindWindowW(nullptr, nullptr));
}

WindowHandle Win32WindowList::Next(WindowHandle window) {
  return HandleOf(::GetWindow(WindowOf(window), GW_HWNDNEXT));
}

WindowHandle Win32WindowList::ParentOf(WindowHandle window) {
  return HandleOf(::GetParent(WindowOf(window)));
}

// Of another program's window the system knows the title: a program that hangs isn't waited for.
std::string Win32WindowList::TitleOf(WindowHandle window) {
  constexpr int kTitleUnits = 256;
  std::wstring title(kTitleUnits, L' ');
  title.resize(static_cast<std::size_t>(::GetWindowTextW(WindowOf(window), title.data(), kTitleUnits)));
  return FromWide(title);
}

WindowHandle Win32WindowList::FindByTitle(const std::string& title) {
  return HandleOf(::FindWindowW(nullptr, ToWide(title).c_str()));
}

bool Win32WindowList::PostClose(WindowHandle window) {
  return ::PostMessageW(WindowOf(window), WM_CLOSE, 0, 0) != FALSE;
}

}  // namespace zq
