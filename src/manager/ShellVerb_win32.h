// ShellVerb: "Wipe with Zeroquill" in the menu of files and folders, served by this process.
//
// The shell hands the whole selection to a class of COM as one drop, however many there are: a command line
// would take some hundred names, and the shell hides such verbs for larger selections.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace zq {

// Of the class that takes the drops.
inline constexpr CLSID kWipeVerbClass = {
    0x8f0c6b1e, 0x5d3a, 0x4c47, {0x9b, 0x4e, 0x2a, 0x7d, 0x51, 0xe0, 0xc9, 0xf3}};

class ShellVerb {
 public:
  // Called inside the drop, which the shell waits for: takes the paths and returns.
  using Taken = std::function<void(std::vector<std::string> paths)>;

  ShellVerb() = default;
  ShellVerb(const ShellVerb&) = delete;
  ShellVerb& operator=(const ShellVerb&) = delete;
  ~ShellVerb() { Stop(); }

  // For this user alone, and gone with Stop, or when the user logs off at the latest. What the system refuses
  // is left out: the icon's menu does without the verb. Needs OLE on this thread.
  void Start(const std::string& programPath, Taken taken);
  void Stop();

 private:
  DWORD registered_ = 0;
  bool keysWritten_ = false;
};

}  // namespace zq
