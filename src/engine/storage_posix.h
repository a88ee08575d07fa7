// What a file system on Linux lies on, as the kernel tells it.
#pragma once

#include <sys/types.h>

#include <string>

#include "engine/Storage.h"

namespace zq::engine {

// Of the block device with this number, through partitions, dm, md and loop devices down to the disks: what
// one of them is counts for all. `sys` is where the kernel shows its devices.
StorageInfo StorageOf(dev_t device, bool inMemory, const std::string& sys = "/sys");

}  // namespace zq::engine
