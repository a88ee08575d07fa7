#include "engine/folder_posix.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "engine/AlignedBuffer.h"
#include "engine/attribute_posix.h"
#include "engine/file_posix.h"
#include "engine/use_posix.h"

namespace zq::engine {
namespace {

Status NotInPlace(const std::string& reason) {
  return Status::Refusal("it can't be overwritten in place, since " + reason);
}

}  // namespace

Status PosixFolder::List(std::vector<Entry>& entries) {
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

Status PosixFolder::OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) {
  if (Status status = Named(name); !status.Ok()) return status;
  // Looked at before it is opened: opening a pipe can wait, opening a device can act, and some file systems
  // make a copy of what is opened for writing.
  EntryFacts facts;
  if (Status status = LookAt(fd_.Get(), name, facts); !status.Ok()) return status;
  if (Status status = CheckRegular(facts.mode); !status.Ok()) return status;
  if (facts.mount != facts_.mount) return Status::Refusal("another file is mounted over it");
  if (!volume_.notInPlace.empty()) return NotInPlace(volume_.notInPlace);
  if (Status status = CheckRemovable(fd_.Get(), name, facts); !status.Ok()) return status;
  if (Status status = CheckNoImage(fd_.Get(), name, facts); !status.Ok()) return status;
  return Open(name, O_RDWR, access, &facts, file);
}

Status PosixFolder::AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) {
  if (Status status = Named(name); !status.Ok()) return status;
  return Open(name, O_RDWR | O_CREAT | O_EXCL, access, nullptr, file);
}

Status PosixFolder::OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) {
  if (Status status = Named(name); !status.Ok()) return status;
  EntryFacts facts;
  if (Status status = LookAt(fd_.Get(), name, facts); !status.Ok()) return status;
  if (S_ISLNK(facts.mode)) return Status::Refusal("it is a link");
  UniqueFd fd(::openat(fd_.Get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!fd.IsOpen()) return LastError();
  if (Status status = LookAt(fd.Get(), "", facts); !status.Ok()) return status;
  if (insideWalk_ && facts.mount != facts_.mount) {
    return Status::Refusal(facts.device != facts_.device ? "another file system is mounted there"
                                                         : "a folder from elsewhere is mounted there");
  }
  Volume volume = volume_;
  if (facts.device != facts_.device) {
    if (Status status = LookAtVolume(fd.Get(), facts, trusted_, volume); !status.Ok()) return status;
  }
  auto opened = std::make_unique<PosixFolder>(std::move(fd), facts, std::move(volume), trusted_);
  opened->insideWalk_ = true;
  folder = std::move(opened);
  return {};
}

Status PosixFolder::AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) {
  if (Status status = Named(name); !status.Ok()) return status;
  if (::mkdirat(fd_.Get(), name.c_str(), 0700) != 0) return LastError();
  Status status = OpenFolder(name, folder);
  if (!status.Ok()) ::unlinkat(fd_.Get(), name.c_str(), AT_REMOVEDIR);
  return status;
}

Status PosixFolder::OpenAbove(std::unique_ptr<Folder>& folder) {
  UniqueFd fd(::openat(fd_.Get(), "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!fd.IsOpen()) return LastError();
  EntryFacts facts;
  if (Status status = LookAt(fd.Get(), "", facts); !status.Ok()) return status;
  if (facts.mount != facts_.mount || facts.device != facts_.device) {
    return Status::Refusal("it is in another file system");
  }
  auto opened = std::make_unique<PosixFolder>(std::move(fd), facts, volume_, trusted_);
  opened->insideWalk_ = insideWalk_;
  folder = std::move(opened);
  return {};
}

std::size_t PosixFolder::NameLength(const std::string& name) const {
  constexpr std::size_t kMost = 255;
  // Where nothing tells how they are counted, more than 255 bytes can't be bytes.
  if (!volume_.countsNamesInUtf16 && name.size() <= kMost) return std::max<std::size_t>(name.size(), 1);
  std::size_t units = 0;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
  }
  return std::clamp<std::size_t>(units, 1, kMost);
}

Status PosixFolder::ListStreams(std::vector<std::string>& names) {
  return ListContentAttributes(fd_.Get(), names);
}

Status PosixFolder::OpenStream(const std::string& name, Access, std::unique_ptr<File>& stream) {
  stream = std::make_unique<PosixAttribute>(fd_.Get(), name, volume_);
  return {};
}

Status PosixFolder::Rename(const Entry& entry, const std::string& newName) {
  if (Status status = CheckKind(entry); !status.Ok()) return status;
  if (Status status = Named(newName); !status.Ok()) return status;
  return RenameWithin(fd_.Get(), entry.name, newName);
}

Status PosixFolder::Remove(const Entry& entry) {
  if (Status status = CheckKind(entry); !status.Ok()) return status;
  const int flags = entry.kind == EntryKind::Folder ? AT_REMOVEDIR : 0;
  return ::unlinkat(fd_.Get(), entry.name.c_str(), flags) == 0 ? Status{} : LastError();
}

Status PosixFolder::Space(SpaceInfo& space) {
  struct statvfs facts {};
  if (::fstatvfs(fd_.Get(), &facts) != 0) return LastError();
  // The administrator may use the reserved blocks, and then they are free space like the rest.
  const std::uint64_t blocks = ::geteuid() == 0 ? facts.f_bfree : facts.f_bavail;
  space.freeBytes = blocks * facts.f_frsize;
  space.keptBytes = (facts.f_bfree - blocks) * facts.f_frsize;
  space.keptByQuota = false;
  space.clusterBytes = static_cast<std::uint32_t>(facts.f_frsize);
  return {};
}

bool PosixFolder::RoomForNames(NameRoom& room) {
  room = {};
  struct stat facts {};
  if (volume_.namesStay == nullptr || ::fstat(fd_.Get(), &facts) != 0) return false;
  room.kind = volume_.namesStay->kind;
  room.bytes = static_cast<std::uint64_t>(facts.st_size);
  return true;
}

// By a file without a name, whose blocks are asked for one by one: each is the free one that is closest.
void PosixFolder::CoverFreedBlocks(const std::function<bool()>& mayGoOn) {
  constexpr std::uint64_t kBlocks = 64;
  if (volume_.magic != kXfsMagic) return;
  const UniqueFd file(::openat(fd_.Get(), ".", O_TMPFILE | O_RDWR | O_DIRECT | O_CLOEXEC, 0600));
  if (!file.IsOpen()) return;
  const std::size_t size = volume_.clusterBytes;
  AlignedBuffer block(size, 0);
  for (std::uint64_t i = 0; i < kBlocks && mayGoOn(); ++i) {
    // Apart from each other in the file, or the next one would be wanted right behind the last one.
    const auto offset = static_cast<off_t>(2 * i * size);
    if (Retry([&] { return ::pwrite(file.Get(), block.First(size).data(), size, offset); }) < 0) return;
  }
}

Status PosixFolder::CheckRegular(mode_t mode) {
  switch (KindOfMode(mode)) {
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

Status PosixFolder::CheckKind(const Entry& entry) const {
  if (Status status = Named(entry.name); !status.Ok()) return status;
  struct stat facts {};
  if (::fstatat(fd_.Get(), entry.name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) return LastError();
  if (KindOfMode(facts.st_mode) != entry.kind) {
    return Status::Refusal("something else has come under this name");
  }
  return {};
}

Status PosixFolder::Open(const std::string& name, int flags, Access access, const EntryFacts* meant,
                         std::unique_ptr<File>& file) {
  const auto open = [&] {
    return UniqueFd(Retry([&] {
      return ::openat(fd_.Get(), name.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600);
    }));
  };
  UniqueFd fd = open();
  GivenRight right;
  if (!fd.IsOpen() && errno == EACCES && meant != nullptr && right.Give(fd_.Get(), name, *meant)) fd = open();
  if (!fd.IsOpen()) return errno == ELOOP ? Status::Refusal("it is a link") : LastError();
  EntryFacts facts;
  if (Status status = LookAt(fd.Get(), "", facts); !status.Ok()) return status;
  if (Status status = CheckRegular(facts.mode); !status.Ok()) return status;
  if (meant != nullptr && !facts.IsSameAs(*meant)) {
    return Status::Refusal("another file has come under this name");
  }
  if (::fcntl(fd.Get(), F_SETFL, 0) != 0) return LastError();  // blocking again
  // Two wipes of the same file would find in it what the other has written.
  if (meant != nullptr && ::flock(fd.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    return Status::Refusal("another program has locked it, such as another wipe");
  }
  file = Opened(std::move(fd), name, access, facts, std::move(right));
  return {};
}

std::unique_ptr<File> PosixFolder::Opened(UniqueFd fd, const std::string& name, Access access,
                                          const EntryFacts& facts, GivenRight right) {
  auto opened = std::make_unique<PosixFile>(std::move(fd), fd_.Get(), name, facts, volume_, std::move(right));
  if (access == Access::Direct) opened->GoDirect();
  return opened;
}

}  // namespace zq::engine
