// The parts of start-up that need no window.
#pragma once

#include <string>

namespace zq {

class Files;

// `applicationPath` without surrounding blanks and with exactly one backslash at its end.
std::string AppFolderFrom(const std::string& applicationPath);

// Creates `Jobs` and `Report` below `appFolder` where they are missing. Failures are passed over.
void EnsureDataFolders(Files& files, const std::string& appFolder);

}  // namespace zq
