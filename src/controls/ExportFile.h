// Writes a whole file so that nobody ever sees half of it.
#pragma once

#include <string>
#include <string_view>

namespace zq {

// Writes a temporary file beside `path` and gives it that name, in the place of an older file. False when
// anything fails, a locked or read-only file included: the older file is then as it was, and nothing is left
// beside it.
bool WriteExportFile(const std::string& path, std::string_view bytes);

}  // namespace zq
