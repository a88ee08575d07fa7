#include "engine/FolderWipe.h"

#include <algorithm>
#include <utility>

#include "engine/NameCover.h"

namespace zq::engine {
namespace {

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

}  // namespace

void FolderWipe::Run(const std::string& path, const EntryId* meant) {
  try {
    Open(path, meant);
  } catch (const Failure& failure) {
    operation_.TellFailed({path, path, ItemKind::Folder}, failure, Outcome::Kept, path);
    return;
  }
  Walk();
  batch_.Run();
  RemoveLeftFolders();
}

void FolderWipe::Open(const std::string& path, const EntryId* meant) {
  std::string abovePath;
  std::string name;
  Require(operation_.device.Split(path, abovePath, name), "Opening", path);
  std::unique_ptr<Folder> folder;
  if (name.empty()) {
    Require(operation_.device.OpenFolder(path, folder), "Opening", path);
  } else {
    Require(operation_.device.OpenFolder(abovePath, above_.folder), "Opening", abovePath);
    above_.path = abovePath;
    // Opened through the folder above it, so that a link in its place is refused.
    Require(above_.folder->OpenFolder(name, folder), "Opening", path);
  }
  if (meant != nullptr) {
    EntryId id;
    Require(folder->Identity(id), "Opening", path);
    if (id != *meant) throw NotMeant(path);
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
      Leave();
    }
    if (way_.AreTooMany()) MakeRoom();
    if (left_.size() >= mostLeft_) batch_.Run();
    if (batch_.HasRun() || left_.size() >= mostLeft_) RemoveLeftFolders();
    operation_.traces.KeepFew(operation_);
  }
}

void FolderWipe::Enter(std::unique_ptr<Folder> folder, std::string name, std::string path) {
  auto level = std::make_shared<Level>(operation_);
  level->folder = std::move(folder);
  level->self = {name, EntryKind::Folder};
  level->name = std::move(name);
  level->path = std::move(path);
  if (!levels_.empty()) level->parent = levels_.back();
  Require(WithRoom([&] { return level->folder->List(level->entries); }), "Listing", level->path);
  way_.Enter(level->folder, level->name);
  levels_.push_back(std::move(level));
}

void FolderWipe::Leave() {
  const std::shared_ptr<Level> level = levels_.back();
  const Status opened = WithRoom([&] { return way_.OpenHolder(); });
  way_.Leave();
  levels_.pop_back();
  level->entries = {};
  if (level->folder) {
    left_.push_back(level);
  } else if (level->parent) {  // it wasn't found again, and that is told
    level->parent->somethingStays = true;
  }
  if (opened.Ok()) return;
  // What else there was in it is out of reach.
  Level& holder = *levels_.back();
  holder.entries.clear();
  holder.next = 0;
  Fail(holder, MakeFailure("Opening", holder.path, opened));
}

void FolderWipe::MakeRoom() {
  batch_.Run();
  CloseFolders();
}

void FolderWipe::CloseFolders() {
  RemoveLeftFolders();
  way_.CloseOuter();
}

Status FolderWipe::WithRoom(const std::function<Status()>& open) {
  Status status = open();
  if (status.trouble != Trouble::TooManyOpen) return status;
  MakeRoom();
  return open();
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
          Require(WithRoom([&] { return level->folder->OpenFolder(entry.name, folder); }), "Opening", path);
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
  if (!selection_.removeFolders) return;
  for (const auto& level : left) {
    operation_.Tell(level->path);
    CheckRemovable(*level);
  }
  NameRoom room;
  const bool keepsNames = std::any_of(left.begin(), left.end(),
                                      [&](const auto& level) { return level->folder->RoomForNames(room); });
  // The removals in them go to the device before they do: freed in one go with them, a folder's block would
  // keep the old names.
  FlushInPieces(left);
  for (const auto& level : left) {
    if (level->hasLostEntries && !level->somethingStays) CoverFreedBlocks(*level);
  }
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
    for (const auto& level : group) {
      operation_.Tell(level->path);
      if (level->hasLostEntries && !level->somethingStays)
        CoverNames(operation_, *level->folder, level->path);
    }
    RemoveFolders(group);
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

void FolderWipe::CoverFreedBlocks(Level& level) {
  operation_.Tell(level.path);
  const Clock::Time started = operation_.clock.Now();
  level.folder->CoverFreedBlocks([&] { return operation_.MayGoOn(level.path) && operation_.MayCover(); });
  operation_.CoveringTook(operation_.clock.Now() - started);
}

void FolderWipe::CheckRemovable(Level& level) {
  try {
    if (!level.somethingStays) {
      WipeFolderStreams(operation_, *level.folder, level.path);
      if (!PlaceOf(level).folder) {
        throw MakeFailure("Removing", level.path,
                          level.parent ? "the folder that holds it can't be opened any more"
                                       : "the root of a drive can't be removed");
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
    const std::size_t count = RenameFolders(levels);
    RemoveRenamed(levels.first(count));
    holdsFailures_ = false;
    TellEnds(levels.first(count));
    levels = levels.subspan(count);
  }
}

std::size_t FolderWipe::RenameFolders(std::span<const std::shared_ptr<Level>> levels) {
  const Clock::Time started = operation_.clock.Now();
  std::size_t count = 0;
  for (const auto& level : levels) {
    if (count > 0 && operation_.clock.Now() - started >= kLongestRenaming) break;
    ++count;
    if (!level->somethingStays) {
      try {
        // Where it can't be renamed while it is open; what is in it is removed through it elsewhere.
        if (!operation_.device.RenamesOpenFolders()) level->folder.reset();
        Place& above = PlaceOf(*level);
        HideName(operation_, *above.folder, level->self.name, level->path, above.shortestName,
                 [&](const std::string& newName) {
                   Status status = above.folder->Rename(level->self, newName);
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

void FolderWipe::RemoveRenamed(std::span<const std::shared_ptr<Level>> levels) {
  FlushFolders(levels, true);
  for (const auto& level : levels) {
    const std::string path = level->path + " (now named " + level->self.name + ')';
    try {
      if (!level->somethingStays) {
        Require(PlaceOf(*level).folder->Remove(level->self), "Removing", path);
        PlaceOf(*level).hasLostEntries = true;
        level->folder.reset();
      } else if (level->self.name != level->name) {
        // It stays for something in it, so the user has to find it again.
        Require(PlaceOf(*level).folder->Rename(level->self, level->name), "Giving back the name of", path);
        level->self.name = level->name;
      }
    } catch (const Failure& failure) {
      Fail(*level, failure);
    }
    if (level->somethingStays && level->parent) level->parent->somethingStays = true;
  }
  FlushFolders(levels, true);
}

// Flushes the folders themselves, or those above them, as far as they are open and nothing has failed.
void FolderWipe::FlushFolders(std::span<const std::shared_ptr<Level>> levels, bool above) {
  std::vector<Folder*> folders;
  std::vector<Level*> firsts;
  for (const auto& level : levels) {
    Folder* const folder = above ? PlaceOf(*level).folder.get() : level->folder.get();
    if (level->somethingStays || folder == nullptr) continue;
    if (!folders.empty() && folders.back() == folder) continue;
    folders.push_back(folder);
    firsts.push_back(level.get());
  }
  if (folders.empty()) return;
  std::vector<Status> outcomes(folders.size());
  operation_.device.FlushFolders(folders, outcomes);
  operation_.device.WriteHome(*folders.back());
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
