// Memory for transfers on Linux.
#include <sys/mman.h>

#include <cstdint>
#include <new>

#include "engine/AlignedBuffer.h"

namespace zq::engine {
namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;

constexpr std::size_t WholeLargePages(std::size_t bytes) {
  return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

// Room for the whole of it from wherever a large page may begin.
constexpr std::size_t MappedBytes(std::size_t bytes) {
  return WholeLargePages(bytes) + kLargePage;
}

}  // namespace

AlignedBuffer::AlignedBuffer(std::size_t sizeBytes, std::size_t largePageBytes) : sizeBytes_(sizeBytes) {
  mapped_ = ::mmap(nullptr, MappedBytes(sizeBytes), PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapped_ == MAP_FAILED) throw std::bad_alloc();
  const std::size_t before = WholeLargePages(reinterpret_cast<std::uintptr_t>(mapped_));
  bytes_ = static_cast<std::byte*>(mapped_) + (before - reinterpret_cast<std::uintptr_t>(mapped_));
  // A wish, no more: where it isn't granted, all goes on with small pages.
  if (largePageBytes > 0) ::madvise(bytes_, WholeLargePages(largePageBytes), MADV_HUGEPAGE);
}

AlignedBuffer::~AlignedBuffer() {
  ::munmap(mapped_, MappedBytes(sizeBytes_));
}

}  // namespace zq::engine
