#include "controls/PostedDrops.h"

#include <commctrl.h>

#include <exception>
#include <utility>

#include "controls/DropMessages.h"
#include "platform/win32/RunTimeErrorReport.h"

namespace zq {
namespace {

constexpr UINT_PTR kSubclassId = 0x31;

WindowHandle HandleOf(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

// Where the user could drop something at this moment: not behind a modal window, and not on one that is
// hidden, as the main window is while its job is wiped.
bool CanBeDroppedOn(HWND window) {
  const HWND root = ::GetAncestor(window, GA_ROOT);
  return ::IsWindowVisible(window) && ::IsWindowEnabled(root) && !::IsIconic(root);
}

}  // namespace

bool PostedDrops::Register(HWND hwnd, ShellDrops& drops, std::function<void(const DroppedPaths&)> dropped) {
  if (!AdmitDrops(drops, HandleOf(hwnd))) return false;
  hwnd_ = hwnd;
  drops_ = &drops;
  dropped_ = std::move(dropped);
  ::SetWindowSubclass(hwnd_, &PostedDrops::Receive, kSubclassId, reinterpret_cast<DWORD_PTR>(this));
  return true;
}

void PostedDrops::Revoke() {
  if (!hwnd_) return;
  ::RemoveWindowSubclass(hwnd_, &PostedDrops::Receive, kSubclassId);
  drops_->AcceptFiles(HandleOf(hwnd_), false);
  hwnd_ = nullptr;
}

LRESULT CALLBACK PostedDrops::Receive(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                      DWORD_PTR self) {
  if (message != kDropFilesMessage) return ::DefSubclassProc(hwnd, message, wParam, lParam);
  try {
    reinterpret_cast<const PostedDrops*>(self)->Take(reinterpret_cast<HGLOBAL>(wParam));
  } catch (...) {
    ReportAndEnd(std::current_exception());
  }
  return 0;
}

// The memory isn't freed: a lesser program may have put any number into the message, and could so free memory
// of ours. A drop's few kilobytes stay until the program ends.
void PostedDrops::Take(HGLOBAL memory) const {
  if (!CanBeDroppedOn(hwnd_)) return;
  const DroppedPaths paths = PathsInMemory(memory);
  if (!paths.empty()) dropped_(paths);
}

}  // namespace zq
