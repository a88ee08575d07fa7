// CommonDialog: the system's dialog that asks for files to open.
#pragma once

#include <windows.h>

#include <string>

namespace zq {

struct OpenDialog {
  std::string title;
  std::string filter;          // "text|pattern", pairs separated by "|"
  std::string initialFolder;   // "" leaves the choice to the system
  unsigned flags = 0;          // OFN_*
  unsigned maxFileSize = 260;  // UTF-16 units of the buffer for the names
};

enum class OpenDialogOutcome { Chosen, Cancelled, TooManyFiles, Failed };

struct OpenDialogResult {
  OpenDialogOutcome outcome = OpenDialogOutcome::Cancelled;
  // One full path; or, of several files, the folder and the names with a null between each.
  std::string fileName;
};

OpenDialogResult ShowOpen(HWND owner, const OpenDialog& dialog);

}  // namespace zq
