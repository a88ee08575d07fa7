// DriveList: the drives whose free space can be wiped, as the dialog offers them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq {

class Drives;
class Regional;

// The pictures of the kinds of drives, by their number in the dialog's image list.
inline constexpr int kHardDriveImage = 1;
inline constexpr int kFloppyDriveImage = 2;
inline constexpr int kRemoteDriveImage = 3;
inline constexpr int kRemovableDriveImage = 4;

struct DriveItem {
  std::string text;  // such as "C:\ - Hard Drive"
  int image = 0;

  bool operator==(const DriveItem&) const = default;
};

struct DriveList {
  std::vector<DriveItem> items;
  // Counted from 1, 0 if no drive is C. It is C's position among all drives, not among those offered: a drive
  // before C that isn't offered moves it one too far, and it may lie past the last item.
  int preselection = 0;
};

// The names out of Drives::LogicalDriveStrings.
std::vector<std::string> SplitDriveNames(std::string_view names);

// Hard disks, removable and remote drives are offered. A drive whose kind the system can't tell is treated
// as the one before it, and the first not at all.
DriveList ListDrives(const std::vector<std::string>& names, Drives& drives, Regional& regional);

// The drive that an item stands for: its first three characters in capitals.
std::string DriveOf(const std::string& itemText, Regional& regional);

}  // namespace zq
