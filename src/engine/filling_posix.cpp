// What an open folder on Linux does for the filling of free space.
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "engine/folder_posix.h"
#include "engine/reserve_posix.h"
#include "engine/storage_posix.h"

namespace zq::engine {

Status PosixFolder::AddNameless(Access access, std::unique_ptr<File>& file) {
  UniqueFd fd(Retry([&] { return ::openat(fd_.Get(), ".", O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, 0600); }));
  if (!fd.IsOpen()) {
    // A file system that has no such files, or a kernel that doesn't know of them.
    if (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == ENOENT || errno == ENOSYS) {
      return Folder::AddNameless(access, file);
    }
    return LastError();
  }
  EntryFacts facts;
  if (Status status = LookAt(fd.Get(), "", facts); !status.Ok()) return status;
  file = Opened(std::move(fd), "", access, facts, {});
  return {};
}

// Without its name as soon as it is open, where that doesn't only give it another one.
Status PosixFolder::AddFiller(const std::string& name, Access access, std::unique_ptr<File>& file) {
  if (Status status = AddFile(name, access, file); !status.Ok()) return status;
  if (!FillersGoWhenClosed() || ::unlinkat(fd_.Get(), name.c_str(), 0) == 0) return {};
  Status status = LastError();
  file.reset();
  return status;
}

// Compression is inherited from the folder above.
void PosixFolder::StoreAsIs() {
  int flags = 0;
  if (::ioctl(fd_.Get(), FS_IOC_GETFLAGS, &flags) == 0 && (flags & FS_COMPR_FL) != 0) {
    flags &= ~FS_COMPR_FL;
    (void)::ioctl(fd_.Get(), FS_IOC_SETFLAGS, &flags);
  }
  if (!volume_.isNtfs3g) return;
  constexpr unsigned char kCompressedByte = 0x08;  // 0x0800 of the attributes
  unsigned char attributes[4]{};                   // the highest byte first
  constexpr const char* kName = "system.ntfs_attrib_be";
  if (::fgetxattr(fd_.Get(), kName, attributes, sizeof attributes) != sizeof attributes) return;
  attributes[2] = static_cast<unsigned char>(attributes[2] & ~kCompressedByte);
  (void)::fsetxattr(fd_.Get(), kName, attributes, sizeof attributes, 0);
}

bool PosixFolder::Lock() {
  return ::flock(fd_.Get(), LOCK_EX | LOCK_NB) == 0;
}

std::shared_ptr<void> PosixFolder::GiveOutReserve() {
  return engine::GiveOutReserve(fd_.Get(), volume_.device, volume_.magic);
}

void PosixFolder::Storage(StorageInfo& storage) {
  storage = StorageOf(facts_.device, volume_.isInMemory);
}

// In parts, since a call can't be broken off.
Status PosixFolder::TrimFreeSpace(const std::function<bool()>& mayGoOn) {
  constexpr std::uint64_t kPart = std::uint64_t{4} << 30;
  struct statvfs facts {};
  if (::fstatvfs(fd_.Get(), &facts) != 0) return LastError();
  const std::uint64_t end = facts.f_blocks * facts.f_frsize + kPart;  // what isn't counted as a block, too
  for (std::uint64_t start = 0; start < end && mayGoOn(); start += kPart) {
    fstrim_range range{start, kPart, 0};
    if (::ioctl(fd_.Get(), FITRIM, &range) == 0) continue;
    if (errno == EINVAL && start > 0) break;  // beyond the end
    return LastError();
  }
  return {};
}

}  // namespace zq::engine
