// FakeDrives: the drives that a test lays down.
#pragma once

#include <map>
#include <string>

#include "platform/Drives.h"

namespace zq::test {

inline constexpr std::uint32_t kDriveUnknown = 0;
inline constexpr std::uint32_t kDriveNoRoot = 1;

class FakeDrives final : public Drives {
 public:
  std::map<std::string, std::uint32_t> types;  // by root name, in the order of the names

  std::string LogicalDriveStrings() override {
    std::string names;
    for (const auto& [name, type] : types) names += name + '\0';
    return names + '\0';
  }
  std::uint32_t DriveType(const std::string& root) override { return types.at(root); }
};

}  // namespace zq::test
