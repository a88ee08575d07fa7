#include "engine/WindowsVolume.h"

#include <algorithm>
#include <iterator>

namespace zq::engine::win32 {
namespace {

constexpr std::uint32_t kWholeVolumeCompressed = 0x00008000;  // FILE_VOLUME_IS_COMPRESSED

constexpr const char* kInPlace[] = {"NTFS", "FAT", "FAT32", "exFAT"};

bool IsInPlace(const Volume& volume) {
  return std::find(std::begin(kInPlace), std::end(kInPlace), volume.fileSystem) != std::end(kInPlace);
}

}  // namespace

std::string WhyNotOn(const Volume& volume) {
  // A server tells as well, if it is this.
  if (volume.fileSystem == "ReFS") return "the file system (ReFS) may write new data to a new place";
  if ((volume.flags & kWholeVolumeCompressed) != 0) return "the whole drive is compressed";
  if (volume.isRemote || volume.isTrusted || IsInPlace(volume)) return {};
  return volume.fileSystem.empty()
             ? "the file system can't be found out"
             : "it isn't known whether the file system (" + volume.fileSystem + ") writes in place";
}

std::string CaveatOf(const Volume& volume) {
  if (volume.isRemote) {
    return "On a network drive the data were overwritten as the server sees them; whether it keeps older "
           "copies "
           "can't be found out from here.";
  }
  if (volume.isTrusted && !IsInPlace(volume)) {
    return "It isn't known whether the file system (" +
           (volume.fileSystem.empty() ? std::string("not told") : volume.fileSystem) +
           ") writes in place; older data may be left on the drive.";
  }
  return {};
}

bool MayBackExternally(const Volume& volume) {
  const bool isFat =
      volume.fileSystem == "FAT" || volume.fileSystem == "FAT32" || volume.fileSystem == "exFAT";
  return !volume.isRemote && !isFat;
}

std::uint64_t MostBytesOn(const Volume& volume) {
  return volume.fileSystem == "FAT" || volume.fileSystem == "FAT32" ? 0xFFFF'FFFF : 0;
}

}  // namespace zq::engine::win32
