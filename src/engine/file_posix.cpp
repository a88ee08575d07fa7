#include "engine/file_posix.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "engine/attribute_posix.h"

namespace zq::engine {
namespace {

// Where a file has data, by the system's other way of telling it, in whole blocks.
std::vector<ByteRange> DataIn(int fd, std::uint64_t lengthBytes, std::uint64_t block) {
  std::vector<ByteRange> parts;
  for (std::uint64_t at = 0; at < lengthBytes;) {
    const off_t data = ::lseek(fd, static_cast<off_t>(at), SEEK_DATA);
    if (data < 0) {
      if (errno != ENXIO) parts.assign(1, {0, (lengthBytes + block - 1) / block * block});
      break;
    }
    const off_t hole = ::lseek(fd, data, SEEK_HOLE);
    const std::uint64_t first = static_cast<std::uint64_t>(data) / block * block;
    const std::uint64_t end = hole < 0 ? lengthBytes : static_cast<std::uint64_t>(hole);
    at = (end + block - 1) / block * block;
    parts.push_back({first, at - first});
  }
  return parts;
}

// Direct transfers aren't given for content that goes through a journal (Linux 6.1 tells).
bool TakesDirectTransfers(int fd) {
  struct statx facts {};
  return ::statx(fd, "", AT_EMPTY_PATH, STATX_DIOALIGN, &facts) == 0 &&
         (facts.stx_mask & STATX_DIOALIGN) != 0 && facts.stx_dio_offset_align > 0;
}

}  // namespace

GivenRight::~GivenRight() {
  if (file_.IsOpen()) ::chmod(("/proc/self/fd/" + std::to_string(file_.Get())).c_str(), mode_);
}

bool GivenRight::Give(int folderFd, const std::string& name, const EntryFacts& meant) {
  constexpr mode_t kOwnerMayWrite = S_IRUSR | S_IWUSR;
  if (meant.owner != ::geteuid() || (meant.mode & kOwnerMayWrite) == kOwnerMayWrite) return false;
  UniqueFd file(::openat(folderFd, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  EntryFacts facts;
  if (!file.IsOpen() || !LookAt(file.Get(), "", facts).Ok() || !facts.IsSameAs(meant)) return false;
  const std::string path = "/proc/self/fd/" + std::to_string(file.Get());
  if (::chmod(path.c_str(), (meant.mode & 07777) | kOwnerMayWrite) != 0) return false;
  mode_ = meant.mode & 07777;
  file_ = std::move(file);
  return true;
}

void PosixFile::GoDirect() {
  direct_ = !JournalsData() && ::fcntl(fd_.Get(), F_SETFL, O_DIRECT) == 0;
}

Status PosixFile::Info(FileInfo& info) {
  EntryFacts facts;
  if (Status status = LookAt(fd_.Get(), "", facts); !status.Ok()) return status;
  info.lengthBytes = facts.lengthBytes;
  // st_blocks counts the blocks of the extent tree too: no measure for what lies behind the end.
  info.allocatedBytes = 0;
  info.clusterBytes = volume_.clusterBytes;
  info.room.reset();
  LookAtPlace(facts, info);
  info.caveat = volume_.caveat;
  info.names = facts.links;
  return {};
}

void PosixFile::LookAtPlace(const EntryFacts& facts, FileInfo& info) {
  int flags = 0;
  const bool hasFlags = ::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0;
  if ((facts.attributes & STATX_ATTR_COMPRESSED) != 0) flags |= FS_COMPR_FL;
  if ((facts.attributes & STATX_ATTR_ENCRYPTED) != 0) flags |= FS_ENCRYPT_FL;
  // Content without blocks lies in the inode, or is a hole. ext4 tells which.
  info.inRecord = facts.allocatedBytes == 0 && facts.lengthBytes > 0 &&
                  facts.lengthBytes < volume_.clusterBytes &&
                  (volume_.magic != kExtMagic || (flags & FS_INLINE_DATA_FL) != 0);
  Placement placement = PlacementOf(fd_.Get());
  info.notInPlace = WhyNotInPlace(volume_, flags, placement);
  if (info.notInPlace.empty()) info.notInPlace = WhyNotSure(hasFlags);
  if (!info.inRecord) LookForRoom(facts, placement, info);
  if (info.notInPlace.empty()) info.notInPlace = WhyNotTheSame(facts, placement.pieces);
  if (!placement_) {
    placement_ = std::move(placement.pieces);
    openedBytes_ = info.lengthBytes;
  }
}

// What can't be found out counts as the bad case.
std::string PosixFile::WhyNotSure(bool hasFlags) const {
  if ((volume_.magic == kExtMagic || volume_.magic == kXfsMagic) && !hasFlags) {
    return "it can't be found out whether it is compressed or encrypted";
  }
  if (volume_.mayJournalData && !volume_.mayClearJournal && JournalsData()) {
    return "it can't be found out whether the file system keeps data in its journal";
  }
  if (!volume_.isNtfs3g) return {};
  constexpr std::uint32_t kSparse = 0x200;
  constexpr std::uint32_t kCompressed = 0x800;
  constexpr std::uint32_t kEncrypted = 0x4000;
  unsigned char value[4]{};
  if (::fgetxattr(fd_.Get(), "system.ntfs_attrib_be", value, sizeof value) != sizeof value) {
    return "it can't be found out whether it is compressed or encrypted";
  }
  std::uint32_t attributes = 0;
  for (const unsigned char byte : value) attributes = attributes << 8 | byte;
  if ((attributes & kCompressed) != 0) return "it is compressed by the file system";
  if ((attributes & kEncrypted) != 0) return "it is encrypted by the file system";
  if ((attributes & kSparse) != 0) {
    return "it is a sparse file, and the file system doesn't tell where its content lies";
  }
  return {};
}

// What has room on the device, of a file that isn't whole there. ext4 can give out space in larger units than
// it tells (bigalloc): a file then has more than its extents show, and what lies there may be its own from
// before it was cut.
void PosixFile::LookForRoom(const EntryFacts& facts, const Placement& placement, FileInfo& info) const {
  const std::uint64_t block = std::max<std::uint64_t>(volume_.clusterBytes, 1);
  const auto up = [](std::uint64_t bytes, std::uint64_t unit) { return (bytes + unit - 1) / unit * unit; };
  std::vector<ByteRange> room = placement.room;
  if (!placement.isTold) {
    if (facts.allocatedBytes >= facts.lengthBytes) return;
    room = DataIn(fd_.Get(), facts.lengthBytes, block);
  }
  std::uint64_t told = 0;
  for (const ByteRange& part : room) told += part.sizeBytes;
  std::uint64_t unit = block;
  std::uint64_t hidden = 0;
  if (volume_.magic == kExtMagic && facts.allocatedBytes > told) {
    hidden = facts.allocatedBytes - told;
    // The unit divides what the file has. Blocks of the file system's own are among it, so the guess is at
    // most too large.
    constexpr std::uint64_t kLargestUnit = std::uint64_t{1} << 30;
    while (unit < kLargestUnit && facts.allocatedBytes % (unit * 2) == 0) unit *= 2;
  }
  const std::uint64_t blocksEnd = up(facts.lengthBytes, block);
  const std::uint64_t end = std::min(up(facts.lengthBytes, unit), blocksEnd + hidden);
  std::uint64_t covered = 0;
  std::vector<ByteRange> parts;
  for (const ByteRange& part : room) {
    std::uint64_t first = part.offsetBytes / unit * unit;
    const std::uint64_t last = std::min(up(part.offsetBytes + part.sizeBytes, unit), end);
    if (!parts.empty()) first = std::max(first, parts.back().offsetBytes + parts.back().sizeBytes);
    if (first >= last) continue;
    if (!parts.empty() && parts.back().offsetBytes + parts.back().sizeBytes == first) {
      parts.back().sizeBytes += last - first;
    } else {
      parts.push_back({first, last - first});
    }
    covered += last - first;
  }
  if (covered < blocksEnd) {
    info.room = std::move(parts);
  } else {
    info.allocatedBytes = end;
  }
}

Status PosixFile::Identity(FileId& id) {
  id = id_;
  return {};
}

Status PosixFile::Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) {
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

Status PosixFile::Flush() {
  if (Retry([this] { return ::fdatasync(fd_.Get()); }) != 0) return LastError();
  // A flush of data that go through the journal reaches the journal alone.
  return JournalsData() && !Checkpoint(fd_.Get(), 0) ? LastError() : Status{};
}

Status PosixFile::BeginWriteback() {
  return direct_ ? Status{} : Writeback(SYNC_FILE_RANGE_WRITE);
}

Status PosixFile::EndWriteback() {
  return Writeback(SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
}

Status PosixFile::DropCache() {
  if (EntryFacts facts; volume_.oneFlushForAll && LookAt(fd_.Get(), "", facts).Ok()) {
    writtenAt_ = facts.changed;
  }
  if (direct_) return {};
  // Pages that are on the device are dropped; what can't be dropped (a file system in memory) is read
  // where it is.
  const int code = ::posix_fadvise(fd_.Get(), 0, 0, POSIX_FADV_DONTNEED);
  return code == 0 ? Status{} : FromErrno(code);
}

Status PosixFile::Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) {
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

Status PosixFile::ListStreams(std::vector<std::string>& names) {
  return ListContentAttributes(fd_.Get(), names);
}

Status PosixFile::OpenStream(const std::string& name, Access, std::unique_ptr<File>& stream) {
  stream = std::make_unique<PosixAttribute>(fd_.Get(), name, volume_);
  return {};
}

Status PosixFile::SetLength(std::uint64_t lengthBytes) {
  if (Retry([&] { return ::ftruncate(fd_.Get(), static_cast<off_t>(lengthBytes)); }) != 0) return LastError();
  isEmpty_ = lengthBytes == 0;
  return {};
}

Status PosixFile::SetDates() {
  constexpr timespec kMoment{315'576'000, 0};  // noon of the first day that FAT knows, 1980-01-01
  const timespec times[2] = {kMoment, kMoment};
  return ::futimens(fd_.Get(), times) == 0 ? Status{} : LastError();
}

Status PosixFile::Rename(const std::string& newName) {
  if (Status status = Named(newName); !status.Ok()) return status;
  if (Status status = CheckEntry(); !status.Ok()) return status;
  if (Status status = RenameWithin(folderFd_, name_, newName); !status.Ok()) return status;
  name_ = newName;
  return {};
}

Status PosixFile::FlushEntry() {
  if (Retry([this] { return ::fsync(fd_.Get()); }) != 0) return LastError();
  return FlushFolder(folderFd_);
}

bool PosixFile::IsOpenElsewhere() {
  // Given only to whom alone has it open, mappings included.
  if (::fcntl(fd_.Get(), F_SETLEASE, F_WRLCK) != 0) return errno == EAGAIN;
  ::fcntl(fd_.Get(), F_SETLEASE, F_UNLCK);
  return false;
}

Status PosixFile::Remove() {
  EntryFacts facts;
  if (Status status = CheckEntry(facts); !status.Ok()) return status;
  if (isEmpty_ && facts.lengthBytes != 0) return Status::Refusal("another program has written to it again");
  if (::unlinkat(folderFd_, name_.c_str(), 0) != 0) return LastError();
  fd_.Reset();
  return {};
}

bool PosixFile::JournalsData() const {
  if (volume_.journalsData) return true;
  if (volume_.mayJournalData && !TakesDirectTransfers(fd_.Get())) return true;
  int flags = 0;
  return volume_.magic == kExtMagic && volume_.mayClearJournal &&
         ::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0 &&
         (flags & (FS_JOURNAL_DATA_FL | FS_INLINE_DATA_FL)) != 0;
}

std::string PosixFile::WhyNotTheSame(const EntryFacts& facts, const std::vector<Piece>& pieces) const {
  if (placement_ && !LiesWhereItLay(*placement_, pieces, openedBytes_)) {
    return volume_.magic == kXfsMagic
               ? "its content lies in another place now: xfs has put it there, as it does after a copy by "
                 "reflink, or another program has"
               : "another program has moved its content during the wipe";
  }
  if (writtenAt_ &&
      (writtenAt_->tv_sec != facts.changed.tv_sec || writtenAt_->tv_nsec != facts.changed.tv_nsec)) {
    return "another program has written to it during the wipe";
  }
  return {};
}

Status PosixFile::Writeback(unsigned flags) {
  return Retry([&] { return ::sync_file_range(fd_.Get(), 0, 0, flags); }) == 0 ? Status{} : LastError();
}

bool PosixFile::GoCached() {
  if (::fcntl(fd_.Get(), F_SETFL, 0) != 0) {
    errno = EINVAL;
    return false;
  }
  direct_ = false;
  return true;
}

Status PosixFile::CheckEntry() const {
  EntryFacts facts;
  return CheckEntry(facts);
}

Status PosixFile::CheckEntry(EntryFacts& facts) const {
  if (Status status = LookAt(folderFd_, name_, facts); !status.Ok()) return status;
  if (facts.Id() != id_) return Status::Refusal("another file has come under this name");
  return {};
}

}  // namespace zq::engine
