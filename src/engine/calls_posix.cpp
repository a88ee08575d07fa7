#include "engine/calls_posix.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <system_error>

namespace zq::engine {

Status FromErrno(int code) {
  Trouble trouble = Trouble::Other;
  if (code == ENOENT) trouble = Trouble::NotFound;
  if (code == EEXIST) trouble = Trouble::Exists;
  if (code == EMFILE || code == ENFILE) trouble = Trouble::TooManyOpen;
  // A file that may grow no longer is full like the device: the next one takes more.
  if (code == ENOSPC || code == EFBIG) trouble = Trouble::NoSpace;
  return {trouble, code, std::generic_category().message(code)};
}

Status LastError() {
  return FromErrno(errno);
}

Status Named(const std::string& name) {
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos ||
      name.find('\0') != std::string::npos) {
    return Status::Refusal("it is not a name");
  }
  return {};
}

EntryKind KindOfMode(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::File;
  if (S_ISDIR(mode)) return EntryKind::Folder;
  if (S_ISLNK(mode)) return EntryKind::Link;
  return EntryKind::Other;
}

Status FlushFolder(int fd) {
  if (Retry([fd] { return ::fsync(fd); }) == 0) return {};
  if (errno != EBADF) return LastError();
  ::sync();
  return {};
}

Status RenameWithin(int folderFd, const std::string& name, const std::string& newName) {
  if (::renameat2(folderFd, name.c_str(), folderFd, newName.c_str(), RENAME_NOREPLACE) == 0) return {};
  if (errno != EINVAL && errno != ENOSYS) return LastError();
  // Not every file system can refuse to replace.
  struct stat facts {};
  if (::fstatat(folderFd, newName.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0) return FromErrno(EEXIST);
  if (errno != ENOENT) return LastError();
  return ::renameat(folderFd, name.c_str(), folderFd, newName.c_str()) == 0 ? Status{} : LastError();
}

}  // namespace zq::engine
