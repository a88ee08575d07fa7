// Overwrites the records of files that were deleted: NTFS keeps small contents in its table of records, which
// no filling of clusters reaches.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "engine/Fillers.h"
#include "engine/Operation.h"
#include "engine/RecordLap.h"

namespace zq::engine {

// Fills the records that are free with small files, takes these together through all passes, and removes
// them. It has to come before the clusters are filled: the fillers' folder needs room to grow. It ends where
// the table of records begins to grow, since that never shrinks again. File systems that give every content
// clusters are told by a first file, and left alone.
// Where records come in turn it goes around the table with a group of files: see RecordLap. A cancel has so
// few to remove then that it is quick even where each has a name.
class RecordFill {
 public:
  // `tell` gets the share of the work, 0 to 1, for each file, and may throw Cancelled; `removing` does while
  // fillers are removed, and may not throw.
  RecordFill(Operation& operation, FillerPlace& place, Folder& root, std::function<void(double)> tell,
             std::function<void(double)> removing)
      : operation_(operation),
        place_(place),
        root_(root),
        tell_(std::move(tell)),
        removing_(std::move(removing)) {}
  RecordFill(const RecordFill&) = delete;
  RecordFill& operator=(const RecordFill&) = delete;
  ~RecordFill() { RemoveAll(); }

  // Throws Failure and Cancelled; what can't be removed is told by FillerPlace::Close.
  void Run();

 private:
  std::size_t FindSize();
  bool StaysInRecord(std::size_t sizeBytes);
  // Fills a group of records if they come in turn, else all of them. False if there are no more.
  bool Fill();
  bool TableGrows(std::size_t count);
  bool AddOne();
  // Takes what was filled last through all passes.
  void Overwrite();
  // `work` is done on each filler of a group of those filled last, which are then flushed together if
  // `flushes`.
  void ForEachGroup(bool flushes, const std::function<void(Filler& filler, std::size_t index)>& work);
  void FlushGroup(std::size_t first, std::size_t end);
  void Write(Filler& filler, const Pass& pass, std::uint64_t block);
  void Verify(Filler& filler, const Pass& pass, std::uint64_t block);
  std::span<const std::byte> Content(const Pass& pass, std::uint64_t block, std::size_t offset);
  void RemoveAll() noexcept { RemoveBut(0); }
  // Removes all fillers but the last `keptCount`.
  void RemoveBut(std::size_t keptCount) noexcept;
  // How far it is with the fillers of which there may be others, `part` of the passes over those that were
  // filled last being done.
  double Share(double part) const;
  std::uint64_t FreeBytes();

  Operation& operation_;
  FillerPlace& place_;
  Folder& root_;
  const std::function<void(double)> tell_;
  const std::function<void(double)> removing_;
  KeyStream stream_;
  std::size_t size_ = 0;
  RecordLap lap_;
  bool goesAround_ = false;
  bool lapIsOver_ = false;
  std::vector<Filler> fillers_;
  std::size_t overwrittenCount_ = 0;  // of these, the first ones
  std::size_t removedCount_ = 0;      // before these
  std::size_t openCount_ = 0;
  std::uint64_t freeBefore_ = 0;
  std::uint64_t tableAtStart_ = 0;
  bool tableIsTold_ = false;
  bool isDone_ = false;
};

}  // namespace zq::engine
