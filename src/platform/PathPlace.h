// Where a path leads, told by its text alone: what is destroyed has to lie on a drive with a letter or in a
// share of a server.
#pragma once

#include <string_view>

namespace zq {

// Whether `path` begins at a drive's root or at a share, in the ordinary form or in the one for long paths.
// A path that depends on a current folder doesn't, nor does one of another name space, such as a volume
// without a letter, a device, or Wine's way to the files of the system below it.
bool BeginsOnADriveOrShare(std::string_view path);

// Whether `path` begins in such another name space.
bool BeginsInAnotherNameSpace(std::string_view path);

}  // namespace zq
