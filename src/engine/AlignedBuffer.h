// Memory for transfers that pass the system's cache.
#pragma once

#include <cstddef>
#include <span>

namespace zq::engine {

// Memory at an address that unbuffered transfers accept. It takes no pages before it is touched.
class AlignedBuffer {
 public:
  // The first `largePageBytes` lie in large pages, where the system has them to give: a transfer is told to
  // the device as a list of the pages that it is made of, and a device takes only so long a list at once.
  // They are then taken as wholes, so no more should be asked for than is used. Throws std::bad_alloc.
  AlignedBuffer(std::size_t sizeBytes, std::size_t largePageBytes);
  AlignedBuffer(const AlignedBuffer&) = delete;
  AlignedBuffer& operator=(const AlignedBuffer&) = delete;
  ~AlignedBuffer();

  std::span<std::byte> First(std::size_t sizeBytes) { return {bytes_, sizeBytes}; }
  std::span<std::byte> Part(std::size_t offset, std::size_t sizeBytes) {
    return {bytes_ + offset, sizeBytes};
  }
  std::size_t SizeBytes() const { return sizeBytes_; }

 private:
  void* mapped_ = nullptr;
  std::byte* bytes_ = nullptr;  // in what is mapped
  std::size_t sizeBytes_;
};

// Room for several units of data. The large pages, which the system has to clear first, are touched by large
// units alone: they would cost a small file more than they gain.
class UnitBuffers {
 public:
  static constexpr std::size_t kLargest = std::size_t{1} << 20;
  static constexpr std::size_t kSmall = std::size_t{64} << 10;

  // Of the large units those with the first numbers should be used most: `largeCount` lie in large pages.
  UnitBuffers(std::size_t count, std::size_t largeCount)
      : small_(count * kSmall, 0), large_(count * kLargest, largeCount * kLargest) {}

  // `sizeBytes` is at most kLargest. Each number has one place for small units and another one for large.
  std::span<std::byte> Unit(std::size_t number, std::size_t sizeBytes) {
    return IsSmall(sizeBytes) ? small_.Part(number * kSmall, sizeBytes)
                              : large_.Part(number * kLargest, sizeBytes);
  }
  static bool IsSmall(std::size_t sizeBytes) { return sizeBytes <= kSmall; }

 private:
  AlignedBuffer small_;
  AlignedBuffer large_;
};

}  // namespace zq::engine
