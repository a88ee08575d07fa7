#include "core/main/StartUp.h"

#include "core/state/ItemExists.h"
#include "platform/Files.h"
#include "platform/Text.h"

namespace zq {

std::string AppFolderFrom(const std::string& applicationPath) {
  std::string folder = TrimBlanks(applicationPath);
  if (folder.empty() || folder.back() != '\\') folder += '\\';
  return folder;
}

void EnsureDataFolders(Files& files, const std::string& appFolder) {
  for (const char* name : {"Jobs\\", "Report\\"}) {
    const std::string folder = appFolder + name;
    if (!ItemExists(files, kItemIsFolder, folder)) files.MakeFolder(folder);
  }
}

}  // namespace zq
