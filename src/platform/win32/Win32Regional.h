// Regional formats on Windows.
#pragma once

#include "platform/Regional.h"

namespace zq {

class Win32Regional final : public Regional {
 public:
  std::string UpperCase(std::string_view text) override;
  std::string DecimalSeparator() override;
  std::string GroupSeparator() override;
  std::string Now() override;
};

}  // namespace zq
