// Rows of the job list as the program makes them, for tests.
#pragma once

#include <string>
#include <utility>

#include "jobs/JobRow.h"

namespace zq::test {

inline JobRow FileRow(std::string path, std::string size = "0 Bytes", int smallIcon = kPlainFilePicture) {
  JobRow row;
  row.NameAndLocation = std::move(path);
  row.Size = std::move(size);
  row.SmallIcon = smallIcon;
  return row;
}

inline JobRow FolderRow(std::string path, std::string mask = "*.*", std::string subFolders = "Yes") {
  JobRow row;
  row.NameAndLocation = std::move(path);
  row.Size = "N/A";
  row.FolderMask = std::move(mask);
  row.SubFolders = std::move(subFolders);
  row.SmallIcon = kFolderPicture;
  return row;
}

}  // namespace zq::test
