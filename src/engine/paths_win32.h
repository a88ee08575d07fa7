// Paths and names as the Windows device hands them to the system: with the prefix that lifts the limit on
// their length. The A calls end at 259 characters, so all calls are W calls.
#pragma once

#include <cstddef>
#include <string>

#include "engine/system_win32.h"

namespace zq::engine::win32 {

bool StartsWith(const std::wstring& text, const wchar_t* start);

// The full path as Windows understands it, with the prefix that lifts the limit on its length.
Status LongPath(const std::string& path, std::wstring& longPath);

// The length of the part that has no folder above it: \\?\C:\ or \\?\UNC\server\share\.
std::size_t RootLength(const std::wstring& longPath);

std::wstring JoinWide(const std::wstring& folderPath, const std::wstring& name);

// A colon would name a stream of a file, or of a folder, and be wiped without the rest of it.
Status WideName(const std::string& name, std::wstring& wide);

}  // namespace zq::engine::win32
