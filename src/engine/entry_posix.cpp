#include "engine/entry_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <fstream>

#include "engine/calls_posix.h"

namespace zq::engine {
namespace {

// Before Linux 5.8 only this tells.
Status AskForMount(int fd, const std::string& name, std::uint64_t& mount) {
  UniqueFd opened;
  if (!name.empty()) {
    opened = UniqueFd(::openat(fd, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!opened.IsOpen()) return LastError();
    fd = opened.Get();
  }
  std::ifstream info("/proc/self/fdinfo/" + std::to_string(fd));
  for (std::string word; info >> word;) {
    if (word == "mnt_id:" && info >> mount) return {};
  }
  return Status::Refusal("it can't be found out whether something is mounted there");
}

}  // namespace

Status LookAt(int fd, const std::string& name, EntryFacts& facts) {
  struct statx found {};
  const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (name.empty() ? AT_EMPTY_PATH : 0);
  if (::statx(fd, name.c_str(), flags, STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID, &found) != 0) {
    return LastError();
  }
  facts.device = ::makedev(found.stx_dev_major, found.stx_dev_minor);
  facts.inode = found.stx_ino;
  facts.bornNs = (found.stx_mask & STATX_BTIME) == 0
                     ? 0
                     : found.stx_btime.tv_sec * 1'000'000'000 + found.stx_btime.tv_nsec;
  facts.mode = found.stx_mode;
  facts.owner = found.stx_uid;
  facts.links = found.stx_nlink;
  facts.lengthBytes = found.stx_size;
  facts.allocatedBytes = found.stx_blocks * 512;
  facts.changed = {found.stx_mtime.tv_sec, found.stx_mtime.tv_nsec};
  facts.attributes = found.stx_attributes;
  if ((found.stx_mask & STATX_MNT_ID) == 0) return AskForMount(fd, name, facts.mount);
  facts.mount = found.stx_mnt_id;
  return {};
}

}  // namespace zq::engine
