// WinMain of the companion.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <exception>

#include "manager/Companion_win32.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/SafeLibraries.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  try {
    zq::LookForLibrariesInWindowsAlone();
  } catch (...) {
    zq::ReportAndEnd(std::current_exception());
  }
  // A drive without a medium is a failure to be told by us, not a box of the system's.
  ::SetErrorMode(::GetErrorMode() | SEM_FAILCRITICALERRORS);
  // The window classes that dialog templates name must exist before the first dialog.
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
  ::InitCommonControlsEx(&classes);
  // The ghost that Windows draws of a window that doesn't answer invites to end the program, and that would
  // be in the middle of a file.
  ::DisableProcessWindowsGhosting();
  try {
    if (FAILED(::OleInitialize(nullptr))) return 1;
    static zq::Companion companion;
    return companion.Run();
  } catch (...) {
    zq::ReportAndEnd(std::current_exception());
  }
}
