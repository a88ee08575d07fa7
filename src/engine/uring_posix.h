// Linux' ring for transfers that are under way together (io_uring), by its system calls alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct io_uring_sqe;
struct io_uring_cqe;

namespace zq::engine {

class Uring {
 public:
  struct Completion {
    std::uint64_t tag = 0;
    std::int32_t result = 0;  // as of the system call that it stands for, or the negative error number
  };

  // None where the kernel has no ring, or doesn't allow it to this process.
  static std::unique_ptr<Uring> Make(unsigned depth);
  Uring(const Uring&) = delete;
  Uring& operator=(const Uring&) = delete;
  ~Uring();

  // Begins a pwrite or pread; no more than `depth` may be under way. A small one may wait for others, or
  // for Wait, before the kernel gets it.
  void BeginWrite(int fd, const std::byte* data, std::size_t size, std::uint64_t offset, std::uint64_t tag);
  void BeginRead(int fd, std::byte* data, std::size_t size, std::uint64_t offset, std::uint64_t tag);

  // Waits for one to end. One must be under way. A small one that would go to the kernel by itself comes back
  // instead, as failed with EAGAIN: the plain way is the shorter one for it, since the kernel lets another
  // thread end what went by the ring.
  Completion Wait();

 private:
  Uring() = default;
  bool Map(unsigned depth);
  void Begin(unsigned char operation, int fd, std::uint64_t address, std::size_t size, std::uint64_t offset,
             std::uint64_t tag);
  // Hands over what waits, and waits until so many are complete.
  bool Enter(unsigned completions);
  // Calls back the last one that waits, as one that has failed.
  Completion TakeBack();

  // A part of the memory that is shared with the kernel.
  struct Mapping {
    Mapping() = default;
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    ~Mapping();
    bool Map(int fd, std::size_t size, std::uint64_t what);
    template <typename T>
    T* At(std::uint32_t offset) const {
      return reinterpret_cast<T*>(static_cast<std::byte*>(memory) + offset);
    }
    void* memory = nullptr;
    std::size_t sizeBytes = 0;
  };

  static constexpr std::size_t kLargeBytes = std::size_t{128} << 10;
  static constexpr unsigned kMostWaiting = 64;

  int fd_ = -1;
  unsigned waiting_ = 0;   // begun, but not yet the kernel's
  unsigned underWay_ = 0;  // begun, and not yet told by Wait
  Mapping submissions_;
  Mapping completions_;
  Mapping entries_;
  std::uint32_t* submitTail_ = nullptr;
  std::uint32_t submitMask_ = 0;
  std::uint32_t* submitArray_ = nullptr;
  std::uint32_t* completeHead_ = nullptr;
  std::uint32_t* completeTail_ = nullptr;
  std::uint32_t completeMask_ = 0;
  const io_uring_cqe* completed_ = nullptr;
};

}  // namespace zq::engine
