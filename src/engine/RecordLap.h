// Follows the numbers of records where new files get them in turn.
#pragma once

#include <cstdint>

namespace zq::engine {

// A file system may give a new file the next free record behind that of the last one, around the table. Few
// files then pass over all free records: each is removed as soon as those behind it are taken, and when the
// first record comes again all have been had. Elsewhere the lowest free record comes first, and who wants the
// higher ones has to keep the lower ones taken.
class RecordLap {
 public:
  // Takes the number of a file that was made, and is removed before the next one is made.
  void Tried(std::uint64_t number) {
    if (hasTried_) (number > last_ ? rises_ : falls_) += 1;
    hasTried_ = true;
    last_ = number;
  }

  // Whether records come in turn, by what is known up to now. Once it is false it stays so.
  bool GoesAround() const { return rises_ > falls_ && !isBroken_; }

  // Takes the number of the next file of the lap. True if the lap ends with it.
  bool Took(std::uint64_t number) {
    if (!hasBegun_) {
      hasBegun_ = true;
      first_ = number;
    } else if (number < last_) {
      // Twice back to the start of the table: they come in another order.
      isBroken_ = isBroken_ || hasTurned_;
      hasTurned_ = true;
    }
    last_ = number;
    return GoesAround() && hasTurned_ && number >= first_;
  }

 private:
  bool hasTried_ = false;
  bool hasBegun_ = false;
  bool hasTurned_ = false;
  bool isBroken_ = false;
  int rises_ = 0;
  int falls_ = 0;
  std::uint64_t first_ = 0;
  std::uint64_t last_ = 0;
};

}  // namespace zq::engine
