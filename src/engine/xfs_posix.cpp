#include "engine/xfs_posix.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "engine/SeedSource.h"

namespace zq::engine {
namespace {

// As in xfs_fs.h, which not every system has: the geometry in its first form, which all kernels know.
struct XfsGeometry {
  std::uint32_t blockBytes;
  std::uint32_t rtExtentBlocks;
  std::uint32_t groupBlocks;
  std::uint32_t groupCount;
  std::uint32_t logBlocks;
  std::uint32_t sectorBytes;
  std::uint32_t inodeBytes;
  std::uint32_t inodePercent;
  std::uint64_t dataBlocks;
  std::uint64_t rtBlocks;
  std::uint64_t rtExtents;
  std::uint64_t logStart;
  unsigned char uuid[16];
  std::uint32_t stripeUnit;
  std::uint32_t stripeWidth;
  std::int32_t version;
  std::uint32_t flags;
  std::uint32_t logSectorBytes;
  std::uint32_t rtSectorBytes;
  std::uint32_t folderBlockBytes;
};
static_assert(sizeof(XfsGeometry) == 112);
constexpr unsigned long kGeometry = _IOR('X', 100, XfsGeometry);

// Where the log's next record comes to stand.
struct LogHead {
  std::uint64_t round = 0;
  std::uint64_t block = 0;  // of 512 bytes
};

std::optional<LogHead> ReadLogHead(dev_t device) {
  const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
  char target[PATH_MAX];
  const ssize_t length = ::readlink(("/sys/dev/block/" + number).c_str(), target, sizeof target);
  if (length <= 0) return {};
  std::string name(target, static_cast<std::size_t>(length));
  name.erase(0, name.rfind('/') + 1);
  std::ifstream file("/sys/fs/xfs/" + name + "/log/log_head_lsn");
  LogHead head;
  char colon = 0;
  if (!(file >> head.round >> colon >> head.block)) return {};
  return head;
}

// Files with an extended attribute of about a block each. Written anew each time they go through the log, and
// unlike a file's content they do.
class LogFiller {
 public:
  static constexpr std::size_t kFiles = 64;
  static constexpr std::size_t kValueBytes = 2500;

  explicit LogFiller(int folderFd) : folderFd_(folderFd) {}
  LogFiller(const LogFiller&) = delete;
  LogFiller& operator=(const LogFiller&) = delete;
  ~LogFiller() {
    for (std::size_t i = 0; i < count_; ++i) {
      ::unlinkat(folderFd_, names_[i].data(), 0);
      ::close(fds_[i]);
    }
  }

  bool Make() {
    SystemSeed seeds;
    while (count_ < kFiles) {
      std::array<unsigned char, 12> random{};
      if (!seeds.Fill(std::as_writable_bytes(std::span(random))).Ok()) return false;
      std::string name;
      for (const unsigned char byte : random) name += "0123456789bcdefghijklmpqrsvwxyz_"[byte & 31];
      names_[count_] = std::move(name);
      fds_[count_] = ::openat(folderFd_, names_[count_].data(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
      if (fds_[count_] < 0) return false;
      ++count_;
    }
    return true;
  }

  // Fills the log once more and makes that durable.
  bool Write() {
    ++value_[0];
    for (const int fd : fds_) {
      if (::fsetxattr(fd, "user.filler", value_.data(), value_.size(), 0) != 0) return false;
    }
    return ::fsync(fds_.back()) == 0;
  }

 private:
  int folderFd_;
  std::size_t count_ = 0;
  std::array<std::string, kFiles> names_;
  std::array<int, kFiles> fds_{};
  std::array<char, kValueBytes> value_{};
};

}  // namespace

bool XfsWriteHome(int fd, dev_t device) {
  struct stat root {};
  if (::geteuid() != 0 || ::stat("/", &root) != 0 || root.st_dev == device) return false;

  // A file system that stays frozen stops all who write to it. Therefore a process of its own freezes and
  // thaws it, which no signal reaches that is meant for this one or its terminal, and which makes no other
  // call between. Should it be killed all the same, this one thaws.
  sigset_t all;
  sigset_t before;
  ::sigfillset(&all);
  ::sigprocmask(SIG_SETMASK, &all, &before);
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();
    if (::ioctl(fd, FIFREEZE, 0) != 0) ::_exit(1);
    while (::ioctl(fd, FITHAW, 0) != 0 && errno == EINTR) {
    }
    ::_exit(0);
  }
  int outcome = -1;
  if (child > 0) {
    while (::waitpid(child, &outcome, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(outcome)) ::ioctl(fd, FITHAW, 0);
  }
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  return child > 0 && WIFEXITED(outcome) && WEXITSTATUS(outcome) == 0;
}

bool XfsCycleLog(int fd, dev_t device, std::uint64_t mostBytes) {
  XfsGeometry geometry{};
  if (::ioctl(fd, kGeometry, &geometry) != 0) return false;
  const std::uint64_t logBytes = std::uint64_t{geometry.logBlocks} * geometry.blockBytes;
  const std::optional<LogHead> start = ReadLogHead(device);
  if (!start || logBytes == 0 || logBytes > mostBytes) return false;

  LogFiller filler(fd);
  if (!filler.Make()) return false;
  // Each round logs at least the values; twice the log has to be enough, unless others hold it up.
  const std::uint64_t mostRounds = 2 * logBytes / (LogFiller::kFiles * LogFiller::kValueBytes) + 2;
  for (std::uint64_t i = 0; i < mostRounds; ++i) {
    if (!filler.Write()) return false;
    const std::optional<LogHead> now = ReadLogHead(device);
    if (!now) return false;
    if (now->round > start->round + 1 || (now->round == start->round + 1 && now->block > start->block)) {
      return true;
    }
  }
  return false;
}

}  // namespace zq::engine
