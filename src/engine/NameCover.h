// Covers names where a file system leaves them: in the room of a folder's blocks from which they were
// removed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/Operation.h"

namespace zq::engine {

// Fills that room, in one or several folders, with empty files of random names, which are removed when all of
// it is on the device. Where a folder has no such room (Folder::RoomForNames) nothing is made. A filler that
// can't be made is no failure of the wipe: Operation::note tells it. A cancel ends the filling alone, since
// the entries under it may be halfway through theirs.
class NameCover {
 public:
  explicit NameCover(Operation& operation) : operation_(operation) {}
  NameCover(const NameCover&) = delete;
  NameCover& operator=(const NameCover&) = delete;
  ~NameCover() { Remove(); }

  // Before entries of `folder` are renamed: it neither shrinks meanwhile, which would free a block with the
  // old names, nor has it much room for the new names but that of the old ones. The same folder again changes
  // nothing; it must stay open. `path` is what events call it.
  void FillBlocks(Folder& folder, const std::string& path);
  bool HasFillers() const { return !folders_.empty(); }
  // After, in all of these: what the old names have left between others.
  void FillGaps();
  // When entries are gone, and a folder of few names may lie in its own record, with the old ones behind
  // them.
  void FillRecord(Folder& folder, const std::string& path);

  void Remove() noexcept;

 private:
  struct Filled {
    Folder& folder;
    std::string path;
    NameRoom::Kind kind;
    std::vector<std::string> names;
    bool failed = false;
  };

  // None if the folder is taken in already, or has no such room.
  Filled* Add(Folder& folder, const std::string& path);
  void Fill(Filled& filled, std::size_t length, bool record);
  Status AddFiller(Filled& filled, std::size_t length);
  void Tell(const char* note) noexcept;

  Operation& operation_;
  Clock::Time filling_{};  // the time that all the filling has taken
  std::vector<std::unique_ptr<Filled>> folders_;
};

// Covers the names of what was removed from `folder`, which stays, and makes that durable. Throws Failure.
void CoverNames(Operation& operation, Folder& folder, const std::string& path);

}  // namespace zq::engine
