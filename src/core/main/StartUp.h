// The parts of start-up that need no window.
#pragma once

#include <string>

namespace zq {

class DataFolder;

// `applicationPath` without surrounding blanks and with exactly one backslash at its end.
std::string AppFolderFrom(const std::string& applicationPath);

// Creates `Jobs` and `Report` where they are missing. Failures are passed over.
void EnsureDataFolders(const DataFolder& folder);

}  // namespace zq
