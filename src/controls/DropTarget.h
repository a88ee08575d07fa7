// DropTarget: takes the shell's file list from a drop on a window.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <functional>

#include "controls/DroppedPaths.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

// The file list of a data object; false where it has none.
bool ReadFileList(IDataObject& data, DroppedPaths& paths);

// Takes the drops on a window while it is registered. Needs OLE on this thread.
class DropTarget {
 public:
  // When what is dropped is handed over: after the drop has returned to its source, so that the source isn't
  // held up by what happens to the paths, or inside the drop, so that it waits for that.
  enum class When { Later, Inside };

  DropTarget();
  DropTarget(const DropTarget&) = delete;
  DropTarget& operator=(const DropTarget&) = delete;
  ~DropTarget();

  // Files that would be taken are over the window, or no longer.
  std::function<void(bool over)> Hover;

  void Register(HWND hwnd, std::function<void(const DroppedPaths&)> dropped, When when = When::Later);
  void Revoke();

  // Whether drops are taken; they are at first.
  void SetAccepting(bool accepting) { accepting_ = accepting; }

 private:
  class Target;
  ComPointer<Target> target_;
  HWND hwnd_ = nullptr;
  bool accepting_ = true;
};

}  // namespace zq
