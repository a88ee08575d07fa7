// The device on Linux. Everything inside a folder is reached through the folder's descriptor, so that no
// link put in its place meanwhile can lead the engine elsewhere.
#include <dirent.h>
#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "engine/Device.h"
#include "engine/journal_posix.h"
#include "engine/uring_posix.h"

namespace zq::engine {
namespace {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~UniqueFd() { Reset(); }

  void Reset() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }
  int Get() const { return fd_; }
  bool IsOpen() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

Status FromErrno(int code) {
  Trouble trouble = Trouble::Other;
  if (code == ENOENT) trouble = Trouble::NotFound;
  if (code == EEXIST) trouble = Trouble::Exists;
  if (code == ENOSPC) trouble = Trouble::NoSpace;
  return {trouble, code, std::generic_category().message(code)};
}

Status LastError() {
  return FromErrno(errno);
}

// Calls again for as long as a signal gets in between.
template <typename Call>
auto Retry(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

Status Named(const std::string& name) {
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos ||
      name.find('\0') != std::string::npos) {
    return Status::Refusal("it is not a name");
  }
  return {};
}

// --- What a file system does with what is overwritten ---------------------------------------------------

constexpr std::int64_t kExtMagic = 0xEF53;
constexpr std::int64_t kXfsMagic = 0x58465342;
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

// File systems that leave a name where it stood in its folder when the entry goes. ext4 clears it.
struct NamesStay {
  std::int64_t magic;
  NameRoom::Kind kind;
};
constexpr NamesStay kNamesStay[] = {
    {kXfsMagic, NameRoom::Kind::Blocks}, {0x4D44, NameRoom::Kind::Slots},  // FAT
    {0x2011BAB0, NameRoom::Kind::Slots},                                   // exFAT
    {0x7366746E, NameRoom::Kind::Tree},                                    // NTFS, by the kernel's own driver
    {kFuseMagic, NameRoom::Kind::Tree},  // on a device: NTFS by ntfs-3g, mostly
};

// What is the same for all files of a mounted file system.
struct Volume {
  dev_t device = 0;
  std::int64_t magic = 0;
  std::uint32_t clusterBytes = 0;
  std::string notInPlace;
  bool oneFlushForAll = false;  // it is one of kOneDeviceFileSystems
  // A journal takes the changes of names, lengths and dates in their order: when the last is durable, so
  // are all before it.
  bool isOrdered = false;
  bool journalsData = false;     // content goes through the journal, too
  bool mayClearJournal = false;  // an ext4 that we are allowed to
  const NamesStay* namesStay = nullptr;

  bool MayNotClearJournal() const { return magic == kExtMagic && isOrdered && !mayClearJournal; }
  bool HasOneFlush() const { return oneFlushForAll; }
  bool IsOrdered() const { return isOrdered; }
  bool IsXfs() const { return magic == kXfsMagic; }
  bool IsJournaledExt() const { return magic == kExtMagic && isOrdered; }
  bool HasOneFlushWithoutOrder() const { return oneFlushForAll && !isOrdered; }
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

// ext4's call (Linux 5.14) to write all that is in its journal to its place, and to clear the journal. Not in
// every system's headers.
constexpr unsigned long kCheckpoint = _IOW('f', 43, std::uint32_t);
constexpr std::uint32_t kZeroOut = 2;
constexpr std::uint32_t kDryRun = 4;

bool Checkpoint(int fd, std::uint32_t flags) {
  return ::ioctl(fd, kCheckpoint, &flags) == 0;
}

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

// A part of a file's content, and where on the device it lies.
struct Piece {
  std::uint64_t offsetBytes = 0;
  std::uint64_t placeBytes = 0;
  std::uint64_t sizeBytes = 0;
};

struct Placement {
  std::vector<Piece> pieces;  // in the order of their offsets; empty where the file system doesn't tell
  // Some of the blocks belong to another file too, as after a copy by reflink: they are then left to the
  // other file, and new ones are written.
  bool isShared = false;
};

Placement PlacementOf(int fd) {
  constexpr std::uint32_t kExtents = 128;
  constexpr std::uint32_t kNowhere =
      FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC | FIEMAP_EXTENT_DATA_INLINE;
  alignas(fiemap) char memory[sizeof(fiemap) + kExtents * sizeof(fiemap_extent)];
  Placement placement;
  std::uint64_t start = 0;
  for (;;) {
    std::memset(memory, 0, sizeof(fiemap));
    auto* map = reinterpret_cast<fiemap*>(memory);
    map->fm_start = start;
    map->fm_length = FIEMAP_MAX_OFFSET - start;
    map->fm_extent_count = kExtents;
    if (::ioctl(fd, FS_IOC_FIEMAP, map) != 0 || map->fm_mapped_extents == 0) return placement;
    for (std::uint32_t i = 0; i < map->fm_mapped_extents; ++i) {
      const fiemap_extent& extent = map->fm_extents[i];
      placement.isShared = placement.isShared || (extent.fe_flags & FIEMAP_EXTENT_SHARED) != 0;
      if ((extent.fe_flags & kNowhere) == 0) {
        placement.pieces.push_back({extent.fe_logical, extent.fe_physical, extent.fe_length});
      }
      if ((extent.fe_flags & FIEMAP_EXTENT_LAST) != 0) return placement;
      start = extent.fe_logical + extent.fe_length;
    }
  }
}

// Whether all that lay in `before`, up to the end of the content, lies in the same places now. The pieces may
// be cut otherwise.
bool LiesWhereItLay(const std::vector<Piece>& before, const std::vector<Piece>& now, std::uint64_t endBytes) {
  std::size_t next = 0;
  for (const Piece& piece : before) {
    const std::uint64_t end = std::min(piece.offsetBytes + piece.sizeBytes, endBytes);
    for (std::uint64_t at = piece.offsetBytes; at < end;) {
      while (next < now.size() && now[next].offsetBytes + now[next].sizeBytes <= at) ++next;
      if (next == now.size() || now[next].offsetBytes > at) return false;
      const Piece& there = now[next];
      if (there.placeBytes + (at - there.offsetBytes) != piece.placeBytes + (at - piece.offsetBytes)) {
        return false;
      }
      at = there.offsetBytes + there.sizeBytes;
    }
  }
  return true;
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

// Makes the entries of a folder durable. A folder that may be used but not read can't be flushed by itself.
Status FlushFolder(int fd) {
  if (Retry([fd] { return ::fsync(fd); }) == 0) return {};
  if (errno != EBADF) return LastError();
  ::sync();
  return {};
}

// --- Extended attributes --------------------------------------------------------------------------------

// What the queue has to know of a file or an attribute.
class PosixPart : public File {
 public:
  virtual int Fd() const = 0;
  virtual bool IsDirect() const = 0;
};

// What users and programs have put there. The others (labels, access lists, capabilities) hold no content but
// rights, which mustn't change under a file that may have to stay.
bool HoldsContent(std::string_view attribute) {
  return attribute.starts_with("user.") || attribute.starts_with("trusted.");
}

Status ListAttributes(int fd, std::vector<std::string>& names) {
  names.clear();
  std::string list;
  for (;;) {
    const ssize_t size = ::flistxattr(fd, nullptr, 0);
    if (size == 0 || (size < 0 && errno == ENOTSUP)) return {};
    if (size < 0) return LastError();
    list.resize(static_cast<std::size_t>(size));
    const ssize_t got = ::flistxattr(fd, list.data(), list.size());
    if (got >= 0) {
      list.resize(static_cast<std::size_t>(got));
      break;
    }
    if (errno != ERANGE) return LastError();  // else one has been added meanwhile
  }
  for (std::size_t at = 0; at < list.size(); at += names.back().size() + 1) names.emplace_back(&list[at]);
  return {};
}

Status ListContentAttributes(int fd, std::vector<std::string>& names) {
  Status status = ListAttributes(fd, names);
  std::erase_if(names, [](const std::string& name) { return !HoldsContent(name); });
  return status;
}

// An extended attribute of a file or a folder, which it mustn't outlive, as a stream of it.
class PosixAttribute final : public PosixPart {
 public:
  PosixAttribute(int fd, std::string name, const Volume& volume)
      : fd_(fd), name_(std::move(name)), volume_(volume) {}

  Status Info(FileInfo& info) override {
    const ssize_t size = ::fgetxattr(fd_, name_.c_str(), nullptr, 0);
    if (size < 0) return LastError();
    info = {};
    info.lengthBytes = static_cast<std::uint64_t>(size);
    info.inRecord = true;
    // ext4 keeps equal blocks of attributes once, and frees the other without a write.
    info.mergesEqual = true;
    return WhyNotInPlace(info.notInPlace);
  }

  std::size_t Alignment() const override { return 1; }

  // A value can only be set as a whole.
  Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) override {
    written = 0;
    std::vector<std::byte> value;
    if (Status status = ReadValue(value); !status.Ok()) return status;
    if (offsetBytes > value.size() || data.size() > value.size() - offsetBytes) return HasChanged();
    std::copy(data.begin(), data.end(), value.begin() + static_cast<std::ptrdiff_t>(offsetBytes));
    if (::fsetxattr(fd_, name_.c_str(), value.data(), value.size(), XATTR_REPLACE) != 0) return LastError();
    written = data.size();
    return {};
  }

  // A journal has its own copy. What it hasn't written home before the value goes, it would forget to write.
  Status Flush() override {
    if (Retry([this] { return ::fsync(fd_); }) != 0) return LastError();
    return volume_.mayClearJournal && !Checkpoint(fd_, 0) ? LastError() : Status{};
  }

  // There is no way past the file system's own cache.
  Status DropCache() override { return {}; }

  Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) override {
    got = 0;
    std::vector<std::byte> value;
    if (Status status = ReadValue(value); !status.Ok()) return status;
    if (offsetBytes > value.size()) return HasChanged();
    got = std::min<std::size_t>(data.size(), value.size() - offsetBytes);
    std::copy_n(value.begin() + static_cast<std::ptrdiff_t>(offsetBytes), got, data.begin());
    return {};
  }

  Status ListStreams(std::vector<std::string>& names) override {
    names.clear();
    return {};
  }
  Status OpenStream(const std::string&, Access, std::unique_ptr<File>&) override {
    return NotForAttributes();
  }
  // A shorter value could come to lie elsewhere. It goes as it is.
  Status SetLength(std::uint64_t) override { return {}; }
  Status SetDates() override { return {}; }
  Status Rename(const std::string&) override { return NotForAttributes(); }
  Status FlushEntry() override { return Flush(); }
  Status Remove() override { return ::fremovexattr(fd_, name_.c_str()) == 0 ? Status{} : LastError(); }

  int Fd() const override { return fd_; }
  bool IsDirect() const override { return false; }
  const Volume& OnVolume() const { return volume_; }

 private:
  static Status NotForAttributes() { return Status::Refusal("an extended attribute has no such thing"); }
  static Status HasChanged() {
    return Status::Refusal("another program has changed its length during the wipe");
  }

  Status ReadValue(std::vector<std::byte>& value) const {
    const ssize_t size = ::fgetxattr(fd_, name_.c_str(), nullptr, 0);
    if (size < 0) return LastError();
    value.resize(static_cast<std::size_t>(size));
    const ssize_t got = ::fgetxattr(fd_, name_.c_str(), value.data(), value.size());
    if (got < 0) return errno == ERANGE ? HasChanged() : LastError();
    value.resize(static_cast<std::size_t>(got));
    return {};
  }

  Status WhyNotInPlace(std::string& reason) const {
    constexpr std::int64_t kTmpfsMagic = 0x01021994;
    constexpr std::int64_t kRamfsMagic = 0x858458F6;
    if (volume_.magic == kTmpfsMagic || volume_.magic == kRamfsMagic) return {};  // in memory alone
    if (volume_.magic != kExtMagic) {
      reason = "the file system doesn't promise to overwrite an extended attribute where it lies";
      return {};
    }
    if (volume_.MayNotClearJournal()) {
      reason = "the file system's journal has copies of it, which only an administrator may clear";
      return {};
    }
    // With the feature ea_inode a value that is longer than half a block, or that finds no room beside the
    // others, lies in a file of its own, and a new one is made for each new value. Nothing tells about it.
    std::vector<std::string> names;
    if (Status status = ListAttributes(fd_, names); !status.Ok()) return status;
    std::uint64_t bytes = 0;
    for (const std::string& name : names) {
      const ssize_t size = ::fgetxattr(fd_, name.c_str(), nullptr, 0);
      if (size > 0) bytes += static_cast<std::uint64_t>(size);
    }
    if (bytes > volume_.clusterBytes / 2) {
      reason = "it is so large that the file system may put each new value in a new place";
    }
    return {};
  }

  int fd_;
  std::string name_;
  Volume volume_;
};

// --- Files ----------------------------------------------------------------------------------------------

class PosixFile final : public PosixPart {
 public:
  PosixFile(UniqueFd fd, int folderFd, std::string name, const struct stat& identity, const Volume& volume)
      : fd_(std::move(fd)),
        folderFd_(folderFd),
        name_(std::move(name)),
        device_(identity.st_dev),
        inode_(identity.st_ino),
        volume_(volume) {}

  // Leaves the file cached where direct transfers are not to be had.
  void GoDirect() { direct_ = !JournalsData() && ::fcntl(fd_.Get(), F_SETFL, O_DIRECT) == 0; }

  Status Info(FileInfo& info) override {
    struct stat facts {};
    if (::fstat(fd_.Get(), &facts) != 0) return LastError();
    info.lengthBytes = static_cast<std::uint64_t>(facts.st_size);
    // st_blocks counts the blocks of the extent tree too: no measure for what lies behind the end.
    info.allocatedBytes = 0;
    info.clusterBytes = volume_.clusterBytes;
    int flags = 0;
    const bool hasFlags = ::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0;
    // Content without blocks lies in the inode, or is a hole. ext4 tells which.
    info.inRecord = facts.st_blocks == 0 && facts.st_size > 0 && facts.st_size < volume_.clusterBytes &&
                    (volume_.magic != kExtMagic || (flags & FS_INLINE_DATA_FL) != 0);
    Placement placement = PlacementOf(fd_.Get());
    info.notInPlace = WhyNotInPlace(volume_, hasFlags ? flags : 0, placement);
    if (info.notInPlace.empty()) info.notInPlace = WhyNotTheSame(facts, placement.pieces);
    if (!placement_) {
      placement_ = std::move(placement.pieces);
      openedBytes_ = info.lengthBytes;
    }
    info.names = static_cast<std::uint32_t>(facts.st_nlink);
    return {};
  }

  Status Identity(FileId& id) override {
    id = {device_, {inode_, 0}};
    return {};
  }

  // 512 bytes is the least that a device asks for; Write finds out about those that ask for more.
  std::size_t Alignment() const override { return direct_ ? 512 : 1; }

  Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) override {
    written = 0;
    const auto write = [&] {
      return ::pwrite(fd_.Get(), data.data(), data.size(), static_cast<off_t>(offsetBytes));
    };
    ssize_t done = Retry(write);
    if (done < 0 && errno == EINVAL && direct_ && GoCached()) done = Retry(write);
    if (done < 0) return LastError();
    written = static_cast<std::size_t>(done);
    return {};
  }

  Status Flush() override {
    if (Retry([this] { return ::fdatasync(fd_.Get()); }) != 0) return LastError();
    // A flush of data that go through the journal reaches the journal alone.
    return JournalsData() && !Checkpoint(fd_.Get(), 0) ? LastError() : Status{};
  }

  // What is still in the system's cache is sent to the device, and waited for; the device's own cache isn't
  // flushed by that. Of direct writes nothing should be there, but a file system may have taken them into
  // the cache all the same: the second call finds out.
  Status BeginWriteback() { return direct_ ? Status{} : Writeback(SYNC_FILE_RANGE_WRITE); }
  Status EndWriteback() {
    return Writeback(SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
  }

  Status DropCache() override {
    if (struct stat facts{}; volume_.oneFlushForAll && ::fstat(fd_.Get(), &facts) == 0) {
      writtenAt_ = facts.st_mtim;
    }
    if (direct_) return {};
    // Pages that are on the device are dropped; what can't be dropped (a file system in memory) is read
    // where it is.
    const int code = ::posix_fadvise(fd_.Get(), 0, 0, POSIX_FADV_DONTNEED);
    return code == 0 ? Status{} : FromErrno(code);
  }

  Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) override {
    got = 0;
    const auto read = [&] {
      return ::pread(fd_.Get(), data.data(), data.size(), static_cast<off_t>(offsetBytes));
    };
    ssize_t done = Retry(read);
    if (done < 0 && errno == EINVAL && direct_ && GoCached()) done = Retry(read);
    if (done < 0) return LastError();
    got = static_cast<std::size_t>(done);
    return {};
  }

  // The extended attributes.
  Status ListStreams(std::vector<std::string>& names) override {
    return ListContentAttributes(fd_.Get(), names);
  }
  Status OpenStream(const std::string& name, Access, std::unique_ptr<File>& stream) override {
    stream = std::make_unique<PosixAttribute>(fd_.Get(), name, volume_);
    return {};
  }

  Status SetLength(std::uint64_t lengthBytes) override {
    if (Retry([&] { return ::ftruncate(fd_.Get(), static_cast<off_t>(lengthBytes)); }) != 0)
      return LastError();
    isEmpty_ = lengthBytes == 0;
    return {};
  }

  Status SetDates() override {
    constexpr timespec kMoment{315'576'000, 0};  // noon of the first day that FAT knows, 1980-01-01
    const timespec times[2] = {kMoment, kMoment};
    return ::futimens(fd_.Get(), times) == 0 ? Status{} : LastError();
  }

  Status Rename(const std::string& newName) override {
    if (Status status = Named(newName); !status.Ok()) return status;
    if (Status status = CheckEntry(); !status.Ok()) return status;
    if (Status status = RenameWithin(folderFd_, name_, newName); !status.Ok()) return status;
    name_ = newName;
    return {};
  }

  Status FlushEntry() override {
    if (Retry([this] { return ::fsync(fd_.Get()); }) != 0) return LastError();
    return FlushFolder(folderFd_);
  }

  int Fd() const override { return fd_.Get(); }
  // This file does, by its own attribute or because it is in its inode, though others of its file system
  // don't.
  bool JournalsDataAlone() const { return !direct_ && !volume_.journalsData && JournalsData(); }
  bool IsDirect() const override { return direct_; }
  const Volume& OnVolume() const { return volume_; }

  Status Remove() override {
    struct stat facts {};
    if (Status status = CheckEntry(facts); !status.Ok()) return status;
    if (isEmpty_ && facts.st_size != 0) return Status::Refusal("another program has written to it again");
    if (::unlinkat(folderFd_, name_.c_str(), 0) != 0) return LastError();
    fd_.Reset();
    return {};
  }

  static Status RenameWithin(int folderFd, const std::string& name, const std::string& newName) {
    if (::renameat2(folderFd, name.c_str(), folderFd, newName.c_str(), RENAME_NOREPLACE) == 0) return {};
    if (errno != EINVAL && errno != ENOSYS) return LastError();
    // Not every file system can refuse to replace.
    struct stat facts {};
    if (::fstatat(folderFd, newName.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0) return FromErrno(EEXIST);
    if (errno != ENOENT) return LastError();
    return ::renameat(folderFd, name.c_str(), folderFd, newName.c_str()) == 0 ? Status{} : LastError();
  }

 private:
  bool JournalsData() const {
    if (volume_.journalsData) return true;
    int flags = 0;
    return volume_.magic == kExtMagic && volume_.mayClearJournal &&
           ::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0 &&
           (flags & (FS_JOURNAL_DATA_FL | FS_INLINE_DATA_FL)) != 0;
  }

  // Empty, or what another program has done since the file was first looked at. Where the content lies tells
  // of blocks that were given back, though the length may be what it was; the date tells of what has come
  // after our last write.
  std::string WhyNotTheSame(const struct stat& facts, const std::vector<Piece>& pieces) const {
    if (placement_ && !LiesWhereItLay(*placement_, pieces, openedBytes_)) {
      return "another program has moved its content during the wipe";
    }
    if (writtenAt_ &&
        (writtenAt_->tv_sec != facts.st_mtim.tv_sec || writtenAt_->tv_nsec != facts.st_mtim.tv_nsec)) {
      return "another program has written to it during the wipe";
    }
    return {};
  }

  Status Writeback(unsigned flags) {
    return Retry([&] { return ::sync_file_range(fd_.Get(), 0, 0, flags); }) == 0 ? Status{} : LastError();
  }

  bool GoCached() {
    if (::fcntl(fd_.Get(), F_SETFL, 0) != 0) {
      errno = EINVAL;
      return false;
    }
    direct_ = false;
    return true;
  }

  // What bears our name now must be the file that is open: another one was never overwritten.
  Status CheckEntry() const {
    struct stat facts {};
    return CheckEntry(facts);
  }
  Status CheckEntry(struct stat& facts) const {
    if (::fstatat(folderFd_, name_.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) return LastError();
    if (facts.st_dev != device_ || facts.st_ino != inode_) {
      return Status::Refusal("another file has come under this name");
    }
    return {};
  }

  UniqueFd fd_;
  int folderFd_;
  std::string name_;
  dev_t device_;
  ino_t inode_;
  Volume volume_;
  bool direct_ = false;
  bool isEmpty_ = false;  // made so by us
  // As they were when the file was first looked at.
  std::optional<std::vector<Piece>> placement_;
  std::uint64_t openedBytes_ = 0;
  // The date of our last write, where the file system keeps it exactly.
  std::optional<timespec> writtenAt_;
};

// --- Folders --------------------------------------------------------------------------------------------

EntryKind KindOfMode(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::File;
  if (S_ISDIR(mode)) return EntryKind::Folder;
  if (S_ISLNK(mode)) return EntryKind::Link;
  return EntryKind::Other;
}

class PosixFolder final : public Folder {
 public:
  PosixFolder(UniqueFd fd, Volume volume) : fd_(std::move(fd)), volume_(std::move(volume)) {}

  Status List(std::vector<Entry>& entries) override {
    entries.clear();
    // A descriptor of its own: copies of one share the position of the listing.
    const int listFd = ::openat(fd_.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listFd < 0) return LastError();
    struct CloseList {
      void operator()(DIR* stream) const { ::closedir(stream); }
    };
    const std::unique_ptr<DIR, CloseList> stream(::fdopendir(listFd));
    if (!stream) {
      Status status = LastError();
      ::close(listFd);
      return status;
    }
    // In the order of the inodes, which is close to that of the content on the device: neighbours are then
    // written together. A folder's own order can be that of a hash.
    std::vector<std::pair<ino_t, Entry>> found;
    for (;;) {
      errno = 0;
      const dirent* item = ::readdir(stream.get());
      if (item == nullptr) {
        if (errno != 0) return LastError();
        break;
      }
      const std::string_view name = item->d_name;
      if (name == "." || name == "..") continue;
      EntryKind kind = EntryKind::Other;
      if (item->d_type == DT_UNKNOWN) {
        struct stat facts {};
        if (::fstatat(fd_.Get(), item->d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
          if (errno == ENOENT) continue;
          return LastError();
        }
        kind = KindOfMode(facts.st_mode);
      } else {
        kind = KindOfMode(static_cast<mode_t>(DTTOIF(item->d_type)));
      }
      found.emplace_back(item->d_ino, Entry{std::string(name), kind});
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    entries.reserve(found.size());
    for (auto& [inode, entry] : found) entries.push_back(std::move(entry));
    return {};
  }

  Status OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    if (Status status = Named(name); !status.Ok()) return status;
    // Looked at before it is opened: opening a pipe can wait, and opening a device can act.
    struct stat facts {};
    if (::fstatat(fd_.Get(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) return LastError();
    if (Status status = CheckRegular(facts); !status.Ok()) return status;
    return Open(name, O_RDWR, access, file);
  }

  Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    if (Status status = Named(name); !status.Ok()) return status;
    return Open(name, O_RDWR | O_CREAT | O_EXCL, access, file);
  }

  Status OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    if (Status status = Named(name); !status.Ok()) return status;
    struct stat facts {};
    if (::fstatat(fd_.Get(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) return LastError();
    if (S_ISLNK(facts.st_mode)) return Status::Refusal("it is a link");
    UniqueFd fd(::openat(fd_.Get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!fd.IsOpen()) return LastError();
    if (::fstat(fd.Get(), &facts) != 0) return LastError();
    Volume volume = volume_;
    if (facts.st_dev != volume_.device) {
      if (insideWalk_) return Status::Refusal("another file system is mounted there");
      if (Status status = LookAtVolume(fd.Get(), facts.st_dev, volume); !status.Ok()) return status;
    }
    auto opened = std::make_unique<PosixFolder>(std::move(fd), std::move(volume));
    opened->insideWalk_ = true;
    folder = std::move(opened);
    return {};
  }

  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    if (Status status = Named(name); !status.Ok()) return status;
    if (::mkdirat(fd_.Get(), name.c_str(), 0700) != 0) return LastError();
    Status status = OpenFolder(name, folder);
    if (!status.Ok()) ::unlinkat(fd_.Get(), name.c_str(), AT_REMOVEDIR);
    return status;
  }

  // The extended attributes.
  Status ListStreams(std::vector<std::string>& names) override {
    return ListContentAttributes(fd_.Get(), names);
  }
  Status OpenStream(const std::string& name, Access, std::unique_ptr<File>& stream) override {
    stream = std::make_unique<PosixAttribute>(fd_.Get(), name, volume_);
    return {};
  }

  Status Rename(const Entry& entry, const std::string& newName) override {
    if (Status status = CheckKind(entry); !status.Ok()) return status;
    if (Status status = Named(newName); !status.Ok()) return status;
    return PosixFile::RenameWithin(fd_.Get(), entry.name, newName);
  }

  Status Remove(const Entry& entry) override {
    if (Status status = CheckKind(entry); !status.Ok()) return status;
    const int flags = entry.kind == EntryKind::Folder ? AT_REMOVEDIR : 0;
    return ::unlinkat(fd_.Get(), entry.name.c_str(), flags) == 0 ? Status{} : LastError();
  }

  Status Flush() override { return FlushFolder(fd_.Get()); }
  int Fd() const { return fd_.Get(); }
  const Volume& OnVolume() const { return volume_; }

  Status Space(SpaceInfo& space) override {
    struct statvfs facts {};
    if (::fstatvfs(fd_.Get(), &facts) != 0) return LastError();
    // The administrator may use the reserved blocks, and then they are free space like the rest.
    const std::uint64_t blocks = ::geteuid() == 0 ? facts.f_bfree : facts.f_bavail;
    space.freeBytes = blocks * facts.f_frsize;
    space.clusterBytes = static_cast<std::uint32_t>(facts.f_frsize);
    return {};
  }

  bool RoomForNames(NameRoom& room) override {
    room = {};
    struct stat facts {};
    if (volume_.namesStay == nullptr || ::fstat(fd_.Get(), &facts) != 0) return false;
    room.kind = volume_.namesStay->kind;
    room.bytes = static_cast<std::uint64_t>(facts.st_size);
    // A length that is no number of blocks is that of names in the inode.
    if (volume_.magic == kXfsMagic && facts.st_size < facts.st_blksize && facts.st_blocks == 0)
      room.bytes = 0;
    return true;
  }

 private:
  static Status CheckRegular(const struct stat& facts) {
    switch (KindOfMode(facts.st_mode)) {
      case EntryKind::File:
        return {};
      case EntryKind::Link:
        return Status::Refusal("it is a link");
      case EntryKind::Folder:
        return Status::Refusal("it is a folder");
      default:
        return Status::Refusal("it is not a regular file");
    }
  }

  Status CheckKind(const Entry& entry) const {
    if (Status status = Named(entry.name); !status.Ok()) return status;
    struct stat facts {};
    if (::fstatat(fd_.Get(), entry.name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) return LastError();
    if (KindOfMode(facts.st_mode) != entry.kind) {
      return Status::Refusal("something else has come under this name");
    }
    return {};
  }

  Status Open(const std::string& name, int flags, Access access, std::unique_ptr<File>& file) {
    UniqueFd fd(Retry([&] {
      return ::openat(fd_.Get(), name.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600);
    }));
    if (!fd.IsOpen()) return errno == ELOOP ? Status::Refusal("it is a link") : LastError();
    struct stat facts {};
    if (::fstat(fd.Get(), &facts) != 0) return LastError();
    if (Status status = CheckRegular(facts); !status.Ok()) return status;
    if (::fcntl(fd.Get(), F_SETFL, 0) != 0) return LastError();  // blocking again
    Volume volume = volume_;
    if (facts.st_dev != volume_.device) {  // a file that is a mount point by itself
      if (Status status = LookAtVolume(fd.Get(), facts.st_dev, volume); !status.Ok()) return status;
    }
    auto opened = std::make_unique<PosixFile>(std::move(fd), fd_.Get(), name, facts, volume);
    if (access == Access::Direct) opened->GoDirect();
    file = std::move(opened);
    return {};
  }

  UniqueFd fd_;
  Volume volume_;
  // The folder that a user names may be a mount point; one inside it leads out of what was named.
  bool insideWalk_ = false;
};

// --- Several at once ------------------------------------------------------------------------------------

// Direct transfers go through the ring. A cached one is a copy in memory, which is done at once.
class PosixQueue final : public TransferQueue {
 public:
  static constexpr unsigned kDepth = 128;

  explicit PosixQueue(std::unique_ptr<Uring> ring) : ring_(std::move(ring)) { done_.reserve(kDepth); }

  std::size_t Depth() const override { return kDepth; }

  void BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                  std::size_t tag) override {
    auto& posix = static_cast<PosixPart&>(file);
    underWay_[tag] = {&posix, offsetBytes, data, {}};
    if (!posix.IsDirect()) return done_.push_back(DoNow(tag));
    ring_->BeginWrite(posix.Fd(), data.data(), data.size(), offsetBytes, tag);
  }

  void BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t tag) override {
    auto& posix = static_cast<PosixPart&>(file);
    underWay_[tag] = {&posix, offsetBytes, {}, data};
    if (!posix.IsDirect()) return done_.push_back(DoNow(tag));
    ring_->BeginRead(posix.Fd(), data.data(), data.size(), offsetBytes, tag);
  }

  Ended Wait() override {
    if (!done_.empty()) {
      Ended ended = std::move(done_.back());
      done_.pop_back();
      return ended;
    }
    const Uring::Completion completion = ring_->Wait();
    const auto tag = static_cast<std::size_t>(completion.tag);
    // Done again the plain way, which knows what to make of each failure: an alignment that the device
    // finds too small, a kernel whose ring has no such operation, a signal.
    if (completion.result < 0) return DoNow(tag);
    return {tag, static_cast<std::size_t>(completion.result), {}};
  }

 private:
  struct Transfer {
    PosixPart* file = nullptr;
    std::uint64_t offsetBytes = 0;
    std::span<const std::byte> source;
    std::span<std::byte> target;  // of a read
  };

  Ended DoNow(std::size_t tag) {
    const Transfer& transfer = underWay_[tag];
    Ended ended;
    ended.tag = tag;
    ended.status = transfer.target.empty()
                       ? transfer.file->Write(transfer.offsetBytes, transfer.source, ended.bytes)
                       : transfer.file->Read(transfer.offsetBytes, transfer.target, ended.bytes);
    return ended;
  }

  std::unique_ptr<Uring> ring_;
  Transfer underWay_[kDepth];
  std::vector<Ended> done_;
};

class PosixDevice final : public Device {
 public:
  explicit PosixDevice(const DeviceOptions& options) : options_(options) {}

  Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) override {
    UniqueFd fd(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.IsOpen() && errno == EACCES) {
      // One may use what is in a folder without being allowed to list it.
      fd = UniqueFd(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    if (!fd.IsOpen()) return LastError();
    struct stat facts {};
    if (::fstat(fd.Get(), &facts) != 0) return LastError();
    Volume volume;
    if (Status status = LookAtVolume(fd.Get(), facts.st_dev, volume); !status.Ok()) return status;
    folder = std::make_unique<PosixFolder>(std::move(fd), std::move(volume));
    return {};
  }

  Status Split(const std::string& path, std::string& folderPath, std::string& name) const override {
    std::size_t end = path.size();
    while (end > 0 && path[end - 1] == '/') --end;
    if (end == 0) {
      return Status::Refusal(path.empty() ? "the path is empty" : "it is the root of the whole system");
    }
    const std::size_t slash = path.rfind('/', end - 1);
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    name = path.substr(start, end - start);
    folderPath = start == 0 ? "." : path.substr(0, start);
    return Named(name);
  }

  std::string Join(const std::string& folderPath, const std::string& name) const override {
    if (folderPath.empty() || folderPath.back() == '/') return folderPath + name;
    return folderPath + '/' + name;
  }

  std::size_t NameLength(const std::string& name) const override { return name.empty() ? 1 : name.size(); }

  // All work goes by descriptors, which don't care what a folder is called.
  bool RenamesOpenFolders() const override { return true; }

  std::unique_ptr<TransferQueue> MakeQueue() override {
    if (!options_.oneTransferAtATime) {
      if (std::unique_ptr<Uring> ring = Uring::Make(PosixQueue::kDepth)) {
        return std::make_unique<PosixQueue>(std::move(ring));
      }
    }
    return Device::MakeQueue();
  }

  // On a disk that is told what is free (mounted with `discard`) each of them waits for the device's answer,
  // so the ring has several under way.
  void EmptyMany(std::span<File* const> files, std::span<Status> outcomes) override {
    constexpr std::size_t kFew = 8;
    if (!options_.oneTransferAtATime && files.size() >= kFew && !emptyRing_ && !triedEmptyRing_) {
      triedEmptyRing_ = true;
      emptyRing_ = Uring::Make(kEmptiedAtOnce);
    }
    if (!emptyRing_ || files.size() < kFew) return Device::EmptyMany(files, outcomes);
    std::vector<std::int32_t> results(files.size());
    std::size_t begun = 0;
    for (std::size_t ended = 0; ended < files.size(); ++ended) {
      for (; begun < files.size() && begun - ended < kEmptiedAtOnce; ++begun) {
        emptyRing_->BeginEmptying(static_cast<PosixFile&>(*files[begun]).Fd(), begun);
      }
      const Uring::Completion completion = emptyRing_->Wait();
      results[static_cast<std::size_t>(completion.tag)] = completion.result;
    }
    // What failed is done again the plain way: kernels before Linux 6.9 have no such operation.
    for (std::size_t i = 0; i < files.size(); ++i) {
      outcomes[i] = results[i] == 0 ? Status{} : files[i]->SetLength(0);
    }
  }

  // Not by syncfs: that would wait for all that other programs have written meanwhile, which can be minutes'
  // worth. Here each file's own pages go to the device, all together, and then one flush of the device
  // serves all of them.
  void FlushMany(std::span<File* const> files, std::span<Status> outcomes) override {
    const auto isAttribute = [](File* file) { return dynamic_cast<PosixAttribute*>(file) != nullptr; };
    if (std::none_of(files.begin(), files.end(), isAttribute)) return FlushContents(files, outcomes);
    for (const bool ofAttributes : {false, true}) {
      std::vector<File*> some;
      std::vector<std::size_t> indices;
      for (std::size_t i = 0; i < files.size(); ++i) {
        if (isAttribute(files[i]) != ofAttributes) continue;
        some.push_back(files[i]);
        indices.push_back(i);
      }
      std::vector<Status> someOutcomes(some.size());
      if (ofAttributes) {
        FlushMetadata<PosixAttribute>(std::span<File* const>(some), someOutcomes,
                                      [](PosixAttribute& attribute) { return attribute.Flush(); });
      } else {
        FlushContents(some, someOutcomes);
      }
      for (std::size_t i = 0; i < indices.size(); ++i) outcomes[indices[i]] = std::move(someOutcomes[i]);
    }
  }

  void FlushContents(std::span<File* const> files, std::span<Status> outcomes) {
    for (std::size_t i = 0; i < files.size(); ++i) {
      auto& file = static_cast<PosixFile&>(*files[i]);
      // Where a single file's data may go through the journal, each is asked.
      const bool together = file.OnVolume().oneFlushForAll && !file.JournalsDataAlone();
      outcomes[i] = together ? file.BeginWriteback() : file.Flush();
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
      auto& file = static_cast<PosixFile&>(*files[i]);
      if (file.OnVolume().oneFlushForAll && outcomes[i].Ok()) outcomes[i] = file.EndWriteback();
    }
    OnceForEachVolume<PosixFile>(files, outcomes, &Volume::HasOneFlush,
                                 [](PosixFile& file) { return file.Flush(); });
  }

  void FlushEntries(std::span<File* const> files, std::span<Status> outcomes) override {
    FlushMetadata<PosixFile>(files, outcomes, [](PosixFile& file) { return file.FlushEntry(); });
    OnceForEachVolume<PosixFile>(files, outcomes, &Volume::IsXfs, [](PosixFile& file) {
      XfsWriteHome(file.Fd(), file.OnVolume().device);
      return Status{};
    });
  }

  void FlushFolders(std::span<Folder* const> folders, std::span<Status> outcomes) override {
    FlushMetadata<PosixFolder>(folders, outcomes, [](PosixFolder& folder) {
      Status status = folder.Flush();
      // The folder's own block has to be written before it may be freed: once it is free, the journal forgets
      // the change, and the block keeps the old names.
      if (status.Ok() && folder.OnVolume().IsJournaledExt()) WriteHome(folder);
      return status;
    });
    OnceForEachVolume<PosixFolder>(folders, outcomes, &Volume::IsXfs, [](PosixFolder& folder) {
      XfsWriteHome(folder.Fd(), folder.OnVolume().device);
      return Status{};
    });
  }

  // The journal holds the names, and with data in it the content too, until it has come round.
  Status ClearTraces(Folder& folder, const std::function<bool()>& mayGoOn, std::string& note) override {
    auto& posix = static_cast<PosixFolder&>(folder);
    const Volume& volume = posix.OnVolume();
    if (volume.magic == kXfsMagic) {
      const bool home = XfsWriteHome(posix.Fd(), volume.device);
      const bool cycled = XfsCycleLog(posix.Fd(), volume.device, mayGoOn);
      if ((!home || !cycled) && note.empty()) {
        note =
            "The names of what was wiped may stay in the file system's log and in freed blocks for a while.";
      }
      return {};
    }
    if (volume.magic != kExtMagic || !volume.isOrdered) return {};
    if (volume.mayClearJournal) {
      // Content may have gone through it: small files and extended attributes, or all of it.
      return Checkpoint(posix.Fd(), kZeroOut) ? Status{} : LastError();
    }
    Ext4FillJournal(posix.Fd(), mayGoOn);
    if (!note.empty()) return {};
    note =
        "The names of what was wiped may stay in the file system's journal for a while, which only an "
        "administrator may clear.";
    return {};
  }

 private:
  // Where the checkpoint isn't allowed, the changes of others have to be written too.
  static void WriteHome(PosixFolder& folder) {
    if (folder.OnVolume().mayClearJournal && Checkpoint(folder.Fd(), 0)) return;
    if (LittleIsUnwritten()) Retry([&folder] { return ::syncfs(folder.Fd()); });
  }

  // What is true of names, lengths and dates for files and folders alike. Without an order among them each
  // has to be flushed, or with many of them the whole file system, which has to write what others have
  // changed too, but does it in one go.
  template <typename Posix, typename Base, typename Flush>
  static void FlushMetadata(std::span<Base* const> all, std::span<Status> outcomes, const Flush& flush) {
    constexpr std::size_t kFew = 4;
    const bool many = all.size() > kFew;
    for (std::size_t i = 0; i < all.size(); ++i) {
      auto& one = static_cast<Posix&>(*all[i]);
      const bool together = one.OnVolume().isOrdered || (many && one.OnVolume().oneFlushForAll);
      outcomes[i] = together ? Status{} : flush(one);
    }
    OnceForEachVolume<Posix>(all, outcomes, &Volume::IsOrdered, flush);
    if (!many) return;
    OnceForEachVolume<Posix>(all, outcomes, &Volume::HasOneFlushWithoutOrder, [](Posix& one) {
      return Retry([&one] { return ::syncfs(one.Fd()); }) == 0 ? Status{} : LastError();
    });
  }

  // Flushes the last one of each volume that has the property; what comes of it is the outcome of all there.
  template <typename Posix, typename Base, typename Flush>
  static void OnceForEachVolume(std::span<Base* const> all, std::span<Status> outcomes,
                                bool (Volume::*property)() const, const Flush& flush) {
    std::vector<dev_t> flushed;
    for (std::size_t i = all.size(); i > 0; --i) {
      auto& last = static_cast<Posix&>(*all[i - 1]);
      const Volume& volume = last.OnVolume();
      if (!(volume.*property)()) continue;
      if (std::find(flushed.begin(), flushed.end(), volume.device) != flushed.end()) continue;
      flushed.push_back(volume.device);
      const Status status = flush(last);
      if (status.Ok()) continue;
      for (std::size_t other = 0; other < all.size(); ++other) {
        if (static_cast<Posix&>(*all[other]).OnVolume().device == volume.device && outcomes[other].Ok()) {
          outcomes[other] = status;
        }
      }
    }
  }

  static constexpr unsigned kEmptiedAtOnce = 16;

  DeviceOptions options_;
  std::unique_ptr<Uring> emptyRing_;
  bool triedEmptyRing_ = false;
};

}  // namespace

std::unique_ptr<Device> MakeSystemDevice(const DeviceOptions& options) {
  return std::make_unique<PosixDevice>(options);
}

}  // namespace zq::engine
