// What a program has at a moment, told from outside its process: by the system, and by the program itself
// where it counts (ZQ_COUNTERS).
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "support/driver/Window.h"

namespace zq::test {

// By the name of what is counted.
using Readings = std::map<std::string, long long>;

inline constexpr char kSystemHandles[] = "system: handles";
inline constexpr char kSystemThreads[] = "system: threads";
inline constexpr char kSystemGdi[] = "system: GDI objects";
inline constexpr char kSystemWindows[] = "system: windows";
inline constexpr char kCommittedKb[] = "system: committed KB";
inline constexpr char kWorkingSetKb[] = "system: working set KB";

// The process must be open for queries and for reading its memory. Throws a DriverError where the system
// doesn't answer.
Readings ReadSystem(HANDLE process);

// The window by which the program tells its own counters; an empty one where it has none.
Window FindCounters(DWORD processId);
// Its counters, each under "own: " and its name; none where it has none.
Readings ReadCounters(DWORD processId);

// As many lines as there are readings that differ, "name: before -> now".
std::string Differences(const Readings& before, const Readings& now);

}  // namespace zq::test
