// Overwrites the free space of a drive: fills it with files, takes these through all passes, removes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/Fillers.h"
#include "engine/Operation.h"
#include "engine/Overwriter.h"
#include "engine/Storage.h"

namespace zq::engine {

// - Records first, while there is room for their folder: see RecordFill.
// - The space is filled by writing, until the device says it is full. Lengthening a file would do on no
//   system: the space would be promised, not written, or stay a hole.
// - It is filled in stages, of which each leaves less than the one before, and the last one nothing. The last
//   one is taken through its passes first, and given back at once: the drive is full to the brim for these
//   few MiB's passes alone. What was free when it was full has then been written by one stage or another, and
//   each stage keeps its places until its own last pass.
// - When large writes no longer fit, smaller ones are tried, down to one cluster, and then to one byte.
// - Space that other programs free meanwhile is taken in afterwards, as often as kMostRounds.
// - Nothing of it stays: see FillerPlace.
// What can't be reached this way: the slack of other files, names in folders, and blocks that the file
// system keeps for the administrator when the user isn't one.
class FreeSpaceWipe {
 public:
  explicit FreeSpaceWipe(Operation& operation) : operation_(operation), timer_(operation.clock) {}

  // `drive` is the path of a folder on the drive, its root. Throws Failure and Cancelled; the fillers are
  // removed in any case, and not being able to is a failure too.
  void Run(const std::string& drive);

 private:
  struct Large {
    std::string name;
    Overwriter writer;
  };
  // Fillers that are overwritten and given back together.
  struct Stage {
    std::vector<Large> fillers;
    std::uint64_t filledBytes = 0;
  };
  // Takes what was done in a pass.
  class PassMeter;

  void Work();
  void LookAtSpace();
  void WipeRound();
  void FillStage(Stage& stage, std::uint64_t leaveBytes);
  // Makes a file and fills it until the drive has no more than `leaveBytes`. Returns false when no other file
  // could take more.
  bool FillOneFile(Stage& stage, std::uint64_t leaveBytes, Access access);
  std::uint64_t FillFile(Overwriter& filler, std::uint64_t leaveBytes, Access access);
  void Settle(std::uint64_t unreachedBytes);
  void OverwriteStage(Stage& stage);
  void CheckPlaces(Stage& stage, bool first);
  void ReleaseStage(Stage& stage);
  void ReleaseAll();
  void Trim();

  std::uint64_t FreeBytes();
  void NoticeGrowth();
  void Tell();
  void TellEvent();
  void TellIfDue(double shareOfRound);
  // For what has to be brought to its end: an event, if one is due, and no look at the cancel flag.
  void StillAlive() noexcept;
  double ShareOfWork() const;

  Operation& operation_;
  EventTimer timer_;
  std::unique_ptr<Folder> root_;
  std::optional<FillerPlace> place_;
  std::string path_;  // of the drive
  std::uint32_t clusterBytes_ = 1;
  std::uint64_t keptBytes_ = 0;  // of the free space, for others
  StorageInfo storage_;
  std::vector<Stage> stages_;
  std::vector<Stage> held_;  // of former rounds
  bool trimmedFiles_ = false;

  int round_ = 0;
  bool growing_ = false;            // the space has grown while this round fills it
  std::uint64_t bytesBefore_ = 0;   // what the rounds before have taken in
  std::uint64_t bytesOfRound_ = 0;  // what there is to take in this round, as it is told
  std::uint64_t filledBytes_ = 0;   // in this round
  double workedBytes_ = 0;          // in this round, all passes
  double recordShare_ = 0;          // of the first round, in which records were filled
  double share_ = 0;                // of this round's work
};

}  // namespace zq::engine
