// What has to be done on xfs so that old names leave the device: its folders' blocks, and its log.
#pragma once

#include <sys/types.h>

#include <cstdint>

namespace zq::engine {

// Writes all that is in the log of the file system of `fd` to its place, by freezing the file system for a
// moment. False where that isn't allowed (it takes an administrator) or isn't done: never the file system of
// the root folder.
bool XfsWriteHome(int fd, dev_t device);

// Fills the log with other things, by way of files made in the folder `fd` and removed again, until it has
// come round. That also writes to its place what was in it. It takes no rights but those to make files, and
// about as long as writing `logBytes`. False if the log is larger than `mostBytes`, or something has failed.
bool XfsCycleLog(int fd, dev_t device, std::uint64_t mostBytes);

}  // namespace zq::engine
