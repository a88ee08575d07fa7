// What Explorer drags, on Windows.
#pragma once

#include "platform/ShellDrops.h"

namespace zq {

class Win32ShellDrops final : public ShellDrops {
 public:
  bool HeldBack() override;
  bool AllowMessage(WindowHandle window, std::uint32_t message) override;
  void AcceptFiles(WindowHandle window, bool accept) override;
};

}  // namespace zq
