#include "manager/RecycleBin.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "manager/BinRecord.h"
#include "platform/Drives.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr const char* kBinFolder = "$Recycle.Bin";
constexpr const char* kIsALink =
    "It is a link, which may lead to files that were never deleted, and was not looked into.";
constexpr const char* kIsNoFolder = "It is not a folder.";
constexpr const char* kNotToTheEnd = "It could not be read to its end, so there may be more in it.";
constexpr const char* kNobody = "Windows does not tell whose Recycle Bin it is, so none was looked into.";

// An item and its record have the same name but for the letter in it.
enum class Part { None, Item, Record };

Part PartOf(std::string_view name) {
  if (name.size() < 3 || name[0] != '$') return Part::None;
  if (name[1] == 'R' || name[1] == 'r') return Part::Item;
  if (name[1] == 'I' || name[1] == 'i') return Part::Record;
  return Part::None;
}

bool IsFolder(const FileEntry& entry) {
  return (entry.attributes & kAttributeDirectory) != 0;
}

class Look {
 public:
  Look(Files& files, Process& process, BinContents& contents)
      : files_(files), process_(process), contents_(contents) {}

  // A folder that isn't there is no bin, and nothing is missing.
  bool IsBin(const std::string& folder) {
    const std::optional<std::uint32_t> attributes = files_.Attributes(folder);
    if (!attributes) return false;
    if (*attributes & kAttributeReparsePoint) {
      Refuse(folder, kIsALink);
      return false;
    }
    if (!(*attributes & kAttributeDirectory)) {
      Refuse(folder, kIsNoFolder);
      return false;
    }
    return true;
  }

  void Into(const std::string& folder) {
    struct Pair {
      std::optional<FileEntry> item;
      std::optional<FileEntry> record;
    };
    std::map<std::string, Pair> pairs;
    const ListEnd end = files_.List(folder + "\\*", [&](FileEntry entry) {
      process_.LookAtMessages();
      entry.name = TrimAtNull(entry.name);
      const Part part = PartOf(entry.name);
      if (part == Part::None || (part == Part::Record && IsFolder(entry))) return;
      Pair& pair = pairs[entry.name.substr(2)];
      (part == Part::Item ? pair.item : pair.record) = std::move(entry);
    });
    contents_.folders.push_back(folder + "\\");
    for (const auto& [name, pair] : pairs) Add(folder + "\\", pair.item, pair.record);
    if (end == ListEnd::BrokenOff) Refuse(folder, kNotToTheEnd);
  }

  void Refuse(const std::string& path, const char* reason) {
    contents_.measured.isComplete = false;
    contents_.refusals.push_back(path.empty() ? std::string(reason) : path + " - " + reason);
  }

 private:
  void Add(const std::string& folder, const std::optional<FileEntry>& item,
           const std::optional<FileEntry>& record) {
    const FileEntry& first = item ? *item : *record;
    WipeItem wipe{folder + first.name, IsFolder(first), {}, folder + first.name};
    if (record) {
      if (item) wipe.record = folder + record->name;
      if (const auto original = OriginalPath(folder + record->name, *record)) wipe.shownAs = *original;
    }
    MeasureEntry(first, contents_.measured);
    if (wipe.isFolder && !(first.attributes & kAttributeReparsePoint))
      MeasureFolder(files_, process_, wipe.path, contents_.measured);
    contents_.items.push_back(std::move(wipe));
  }

  // A record that can't be read or is damaged is destroyed like another: it only tells no name.
  std::optional<std::string> OriginalPath(const std::string& path, const FileEntry& entry) {
    if (entry.sizeHigh != 0 || entry.sizeLow > kLongestBinRecordBytes) return std::nullopt;
    if (entry.attributes & kAttributeReparsePoint) return std::nullopt;
    try {
      const std::optional<BinRecord> record = ReadBinRecord(files_.Read(path));
      if (record) return record->originalPath;
    } catch (const RunTimeError&) {
    }
    return std::nullopt;
  }

  Files& files_;
  Process& process_;
  BinContents& contents_;
};

// Local ones that can be written to. What the system doesn't know isn't touched.
bool MayHaveABin(std::uint32_t type) {
  return type == kDriveFixed || type == kDriveRemovable || type == kDriveRamDisk;
}

std::vector<std::string> Roots(Drives& drives) {
  std::vector<std::string> roots;
  const std::string names = drives.LogicalDriveStrings();
  for (std::size_t start = 0; start < names.size() && names[start] != '\0';) {
    roots.emplace_back(names.c_str() + start);
    start += roots.back().size() + 1;
  }
  return roots;
}

}  // namespace

BinContents LookIntoRecycleBin(Files& files, Process& process, Drives& drives, BinOwner& owner) {
  BinContents contents;
  Look look(files, process, contents);
  const std::string user = owner.UserId();
  if (user.empty()) {
    look.Refuse({}, kNobody);
    return contents;
  }
  for (const std::string& root : Roots(drives)) {
    if (!MayHaveABin(drives.DriveType(root))) continue;
    const std::string common = root + kBinFolder;
    if (!look.IsBin(common)) continue;
    if (!owner.KeepsOwners(root)) look.Into(common);
    const std::string own = common + "\\" + user;
    if (look.IsBin(own)) look.Into(own);
  }
  return contents;
}

}  // namespace zq
