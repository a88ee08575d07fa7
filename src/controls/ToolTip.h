// ToolTip: a text that is shown while the mouse rests on a control.
#pragma once

#include <windows.h>

#include <string>

namespace zq {

class ToolTip {
 public:
  ToolTip() = default;
  ToolTip(const ToolTip&) = delete;
  ToolTip& operator=(const ToolTip&) = delete;

  // `control` hears the mouse, and owns the tip's window. Without a tip it is still the control.
  void Create(HWND control, const std::string& text, int dpi);

  // Its lines are as wide as the resolution wants it.
  void SetDpi(int dpi);

 private:
  HWND tip_ = nullptr;
};

}  // namespace zq
