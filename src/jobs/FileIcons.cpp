#include "jobs/FileIcons.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

#include "jobs/JobRow.h"
#include "platform/Regional.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr int kBuiltInPictures = 2;      // folder and plain file, which belong to no type
constexpr int kExtensionCharacters = 4;  // the dot and three more

// Where the last four characters of `text` begin, or nothing if it has fewer. Counted in characters:
// four bytes from the end could be the middle of one.
std::optional<std::size_t> StartOfExtension(std::string_view text) {
  const std::string_view more = WithoutLastCharacters(text, kExtensionCharacters - 1);
  if (more.empty()) return std::nullopt;
  return WithoutLastCharacters(more, 1).size();
}

std::string LastFour(std::string_view text) {
  return std::string(text.substr(StartOfExtension(text).value_or(0)));
}

}  // namespace

int FileIcons::Count() const {
  return kBuiltInPictures + static_cast<int>(types_.size());
}

int FileIcons::IconForExtension(std::string& key, const std::string& path) {
  std::string windowsFolder = painter_.WindowsFolder();
  if (!windowsFolder.ends_with('\\')) windowsFolder += '\\';
  if (key.ends_with('\\')) key = windowsFolder;

  const auto known = std::find(types_.begin(), types_.end(), key);
  if (known != types_.end()) {
    return kBuiltInPictures + 1 + static_cast<int>(std::distance(types_.begin(), known));
  }

  painter_.MeasureSmallIcon(key, kSmallIcon);
  painter_.DrawFileIcon(key, key.ends_with('\\') ? kSmallIcon : kSmallIconByAttributes);
  painter_.AddDrawnPicture();
  // The type comes from the path and not from `key`: a folder's key, for one, is never met again.
  types_.push_back(LastFour(regional_.UpperCase(path)));
  return Count();
}

int FileIcons::IconForFileRow(const std::string& path, const std::string& keySource) {
  const std::optional<std::size_t> fourthFromEnd = StartOfExtension(path);
  if (!fourthFromEnd) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  if (path[*fourthFromEnd] != '.') return kPlainFilePicture;
  std::string key = LastFour(regional_.UpperCase(TrimBlanks(keySource)));
  return IconForExtension(key, path);
}

}  // namespace zq
