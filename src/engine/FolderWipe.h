// The walk through a folder: wipes the files in it, and the folders themselves where that is wanted.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/FileBatch.h"
#include "engine/Operation.h"

namespace zq::engine {

// What fails stays, with the folders above it, and the rest goes on. The first failure is kept for the
// caller: later ones are often its consequences. All of them are told by WipeError.
class FolderWipe {
 public:
  struct Selection {
    std::function<bool(const std::string& name)> takesFile;
    bool subFolders = false;
    bool removeFolders = false;
  };

  FolderWipe(Operation& operation, Selection selection)
      : operation_(operation),
        selection_(std::move(selection)),
        batch_(operation, [this](const Failure& failure) { Note(failure); }) {}

  // Wipes the folder at `path`. Throws Failure if it can't even be opened, and Cancelled; all other failures
  // are collected.
  void Run(const std::string& path);

  std::size_t FailureCount() const { return failureCount_; }
  const Failure& FirstFailure() const { return *firstFailure_; }

 private:
  // A folder on the way from the top to where the walk is. Not a recursion: a tree can be deeper than the
  // stack.
  struct Level : Place {
    using Place::Place;
    std::shared_ptr<Level> parent;
    Entry self;        // what it is called in the folder above
    std::string name;  // and what the user calls it
    std::vector<Entry> entries;
    std::size_t next = 0;
    std::size_t height = 0;  // how many levels of folders to be removed it has beneath it
  };

  void Walk();
  void Enter(std::unique_ptr<Folder> folder, std::string name, std::string path);
  void Visit(const std::shared_ptr<Level>& level, const Entry& entry);

  // What the walk has left waits here for its files, which are in the batch, and is removed together.
  void RemoveLeftFolders();
  void CheckRemovable(Level& level);
  // Makes the removals in them durable.
  void FlushInPieces(std::span<const std::shared_ptr<Level>> levels);
  void RemoveFolders(std::span<const std::shared_ptr<Level>> levels);
  // Renames as many of them, from the first on, as the time allows. Gives their number.
  std::size_t RenameFolders(std::span<const std::shared_ptr<Level>> levels);
  void RemoveRenamed(std::span<const std::shared_ptr<Level>> levels);
  Place& PlaceOf(const Level& level) { return level.parent ? *level.parent : above_; }
  void FlushFolders(std::span<const std::shared_ptr<Level>> levels, bool above);
  void Fail(Level& level, const Failure& failure);
  void Note(const Failure& failure);

  Operation& operation_;
  Selection selection_;
  FileBatch batch_;
  Place above_{operation_};  // the folder that holds the top one; none above a root
  std::vector<std::shared_ptr<Level>> levels_;
  std::vector<std::shared_ptr<Level>> left_;  // each after all that are in it
  bool holdsNotes_ = false;                   // failures are told later
  std::vector<Failure> heldNotes_;
  std::size_t failureCount_ = 0;
  std::optional<Failure> firstFailure_;
};

}  // namespace zq::engine
