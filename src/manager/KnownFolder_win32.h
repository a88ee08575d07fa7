// KnownFolder: where Windows keeps a folder of the system or of the user.
#pragma once

#include <windows.h>
#include <shtypes.h>

#include <string>

namespace zq {

// Whether it exists or not. Empty where this system has no such folder.
std::string KnownFolder(const KNOWNFOLDERID& id);

}  // namespace zq
