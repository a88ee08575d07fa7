#include "engine/NameCover.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <vector>

namespace zq::engine {
namespace {

constexpr std::uint64_t kBlockBytes = 4096;
// More than this of one folder isn't filled: it would take longer than the wipe of a few files in it.
constexpr std::uint64_t kMostBytes = 16 * kBlockBytes;

// Their removal, which nobody can cancel, takes about as long as the filling.
constexpr Clock::Time kLongestFilling{100'000};

// Slots are filled with long names first, then with those that fit into what is left between others. Where
// names are sorted nobody knows where one comes to stand.
constexpr std::size_t kSlotLengths[] = {250, 120, 60, 30, 12, 8};
constexpr std::size_t kTreeLengths[] = {12, 30, 100};

constexpr char kMayStand[] =
    "Names of what was wiped may still stand in a folder, where they could not be covered by others.";

// How many fillers at most are made of one length. What a name takes besides its characters is the least that
// any file system asks for; where a folder's growth tells that it is full, that ends the filling sooner.
std::size_t MostFillers(const NameRoom& room, std::size_t length) {
  const std::uint64_t bytes = std::clamp(room.bytes, kBlockBytes, kMostBytes);
  if (room.kind == NameRoom::Kind::Slots) return static_cast<std::size_t>(bytes / (length + 8)) + 4;
  // Enough to fill a block and to split it, in whatever order they come to stand: a tree that was emptied
  // grows again through the same record and blocks.
  return static_cast<std::size_t>(bytes / kBlockBytes) * 16;
}

// Scattered over the order of names, and legal everywhere; short ones fit into one slot of FAT.
std::string FillerName(std::size_t length, std::size_t number) {
  static constexpr char kCharacters[] = "0123456789bcdefghijklmpqrsvwxyz_";
  static constexpr char kEnd[] = ".zq";
  std::uint64_t state = length << 32 | number;
  std::string name;
  while (name.size() + sizeof kEnd - 1 < length) {
    state += 0x9E3779B97F4A7C15;  // SplitMix64
    std::uint64_t mixed = (state ^ state >> 30) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
    name += kCharacters[(mixed ^ mixed >> 31) & 31];
  }
  return name + kEnd;
}

// The fillers of one folder, which go with it.
class Fillers {
 public:
  Fillers(Operation& operation, Folder& folder, const std::string& path)
      : operation_(operation), folder_(folder), path_(path), started_(operation.clock.Now()) {}
  Fillers(const Fillers&) = delete;
  Fillers& operator=(const Fillers&) = delete;
  // The last one first, so that a kill leaves those with the first numbers.
  ~Fillers() {
    while (!names_.empty()) RemoveLast();
    operation_.CoveringTook(operation_.clock.Now() - started_);
  }

  void Make(const NameRoom& room) {
    const bool isTree = room.kind == NameRoom::Kind::Tree;
    for (const std::size_t length :
         isTree ? std::span<const std::size_t>(kTreeLengths) : std::span<const std::size_t>(kSlotLengths)) {
      Fill(room, length);
    }
    if (cut_) operation_.AddNote(kMayStand);
  }

 private:
  bool MayGoOn() {
    return operation_.MayGoOn(path_) && operation_.MayCover() &&
           operation_.clock.Now() - started_ < kLongestFilling;
  }

  void Fill(const NameRoom& room, std::size_t length) {
    const std::size_t most = MostFillers(room, length);
    std::size_t number = 0;
    for (bool full = false; !full && !cut_ && number < most; ++number) {
      Status status = Add(FillerName(length, number));
      NameRoom now;
      full = status.trouble == Trouble::NoSpace ||
             (room.kind == NameRoom::Kind::Slots && folder_.RoomForNames(now) &&
              now.bytes > std::max(room.bytes, kBlockBytes));
      cut_ = (!status.Ok() && !full) || !MayGoOn();
      // The last one lies in new room, which isn't wanted, or has taken what a renaming needs. Now those of
      // the next length, in smaller gaps.
      if (full && !names_.empty()) RemoveLast();
    }
    while (TakeOver(FillerName(length, number))) ++number;
  }

  Status Add(std::string name) {
    std::unique_ptr<File> file;
    names_.push_back(std::move(name));
    Status status = folder_.AddFile(names_.back(), Access::Cached, file);
    if (status.Ok()) return status;
    name = std::move(names_.back());
    names_.pop_back();
    return status.trouble == Trouble::Exists && TakeOver(std::move(name)) ? Status{} : status;
  }

  // One that is there already, left by a run that was killed. What isn't empty is somebody's.
  bool TakeOver(std::string name) {
    std::unique_ptr<File> file;
    FileInfo info;
    if (!folder_.OpenFile(name, Access::Cached, file).Ok() || !file->Info(info).Ok()) return false;
    if (info.lengthBytes != 0) return false;
    names_.push_back(std::move(name));
    return true;
  }

  void RemoveLast() noexcept {
    try {
      const Status status = folder_.Remove({names_.back(), EntryKind::File});
      if (!status.Ok() && status.trouble != Trouble::NotFound) {
        operation_.AddNote(
            "An empty file that was made to cover the names of what was wiped could not be removed.");
      }
    } catch (const std::bad_alloc&) {
      // It stays until the next run finds it.
    }
    names_.pop_back();
  }

  Operation& operation_;
  Folder& folder_;
  const std::string& path_;
  const Clock::Time started_;
  std::vector<std::string> names_;
  bool cut_ = false;  // before all was filled
};

}  // namespace

void CoverNames(Operation& operation, Folder& folder, const std::string& path) noexcept {
  try {
    NameRoom room;
    if (!folder.RoomForNames(room)) return;
    if (!operation.MayGoOn(path) || !operation.MayCover()) return operation.AddNote(kMayStand);
    Fillers fillers(operation, folder, path);
    fillers.Make(room);
    Folder* const folders[] = {&folder};
    Status outcomes[1];
    operation.device.FlushFolders(folders, outcomes);
    if (!outcomes[0].Ok()) operation.AddNote(kMayStand);
  } catch (...) {
    operation.AddNote(kMayStand);
  }
}

}  // namespace zq::engine
