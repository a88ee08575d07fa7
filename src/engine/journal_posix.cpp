#include "engine/journal_posix.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "engine/calls_posix.h"

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

// What is written into a journal to fill it is bounded: it must not take longer than the wipe.
constexpr std::uint64_t kMostBytes = std::uint64_t{64} << 20;

// Files with an extended attribute of most of a block. Each time it is written anew it goes through the
// journal, and unlike a file's content it does. They have no name, so that nothing is left of them however
// this process ends.
class JournalFiller {
 public:
  static constexpr std::size_t kFiles = 256;
  // xfs keeps larger ones outside, and those don't go through the log.
  static constexpr std::size_t kValueBytes = 2500;
  static constexpr std::size_t kRoundBytes = kFiles * kValueBytes;

  // False where the file system has no such files, or there are not so many to be had.
  bool Make(int folderFd) {
    for (UniqueFd& file : files_) {
      file = UniqueFd(::openat(folderFd, ".", O_RDWR | O_TMPFILE | O_CLOEXEC, 0600));
      if (!file.IsOpen()) return false;
    }
    return true;
  }

  // Writes one round and makes it durable. False if something fails.
  bool Write() {
    for (const UniqueFd& file : files_) {
      // No two are the same, or ext4 would keep them in one block.
      ++number_;
      std::copy_n(reinterpret_cast<const char*>(&number_), sizeof number_, value_.begin());
      if (::fsetxattr(file.Get(), "user.filler", value_.data(), value_.size(), 0) != 0) return false;
    }
    return ::fsync(files_.back().Get()) == 0;
  }

 private:
  std::array<UniqueFd, kFiles> files_;
  std::uint64_t number_ = 0;
  std::array<char, kValueBytes> value_{};
};

// The journal that mke2fs makes in a file system of so many bytes, or more than kMostBytes.
std::uint64_t UsualJournalBytes(std::uint64_t bytes) {
  constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
  if (bytes < 128 * kMiB) return 4 * kMiB;
  if (bytes < 1024 * kMiB) return 16 * kMiB;
  if (bytes < 2048 * kMiB) return 32 * kMiB;
  if (bytes < 16384 * kMiB) return 64 * kMiB;
  return 128 * kMiB;
}

}  // namespace

bool LittleIsUnwritten() {
  constexpr std::uint64_t kLittleKilobytes = 64 << 10;
  std::ifstream facts("/proc/meminfo");
  std::uint64_t unwritten = 0;
  for (std::string line; std::getline(facts, line);) {
    if (line.rfind("Dirty:", 0) != 0 && line.rfind("Writeback:", 0) != 0) continue;
    unwritten += std::strtoull(line.c_str() + line.find(':') + 1, nullptr, 10);
  }
  return unwritten < kLittleKilobytes;
}

bool XfsFillLog(int fd, dev_t device, const std::function<bool()>& mayGoOn) {
  XfsGeometry geometry{};
  if (::ioctl(fd, kGeometry, &geometry) != 0) return false;
  const std::uint64_t logBytes = std::uint64_t{geometry.logBlocks} * geometry.blockBytes;
  const std::optional<LogHead> start = ReadLogHead(device);
  if (!start || logBytes == 0 || logBytes > kMostBytes) return false;

  JournalFiller filler;
  if (!filler.Make(fd)) return false;
  // Each round logs at least the values; twice the log has to be enough, unless others hold it up.
  const std::uint64_t mostRounds = 2 * logBytes / JournalFiller::kRoundBytes + 2;
  for (std::uint64_t i = 0; i < mostRounds; ++i) {
    if (!mayGoOn() || !filler.Write()) return false;
    const std::optional<LogHead> now = ReadLogHead(device);
    if (!now) return false;
    if (now->round > start->round + 1 || (now->round == start->round + 1 && now->block > start->block)) {
      return true;
    }
  }
  return false;
}

bool Ext4FillJournal(int fd, const std::function<bool()>& mayGoOn) {
  struct statvfs facts {};
  if (::fstatvfs(fd, &facts) != 0) return false;
  const std::uint64_t journalBytes = UsualJournalBytes(std::uint64_t{facts.f_blocks} * facts.f_frsize);
  if (journalBytes > kMostBytes) return false;

  JournalFiller filler;
  if (!filler.Make(fd)) return false;
  // Each round fills a block for each file, and some more.
  const std::uint64_t rounds = journalBytes / (JournalFiller::kFiles * std::uint64_t{facts.f_frsize}) + 2;
  for (std::uint64_t i = 0; i < rounds; ++i) {
    if (!mayGoOn() || !filler.Write()) return false;
  }
  return true;
}

}  // namespace zq::engine
