#include "platform/win32/Win32Process.h"

#include <string_view>

namespace zq {

// The mutex lives as long as the process; whoever finds it made already isn't the first. It belongs to
// the user's session: two users at one machine have an instance each.
Win32Process::Win32Process(void (*pump)())
    : pump_(pump), instanceMutex_(::CreateMutexA(nullptr, FALSE, "Local\\Zeroquill.Instance")) {
  const DWORD error = ::GetLastError();
  // Denied: it was made by an instance that runs with more rights.
  earlierInstance_ = error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED;
}

std::string Win32Process::ApplicationPath() {
  std::string path(MAX_PATH, '\0');
  for (;;) {
    const DWORD length = ::GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      break;
    }
    path.resize(path.size() * 2);
  }
  const std::size_t slash = path.rfind('\\');
  // A program in a drive's root keeps the root's backslash.
  return path.substr(0, slash == 2 ? 3 : slash);
}

std::string Win32Process::CommandLine() {
  std::string_view text = ::GetCommandLineA();
  // The program's own name: quoted, or up to the first blank.
  std::size_t end = text.starts_with('"') ? text.find('"', 1) : text.find_first_of(" \t");
  if (end == std::string_view::npos) return {};
  text.remove_prefix(text.starts_with('"') ? end + 1 : end);
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

void Win32Process::End() {
  ::ExitProcess(0);
}

}  // namespace zq
