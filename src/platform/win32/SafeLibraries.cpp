#include "platform/win32/SafeLibraries.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace zq {

void LookForLibrariesInWindowsAlone() {
  // Folders that a library adds for its own ones (AddDllDirectory) are its own affair.
  if (::SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_USER_DIRS)) return;
  const DWORD error = ::GetLastError();
  throw std::runtime_error("Windows doesn't limit the search for libraries to its own folder: error " +
                           std::to_string(error));
}

}  // namespace zq
