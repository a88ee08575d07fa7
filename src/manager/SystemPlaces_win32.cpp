#include "manager/SystemPlaces_win32.h"

#include <windows.h>
#include <shlobj.h>

#include "manager/KnownFolder_win32.h"
#include "platform/win32/LongPath.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// Opened for nothing but its name, and no link is passed over: it leads where it leads.
std::string RealPath(const std::string& path) {
  const UniqueFile opened(::CreateFileW(SystemPath(path).c_str(), 0,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!opened) return {};
  std::wstring name(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = ::GetFinalPathNameByHandleW(opened.Get(), name.data(),
                                                     static_cast<DWORD>(name.size()), VOLUME_NAME_DOS);
    if (length == 0) return {};
    if (length < name.size()) {
      name.resize(length);
      return FromWide(name);
    }
    name.resize(length + 1U);
  }
}

}  // namespace

SystemPlaces PlacesOfThisMachine(const std::string& programFolder) {
  SystemPlaces places;
  places.real = &RealPath;
  // Compared with real paths, so they are such themselves where they can be.
  const auto real = [](const std::string& path) {
    std::string result = path.empty() ? path : RealPath(path);
    return result.empty() ? path : result;
  };
  places.windows = real(KnownFolder(FOLDERID_Windows));
  places.program = real(programFolder);
  for (const KNOWNFOLDERID& id :
       {FOLDERID_ProgramFiles, FOLDERID_ProgramFilesX86, FOLDERID_ProgramData, FOLDERID_UserProfiles,
        FOLDERID_Profile, FOLDERID_Public, FOLDERID_RoamingAppData, FOLDERID_LocalAppData}) {
    const std::string folder = real(KnownFolder(id));
    if (!folder.empty()) places.folders.push_back(folder);
  }
  return places;
}

}  // namespace zq
