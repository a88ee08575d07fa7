// WindowList: the top-level windows of all programs, and a request to one of them.
#pragma once

#include <cstdint>
#include <string>

namespace zq {

using WindowHandle = std::uintptr_t;  // 0 for none

class WindowList {
 public:
  virtual ~WindowList() = default;

  // From the front one to the one at the back, hidden ones too; 0 at the end.
  virtual WindowHandle First() = 0;
  virtual WindowHandle Next(WindowHandle window) = 0;

  // The window's parent or owner, 0 for none.
  virtual WindowHandle ParentOf(WindowHandle window) = 0;

  // At most 255 characters of its title.
  virtual std::string TitleOf(WindowHandle window) = 0;

  // The front window of exactly this title, case ignored; 0 for none.
  virtual WindowHandle FindByTitle(const std::string& title) = 0;

  // Asks the window to close, without waiting for it. False when the system refuses to pass that on, as it
  // does to a program of higher rights.
  virtual bool PostClose(WindowHandle window) = 0;
};

// A system without windows.
class NoWindows final : public WindowList {
 public:
  static WindowList& Instance() {
    static NoWindows windows;
    return windows;
  }
  WindowHandle First() override { return 0; }
  WindowHandle Next(WindowHandle) override { return 0; }
  WindowHandle ParentOf(WindowHandle) override { return 0; }
  std::string TitleOf(WindowHandle) override { return {}; }
  WindowHandle FindByTitle(const std::string&) override { return 0; }
  bool PostClose(WindowHandle) override { return false; }
};

}  // namespace zq
