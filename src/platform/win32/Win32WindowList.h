// The top-level windows on Windows.
#pragma once

#include "platform/WindowList.h"

namespace zq {

class Win32WindowList final : public WindowList {
 public:
  WindowHandle First() override;
  WindowHandle Next(WindowHandle window) override;
  WindowHandle ParentOf(WindowHandle window) override;
  std::string TitleOf(WindowHandle window) override;
  WindowHandle FindByTitle(const std::string& title) override;
  bool PostClose(WindowHandle window) override;
};

}  // namespace zq
