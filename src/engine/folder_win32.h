// An open folder on Windows. It is kept open without FILE_SHARE_DELETE for as long as something in it is
// worked on, so nobody can move it away and put a link in its place.
#pragma once

#include <memory>
#include <string>

#include "engine/system_win32.h"

namespace zq::engine::win32 {

// Refused for what isn't a folder, and for a link to one unless it is to be followed.
Status OpenWindowsFolder(const std::wstring& path, bool followLink, std::unique_ptr<Folder>& folder);

}  // namespace zq::engine::win32
