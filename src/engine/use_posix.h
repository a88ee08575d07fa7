// What keeps a file from being wiped though it can be opened: it can't be removed in the end, or the system
// itself works on it.
#pragma once

#include <string>

#include "engine/Device.h"
#include "engine/entry_posix.h"

namespace zq::engine {

// Refused if the entry `name` of the folder `folderFd`, which is no folder, can't be removed from it: for the
// rights of the folder, its sticky bit, an attribute of either, a use as swap space. Changes nothing.
Status CheckRemovable(int folderFd, const std::string& name, const EntryFacts& facts);

// Refused if a loop device has the file as its image, or if that can't be found out.
Status CheckNoImage(int folderFd, const std::string& name, const EntryFacts& facts);

}  // namespace zq::engine
