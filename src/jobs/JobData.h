// JobData: what a job's file holds, and its bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq {

struct JobFolder {
  std::string path;
  std::string mask;
  std::string subFolders;  // as it stands in the file, "Yes", "No" or anything else

  bool operator==(const JobFolder&) const = default;
};

struct JobData {
  std::string lastWiping;
  std::vector<JobFolder> folders;
  std::vector<std::string> files;

  bool operator==(const JobData&) const = default;
};

// The file's bytes: the stamp, the folders' mark, three lines for each folder, the files' mark, a line for
// each file. Nothing is escaped: a field with a double quote in it doesn't read back whole.
std::string EncodeJob(const JobData& job);

// Reads such bytes. Raises InputPastEndOfFile for fewer than two fields and for a folder that isn't complete.
JobData DecodeJob(std::string_view bytes);

// The stamp alone, the first field; the rest isn't looked at. Raises InputPastEndOfFile for no bytes.
std::string DecodeJobStamp(std::string_view bytes);

}  // namespace zq
