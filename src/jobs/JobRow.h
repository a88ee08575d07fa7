// JobRow: one row of the job list. The cell texts are the job: a job file and a wipe act on them.
#pragma once

#include <string>

namespace zq {

// Pictures of the row list, counted from 1. Higher ones belong to file types, in order of first use.
inline constexpr int kFolderPicture = 1;
inline constexpr int kPlainFilePicture = 2;

// The texts of column 3 for a folder: with its sub-folders, and without.
inline constexpr const char* kYes = "Yes";
inline constexpr const char* kNo = "No";

struct JobRow {
  std::string NameAndLocation;  // column 0: the full path
  std::string Size;             // column 1: "N/A" for a folder, a size text for a file
  std::string FolderMask;       // column 2: empty for a file
  std::string SubFolders;       // column 3: `kYes` or `kNo` for a folder, empty for a file
  int SmallIcon = kPlainFilePicture;
  bool Ghosted = false;  // shown greyed: missing, or wiped

  // Only column 3 tells a folder row, by the exact text.
  bool IsFolderRow() const { return SubFolders == kYes || SubFolders == kNo; }

  bool operator==(const JobRow&) const = default;
};

}  // namespace zq
