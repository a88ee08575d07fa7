// Overwrites the free space of a drive: fills it with files, takes these through all passes, removes them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/Operation.h"
#include "engine/Overwriter.h"

namespace zq::engine {

// - The space is filled by writing, until the device says it is full. Lengthening a file would do on no
//   system: the space would be promised, not written, or stay a hole.
// - All of it is held until the last pass is done: space that was given back between two passes would come
//   back as other blocks.
// - When large writes no longer fit, smaller ones are tried, down to one cluster; then files so small that
//   NTFS keeps them in their records take up the records of files that were deleted.
// - Space that other programs free meanwhile is taken in afterwards, as often as kMostRounds.
// What can't be reached this way: the slack of other files, names in folders, and blocks that the file
// system keeps for the administrator when the user isn't one.
class FreeSpaceWipe {
 public:
  explicit FreeSpaceWipe(Operation& operation) : operation_(operation), timer_(operation.clock) {}

  // `drive` is the path of a folder on the drive, its root. Throws Failure and Cancelled; the fillers are
  // removed in any case, and not being able to is a failure too.
  void Run(const std::string& drive);

 private:
  // A filler is open while it is written, and closed between: there can be thousands.
  struct Filler {
    std::string name;
    Overwriter writer;
  };
  // Tells the progress of one pass over the fillers of a round.
  class PassMeter;

  void MakeFolder(const std::string& drive);
  void WipeRound();
  // Fills one new file with the first pass. Returns false when the device is full.
  bool FillOneFile();
  void OverwriteFillers(std::size_t first);
  void Reopen(Filler& filler);
  // Fills small files, each through all passes, until the device takes no more of them.
  void FillRecords();
  // Makes a new filler; false if the device is full.
  bool AddFile(Access access, std::string& name, std::unique_ptr<File>& file);
  void RemoveFillers();

  std::string PathOf(const std::string& name) const { return operation_.device.Join(path_, name); }
  std::uint64_t FreeBytes();
  void NoticeGrowth();
  void Tell();
  void TellIfDue(double shareOfRound);

  Operation& operation_;
  EventTimer timer_;
  std::unique_ptr<Folder> root_;
  std::unique_ptr<Folder> folder_;  // holds the fillers
  std::string folderName_;
  std::string path_;  // of that folder
  std::uint32_t clusterBytes_ = 1;
  std::vector<Filler> fillers_;
  std::vector<std::string> names_;  // of all files in the folder

  int round_ = 0;
  bool growing_ = false;             // the space has grown while this round fills it
  std::uint64_t bytesBefore_ = 0;    // what the rounds before have taken in
  std::uint64_t bytesOfRound_ = 0;   // what there is to take in this round
  std::uint64_t filledBytes_ = 0;    // in this round
  std::uint64_t leftoverBytes_ = 0;  // what was free still when the device was full
  double share_ = 0;                 // of this round's work
};

}  // namespace zq::engine
