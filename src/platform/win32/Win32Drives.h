// The drives of Windows.
#pragma once

#include "platform/Drives.h"

namespace zq {

class Win32Drives final : public Drives {
 public:
  std::string LogicalDriveStrings() override;
  std::uint32_t DriveType(const std::string& root) override;
};

}  // namespace zq
