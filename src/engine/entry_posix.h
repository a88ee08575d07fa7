// What the Linux device learns of an entry before it opens it, and compares when it is open.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <string>

#include "engine/Device.h"

namespace zq::engine {

struct EntryFacts {
  dev_t device = 0;
  ino_t inode = 0;
  std::uint64_t mount = 0;  // through which it was reached: a bind mount has the device of what it shows
  std::int64_t bornNs = 0;  // when it was made, since an inode's number is given again; 0: not told
  mode_t mode = 0;
  uid_t owner = 0;
  std::uint32_t links = 0;
  std::uint64_t lengthBytes = 0;
  std::uint64_t allocatedBytes = 0;
  timespec changed{};            // the content
  std::uint64_t attributes = 0;  // STATX_ATTR_...

  FileId Id() const { return {device, {inode, static_cast<std::uint64_t>(bornNs)}}; }
  bool IsSameAs(const EntryFacts& other) const { return Id() == other.Id() && mount == other.mount; }
};

// Of the entry `name` in the folder `fd`, itself if it is a link; of `fd` itself if `name` is empty. Refused
// where the system doesn't tell the mount.
Status LookAt(int fd, const std::string& name, EntryFacts& facts);

}  // namespace zq::engine
