// Keys that are held down.
#pragma once

#include <windows.h>

namespace zq {

// Whether the message is a repeat of a key that was down before: the user has pressed it for something else,
// which another window may have been in front for.
inline bool IsRepeatOfAHeldKey(const MSG& message) {
  constexpr LPARAM kWasDown = LPARAM{1} << 30;
  return (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) &&
         (message.lParam & kWasDown) != 0;
}

}  // namespace zq
