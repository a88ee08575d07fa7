// ShellDrops: whether what Explorer drags reaches the windows of this process, and the way round where it
// doesn't.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/WindowList.h"

namespace zq {

class ShellDrops {
 public:
  virtual ~ShellDrops() = default;

  // True where this process has higher rights than the shell, as when it was started as administrator:
  // Windows then shows none of our drop targets to what is dragged from there.
  virtual bool HeldBack() = 0;

  // Lets the message reach this one window from programs of lower rights, too. False if that is refused.
  virtual bool AllowMessage(WindowHandle window, std::uint32_t message) = 0;

  // Whether what is dropped on the window is posted to it.
  virtual void AcceptFiles(WindowHandle window, bool accept) = 0;
};

// A system that holds nothing back.
class FreeShellDrops final : public ShellDrops {
 public:
  static ShellDrops& Instance() {
    static FreeShellDrops drops;
    return drops;
  }
  bool HeldBack() override { return false; }
  bool AllowMessage(WindowHandle, std::uint32_t) override { return false; }
  void AcceptFiles(WindowHandle, bool) override {}
};

// By the two processes' integrity levels. One that isn't known holds nothing back: what comes of a yes is
// that a window is opened to lesser programs.
inline bool HoldsBack(std::optional<std::uint32_t> own, std::optional<std::uint32_t> shell) {
  return own && shell && *own > *shell;
}

}  // namespace zq
