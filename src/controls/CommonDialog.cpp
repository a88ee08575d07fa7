#include "controls/CommonDialog.h"

#include <windows.h>
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <string_view>

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
  std::string filter = dialog.filter;
  std::replace(filter.begin(), filter.end(), '|', '\0');
  filter += '\0';  // the list ends with two nulls, the second being the string's own
  std::string buffer(dialog.maxFileSize, '\0');

  OPENFILENAMEA request{};
  request.lStructSize = sizeof request;
  request.hwndOwner = owner;
  request.lpstrFilter = filter.c_str();
  request.lpstrFile = buffer.data();
  request.nMaxFile = static_cast<DWORD>(buffer.size());
  request.lpstrInitialDir = dialog.initialFolder.c_str();
  request.lpstrTitle = dialog.title.c_str();
  request.Flags = dialog.flags;

  const CurrentFolderGuard guard;
  if (!::GetOpenFileNameA(&request)) {
    switch (::CommDlgExtendedError()) {
      case 0:
        return {OpenDialogOutcome::Cancelled, {}};
      case FNERR_BUFFERTOOSMALL:
        return {OpenDialogOutcome::TooManyFiles, {}};
      default:
        return {OpenDialogOutcome::Failed, {}};
    }
  }
  // Two nulls end the names.
  static constexpr char kEnd[2] = {'\0', '\0'};
  buffer.resize(std::min(buffer.find(std::string_view(kEnd, 2)), buffer.size()));
  return {OpenDialogOutcome::Chosen, buffer};
}

}  // namespace zq
