#include "help/ToLongPath.h"

#include <optional>
#include <string_view>

#include "help/HelpMachine.h"

namespace zq {
namespace {

constexpr std::int32_t kKnowsLongPathNames = 4;
constexpr std::size_t kDriveLength = 2;

int LookUpFolders(HelpFileSearch& files, std::string path, std::string& result) {
  if (path.starts_with('"')) path.erase(0, 1);
  if (path.ends_with('"')) path.pop_back();

  result = path.substr(0, kDriveLength);
  std::string_view rest = std::string_view(path).substr(result.size());
  for (;;) {
    // The next folder, with or without a backslash before it, ends at the backslash behind it.
    const std::size_t start = rest.starts_with('\\') ? 1 : 0;
    const std::size_t end = rest.find('\\', start);
    if (end == std::string_view::npos) break;
    const FileSearchResult found =
        files.FindFirst(result + "\\" + std::string(rest.substr(start, end - start)));
    if (found.end == FileSearchResult::End::BadName) result.clear();
    if (found.end != FileSearchResult::End::Found) return 0;
    files.Close(found.handle);
    result += "\\" + found.name;
    rest.remove_prefix(end);
  }
  result += rest;
  return static_cast<int>(result.size());
}

}  // namespace

int ToLongPath(HelpFileSearch& files, std::int32_t windowsVersion, const std::string& path,
               std::string& buffer, int size) {
  if (windowsVersion < kKnowsLongPathNames) return LookUpFolders(files, path, buffer);
  const std::optional<std::string> longPath = files.LongPathName(path, size);
  if (!longPath) return 0;
  buffer = *longPath;
  return static_cast<int>(buffer.size());
}

}  // namespace zq
