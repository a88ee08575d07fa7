#include "jobs/AddFiles.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "core/state/AppState.h"
#include "jobs/FileIcons.h"
#include "jobs/JobList.h"
#include "jobs/JobRow.h"
#include "jobs/mdlSize.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

// `text` without its last `count` characters. Raises InvalidProcedureCall if it has fewer.
std::string_view WithoutLast(std::string_view text, std::size_t count) {
  for (; count > 0; --count) {
    if (text.empty()) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
    text = CutAtCharacter(text, text.size() - 1);
  }
  return text;
}

}  // namespace

int PathKind(Files& files, const std::string& path) {
  const std::optional<std::uint32_t> attributes = files.Attributes(path);
  return attributes && (*attributes & kAttributeDirectory) ? kPathIsFolder : kPathIsFile;
}

std::string SplitFileName(const std::string& path, std::string& folder) {
  const std::size_t slash = path.rfind('\\');
  if (slash == std::string::npos) return {};
  // The folder's length is reckoned from the path without its surrounding blanks, the folder itself is
  // cut from the path with them: each such blank costs the folder a character at its end.
  const std::size_t blanks = path.size() - TrimBlanks(path).size();
  folder = WithoutLast(std::string_view(path).substr(0, slash + 1), blanks);
  return path.substr(slash + 1);
}

std::vector<std::string> SplitCommandLine(const std::string& commandLine) {
  const std::string text = commandLine + ' ';
  std::string_view rest = text;
  const auto dropFront = [&](std::size_t bytes) { rest.remove_prefix(std::min(bytes, rest.size())); };
  std::vector<std::string> words;
  while (!rest.empty()) {
    if (rest.front() == '"') {
      dropFront(1);
      const std::size_t quote = rest.find('"');
      if (quote == std::string_view::npos) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
      words.emplace_back(rest.substr(0, quote));
      dropFront(quote + 2);
    } else {
      const std::size_t blank = rest.find(' ');
      words.emplace_back(rest.substr(0, blank));
      dropFront(blank + 1);
    }
  }
  return words;
}

std::string AddFiles::InitialFolder() const {
  // A field that was never set holds nulls, which aren't blanks: it goes to the dialog as it is, and the
  // dialog takes it for no folder.
  std::string folder = state_.Settings.LastFilesFolder.Trimmed();
  return folder.empty() ? files_.CurrentFolder() : folder;
}

void AddFiles::AddDialogResult(const std::string& fileName) {
  if (fileName.empty()) return;

  const std::size_t countBefore = jobList_.Count();
  if (fileName.find('\0') == std::string::npos) {
    const FixedPoint size = GetFileSize64(files_, fileName);
    const std::string name = SplitFileName(fileName, splitFolder_);
    state_.Settings.LastFilesFolder = splitFolder_;  // a file that is listed already moves it, too
    AddFileUnlessListed(fileName, size, name);
  } else {
    std::string folder = TrimAtNull(fileName);
    if (!folder.ends_with('\\')) folder += '\\';
    // Each name begins behind a null. The last has none at its end, and a null at the very end begins no
    // name.
    std::string_view rest = fileName;
    std::size_t null = rest.find('\0');
    while (null + 1 < rest.size()) {
      rest.remove_prefix(null + 1);
      null = std::min(rest.find('\0'), rest.size());
      const std::string name(rest.substr(0, null));
      const std::string path = folder + name;
      AddFileUnlessListed(path, GetFileSize64(files_, path), name);
    }
    state_.Settings.LastFilesFolder = folder;
  }
  CloseAdding(countBefore);
}

void AddFiles::AddDropped(const std::vector<std::string>& paths) {
  const std::size_t countBefore = jobList_.Count();
  for (const std::string& path : paths) AddPath(path);
  CloseAdding(countBefore);
}

void AddFiles::AddCommandLineItems(const std::string& commandLine) {
  const std::size_t countBefore = jobList_.Count();
  for (const std::string& word : SplitCommandLine(commandLine)) AddPath(word);
  CloseAdding(countBefore);
}

void AddFiles::AddPath(const std::string& path) {
  if (PathKind(files_, path) == kPathIsFolder) {
    if (!jobList_.IsInJobList(path) && folderDialog_) folderDialog_->ShowFor(path);
  } else {
    AddFileUnlessListed(path, GetFileSize64(files_, path), path);
  }
}

void AddFiles::AddFileUnlessListed(const std::string& path, FixedPoint size,
                                   const std::string& iconKeySource) {
  if (jobList_.IsInJobList(path)) return;
  JobRow row;
  row.NameAndLocation = path;
  row.Size = FormatFileSize(size.ToDouble(), regional_);
  jobList_.Add(std::move(row));
  // The row stands before its icon is looked for, and stays if that fails on a path too short for one.
  const int smallIcon = icons_.IconForFileRow(path, iconKeySource);
  jobList_.SetSmallIcon(static_cast<int>(jobList_.Count()), smallIcon);
}

void AddFiles::CloseAdding(std::size_t countBefore) {
  // A job counts as changed even if every path offered was listed already.
  if (jobList_.Count() == 0) return;
  jobList_.Select(1);
  state_.JobSaved = false;
  // The first row is selected wherever the list stands, but what has come is what the user wants to see.
  if (jobList_.Count() > countBefore) jobList_.Reveal(static_cast<int>(countBefore) + 1);
}

}  // namespace zq
