// StatusBar: the bar at a window's bottom, in named panels.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>

#include "controls/Tools.h"

namespace zq {

class StatusBar {
 public:
  // `panels` stays where it is for as long as the bar lives.
  void Create(HWND owner, std::span<const Panel> panels, int dpi);

  // At the bottom of the owner, its panels anew for the owner's width and `dpi`.
  void LayOut(int dpi);

  void SetText(std::string_view panelName, const std::string& text);

  // Of the panel of this number, counted from 0: its text, and its place in pixels of the bar.
  std::string Text(int panel) const;
  RECT PanelPlace(int panel) const;

  HWND Handle() const { return bar_; }

 private:
  HWND owner_ = nullptr;
  HWND bar_ = nullptr;
  std::span<const Panel> panels_;
};

}  // namespace zq
