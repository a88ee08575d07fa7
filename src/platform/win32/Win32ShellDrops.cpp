#include "platform/win32/Win32ShellDrops.h"

#include <windows.h>
#include <shellapi.h>

#include <cstddef>
#include <vector>

#include "platform/win32/UniqueHandle.h"

namespace zq {
namespace {

HWND WindowOf(WindowHandle window) {
  return reinterpret_cast<HWND>(window);
}

// The last part of the label's SID is the level.
std::optional<std::uint32_t> IntegrityOf(HANDLE process) {
  HANDLE opened = nullptr;
  if (!::OpenProcessToken(process, TOKEN_QUERY, &opened)) return std::nullopt;
  const UniqueKernelHandle token(opened);
  DWORD bytes = 0;
  ::GetTokenInformation(token.Get(), TokenIntegrityLevel, nullptr, 0, &bytes);
  if (bytes < sizeof(TOKEN_MANDATORY_LABEL)) return std::nullopt;
  // Aligned as what new gives is.
  std::vector<std::byte> room(bytes);
  if (!::GetTokenInformation(token.Get(), TokenIntegrityLevel, room.data(), bytes, &bytes))
    return std::nullopt;
  const PSID sid = reinterpret_cast<const TOKEN_MANDATORY_LABEL*>(room.data())->Label.Sid;
  if (!::IsValidSid(sid)) return std::nullopt;
  const int parts = *::GetSidSubAuthorityCount(sid);
  if (parts == 0) return std::nullopt;
  return *::GetSidSubAuthority(sid, static_cast<DWORD>(parts - 1));
}

std::optional<std::uint32_t> IntegrityOfTheShell() {
  const HWND desktop = ::GetShellWindow();
  DWORD id = 0;
  if (!desktop || !::GetWindowThreadProcessId(desktop, &id)) return std::nullopt;
  const UniqueKernelHandle shell(::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
  if (!shell) return std::nullopt;
  return IntegrityOf(shell.Get());
}

}  // namespace

// Not by whether the token is elevated: where the shell is too, as without user account control, all reaches
// us.
bool Win32ShellDrops::HeldBack() {
  return HoldsBack(IntegrityOf(::GetCurrentProcess()), IntegrityOfTheShell());
}

bool Win32ShellDrops::AllowMessage(WindowHandle window, std::uint32_t message) {
  return ::ChangeWindowMessageFilterEx(WindowOf(window), message, MSGFLT_ALLOW, nullptr) != FALSE;
}

void Win32ShellDrops::AcceptFiles(WindowHandle window, bool accept) {
  ::DragAcceptFiles(WindowOf(window), accept);
}

}  // namespace zq
