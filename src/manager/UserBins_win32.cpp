#include "manager/UserBins_win32.h"

#include <windows.h>
#include <sddl.h>
#include <shlobj.h>

#include <cstddef>
#include <memory>

#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

// Documented, but not in every compiler's headers.
extern "C" __declspec(dllimport) void WINAPI SHUpdateRecycleBinIcon(void);

namespace zq {
namespace {

struct LocalFreeing {
  void operator()(wchar_t* memory) const { ::LocalFree(memory); }
};

}  // namespace

std::string UserBins::UserId() {
  HANDLE opened = nullptr;
  if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &opened)) return {};
  const UniqueKernelHandle token(opened);
  alignas(TOKEN_USER) std::byte buffer[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
  DWORD size = 0;
  if (!::GetTokenInformation(token.Get(), TokenUser, buffer, sizeof buffer, &size)) return {};
  wchar_t* text = nullptr;
  if (!::ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(buffer)->User.Sid, &text)) return {};
  const std::unique_ptr<wchar_t, LocalFreeing> owned(text);
  return FromWide(text);
}

bool UserBins::KeepsOwners(const std::string& root) {
  DWORD flags = 0;
  if (!::GetVolumeInformationW(ToWide(root).c_str(), nullptr, 0, nullptr, nullptr, &flags, nullptr, 0))
    return true;
  return (flags & FILE_PERSISTENT_ACLS) != 0;
}

void Win32ShellNotices::FolderChanged(const std::string& folder) {
  ::SHChangeNotify(SHCNE_UPDATEDIR, SHCNF_PATHW, ToWide(folder).c_str(), nullptr);
}

void Win32ShellNotices::BinsChanged() {
  ::SHUpdateRecycleBinIcon();
}

}  // namespace zq
