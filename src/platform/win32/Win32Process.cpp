#include "platform/win32/Win32Process.h"

#include <string_view>

#include "platform/win32/Wide.h"

namespace zq {

// The mutex lives as long as the process; whoever finds it made already isn't the first. It belongs to
// the user's session: two users at one machine have an instance each.
Win32Process::Win32Process(void (*pump)(), const wchar_t* instanceName)
    : pump_(pump), instanceMutex_(::CreateMutexW(nullptr, FALSE, instanceName)) {
  const DWORD error = ::GetLastError();
  // Denied: it was made by an instance that runs with more rights.
  earlierInstance_ = error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED;
}

std::string Win32Process::ApplicationPath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      break;
    }
    path.resize(path.size() * 2);
  }
  const std::size_t slash = path.rfind(L'\\');
  // A program in a drive's root keeps the root's backslash.
  return FromWide(path.substr(0, slash == 2 ? 3 : slash));
}

std::string Win32Process::CommandLine() {
  std::wstring_view text = ::GetCommandLineW();
  // The program's own name: quoted, or up to the first blank.
  std::size_t end = text.starts_with(L'"') ? text.find(L'"', 1) : text.find_first_of(L" \t");
  if (end == std::wstring_view::npos) return {};
  text.remove_prefix(text.starts_with(L'"') ? end + 1 : end);
  const std::size_t first = text.find_first_not_of(L" \t");
  if (first == std::wstring_view::npos) return {};
  return FromWide(text.substr(first, text.find_last_not_of(L" \t") - first + 1));
}

// Windows takes a program that hasn't looked for five seconds for a dead one. What other threads send is
// answered meanwhile; what is in the queue, such as keys and clicks, waits for the next pump.
void Win32Process::LookAtMessages() {
  constexpr ULONGLONG kMilliseconds = 250;
  const ULONGLONG now = ::GetTickCount64();
  if (lastLook_ != 0 && now - lastLook_ < kMilliseconds) return;
  lastLook_ = now;
  MSG message{};
  ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

// The path goes beside the command line: a folder's name with blanks in it names no other program. In its own
// folder, so that it keeps no other one from being removed.
bool Win32Process::StartProgram(const std::string& path) {
  const std::wstring program = ToWide(path);
  std::wstring commandLine = L'"' + program + L'"';
  const std::wstring folder = program.substr(0, program.rfind(L'\\') + 1);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION started{};
  if (!::CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        folder.empty() ? nullptr : folder.c_str(), &startup, &started))
    return false;
  const UniqueKernelHandle process(started.hProcess);
  const UniqueKernelHandle thread(started.hThread);
  return true;
}

void Win32Process::End() {
  ::ExitProcess(0);
}

}  // namespace zq
