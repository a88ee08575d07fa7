// DroppedPaths: what a drop on a window brings.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace zq {

// Paths in the shell's order.
using DroppedPaths = std::vector<std::string>;

// The paths of the shell's file list in a block of global memory, which stays the caller's. A handle that is
// none gives none.
DroppedPaths PathsInMemory(HGLOBAL memory);

}  // namespace zq
