// RecycleBin: what lies in the user's own Recycle Bin, on all drives of this machine. Nothing is changed
// here.
#pragma once

#include <string>
#include <vector>

#include "manager/Measure.h"

namespace zq {

class Drives;
class Files;
class Process;

// One thing to be wiped.
struct WipeItem {
  std::string path;
  bool isFolder = false;
  std::string record;   // a file that goes once the item itself is gone; empty if there is none
  std::string shownAs;  // how the user knows it

  bool operator==(const WipeItem&) const = default;
};

// Whose bins, and what the file systems tell of it.
class BinOwner {
 public:
  virtual ~BinOwner() = default;
  // The user's security identifier as text, such as "S-1-5-21-1-2-3-1001"; empty if it can't be told.
  virtual std::string UserId() = 0;
  // Whether the file system of the drive with this root keeps a file's owner. True if it can't be told. Where
  // it doesn't, as on FAT, all users of the drive have one bin together.
  virtual bool KeepsOwners(const std::string& root) = 0;
};

struct BinContents {
  std::vector<std::string> folders;  // the bins that were looked into, with a backslash behind each
  std::vector<WipeItem> items;
  Measured measured;  // of the items and what is in them; a record isn't counted where its item is there
  std::vector<std::string> refusals;  // what wasn't looked into, and why
};

// On each drive of this machine the folder of the user's own, and where no owners are kept the common one.
// A link in the place of a bin is refused: it could lead to what was never deleted.
BinContents LookIntoRecycleBin(Files& files, Process& process, Drives& drives, BinOwner& owner);

}  // namespace zq
