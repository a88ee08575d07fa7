// WindowIcons: the program's icon as a window's own, in its caption and on the task bar.
#pragma once

#include <windows.h>

#include <utility>

#include "controls/Pictures.h"

namespace zq {

class WindowIcons {
 public:
  // In the sizes that belong to `dpi`; again whenever that has changed.
  void Show(HWND window, int dpi) {
    ShowOne(window, ICON_SMALL, ::GetSystemMetricsForDpi(SM_CXSMICON, static_cast<UINT>(dpi)), small_);
    ShowOne(window, ICON_BIG, ::GetSystemMetricsForDpi(SM_CXICON, static_cast<UINT>(dpi)), large_);
  }

 private:
  static void ShowOne(HWND window, WPARAM which, int pixels, UniqueIcon& shown) {
    UniqueIcon icon = LoadProgramIcon(pixels);
    ::SendMessageW(window, WM_SETICON, which, reinterpret_cast<LPARAM>(icon.Get()));
    shown = std::move(icon);  // the one before is shown until here
  }

  UniqueIcon small_;
  UniqueIcon large_;
};

}  // namespace zq
