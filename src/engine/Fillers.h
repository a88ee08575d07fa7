// The files by which free space is filled: where they lie, and how nothing of them stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/Operation.h"

namespace zq::engine {

// A file of the filling. Nameless ones, and those that go when they are closed, stay open to their end.
struct Filler {
  std::unique_ptr<File> file;
  std::string name;  // empty: it has none
  std::string path;  // the subject of error texts
};

// Where fillers are made on one drive: without names in its root folder, or in a folder of their own there.
class FillerPlace {
 public:
  // Both have to outlive it.
  FillerPlace(Operation& operation, Folder& root, std::string rootPath)
      : operation_(operation), root_(root), rootPath_(std::move(rootPath)) {}
  FillerPlace(const FillerPlace&) = delete;
  FillerPlace& operator=(const FillerPlace&) = delete;
  // Removes what it can. Call Close to learn what it couldn't.
  ~FillerPlace() { RemoveFolder(); }

  // Makes a filler. False if the drive is full. Throws Failure, also where what is written doesn't go where
  // it is said to: the file system compresses it, or writes elsewhere.
  bool Add(Access access, Filler& filler);
  // Whether fillers have to stay open.
  bool StayOpen() const { return !folder_ || folder_->FillersGoWhenClosed(); }
  void Reopen(Filler& filler, Access access);

  // Gives the filler's space back: first by shortening it, since a removal can need room itself. Never throws
  // but std::bad_alloc; the first failure is kept for Close.
  void Remove(Filler& filler);
  // Before fillers are removed: has the folder's own blocks written. They were free before, too, and freed
  // again unwritten they would keep what stood there.
  void FlushFolder();
  // Removes the folder, which is empty by now. Throws the first failure that there was in removing.
  void Close();

 private:
  bool Make(Access access, Filler& filler);
  bool MakeFolder();
  void RemoveFolder() noexcept;
  void Note(const Status& status, const std::string& path);

  Operation& operation_;
  Folder& root_;
  std::string rootPath_;
  bool triesNameless_ = true;
  bool isChecked_ = false;  // that fillers are stored as they are
  std::unique_ptr<Folder> folder_;
  std::string folderName_;
  std::string folderPath_;
  std::uint32_t nextNumber_ = 0;
  std::optional<Failure> failure_;
};

// Whether an entry of a drive's root has the name of a folder of fillers, and one in there that of a filler.
bool IsFillerFolderName(const std::string& name);
bool IsFillerName(const std::string& name);

// Finds and removes what fillings of free space have left on the drive that were ended from outside: by a
// kill, or a loss of power. A folder is ours if it has such a name and nothing in it but files with names of
// fillers; one that another run works in stays. Returns how many folders were removed. `goOn` is asked for
// each file; after a no the rest is left.
std::size_t RemoveLeftFillers(Device& device, const std::string& drive, const std::function<bool()>& goOn);
std::size_t RemoveLeftFillers(Folder& root, const std::function<bool()>& goOn);

}  // namespace zq::engine
