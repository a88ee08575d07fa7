#include "core/StartUp.h"

#include <string_view>

#include "platform/Files.h"
#include "platform/Regional.h"
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

bool ItemExists(Files& files, int kind, const std::string& path) {
  if (path.empty()) return false;
  const std::string pattern = path.back() == '\\' ? path + "*" : path;
  if (kind != kItemIsFile) return files.FindEntry(pattern).has_value();

  bool found = false;
  files.List(pattern,
             [&](const FileEntry& entry) { found = found || (entry.attributes & kAttributeDirectory) == 0; });
  return found;
}

std::optional<std::string> JobNameFromCommandLine(const std::string& commandLine,
                                                  const std::string& appFolder, Regional& regional) {
  std::string_view text = commandLine;
  if (text.starts_with('"')) {
    text.remove_prefix(1);
    if (text.ends_with('"')) text.remove_suffix(1);
  }

  const std::string upper = regional.UpperCase(text);
  if (upper.find(regional.UpperCase(appFolder)) == std::string::npos) return std::nullopt;
  if (upper.find(".ZQJ") == std::string::npos) return std::nullopt;
  return std::string(WithoutLastCharacters(text.substr(text.rfind('\\') + 1), 4));
}

}  // namespace zq
