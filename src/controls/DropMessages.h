// DropMessages: the messages by which the shell hands over a drop to a program of higher rights than its own.
#pragma once

#include <cstdint>

#include "platform/ShellDrops.h"

namespace zq {

inline constexpr std::uint32_t kDropFilesMessage = 0x0233;  // WM_DROPFILES
inline constexpr std::uint32_t kCopyDataMessage = 0x004A;   // WM_COPYDATA
inline constexpr std::uint32_t kCopyGlobalMessage =
    0x0049;  // has no name in the headers; brings the list's memory

// Opens this one window to the shell's drops, and to nothing else. False where Windows refuses a part of it:
// the window then accepts nothing, since half of it would show a drop as possible that never arrives.
bool AdmitDrops(ShellDrops& drops, WindowHandle window);

}  // namespace zq
