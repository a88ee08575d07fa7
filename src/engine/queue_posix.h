// Several transfers at once, on Linux.
#pragma once

#include <memory>
#include <vector>

#include "engine/part_posix.h"
#include "engine/uring_posix.h"

namespace zq::engine {

// Direct transfers go through the ring. A cached one is a copy in memory, which is done at once.
class PosixQueue final : public TransferQueue {
 public:
  static constexpr unsigned kDepth = 128;

  explicit PosixQueue(std::unique_ptr<Uring> ring) : ring_(std::move(ring)) { done_.reserve(kDepth); }

  std::size_t Depth() const override { return kDepth; }

  void BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                  std::size_t tag) override;

  void BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t tag) override;

  Ended Wait() override;

 private:
  struct Transfer {
    PosixPart* file = nullptr;
    std::uint64_t offsetBytes = 0;
    std::span<const std::byte> source;
    std::span<std::byte> target;  // of a read
  };

  Ended DoNow(std::size_t tag);

  std::unique_ptr<Uring> ring_;
  Transfer underWay_[kDepth];
  std::vector<Ended> done_;
};

}  // namespace zq::engine
