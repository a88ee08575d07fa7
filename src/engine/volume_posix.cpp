#include "engine/volume_posix.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "engine/calls_posix.h"

namespace zq::engine {
namespace {

struct FileSystemRefusal {
  std::int64_t magic;
  const char* reason;
};

// File systems that put new content in a new place, whatever is asked of them, and whoever insists.
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

constexpr std::int64_t kTmpfsMagic = 0x01021994;
constexpr std::int64_t kRamfsMagic = 0x858458F6;

// File systems that are known to write new content over the old one.
constexpr std::int64_t kInPlaceFileSystems[] = {
    kExtMagic,   kXfsMagic,
    0x4D44,      // FAT
    0x2011BAB0,  // exFAT
    0x7366746E,  // NTFS, by the kernel's own driver
    kTmpfsMagic, kRamfsMagic,
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

// File systems that store names in units of UTF-16, of which a name has at most 255. Others take bytes.
constexpr std::int64_t kUtf16FileSystems[] = {
    0x4D44,      // FAT
    0x2011BAB0,  // exFAT
    0x7366746E,  // NTFS, by the kernel's own driver
};

constexpr NamesStay kNamesStay[] = {
    {0x4D44, NameRoom::Kind::Slots},      // FAT
    {0x2011BAB0, NameRoom::Kind::Slots},  // exFAT
    {0x7366746E, NameRoom::Kind::Tree},   // NTFS, by the kernel's own driver
    {kFuseMagic, NameRoom::Kind::Tree},   // on a device: NTFS by ntfs-3g, mostly
};

enum class Answer { Yes, No, Unknown };

// Whether an ext file system has a journal: without one each inode and folder has its own way to the device.
// The kernel's own files tell, where they are to be seen.
Answer HasJournal(dev_t device) {
  const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
  char target[PATH_MAX];
  const ssize_t length = ::readlink(("/sys/dev/block/" + number).c_str(), target, sizeof target);
  if (length <= 0) return Answer::Unknown;
  std::string name(target, static_cast<std::size_t>(length));
  name.erase(0, name.rfind('/') + 1);
  std::ifstream task("/sys/fs/ext4/" + name + "/journal_task");
  std::string process;  // "<none>" without a journal
  if (!(task >> process)) return Answer::Unknown;
  return process == "<none>" ? Answer::No : Answer::Yes;
}

constexpr char kDataInJournal[] =
    "the file system keeps data in its journal, which only an administrator may clear";

// Not in every system's headers.
constexpr unsigned long kCheckpoint = _IOW('f', 43, std::uint32_t);
constexpr std::uint32_t kDryRun = 4;

// What the kernel's table has on a mount: "36 35 98:0 / /mnt rw,noatime - ext4 /dev/root rw,data=journal".
struct Mount {
  std::string type;  // empty where the table doesn't show it
  std::string options;
};

Mount FindMount(const EntryFacts& facts) {
  const std::string number = std::to_string(major(facts.device)) + ':' + std::to_string(minor(facts.device));
  std::ifstream mounts("/proc/self/mountinfo");
  Mount found;
  for (std::string line; std::getline(mounts, line);) {
    std::istringstream fields(line);
    std::uint64_t id = 0;
    std::string parent;
    std::string device;
    fields >> id >> parent >> device;
    // Another mount of the same file system has the same options of it.
    if (id != facts.mount && (device != number || !found.type.empty())) continue;
    const std::size_t dash = line.find(" - ");
    if (dash == std::string::npos) continue;
    std::istringstream rest(line.substr(dash + 3));
    std::string source;
    rest >> found.type >> source >> found.options;
    if (id == facts.mount) break;
  }
  return found;
}

// ext3 and ext4 can be mounted so that data go through the journal: a flush then reaches the journal alone,
// where the old content stays for as long as it likes.
void LookAtJournal(int fd, const EntryFacts& facts, const Mount& mount, Volume& volume) {
  Answer has = HasJournal(facts.device);
  volume.mayClearJournal = Checkpoint(fd, kZeroOut | kDryRun);
  if (volume.mayClearJournal) {
    has = Answer::Yes;
  } else if (errno == ENODEV) {
    has = Answer::No;  // whoever may clear it is told that there is none
  }
  volume.isOrdered = has == Answer::Yes;
  volume.mayHaveJournal = has != Answer::No;
  if (!volume.mayHaveJournal) return;
  volume.journalsData = mount.options.find("data=journal") != std::string::npos;
  volume.mayJournalData = mount.type.empty();
  if (volume.journalsData && !volume.mayClearJournal) volume.notInPlace = kDataInJournal;
}

// NTFS by ntfs-3g, on a device of its own: no other file system has this attribute. One without a device can
// be a view of anything.
bool IsNtfs3g(int fd, std::int64_t magic, dev_t device) {
  std::uint32_t attributes = 0;
  return magic == kFuseMagic && major(device) != 0 &&
         ::fgetxattr(fd, "system.ntfs_attrib_be", &attributes, sizeof attributes) == sizeof attributes;
}

std::string TypeOf(const Mount& mount, std::int64_t magic) {
  if (!mount.type.empty()) return mount.type;
  char text[32];
  std::snprintf(text, sizeof text, "of type 0x%llx", static_cast<unsigned long long>(magic));
  return text;
}

void LookWhetherInPlace(int fd, const EntryFacts& facts, bool trusted, const Mount& mount, Volume& volume) {
  for (const FileSystemRefusal& refusal : kRefusedFileSystems) {
    if (refusal.magic == volume.magic) volume.notInPlace = refusal.reason;
  }
  volume.isFuse = volume.magic == kFuseMagic;
  volume.isNtfs3g = IsNtfs3g(fd, volume.magic, facts.device);
  volume.isInMemory = volume.magic == kTmpfsMagic || volume.magic == kRamfsMagic;
  if (volume.isInMemory) {
    volume.caveat =
        "Files were in memory and on no disk, where nothing is left of them but what the system has swapped "
        "out.";
  }
  if (!volume.notInPlace.empty() || volume.isNtfs3g ||
      std::find(std::begin(kInPlaceFileSystems), std::end(kInPlaceFileSystems), volume.magic) !=
          std::end(kInPlaceFileSystems)) {
    return;
  }
  const std::string type = TypeOf(mount, volume.magic);
  if (trusted) {
    volume.caveat = "The file system (" + type +
                    ") isn't known to overwrite in place: what was wiped may still be on its device.";
  } else {
    volume.notInPlace = "its file system (" + type + ") isn't known to overwrite in place";
  }
}

}  // namespace

Status LookAtVolume(int fd, const EntryFacts& facts, bool trusted, Volume& volume) {
  struct statfs found {};
  if (::fstatfs(fd, &found) != 0) return LastError();
  volume = {};
  volume.device = facts.device;
  volume.magic = static_cast<std::int64_t>(static_cast<std::uint32_t>(found.f_type));
  volume.clusterBytes = static_cast<std::uint32_t>(found.f_frsize > 0 ? found.f_frsize : found.f_bsize);
  volume.oneFlushForAll = std::find(std::begin(kOneDeviceFileSystems), std::end(kOneDeviceFileSystems),
                                    volume.magic) != std::end(kOneDeviceFileSystems);
  volume.isOrdered = volume.magic == kXfsMagic;
  for (const NamesStay& one : kNamesStay) {
    // A network by FUSE has no device, and each filler would take its time.
    if (one.magic == volume.magic && (one.magic != kFuseMagic || major(facts.device) != 0)) {
      volume.namesStay = &one;
    }
  }
  const Mount mount = FindMount(facts);
  LookWhetherInPlace(fd, facts, trusted, mount, volume);
  volume.countsNamesInUtf16 = volume.isNtfs3g || std::ranges::count(kUtf16FileSystems, volume.magic) > 0;
  if (volume.magic == kExtMagic) LookAtJournal(fd, facts, mount, volume);
  return {};
}

bool Checkpoint(int fd, std::uint32_t flags) {
  return ::ioctl(fd, kCheckpoint, &flags) == 0;
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
  if (volume.magic == kXfsMagic && !placement.isTold) {
    return "it can't be found out whether it shares blocks with another file";
  }
  if (placement.isShared) {
    return "it shares blocks with another file";
  }
  return {};
}

}  // namespace zq::engine
