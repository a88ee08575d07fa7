// What ties this program to its companion, the Explorer Manager: the names by which the two know each other.
#pragma once

namespace zq {

// In the program's own folder.
inline constexpr const char* kManagerProgram = "ZQExMan.exe";

// Of a window that the companion owns while it runs; it need not be visible.
inline constexpr const char* kManagerTitle = "ZQ Explorer Manager";

// The value by which it starts with the system, in the registry of the machine.
inline constexpr const char* kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr const char* kManagerRunValue = "Zeroquill Explorer Manager";

}  // namespace zq
