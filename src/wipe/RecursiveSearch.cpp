#include "wipe/RecursiveSearch.h"

#include <cstddef>

#include "platform/Files.h"
#include "platform/Like.h"
#include "platform/Process.h"
#include "platform/Text.h"

namespace zq {
namespace {

// In UTF-16 units, as the narrow calls count. The walk goes no deeper than these: among other things it is
// what ends a loop of links.
constexpr std::size_t kLongestWalkedPath = 259;

}  // namespace

void SearchFolder(Files& files, Process& process, std::string& path, const std::string& pathPattern,
                  const std::string& mask, bool includeSubFolders, FixedPoint& totalWipeItems) {
  if (!path.ends_with('\\')) path += '\\';
  const std::string pattern = path + "*";
  if (Utf16Length(pattern) > kLongestWalkedPath) return;
  files.List(pattern, [&](const FileEntry& entry) {
    process.LookAtMessages();
    const std::string name = TrimAtNull(entry.name);
    if (!(entry.attributes & kAttributeDirectory)) {
      if (Like(path, pathPattern) && Like(name, mask)) {
        ClearAttributes(files, path + name);
        ++totalWipeItems;
      }
    } else if (name != "." && name != ".." && includeSubFolders) {
      // With this mask the wipe removes the folders too. A folder is cleared when one inside it is met, so
      // that one without any keeps its attributes unless it is itself inside another.
      if (mask == kEveryFileMask) {
        ClearAttributes(files, path);
        ClearAttributes(files, path + name);
      }
      // Links to folders are followed as well.
      std::string subFolder = path + name;
      SearchFolder(files, process, subFolder, pathPattern, mask, includeSubFolders, totalWipeItems);
    }
  });
}

void ClearAttributes(Files& files, const std::string& path) {
  files.SetAttributes(path, kAttributeNormal);
}

}  // namespace zq
