// What Windows tells of the volume that a folder lies on.
#pragma once

#include <string>

#include "engine/WindowsVolume.h"
#include "engine/system_win32.h"

namespace zq::engine::win32 {

Status LookAtVolume(const std::wstring& path, Volume& volume);

}  // namespace zq::engine::win32
