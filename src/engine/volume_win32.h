// What the Windows device knows of the volume that a folder lies on.
#pragma once

#include <cstdint>
#include <string>

#include "engine/system_win32.h"

namespace zq::engine::win32 {

// What is the same for all files of a volume.
struct Volume {
  std::uint32_t clusterBytes = 0;
  std::uint32_t sectorBytes = 0;
  bool isNtfs = false;
  std::wstring root;
  bool isLocal = false;  // a drive of this machine, whose flush of one file is a flush of the device
};

Status LookAtVolume(const std::wstring& path, Volume& volume);

}  // namespace zq::engine::win32
