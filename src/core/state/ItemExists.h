// ItemExists: whether a file or a folder stands at a path.
#pragma once

#include <string>

namespace zq {

class Files;

inline constexpr int kItemIsFile = 1;
inline constexpr int kItemIsFolder = 2;

// Whether a directory entry stands at `path`. Kind 1 takes files alone, of whatever attributes; any
// other kind takes folders, and plain files of that name too. A path that ends in a backslash asks for
// the folder's content, "" has no entry, and any failure gives false.
bool ItemExists(Files& files, int kind, const std::string& path);

}  // namespace zq
