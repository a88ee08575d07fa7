#pragma once

#include <windows.h>
#include <shellapi.h>

#include "platform/Shell.h"

namespace zq {

using ShellExecuteCall = decltype(&::ShellExecuteW);

class Win32Shell final : public Shell {
 public:
  Win32Shell() = default;
  explicit Win32Shell(ShellExecuteCall call) : call_(call) {}

  // The desktop owns what it shows.
  void Execute(const ShellRequest& request) override;

 private:
  ShellExecuteCall call_ = &::ShellExecuteW;
};

}  // namespace zq
