// What file systems on Linux keep back of their free space for their own needs.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>

namespace zq::engine {

// Sets what the file system of the folder `fd` keeps back to nothing, and to what it was when the answer
// goes. Null where it isn't ours to set, or is nothing already. A kill meanwhile leaves it at nothing until
// the file system is mounted the next time, which costs it little: it is there for many writers on a full
// disk.
std::shared_ptr<void> GiveOutReserve(int fd, dev_t device, std::int64_t magic);

}  // namespace zq::engine
