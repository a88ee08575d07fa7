// How much is written between two looks at the clock, learned from how fast the device proves to be.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/AlignedBuffer.h"
#include "engine/Clock.h"
#include "engine/Device.h"

namespace zq::engine {

// A cancel has to get through within a quarter of a second on the slowest stick, and a fast disc wants
// large writes. So both start small and double while they prove quick.
class Pace {
 public:
  static constexpr std::size_t kLargestUnit = UnitBuffers::kLargest;
  static constexpr std::size_t kLargestUnits = 4;  // so many are under way: more gain nothing
  static constexpr std::size_t kMostTransfers = 128;
  static constexpr std::size_t kMostFiles = 256;

  // The size of the next write or read. Into a cache no more is written at once than may wait there.
  std::size_t UnitBytes(Access access) const {
    return static_cast<std::size_t>(std::min<std::uint64_t>(unit_, FlushAfter(access)));
  }

  // What may be written before a flush within a pass. A cache takes the data at once and lets the flush
  // wait for the device: unbounded, that one flush would last for minutes. Direct writes leave little to a
  // flush, so they start with more.
  std::uint64_t FlushAfterBytes(Access access) const { return FlushAfter(access); }

  // How many transfers, and how much in them, may be under way at once. All of them have to end before a
  // cancel gets through, so a device that takes its time gets one at a time.
  std::size_t TransfersAtOnce() const { return transfers_; }
  std::uint64_t BytesAtOnce() const {
    return unit_ < kLargestUnit ? std::max<std::uint64_t>(unit_, transfers_ * kSmallTransfer)
                                : kLargestUnits * kLargestUnit;
  }

  // How many files are taken through their passes and removed together. Parts of the removal can't be stopped
  // halfway, so they mustn't last.
  std::size_t FilesAtOnce() const { return files_; }

  // How many files or folders are flushed, or files emptied, in one call.
  std::size_t FlushesAtOnce() const { return flushes_; }

  // `time` is what the transfer has taken beyond the one that ended before it.
  void UnitTook(Clock::Time time, std::size_t unitBytes) {
    if (time > kLongUnit) {
      unit_ = std::max(unit_ / 2, kSmallestUnit);
    } else if (time < kShortUnit && unitBytes >= unit_) {
      unit_ = std::min(unit_ * 2, kLargestUnit);
    }
  }

  // `time` is from a transfer's beginning to its end: with others before it, as long as the wait for all of
  // them.
  void TransferTook(Clock::Time time) {
    if (time > kLongQueue) {
      transfers_ = std::max<std::size_t>(transfers_ / 2, 1);
    } else if (time < kShortQueue) {
      transfers_ = std::min(transfers_ * 2, kMostTransfers);
    }
  }

  void RemovalTook(Clock::Time time, std::size_t fileCount) {
    if (time > kLongRemoval) {
      files_ = std::max<std::size_t>(files_ / 2, 1);
    } else if (time < kShortRemoval && fileCount >= files_) {
      files_ = std::min(files_ * 2, kMostFiles);
    }
  }

  void FlushesTook(Clock::Time time, std::size_t count) {
    if (time > kLongFlush) {
      flushes_ = std::max<std::size_t>(flushes_ / 2, 1);
    } else if (time < kShortFlush && count >= flushes_) {
      flushes_ = std::min(flushes_ * 2, kMostFiles);
    }
  }

  void FlushTook(Clock::Time time, std::uint64_t flushedBytes, Access access) {
    std::uint64_t& limit = FlushAfter(access);
    if (time > kLongFlush) {
      limit = std::max(limit / 2, access == Access::Direct ? kFirstDirectFlush : kLeastCachedFlush);
    } else if (time < kShortFlush && flushedBytes >= limit) {
      limit = std::min(limit * 2, access == Access::Direct ? kMostDirectFlush : kMostCachedFlush);
    }
  }

 private:
  static constexpr std::size_t kSmallestUnit = std::size_t{4} << 10;
  static constexpr Clock::Time kShortUnit{8'000};
  static constexpr Clock::Time kLongUnit{30'000};
  static constexpr Clock::Time kShortQueue{40'000};
  static constexpr Clock::Time kLongQueue{100'000};
  static constexpr std::size_t kSmallTransfer = std::size_t{8} << 10;
  static constexpr Clock::Time kShortFlush{25'000};
  static constexpr Clock::Time kLongFlush{60'000};
  static constexpr Clock::Time kShortRemoval{60'000};
  static constexpr Clock::Time kLongRemoval{140'000};
  static constexpr std::uint64_t kLeastCachedFlush = std::uint64_t{16} << 10;
  static constexpr std::uint64_t kMostCachedFlush = std::uint64_t{128} << 20;
  static constexpr std::uint64_t kFirstDirectFlush = std::uint64_t{32} << 20;
  static constexpr std::uint64_t kMostDirectFlush = std::uint64_t{1} << 30;

  const std::uint64_t& FlushAfter(Access access) const {
    return access == Access::Direct ? directFlush_ : cachedFlush_;
  }
  std::uint64_t& FlushAfter(Access access) { return access == Access::Direct ? directFlush_ : cachedFlush_; }

  std::size_t unit_ = std::size_t{64} << 10;
  std::size_t transfers_ = 1;
  std::size_t files_ = 64;
  std::size_t flushes_ = 16;
  std::uint64_t cachedFlush_ = std::uint64_t{64} << 10;
  std::uint64_t directFlush_ = kFirstDirectFlush;
};

}  // namespace zq::engine
