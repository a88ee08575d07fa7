// The walk through a folder: wipes the files in it, and the folders themselves where that is wanted.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/FileBatch.h"
#include "engine/OpenLevels.h"
#include "engine/Operation.h"

namespace zq::engine {

// What fails stays, with the folders above it, and the rest goes on. Each item's end is told.
class FolderWipe {
 public:
  struct Selection {
    std::function<bool(const std::string& name)> takesFile;
    bool subFolders = false;
    bool removeFolders = false;
  };

  FolderWipe(Operation& operation, Selection selection)
      : operation_(operation), selection_(std::move(selection)) {}

  // Wipes the folder at `path`, which has to be the one that is meant, if that is given. Throws Cancelled.
  void Run(const std::string& path, const EntryId* meant);

 private:
  // Folders stay open until they are removed: this many, or fewer where a process may have only so many open.
  static constexpr std::size_t kMostLeft = 128;

  // A folder on the way from the top to where the walk is. Not a recursion: a tree can be deeper than the
  // stack.
  struct Level : Place {
    using Place::Place;
    std::shared_ptr<Level> parent;
    Entry self;        // what it is called in the folder above
    std::string name;  // and what the user calls it
    std::vector<Entry> entries;
    std::size_t next = 0;
    bool isTold = false;     // what became of it
    std::size_t height = 0;  // how many levels of folders to be removed it has beneath it
  };

  void Open(const std::string& path, const EntryId* meant);
  void Walk();
  void Enter(std::unique_ptr<Folder> folder, std::string name, std::string path);
  void Visit(const std::shared_ptr<Level>& level, const Entry& entry);
  void Leave();
  // Closes what can be closed, by having done in it what is to be done.
  void MakeRoom();
  void CloseFolders();
  // Carries it out, and once more with all closed that can be, should the system open no more.
  Status WithRoom(const std::function<Status()>& open);

  // What the walk has left waits here for its files, which are in the batch, and is removed together.
  void RemoveLeftFolders();
  void CheckRemovable(Level& level);
  // Makes the removals in them durable.
  void FlushInPieces(std::span<const std::shared_ptr<Level>> levels);
  void CoverFreedBlocks(Level& level);
  void RemoveFolders(std::span<const std::shared_ptr<Level>> levels);
  // Renames as many of them, from the first on, as the time allows. Gives their number.
  std::size_t RenameFolders(std::span<const std::shared_ptr<Level>> levels);
  void RemoveRenamed(std::span<const std::shared_ptr<Level>> levels);
  Place& PlaceOf(const Level& level) {
    if (level.parent) return *level.parent;
    return above_;
  }
  void FlushFolders(std::span<const std::shared_ptr<Level>> levels, bool above);
  void Fail(Level& level, const Failure& failure);
  void TellFailed(Level& level, const Failure& failure);
  void TellEnds(std::span<const std::shared_ptr<Level>> levels);

  Operation& operation_;
  Selection selection_;
  FileBatch batch_{operation_, [this] { CloseFolders(); }};
  Place above_{operation_};  // the folder that holds the top one; none above a root
  std::vector<std::shared_ptr<Level>> levels_;
  OpenLevels way_{operation_.device};  // the same
  const std::size_t mostLeft_ = std::min(operation_.device.OpenAtOnce().folders, kMostLeft);
  std::vector<std::shared_ptr<Level>> left_;  // each after all that are in it
  bool holdsFailures_ = false;                // they are told later
  std::vector<std::pair<Level*, Failure>> heldFailures_;
};

}  // namespace zq::engine
