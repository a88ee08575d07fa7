#include "core/main/StartUp.h"

#include "core/state/DataFolder.h"
#include "platform/Text.h"

namespace zq {

std::string AppFolderFrom(const std::string& applicationPath) {
  std::string folder = TrimBlanks(applicationPath);
  if (folder.empty() || folder.back() != '\\') folder += '\\';
  return folder;
}

void EnsureDataFolders(const DataFolder& folder) {
  for (const char* name : {kJobsFolder, kReportFolder}) {
    if (!folder.HasFolder(name)) folder.MakeFolder(name);
  }
}

}  // namespace zq
