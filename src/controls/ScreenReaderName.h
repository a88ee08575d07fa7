// What a screen reader calls a control that has neither a caption nor a label in front of it.
#pragma once

#include <windows.h>

#include <string>

namespace zq {

// Windows tells whoever asks for the window's name this one, until the window is destroyed. Without it the
// control works all the same, so that nothing is reported where the system can't.
void NameForScreenReaders(HWND window, const std::string& name);

}  // namespace zq
