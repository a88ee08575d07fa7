// Report data: the record of the last job wipe, `Report\Report.dat`.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq {

struct AppState;

struct ReportData {
  std::string jobName;
  std::string stamp;  // date and time of the run
  std::vector<std::string> folders;
  std::vector<std::string> files;
  std::vector<std::string> errors;

  bool operator==(const ReportData&) const = default;
};

// The file's bytes: one quoted field to a line, in a fixed order, nothing escaped, line ends CR LF.
std::string EncodeReport(const ReportData& report);

// Reads such bytes. Raises InputPastEndOfFile for fewer than three fields, and Overflow for more
// than 32767 entries in one section.
ReportData DecodeReport(std::string_view bytes);

}  // namespace zq
