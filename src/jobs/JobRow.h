// JobRow: one row of the job list. The cell texts are the job: a job file and a wipe act on them.
#pragma once

#include <string>

namespace zq {

// Pictures of the row list, counted from 1. Higher ones belong to file types, in order of first use.
inline constexpr int kFolderPicture = 1;
inline constexpr int kPlainFilePicture = 2;

struct JobRow {
  std::string NameAndLocation;  // column 0: the full path
  std::string Size;             // column 1: "N/A" for a folder, a size text for a file
  std::string FolderMask;       // column 2: empty for a file
  std::string SubFolders;       // column 3: "Yes" or "No" for a folder, empty for a file
  int SmallIcon = kPlainFilePicture;
  bool Ghosted = false;  // shown greyed: missing, or wiped

  // Only column 3 tells a folder row, by the exact text.
  bool IsFolderRow() const { return SubFolders == "Yes" || SubFolders == "No"; }

  bool operator==(const JobRow&) const = default;
};

}  // namespace zq
