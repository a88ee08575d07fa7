#include "controls/CommonDialog.h"

#include <windows.h>
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "controls/DialogNames.h"
#include "platform/Text.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// The dialog changes the process's current directory to the folder that was looked into, and a process's
// current directory can't be removed: a wipe of that folder would fail. So it is put back.
class CurrentFolderGuard {
 public:
  CurrentFolderGuard() : folder_(::GetCurrentDirectoryW(0, nullptr), L'\0') {
    ::GetCurrentDirectoryW(static_cast<DWORD>(folder_.size()), folder_.data());
  }
  ~CurrentFolderGuard() { ::SetCurrentDirectoryW(folder_.c_str()); }
  CurrentFolderGuard(const CurrentFolderGuard&) = delete;
  CurrentFolderGuard& operator=(const CurrentFolderGuard&) = delete;

 private:
  std::wstring folder_;
};

}  // namespace

OpenDialogResult ShowOpen(HWND owner, const OpenDialog& dialog) {
  std::wstring filter = ToWide(dialog.filter);
  std::replace(filter.begin(), filter.end(), L'|', L'\0');
  filter += L'\0';  // the list ends with two nulls, the second being the string's own
  const std::wstring initialFolder = ToWide(TrimAtNull(dialog.initialFolder));
  const std::wstring title = ToWide(dialog.title);
  std::wstring buffer(dialog.maxFileSize, L'\0');

  OPENFILENAMEW request{};
  request.lStructSize = sizeof request;
  request.hwndOwner = owner;
  request.lpstrFilter = filter.c_str();
  request.lpstrFile = buffer.data();
  request.nMaxFile = static_cast<DWORD>(buffer.size());
  request.lpstrInitialDir = initialFolder.c_str();
  request.lpstrTitle = title.c_str();
  request.Flags = dialog.flags;

  const CurrentFolderGuard guard;
  if (!::GetOpenFileNameW(&request)) {
    switch (::CommDlgExtendedError()) {
      case 0:
        return {OpenDialogOutcome::Cancelled, {}};
      case FNERR_BUFFERTOOSMALL:
        return {OpenDialogOutcome::TooManyFiles, {}};
      default:
        return {OpenDialogOutcome::Failed, {}};
    }
  }
  // Not every system tells that the names were too many: some cut them.
  const std::optional<std::wstring_view> names = NamesInBuffer(buffer);
  if (!names) return {OpenDialogOutcome::TooManyFiles, {}};
  return {OpenDialogOutcome::Chosen, FromWide(*names)};
}

}  // namespace zq
