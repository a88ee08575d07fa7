// Paths as the W calls take them at any length.
#pragma once

#include <string>

namespace zq {

// `path` for a W call. One that the system would refuse for its length is made full and gets the prefix
// that lifts the limit; any other stays as it is, so that what the system makes of blanks and dots at a
// name's end is the same as ever. Ends at its first null.
std::wstring SystemPath(const std::string& path);

// The full path that `path` means, by the process's current directory. "" if it has none.
std::string FullPath(const std::string& path);

}  // namespace zq
