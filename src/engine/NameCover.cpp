#include "engine/NameCover.h"

#include <algorithm>

namespace zq::engine {
namespace {

constexpr std::size_t kLongestName = 250;
constexpr std::uint64_t kBlockBytes = 4096;
// More than this of one folder isn't filled: it would take longer than the wipe of a few files in it.
constexpr std::uint64_t kMostBytes = 16 * kBlockBytes;

// Their removal, which nobody can cancel, takes about as long as the filling.
constexpr Clock::Time kLongestFilling{150'000};

// How many fillers at most are made of one length. What a name takes besides its characters is the least that
// any file system asks for; where a folder's growth tells that it is full, that ends the filling sooner.
std::size_t MostFillers(const NameRoom& room, std::size_t length) {
  const std::uint64_t bytes = std::clamp(room.bytes, kBlockBytes, kMostBytes);
  if (room.GrowsWhenFull()) return static_cast<std::size_t>(bytes / (length + 8)) + 4;
  // Enough to fill a block and to split it, in whatever order they come to stand: a tree that was emptied
  // grows again through the same record and blocks.
  return static_cast<std::size_t>(bytes / kBlockBytes) * 16;
}

}  // namespace

NameCover::Filled* NameCover::Add(Folder& folder, const std::string& path) {
  // Entries come in the order of the walk, the same folder in runs.
  const auto isIt = [&folder](const auto& filled) { return &filled->folder == &folder; };
  NameRoom room;
  if (std::any_of(folders_.rbegin(), folders_.rend(), isIt) || !folder.RoomForNames(room)) return nullptr;
  folders_.push_back(std::make_unique<Filled>(Filled{folder, path, room.kind, {}}));
  return folders_.back().get();
}

void NameCover::FillBlocks(Folder& folder, const std::string& path) {
  Filled* const filled = Add(folder, path);
  if (filled != nullptr && filled->kind == NameRoom::Kind::Blocks) Fill(*filled, kLongestName, false);
}

void NameCover::FillGaps() {
  for (const auto& filled : folders_) {
    if (filled->kind == NameRoom::Kind::Tree) continue;
    for (const std::size_t length : {120u, 60u, 30u, 12u}) Fill(*filled, length, false);
  }
}

void NameCover::FillRecord(Folder& folder, const std::string& path) {
  Filled* const filled = Add(folder, path);
  if (filled == nullptr) return;
  if (filled->kind == NameRoom::Kind::Tree) {
    for (const std::size_t length : {12u, 30u, 100u}) Fill(*filled, length, true);
  } else {
    for (const std::size_t length : {60u, 12u}) Fill(*filled, length, true);
  }
}

void NameCover::Fill(Filled& filled, std::size_t length, bool record) {
  NameRoom room;
  if (filled.failed || !filled.folder.RoomForNames(room)) return;
  const std::size_t most = MostFillers(room, length);
  // Names that lie in the record go on into a block; that is wanted unless it is the record to be filled.
  const std::uint64_t full = record ? room.bytes : std::max(room.bytes, kBlockBytes);
  for (std::size_t count = 0; count < most; ++count) {
    if (!operation_.MayGoOn(filled.path)) {
      filled.failed = true;
      return;
    }
    const Clock::Time started = operation_.clock.Now();
    const Status status = filling_ < kLongestFilling ? AddFiller(filled, length) : Status::Refusal("no time");
    filling_ += operation_.clock.Now() - started;
    if (!status.Ok() && status.trouble != Trouble::NoSpace) {
      filled.failed = true;
      Tell("Names of what was wiped may still stand in a folder, where they could not be covered by others.");
      return;
    }
    NameRoom now;
    const bool isFull =
        !status.Ok() || (room.GrowsWhenFull() && filled.folder.RoomForNames(now) && now.bytes > full);
    if (!isFull) continue;
    // The last one lies in new room, which isn't wanted, or has taken what a renaming needs. Now those of the
    // next length, in smaller gaps.
    if (!filled.names.empty() && filled.folder.Remove({filled.names.back(), EntryKind::File}).Ok()) {
      filled.names.pop_back();
    }
    return;
  }
}

Status NameCover::AddFiller(Filled& filled, std::size_t length) {
  std::unique_ptr<File> file;
  Status status{Trouble::Exists, 0, {}};
  for (int attempt = 0; attempt < 4 && status.trouble == Trouble::Exists; ++attempt) {
    filled.names.push_back(operation_.RandomName(length));
    status = filled.folder.AddFile(filled.names.back(), Access::Cached, file);
    if (!status.Ok()) filled.names.pop_back();
  }
  return status;
}

void NameCover::Remove() noexcept {
  for (const auto& filled : folders_) {
    for (const std::string& name : filled->names) {
      try {
        if (!filled->folder.Remove({name, EntryKind::File}).Ok()) {
          Tell("An empty file that was made to cover the names of what was wiped could not be removed.");
        }
      } catch (const std::bad_alloc&) {
        // It stays, and so does its folder, which tells.
      }
    }
    filled->names.clear();
  }
}

void NameCover::Tell(const char* note) noexcept {
  try {
    if (operation_.note.empty()) operation_.note = note;
  } catch (const std::bad_alloc&) {
    // The wipe itself goes on.
  }
}

void CoverNames(Operation& operation, Folder& folder, const std::string& path) {
  NameRoom room;
  if (!folder.RoomForNames(room)) return;
  NameCover cover(operation);
  cover.FillRecord(folder, path);
  Folder* const folders[] = {&folder};
  Status outcomes[1];
  operation.device.FlushFolders(folders, outcomes);
  Require(outcomes[0], "Flushing the folder of", path);
}

}  // namespace zq::engine
