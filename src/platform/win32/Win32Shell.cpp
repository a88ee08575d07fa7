#include "platform/win32/Win32Shell.h"

#include "platform/win32/Wide.h"

namespace zq {

void Win32Shell::Execute(const ShellRequest& request) {
  call_(::GetDesktopWindow(), ToWide(request.verb).c_str(), ToWide(request.file).c_str(),
        ToWide(request.parameters).c_str(), ToWide(request.directory).c_str(), SW_SHOWNORMAL);
}

}  // namespace zq
