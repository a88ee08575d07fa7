// The steps of the wipe of one file, from the open to the removed entry, and its progress.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/Operation.h"
#include "engine/Overwriter.h"

namespace zq::engine {

// The progress of one file as the owner sees it: the passes and the read-back are one way from 0 to the
// file's length.
class FileProgress final : public WorkMeter {
 public:
  // The item must outlive this.
  FileProgress(Operation& operation, const Item& item) : operation_(operation), item_(item) {}

  // Raises the event of the start. `workBytes` is all that will be written and read.
  void Start(std::uint64_t lengthBytes, std::uint64_t workBytes);
  void Worked(std::uint64_t bytes) override;
  // Raises the event of the end.
  void Finish();

 private:
  void Raise(std::int32_t bytesDone);

  Operation& operation_;
  const Item& item_;
  std::int32_t bytesTotal_ = 0;
  std::uint64_t workBytes_ = 0;
  std::uint64_t workDone_ = 0;
};

// A folder in which something is wiped. In the end it is one for the traces, if it has lost entries and is
// still there.
struct Place {
  explicit Place(Operation& operation) : traces(operation.traces) {}
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    if (folder && hasLostEntries) traces.Add(std::move(folder), std::move(path), isUnflushed);
  }

  Traces& traces;
  std::unique_ptr<Folder> folder;
  std::string path;
  bool hasLostEntries = false;
  bool isUnflushed = false;      // their removal isn't durable yet
  bool somethingStays = false;   // something in it has failed, so it has to stay too
  std::size_t shortestName = 1;  // that is free in it, as far as known (HideName)
};

// The failure to be told where `path` leads to something else than was agreed to.
Failure NotMeant(const std::string& path);

// One file of a batch. Each step throws Failure or Cancelled and leaves the file where it is. The steps are
// apart because a batch takes all its files through one of them before the next; what makes them durable
// between is the batch's part.
//
// A file with more than one hard link is wiped like any other: its content is destroyed under all its
// names, this name is removed, and the others are left, with nothing in them. That is success: what the
// owner wanted gone is gone. Operation::namesLeft keeps count, so that the owner can be told.
class FileWipe {
 public:
  // Wipes the file `name` of `place`, which must outlive this; `path` is what error texts call it. It has to
  // be the file that is `meant`, if that is given.
  FileWipe(Operation& operation, Place& place, std::string name, std::string path,
           std::optional<FileId> meant);
  FileWipe(const FileWipe&) = delete;
  FileWipe& operator=(const FileWipe&) = delete;

  // Opens the file and its named streams. Throws Failure if overwriting in place can't destroy it.
  void Open();
  // Whether another name of this file may be in the same wipe.
  bool HasSeveralNames() const { return info_.names > 1; }
  bool IsSameFileAs(FileWipe& other);
  // Tells the owner that the work on this file begins.
  void Start();
  // Whether the file is still what it was when it was opened, as far as the system shows it: not longer, not
  // shorter, nor in another place. Throws Failure: what was cut off or moved is out of reach, and what was
  // added has not been overwritten.
  void CheckUnwritten();

  // From here on there is no look at the cancel flag: what is overwritten may as well be gone, and a file
  // with half its names and dates changed is of use to nobody.
  // Looks once more whether the file is what was overwritten, and removes its streams and its length.
  void Shorten();
  // Replaces the dates and the name.
  void Hide();
  // Removes the entry, whose new name has to be durable by now, or the device might never see it.
  void Remove();
  // Tells the owner that the file is gone, after whatever makes the removal durable.
  void Finish();

  // The file itself, then its named streams.
  std::vector<Overwriter>& Parts() { return parts_; }
  FileProgress& Progress() { return progress_; }
  std::uint64_t CoveredBytes() const;
  // What error texts call it once it is overwritten, and after Hide.
  const std::string& HiddenPath() const { return hiddenPath_; }
  const Item& TheItem() const { return item_; }
  // Whether all of it is overwritten, and was found so.
  bool IsOverwritten() const { return !hiddenPath_.empty(); }
  // What it is called by now.
  const std::string& NameNow() const { return nameNow_; }

 private:
  void CheckOverwritten();
  const FileId& Identity();

  Operation& operation_;
  Place& place_;
  const Item item_;
  std::string nameNow_;
  std::string hiddenPath_;
  const std::optional<FileId> meant_;
  FileInfo info_;             // the file's facts as it was last looked at
  std::optional<FileId> id_;  // once it was asked for
  std::vector<Overwriter> parts_;
  std::vector<std::uint64_t> lengthsBytes_;  // of the parts, when they were opened
  FileProgress progress_;
};

// Overwrites the named streams of a folder and removes them. Tells progress, but a folder is no item that
// would be counted as wiped.
void WipeFolderStreams(Operation& operation, Folder& folder, const std::string& path);

}  // namespace zq::engine
