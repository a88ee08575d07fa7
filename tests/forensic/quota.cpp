// A library for LD_PRELOAD: the program's files can grow by ZQ_QUOTA_BYTES in all, and then no more, as under
// a quota of its user. Not every kernel has quotas.
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace {

constexpr off_t kBlockBytes = 4096;

// Of a write at `offset`, what the quota has room for. What only overwrites takes none.
std::size_t RoomFor(int fd, std::size_t size, off_t offset) {
  static off_t left = std::atol(std::getenv("ZQ_QUOTA_BYTES"));
  struct stat facts {};
  if (::fstat(fd, &facts) != 0) return size;
  const off_t end = offset + static_cast<off_t>(size);
  const off_t grown = std::max<off_t>(end - facts.st_size, 0);
  const off_t granted = grown <= left ? grown : left / kBlockBytes * kBlockBytes;
  left -= granted;
  return size - static_cast<std::size_t>(grown - granted);
}

}  // namespace

extern "C" ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset) {
  const std::size_t room = RoomFor(fd, size, offset);
  if (room == 0 && size > 0) {
    errno = EDQUOT;
    return -1;
  }
  return ::syscall(SYS_pwrite64, fd, data, room, offset);
}
