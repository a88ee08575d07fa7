#include "engine/FolderWipe.h"

#include <algorithm>
#include <utility>

#include "engine/NameCover.h"

namespace zq::engine {
namespace {

// Folders stay open until they are removed, and a process may have only so many open.
constexpr std::size_t kMostLeftFolders = 128;

// After this much time in renaming folders, those that have been renamed are removed first.
constexpr Clock::Time kLongestRenaming{60'000};
ItemKind KindOf(const Entry& entry) {
  switch (entry.kind) {
    case EntryKind::File:
      return ItemKind::File;
    case EntryKind::Folder:
      return ItemKind::Folder;
    case EntryKind::Link:
    case EntryKind::FolderLink:
      return ItemKind::Link;
    case EntryKind::Other:
      break;
  }
  return ItemKind::Other;
}

// As with files: there are gaps to be filled after it.
constexpr Clock::Time kLongestRenamingUnderCover{15'000};

}  // namespace

void FolderWipe::Run(const std::string& path, const EntryId* meant) {
  try {
    Open(path, meant);
  } catch (const Failure& failure) {
    operation_.TellFailed({path, path, ItemKind::Folder}, failure, Outcome::Kept, path);
    return;
  }
  const std::shared_ptr<Level> top = levels_.front();
  Walk();
  batch_.Run();
  RemoveLeftFolders();
  Folder* const left = top->folder ? top->folder.get() : above_.get();
  if (left == nullptr || !(batch_.HasRemoved() || hasRemovedFolder_)) return;
  try {
    CoverNames(operation_, *left, path);
    operation_.ClearTraces(*left, path);
  } catch (const Failure& failure) {
    operation_.TellFailure(failure);
  }
}

void FolderWipe::Open(const std::string& path, const EntryId* meant) {
  std::string abovePath;
  std::string name;
  Require(operation_.device.Split(path, abovePath, name), "Opening", path);
  std::unique_ptr<Folder> folder;
  if (name.empty()) {
    Require(operation_.device.OpenFolder(path, folder), "Opening", path);
  } else {
    Require(operation_.device.OpenFolder(abovePath, above_), "Opening", abovePath);
    // Opened through the folder above it, so that a link in its place is refused.
    Require(above_->OpenFolder(name, folder), "Opening", path);
  }
  if (meant != nullptr) {
    EntryId id;
    Require(folder->Identity(id), "Opening", path);
    if (id != *meant) ThrowNotMeant(path);
  }
  Enter(std::move(folder), name, path);
}

void FolderWipe::Walk() {
  while (!levels_.empty()) {
    const std::shared_ptr<Level> level = levels_.back();
    operation_.Tell(level->path);
    if (level->next < level->entries.size()) {
      Visit(level, std::exchange(level->entries[level->next++], {}));
    } else {
      level->entries = {};
      left_.push_back(level);
      levels_.pop_back();
    }
    if (left_.size() >= kMostLeftFolders) batch_.Run();
    if (batch_.HasRun() || left_.size() >= kMostLeftFolders) RemoveLeftFolders();
  }
}

void FolderWipe::Enter(std::unique_ptr<Folder> folder, std::string name, std::string path) {
  auto level = std::make_shared<Level>();
  level->folder = std::move(folder);
  level->self = {name, EntryKind::Folder};
  level->name = std::move(name);
  level->path = std::move(path);
  if (!levels_.empty()) level->parent = levels_.back();
  Require(level->folder->List(level->entries), "Listing", level->path);
  level->hadEntries = !level->entries.empty();
  levels_.push_back(std::move(level));
}

void FolderWipe::Visit(const std::shared_ptr<Level>& level, const Entry& entry) {
  const std::string path = operation_.device.Join(level->path, entry.name);
  const auto wanted = [&] { return selection_.removeFolders || selection_.takesFile(entry.name); };
  try {
    switch (entry.kind) {
      case EntryKind::File:
        if (wanted()) batch_.AddFile(level, entry.name, path);
        break;
      case EntryKind::Folder:
        if (selection_.subFolders) {
          std::unique_ptr<Folder> folder;
          Require(level->folder->OpenFolder(entry.name, folder), "Opening", path);
          Enter(std::move(folder), entry.name, path);
        }
        break;
      case EntryKind::Link:
        if (wanted()) batch_.AddLink(level, entry, path);
        break;
      case EntryKind::FolderLink:
        if (selection_.removeFolders) batch_.AddLink(level, entry, path);
        break;
      case EntryKind::Other:
        if (wanted()) throw MakeFailure("Opening", path, "it is not a regular file");
        break;
    }
  } catch (const Failure& failure) {
    level->somethingStays = true;
    operation_.TellFailed({path, entry.name, KindOf(entry)}, failure, Outcome::Kept, entry.name);
    operation_.LookForCancel();
  }
}

// --- The folders ----------------------------------------------------------------------------------------

void FolderWipe::RemoveLeftFolders() {
  const std::vector<std::shared_ptr<Level>> left = std::exchange(left_, {});
  if (selection_.removeFolders) {
    for (const auto& level : left) {
      operation_.Tell(level->path);
      CheckRemovable(*level);
    }
  }
  NameRoom room;
  const bool keepsNames = std::any_of(left.begin(), left.end(),
                                      [&](const auto& level) { return level->folder->RoomForNames(room); });
  if (!selection_.removeFolders) {
    if (keepsNames) CoverFolders(left);
    return;
  }
  // The removals in them go to the device before they do: freed in one go with them, a folder's block would
  // keep the old names.
  if (!keepsNames) FlushInPieces(left);
  if (operation_.device.RenamesOpenFolders() && !keepsNames) {
    RemoveFolders(left);
    return;
  }
  // Elsewhere a folder can't be renamed, or has names of its own to be covered, before those in it are gone.
  std::size_t highest = 0;
  for (const auto& level : left) {
    if (level->parent) level->parent->height = std::max(level->parent->height, level->height + 1);
    highest = std::max(highest, level->height);
  }
  for (std::size_t height = 0; height <= highest; ++height) {
    std::vector<std::shared_ptr<Level>> group;
    std::copy_if(left.begin(), left.end(), std::back_inserter(group),
                 [height](const auto& level) { return level->height == height; });
    if (keepsNames) CoverFolders(group);
    RemoveFolders(group);
  }
}

// Covers the names that were in the folders themselves, in groups as above.
void FolderWipe::CoverFolders(std::span<const std::shared_ptr<Level>> levels) {
  while (!levels.empty()) {
    operation_.Tell(levels.front()->path);
    const Clock::Time started = operation_.clock.Now();
    NameCover cover(operation_);
    std::size_t count = 0;
    do {
      const Level& level = *levels[count++];
      if (level.hadEntries && level.folder) cover.FillRecord(*level.folder, level.path);
    } while (count < std::min(operation_.pace.FlushesAtOnce(), levels.size()) &&
             operation_.clock.Now() - started < kLongestRenaming);
    FlushFolders(levels.first(count), false);
    levels = levels.subspan(count);
  }
}

void FolderWipe::FlushInPieces(std::span<const std::shared_ptr<Level>> levels) {
  while (!levels.empty()) {
    operation_.Tell(levels.front()->path);
    const std::size_t count = std::min(operation_.pace.FlushesAtOnce(), levels.size());
    const Clock::Time started = operation_.clock.Now();
    FlushFolders(levels.first(count), false);
    operation_.pace.FlushesTook(operation_.clock.Now() - started, count);
    levels = levels.subspan(count);
  }
}

void FolderWipe::CheckRemovable(Level& level) {
  try {
    if (!level.somethingStays) {
      WipeFolderStreams(operation_, *level.folder, level.path);
      if (FolderAbove(level) == nullptr) {
        throw MakeFailure("Removing", level.path, "the root of a drive can't be removed");
      }
    }
  } catch (const Failure& failure) {
    Fail(level, failure);
  }
  if (level.somethingStays && level.parent) level.parent->somethingStays = true;
}

// All are renamed, that is made durable, and only then are they removed: as with the names of files, and as
// there in groups where it takes the device long.
void FolderWipe::RemoveFolders(std::span<const std::shared_ptr<Level>> levels) {
  while (!levels.empty()) {
    operation_.Tell(levels.front()->path);
    // A cancel must not leave a folder with the name it has meanwhile.
    holdsFailures_ = true;
    std::size_t count = 0;
    {
      NameCover cover(operation_);
      count = RenameFolders(levels, cover);
      cover.FillGaps();
      RemoveRenamed(levels.first(count), cover);
    }
    holdsFailures_ = false;
    TellEnds(levels.first(count));
    levels = levels.subspan(count);
  }
}

std::size_t FolderWipe::RenameFolders(std::span<const std::shared_ptr<Level>> levels, NameCover& cover) {
  const Clock::Time started = operation_.clock.Now();
  std::size_t count = 0;
  for (const auto& level : levels) {
    const Clock::Time longest = cover.HasFillers() ? kLongestRenamingUnderCover : kLongestRenaming;
    if (count > 0 && operation_.clock.Now() - started >= longest) break;
    ++count;
    if (!level->somethingStays) {
      try {
        // Where it can't be renamed while it is open; what is in it is removed through it elsewhere.
        if (!operation_.device.RenamesOpenFolders()) level->folder.reset();
        Folder& above = *FolderAbove(*level);
        cover.FillBlocks(above, level->path);
        std::size_t& shortest = level->parent ? level->parent->shortestName : shortestAbove_;
        HideName(operation_, level->self.name, level->path, shortest, [&](const std::string& newName) {
          Status status = above.Rename(level->self, newName);
          if (status.Ok()) level->self.name = newName;
          return status;
        });
      } catch (const Failure& failure) {
        Fail(*level, failure);
      }
    }
    if (level->somethingStays && level->parent) level->parent->somethingStays = true;
  }
  return count;
}

void FolderWipe::RemoveRenamed(std::span<const std::shared_ptr<Level>> levels, NameCover& cover) {
  FlushFolders(levels, true);
  for (const auto& level : levels) {
    const std::string path = level->path + " (now named " + level->self.name + ')';
    try {
      if (!level->somethingStays) {
        Require(FolderAbove(*level)->Remove(level->self), "Removing", path);
        hasRemovedFolder_ = true;
        level->folder.reset();
      } else if (level->self.name != level->name) {
        // It stays for something in it, so the user has to find it again.
        Require(FolderAbove(*level)->Rename(level->self, level->name), "Giving back the name of", path);
        level->self.name = level->name;
      }
    } catch (const Failure& failure) {
      Fail(*level, failure);
    }
    if (level->somethingStays && level->parent) level->parent->somethingStays = true;
  }
  cover.Remove();
  FlushFolders(levels, true);
}

// Flushes the folders themselves, or those above them, as far as they are open and nothing has failed.
void FolderWipe::FlushFolders(std::span<const std::shared_ptr<Level>> levels, bool above) {
  std::vector<Folder*> folders;
  std::vector<Level*> firsts;
  for (const auto& level : levels) {
    Folder* const folder = above ? FolderAbove(*level) : level->folder.get();
    if (level->somethingStays || folder == nullptr) continue;
    if (!folders.empty() && folders.back() == folder) continue;
    folders.push_back(folder);
    firsts.push_back(level.get());
  }
  if (folders.empty()) return;
  std::vector<Status> outcomes(folders.size());
  operation_.device.FlushFolders(folders, outcomes);
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (outcomes[i].Ok()) continue;
    Fail(*firsts[i],
         MakeFailure(above ? "Flushing the folder of" : "Flushing the folder", firsts[i]->path, outcomes[i]));
  }
  for (const auto& level : levels) {
    if (level->somethingStays && level->parent) level->parent->somethingStays = true;
  }
}

void FolderWipe::Fail(Level& level, const Failure& failure) {
  level.somethingStays = true;
  if (holdsFailures_) {
    heldFailures_.emplace_back(&level, failure);
    return;
  }
  TellFailed(level, failure);
  operation_.LookForCancel();
}

void FolderWipe::TellFailed(Level& level, const Failure& failure) {
  // A folder has one end; without its removal it isn't even an item.
  if (!selection_.removeFolders || std::exchange(level.isTold, true)) return operation_.TellFailure(failure);
  operation_.TellFailed({level.path, level.name, ItemKind::Folder}, failure, Outcome::Kept, level.self.name);
}

void FolderWipe::TellEnds(std::span<const std::shared_ptr<Level>> levels) {
  const auto failures = std::exchange(heldFailures_, {});
  for (const auto& [level, failure] : failures) TellFailed(*level, failure);
  for (const auto& level : levels) {
    if (std::exchange(level->isTold, true)) continue;
    const Item item{level->path, level->name, ItemKind::Folder};
    if (level->somethingStays) {
      operation_.TellStays(item, "something in it stays", Outcome::Kept);
    } else {
      operation_.TellWiped(item);
    }
  }
  if (!failures.empty()) operation_.LookForCancel();
}

}  // namespace zq::engine
