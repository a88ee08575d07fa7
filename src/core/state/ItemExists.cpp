#include "core/state/ItemExists.h"

#include "platform/Files.h"

namespace zq {

bool ItemExists(Files& files, int kind, const std::string& path) {
  if (path.empty()) return false;
  const std::string pattern = path.back() == '\\' ? path + "*" : path;
  if (kind != kItemIsFile) return files.FindEntry(pattern).has_value();

  bool found = false;
  files.List(pattern,
             [&](const FileEntry& entry) { found = found || (entry.attributes & kAttributeDirectory) == 0; });
  return found;
}

}  // namespace zq
