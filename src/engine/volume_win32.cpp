#include "engine/volume_win32.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <utility>

namespace zq::engine::win32 {
namespace {

// Wine takes unbuffered and write-through transfers into the cache of the system beneath it, from which only
// the flush of that very file gets them to the device.
bool RunsInWine() {
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  return ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

// The name by which the volume at `root`, a drive or a folder that it is mounted in, is opened itself.
std::wstring DeviceAt(const std::wstring& root) {
  constexpr DWORD kLongestName = 50;  // "\\\\?\\Volume{GUID}\\"
  wchar_t name[kLongestName] = L"";
  std::wstring device;
  if (::GetVolumeNameForVolumeMountPointW(root.c_str(), name, kLongestName) != 0) {
    device = name;
  } else {
    const std::wstring_view plain =
        std::wstring_view(root).starts_with(L"\\\\?\\") ? std::wstring_view(root).substr(4) : root;
    if (plain.size() == 3 && plain[1] == L':') device = L"\\\\.\\" + std::wstring(plain);
  }
  // With a backslash at its end it would be the root folder.
  while (!device.empty() && device.back() == L'\\') device.pop_back();
  return device;
}

}  // namespace

Status LookAtVolume(const std::wstring& path, Volume& volume) {
  std::wstring root(path.size() + MAX_PATH, L'\0');
  if (::GetVolumePathNameW(path.c_str(), root.data(), static_cast<DWORD>(root.size())) == 0)
    return LastError();
  root.resize(std::wcslen(root.c_str()));
  DWORD sectorsPerCluster = 0;
  DWORD sectorBytes = 0;
  DWORD freeClusters = 0;
  DWORD clusters = 0;
  if (::GetDiskFreeSpaceW(root.c_str(), &sectorsPerCluster, &sectorBytes, &freeClusters, &clusters) == 0) {
    return LastError();
  }
  volume.sectorBytes = std::max<DWORD>(sectorBytes, 1);
  volume.clusterBytes = std::max<DWORD>(sectorsPerCluster, 1) * volume.sectorBytes;
  wchar_t fileSystem[MAX_PATH + 1] = L"";
  DWORD flags = 0;
  // Without an answer the file system is unknown, which is told as such.
  if (::GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, &flags, fileSystem,
                              static_cast<DWORD>(std::size(fileSystem))) != 0) {
    volume.fileSystem = Narrow(fileSystem, std::wcslen(fileSystem));
    volume.flags = flags;
  }
  const UINT kind = ::GetDriveTypeW(root.c_str());
  volume.isRemote = kind == DRIVE_REMOTE;
  volume.flushesAtOnce = (kind == DRIVE_FIXED || kind == DRIVE_REMOVABLE) && !RunsInWine();
  volume.mayBackExternally = MayBackExternally(volume);
  volume.device = DeviceAt(root);
  volume.root = std::move(root);
  return {};
}

}  // namespace zq::engine::win32
