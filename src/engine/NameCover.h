// Covers names where a file system leaves them: in the room of a folder from which they were removed.
#pragma once

#include <string>

#include "engine/Operation.h"

namespace zq::engine {

// Fills that room with empty files, which are removed when all of it is on the device. Where a folder has no
// such room (Folder::RoomForNames) nothing is made. What goes wrong is no failure of the wipe:
// Operation::note tells it. A cancel, or the end of the time for it, ends the filling alone.
//
// The fillers of a folder have the same names each time. What a run that was killed has left of them is found
// by the next one there, and removed with its own.
void CoverNames(Operation& operation, Folder& folder, const std::string& path) noexcept;

}  // namespace zq::engine
