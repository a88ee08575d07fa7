// Adding files: the three doors to the job list (Add Files, a drop, the command line) as logic.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/FixedPoint.h"

namespace zq {

struct AppState;
class FileIcons;
class Files;
class JobList;
class Regional;

inline constexpr int kPathIsFile = 1;
inline constexpr int kPathIsFolder = 2;

// 2 for a path whose attributes have the directory bit, else 1: also for one that doesn't exist.
int PathKind(Files& files, const std::string& path);

// Splits a path at its last backslash. `folder` keeps the backslash. A path without one gives "" and
// leaves `folder` as it was. Each blank at either end of the path cuts a character off `folder`'s end;
// more such blanks than it has characters raise InvalidProcedureCall.
std::string SplitFileName(const std::string& path, std::string& folder);

// The words of a command line. A quoted word runs to its closing quote, and the character behind that
// is skipped unseen; any other runs to the next blank, so that two blanks in a row give an empty word.
// A quote that isn't closed raises InvalidProcedureCall.
std::vector<std::string> SplitCommandLine(const std::string& commandLine);

// The Add Folder dialog as the adding code uses it. It makes the folder's row itself.
class FolderDialog {
 public:
  virtual ~FolderDialog() = default;
  virtual void ShowFor(const std::string& path) = 0;  // selects `path` unless it is "", shows modally
};

class AddFiles {
 public:
  // `folderDialog` may be null: folders are then passed over.
  AddFiles(AppState& state, JobList& jobList, Files& files, FileIcons& icons, Regional& regional,
           FolderDialog* folderDialog)
      : state_(state),
        jobList_(jobList),
        files_(files),
        icons_(icons),
        regional_(regional),
        folderDialog_(folderDialog) {}

  // The folder in which the Add Files dialog starts: the remembered one, or the current directory when
  // that is blank.
  std::string InitialFolder() const;

  // What the Add Files dialog gave: one full path, or a folder and names with nulls between them. An
  // empty text means that it was cancelled.
  void AddDialogResult(const std::string& fileName);

  // The paths of a drop, in the shell's order.
  void AddDropped(const std::vector<std::string>& paths);

  // The words of the command line.
  void AddCommandLineItems(const std::string& commandLine);

 private:
  void AddPath(const std::string& path);
  void AddFileUnlessListed(const std::string& path, FixedPoint size, const std::string& iconKeySource);
  void CloseAdding(std::size_t countBefore);

  AppState& state_;
  JobList& jobList_;
  Files& files_;
  FileIcons& icons_;
  Regional& regional_;
  FolderDialog* folderDialog_;
  std::string splitFolder_;  // of the latest path that was split
};

}  // namespace zq
