#include "engine/volume_posix.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <fstream>

#include "engine/calls_posix.h"

namespace zq::engine {
namespace {

constexpr std::int64_t kOcfs2Magic = 0x7461636F;

struct FileSystemRefusal {
  std::int64_t magic;
  const char* reason;
};

// File systems that put new content in a new place, whatever is asked of them.
constexpr FileSystemRefusal kRefusedFileSystems[] = {
    {0x9123683E, "btrfs writes new data to a new place"},
    {0xCA451A4E, "bcachefs writes new data to a new place"},
    {0x2FC12FC1, "ZFS writes new data to a new place"},
    {0x3434, "NILFS writes new data to a new place"},
    {0xF2F52010, "F2FS writes new data to a new place"},
    {0x24051905, "UBIFS writes new data to a new place"},
    {0x72B6, "JFFS2 writes new data to a new place"},
    {0x794C7630, "an overlay writes to a copy of the file"},
    {0xF15F, "it is encrypted by the file system"},
};

// File systems that keep content on one device and let each flush of a file flush that device's cache: one
// flush then makes durable all that has left the system's cache before. Others may have a flush for each
// file alone, or (FUSE, a network) none that reaches further.
constexpr std::int64_t kOneDeviceFileSystems[] = {
    kExtMagic,  kXfsMagic,
    0x4D44,      // FAT
    0x2011BAB0,  // exFAT
    0x7366746E,  // NTFS, by the kernel's own driver
};

constexpr std::int64_t kFuseMagic = 0x65735546;

constexpr NamesStay kNamesStay[] = {
    {0x4D44, NameRoom::Kind::Slots},      // FAT
    {0x2011BAB0, NameRoom::Kind::Slots},  // exFAT
    {0x7366746E, NameRoom::Kind::Tree},   // NTFS, by the kernel's own driver
    {kFuseMagic, NameRoom::Kind::Tree},   // on a device: NTFS by ntfs-3g, mostly
};

// Whether an ext file system has a journal: without one each inode and folder has its own way to the device.
bool HasJournal(dev_t device) {
  const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
  char target[PATH_MAX];
  const ssize_t length = ::readlink(("/sys/dev/block/" + number).c_str(), target, sizeof target);
  if (length <= 0) return false;
  std::string name(target, static_cast<std::size_t>(length));
  name.erase(0, name.rfind('/') + 1);
  std::ifstream task("/sys/fs/ext4/" + name + "/journal_task");
  std::int64_t process = 0;  // "<none>" without a journal
  return static_cast<bool>(task >> process);
}

constexpr char kDataInJournal[] =
    "the file system keeps data in its journal, which only an administrator may clear";

// Not in every system's headers.
constexpr unsigned long kCheckpoint = _IOW('f', 43, std::uint32_t);
constexpr std::uint32_t kDryRun = 4;

// ext3 and ext4 can be mounted so that data go through the journal: a flush then reaches the journal alone,
// where the old content stays for as long as it likes.
bool JournalsData(dev_t device) {
  const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
  std::ifstream mounts("/proc/self/mountinfo");
  for (std::string line; std::getline(mounts, line);) {
    // "36 35 98:0 / /mnt rw,noatime - ext4 /dev/root rw,data=journal"
    const std::size_t first = line.find(' ');
    const std::size_t second = first == std::string::npos ? first : line.find(' ', first + 1);
    if (second == std::string::npos || line.compare(second + 1, number.size() + 1, number + ' ') != 0)
      continue;
    if (line.find("data=journal", line.find(" - ")) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

bool Checkpoint(int fd, std::uint32_t flags) {
  return ::ioctl(fd, kCheckpoint, &flags) == 0;
}

Status LookAtVolume(int fd, dev_t device, Volume& volume) {
  struct statfs facts {};
  if (::fstatfs(fd, &facts) != 0) return LastError();
  volume.device = device;
  volume.magic = static_cast<std::int64_t>(static_cast<std::uint32_t>(facts.f_type));
  volume.clusterBytes = static_cast<std::uint32_t>(facts.f_frsize > 0 ? facts.f_frsize : facts.f_bsize);
  volume.notInPlace.clear();
  for (const FileSystemRefusal& refusal : kRefusedFileSystems) {
    if (refusal.magic == volume.magic) volume.notInPlace = refusal.reason;
  }
  volume.oneFlushForAll = std::find(std::begin(kOneDeviceFileSystems), std::end(kOneDeviceFileSystems),
                                    volume.magic) != std::end(kOneDeviceFileSystems);
  volume.isOrdered = volume.magic == kXfsMagic || (volume.magic == kExtMagic && HasJournal(device));
  volume.namesStay = nullptr;
  for (const NamesStay& one : kNamesStay) {
    // A network by FUSE has no device, and each filler would take its time.
    if (one.magic == volume.magic && (one.magic != kFuseMagic || major(device) != 0)) volume.namesStay = &one;
  }
  if (volume.magic == kExtMagic && volume.isOrdered) {
    volume.mayClearJournal = Checkpoint(fd, kZeroOut | kDryRun);
    volume.journalsData = JournalsData(device);
    if (volume.journalsData && !volume.mayClearJournal) volume.notInPlace = kDataInJournal;
  }
  return {};
}

std::string WhyNotInPlace(const Volume& volume, int flags, const Placement& placement) {
  if (!volume.notInPlace.empty()) return volume.notInPlace;
  if ((flags & FS_COMPR_FL) != 0) return "it is compressed by the file system";
  if ((flags & FS_ENCRYPT_FL) != 0) return "it is encrypted by the file system";
  if ((flags & FS_JOURNAL_DATA_FL) != 0 && !volume.mayClearJournal) return kDataInJournal;
  if ((flags & FS_INLINE_DATA_FL) != 0 && volume.MayNotClearJournal()) {
    return "it is so small that its content has gone through the file system's journal, which only an "
           "administrator may clear";
  }
  if ((volume.magic == kXfsMagic || volume.magic == kOcfs2Magic) && placement.isShared) {
    return "it shares blocks with another file";
  }
  return {};
}

}  // namespace zq::engine
