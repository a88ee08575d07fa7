// RecursiveSearch: prepares a folder row for wiping. It counts the files that the wipe will touch and
// strips their attributes, so that a read-only, hidden or system file can't stop the engine.
#pragma once

#include <string>

#include "platform/FixedPoint.h"

namespace zq {

class Files;
class Process;

// Adds the number of matching files below `path` to `totalWipeItems`. A backslash is appended to the
// caller's `path` where it has none. Both patterns are matched by `Like`, case-sensitively: "*.*" needs
// a dot here, though the engine takes every file for it; the count and the wipe are two decisions.
// What can't be read or changed is passed over, and so is a folder whose path is longer than the 259
// characters of the narrow calls.
//
// It can't be stopped, and takes no message: what the user does meanwhile waits until it is done. A large
// folder takes longer than the system waits for a program, so `process` looks at the messages.
void SearchFolder(Files& files, Process& process, std::string& path, const std::string& pathPattern,
                  const std::string& mask, bool includeSubFolders, FixedPoint& totalWipeItems);

// Sets the attributes of `path` to normal; a failure is passed over.
void ClearAttributes(Files& files, const std::string& path);

}  // namespace zq
