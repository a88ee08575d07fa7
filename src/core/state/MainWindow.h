// MainWindow: what other windows and the wipe drivers need of the main window.
#pragma once

#include <cstdint>

namespace zq {

class MainWindow {
 public:
  virtual ~MainWindow() = default;
  virtual void Show() = 0;
  virtual void Hide() = 0;

  // The lines between the rows of the job list.
  virtual void SetGridLines(bool gridLines) = 0;
  // Of menus and bars: 1 with visual styles, 0 without.
  virtual void SetVisualStyle(int visualStyle) = 0;
};

}  // namespace zq
