#include "engine/file_posix.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "engine/attribute_posix.h"

namespace zq::engine {

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
  int flags = 0;
  const bool hasFlags = ::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0;
  // Content without blocks lies in the inode, or is a hole. ext4 tells which.
  info.inRecord = facts.allocatedBytes == 0 && facts.lengthBytes > 0 &&
                  facts.lengthBytes < volume_.clusterBytes &&
                  (volume_.magic != kExtMagic || (flags & FS_INLINE_DATA_FL) != 0);
  Placement placement = PlacementOf(fd_.Get());
  info.notInPlace = WhyNotInPlace(volume_, hasFlags ? flags : 0, placement);
  if (info.notInPlace.empty()) info.notInPlace = WhyNotTheSame(facts, placement.pieces);
  if (!placement_) {
    placement_ = std::move(placement.pieces);
    openedBytes_ = info.lengthBytes;
  }
  info.names = facts.links;
  return {};
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
  int flags = 0;
  return volume_.magic == kExtMagic && volume_.mayClearJournal &&
         ::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0 &&
         (flags & (FS_JOURNAL_DATA_FL | FS_INLINE_DATA_FL)) != 0;
}

std::string PosixFile::WhyNotTheSame(const EntryFacts& facts, const std::vector<Piece>& pieces) const {
  if (placement_ && !LiesWhereItLay(*placement_, pieces, openedBytes_)) {
    return "another program has moved its content during the wipe";
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
