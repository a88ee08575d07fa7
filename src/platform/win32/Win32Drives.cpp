#include "platform/win32/Win32Drives.h"

#include <windows.h>

#include "platform/win32/Wide.h"

namespace zq {

std::string Win32Drives::LogicalDriveStrings() {
  DWORD needed = ::GetLogicalDriveStringsW(0, nullptr);
  while (needed != 0) {
    std::wstring names(needed, L'\0');
    const DWORD length = ::GetLogicalDriveStringsW(needed, names.data());
    // The length is told without the null that ends the names; with it, if a drive has come meanwhile and
    // they don't fit any more.
    if (length < needed) return length == 0 ? std::string() : FromWide({names.data(), length + 1U});
    needed = length;
  }
  return {};
}

std::uint32_t Win32Drives::DriveType(const std::string& root) {
  return ::GetDriveTypeW(ToWide(root).c_str());
}

}  // namespace zq
