// ShellVerb: the class of COM that takes what the user has chosen in the shell, served by this process.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace zq {

// Of the class, as ShellEntries writes it down.
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

  // Until Stop. False if the system refuses. Needs OLE on this thread.
  bool Serve(Taken taken);
  void Stop();

 private:
  DWORD registered_ = 0;
};

}  // namespace zq
