#include "engine/uring_posix.h"

#include <linux/io_uring.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace zq::engine {

Uring::Mapping::~Mapping() {
  if (memory != nullptr) ::munmap(memory, sizeBytes);
}

bool Uring::Mapping::Map(int fd, std::size_t size, std::uint64_t what) {
  void* const mapped =
      ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, fd, static_cast<off_t>(what));
  if (mapped == MAP_FAILED) return false;
  memory = mapped;
  sizeBytes = size;
  return true;
}

std::unique_ptr<Uring> Uring::Make(unsigned depth) {
  std::unique_ptr<Uring> ring(new Uring);
  return ring->Map(depth) ? std::move(ring) : nullptr;
}

bool Uring::Map(unsigned depth) {
  io_uring_params params{};
  fd_ = static_cast<int>(::syscall(__NR_io_uring_setup, depth, &params));
  if (fd_ < 0) return false;
  const std::size_t submissionsSize = params.sq_off.array + params.sq_entries * sizeof(std::uint32_t);
  const std::size_t completionsSize = params.cq_off.cqes + params.cq_entries * sizeof(io_uring_cqe);
  if (!submissions_.Map(fd_, submissionsSize, IORING_OFF_SQ_RING) ||
      !completions_.Map(fd_, completionsSize, IORING_OFF_CQ_RING) ||
      !entries_.Map(fd_, params.sq_entries * sizeof(io_uring_sqe), IORING_OFF_SQES)) {
    return false;
  }
  submitTail_ = submissions_.At<std::uint32_t>(params.sq_off.tail);
  submitMask_ = *submissions_.At<std::uint32_t>(params.sq_off.ring_mask);
  submitArray_ = submissions_.At<std::uint32_t>(params.sq_off.array);
  completeHead_ = completions_.At<std::uint32_t>(params.cq_off.head);
  completeTail_ = completions_.At<std::uint32_t>(params.cq_off.tail);
  completeMask_ = *completions_.At<std::uint32_t>(params.cq_off.ring_mask);
  completed_ = completions_.At<io_uring_cqe>(params.cq_off.cqes);
  return true;
}

Uring::~Uring() {
  if (fd_ >= 0) ::close(fd_);
}

void Uring::BeginWrite(int fd, const std::byte* data, std::size_t size, std::uint64_t offset,
                       std::uint64_t tag) {
  Begin(IORING_OP_WRITE, fd, reinterpret_cast<std::uintptr_t>(data), size, offset, tag);
}

void Uring::BeginRead(int fd, std::byte* data, std::size_t size, std::uint64_t offset, std::uint64_t tag) {
  Begin(IORING_OP_READ, fd, reinterpret_cast<std::uintptr_t>(data), size, offset, tag);
}

void Uring::Begin(unsigned char operation, int fd, std::uint64_t address, std::size_t size,
                  std::uint64_t offset, std::uint64_t tag) {
  const std::uint32_t tail = *submitTail_;  // ours alone
  const std::uint32_t index = tail & submitMask_;
  io_uring_sqe& entry = entries_.At<io_uring_sqe>(0)[index];
  std::memset(&entry, 0, sizeof entry);
  entry.opcode = operation;
  entry.fd = fd;
  entry.addr = address;
  entry.len = static_cast<std::uint32_t>(size);
  entry.off = offset;
  entry.user_data = tag;
  submitArray_[index] = index;
  std::atomic_ref(*submitTail_).store(tail + 1, std::memory_order_release);
  ++waiting_;
  ++underWay_;
  // A large one goes to the kernel at once: the device should work while the next data are made. Small ones
  // go together, since to hand them over is what takes the time.
  if (size >= kLargeBytes || waiting_ >= kMostWaiting) Enter(0);
}

bool Uring::Enter(unsigned completions) {
  for (;;) {
    const long taken =
        ::syscall(__NR_io_uring_enter, fd_, waiting_, completions,
                  completions > 0 ? unsigned{IORING_ENTER_GETEVENTS} : 0u, nullptr, std::size_t{0});
    if (taken >= 0) {
      waiting_ -= static_cast<unsigned>(taken);
      return true;
    }
    if (errno != EINTR) return false;
  }
}

Uring::Completion Uring::TakeBack() {
  const std::uint32_t tail = *submitTail_ - 1;
  std::atomic_ref(*submitTail_).store(tail, std::memory_order_release);
  --waiting_;
  return {entries_.At<io_uring_sqe>(0)[tail & submitMask_].user_data, -EAGAIN};
}

Uring::Completion Uring::Wait() {
  const std::uint32_t head = *completeHead_;  // ours alone
  // Where many are under way, many are waited for: those that take their place then go together.
  const unsigned enough = underWay_ > kMostWaiting ? underWay_ - kMostWaiting : 1;
  --underWay_;
  if (underWay_ == 0 && waiting_ == 1) return TakeBack();
  while (std::atomic_ref(*completeTail_).load(std::memory_order_acquire) == head) {
    if (Enter(enough)) continue;
    if (waiting_ > 0) return TakeBack();  // the kernel doesn't take it
    // What is under way ends in any case, so there is nothing to give up for.
    ::sched_yield();
  }
  const io_uring_cqe& entry = completed_[head & completeMask_];
  const Completion completion{entry.user_data, entry.res};
  std::atomic_ref(*completeHead_).store(head + 1, std::memory_order_release);
  return completion;
}

}  // namespace zq::engine
