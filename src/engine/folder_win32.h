// An open folder on Windows. It is kept open without FILE_SHARE_DELETE for as long as something in it is
// worked on, so nobody can move it away and put a link in its place.
#pragma once

#include <memory>
#include <string>

#include "engine/WindowsCalls.h"
#include "engine/system_win32.h"

namespace zq::engine::win32 {

// Opens the folder that a user named; links on the way are followed. `calls` has to outlive it.
Status OpenRootFolder(WindowsCalls& calls, const std::wstring& path, bool trustFileSystem,
                      std::unique_ptr<Folder>& folder);

}  // namespace zq::engine::win32
