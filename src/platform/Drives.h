// Drives: the drives of the system, and of which kind each is.
#pragma once

#include <cstdint>
#include <string>

namespace zq {

// What DriveType gives, as the system numbers the kinds. Others stand for a drive that it can't tell.
inline constexpr std::uint32_t kDriveRemovable = 2;
inline constexpr std::uint32_t kDriveFixed = 3;
inline constexpr std::uint32_t kDriveRemote = 4;
inline constexpr std::uint32_t kDriveCdRom = 5;
inline constexpr std::uint32_t kDriveRamDisk = 6;

class Drives {
 public:
  virtual ~Drives() = default;

  // The root names of all drives, such as "C:\", in the order of their letters. Each has a null behind it,
  // and one more ends them. Empty if the system can't tell.
  virtual std::string LogicalDriveStrings() = 0;

  virtual std::uint32_t DriveType(const std::string& root) = 0;
};

}  // namespace zq
