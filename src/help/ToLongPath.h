// ToLongPath: a path with the long name of each of its folders.
#pragma once

#include <cstdint>
#include <string>

namespace zq {

class HelpFileSearch;

// From windowsVersion 4 on the system does it, where the result has fewer than `size` characters; `buffer`
// stays as it is where it can't. Below, each folder is looked up in turn: the result so far is then in
// `buffer` when a lookup fails, and nothing when the name is a bad one. Only the folders of a path that
// begins with a drive are found this way. Gives the length of the result, 0 for a failure. `path` may be
// `buffer`.
int ToLongPath(HelpFileSearch& files, std::int32_t windowsVersion, const std::string& path,
               std::string& buffer, int size);

}  // namespace zq
