#include "wipe/DriveList.h"

#include <cstddef>
#include <cstdint>

#include "platform/Drives.h"
#include "platform/Regional.h"

namespace zq {
namespace {

struct DriveKind {
  std::uint32_t type;
  bool offered;
  int image;
  const char* text;
};

constexpr DriveKind kDriveKinds[] = {
    {kDriveRemovable, true, kRemovableDriveImage, "Removable Drive"},
    {kDriveFixed, true, kHardDriveImage, "Hard Drive"},
    {kDriveRemote, true, kRemoteDriveImage, "Remote Drive"},
    {kDriveCdRom, false, 0, ""},
    {kDriveRamDisk, false, 0, ""},
};

constexpr const char* kFloppyDriveText = "Floppy Drive";

}  // namespace

std::vector<std::string> SplitDriveNames(std::string_view names) {
  std::vector<std::string> elements;
  for (std::size_t begin = 0;;) {
    const std::size_t end = names.find('\0', begin);
    elements.emplace_back(names.substr(begin, end == std::string_view::npos ? end : end - begin));
    if (end == std::string_view::npos) break;
    begin = end + 1;
  }
  // Behind the null of the last name, and behind the one that ends them all.
  elements.resize(elements.size() < 2 ? 0 : elements.size() - 2);
  return elements;
}

DriveList ListDrives(const std::vector<std::string>& names, Drives& drives, Regional& regional) {
  DriveList list;
  // What is known of a drive holds for the next one whose kind is none of the table's.
  bool offered = false;
  int image = 0;
  std::string text;
  int position = 0;
  for (const std::string& name : names) {
    ++position;
    const std::uint32_t type = drives.DriveType(name);
    for (const DriveKind& kind : kDriveKinds) {
      if (kind.type != type) continue;
      offered = kind.offered;
      image = kind.image;
      text = kind.text;
    }
    const std::string letter = regional.UpperCase(name.substr(0, 1));
    if (letter == "C") list.preselection = position;
    if (letter == "A") {
      image = kFloppyDriveImage;
      text = kFloppyDriveText;
    }
    if (offered) list.items.push_back({name + " - " + text, image});
  }
  return list;
}

std::string DriveOf(const std::string& itemText, Regional& regional) {
  return regional.UpperCase(itemText.substr(0, 3));
}

}  // namespace zq
