// DropTarget: takes the shell's file list from a drop on a window.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace zq {

// Paths in the shell's order.
using DroppedPaths = std::vector<std::string>;

// Registers `hwnd` for drops while it lives. `dropped` is called after the drop has returned to its
// source, so that the source isn't held up by what happens to the paths. Needs OLE on this thread.
class DropTarget {
 public:
  DropTarget() = default;
  DropTarget(const DropTarget&) = delete;
  DropTarget& operator=(const DropTarget&) = delete;
  ~DropTarget() { Revoke(); }

  void Register(HWND hwnd, std::function<void(const DroppedPaths&)> dropped);
  void Revoke();

 private:
  class Target;
  Target* target_ = nullptr;
  HWND hwnd_ = nullptr;
};

}  // namespace zq
