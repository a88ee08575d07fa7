// MainWindow: what other windows and the wipe driver need of the main window.
#pragma once

#include <cstdint>

namespace zq {

class MainWindow {
 public:
  virtual ~MainWindow() = default;
  virtual void Show() = 0;
  virtual void Hide() = 0;
};

}  // namespace zq
