// MFindPartLoop: the search for a window by a part of its title.
#pragma once

#include <cstdint>
#include <string>

#include "platform/WindowList.h"

namespace zq {

struct AppState;
struct Platform;

// How the part is to stand in the title. Any other mode finds nothing.
inline constexpr std::int16_t kTitleBeginsWith = 0;
inline constexpr std::int16_t kTitleContains = 1;

// The front top-level window without a parent whose title has the part, case ignored, and 0 without one.
// Hidden windows count: a program in the tray has no other. ManagerRunning tells whether there is one.
WindowHandle FindWindowByTitlePart(const std::string& part, std::int16_t mode, AppState& state,
                                   Platform& platform);

}  // namespace zq
