#include "reports/ReportData.h"

#include <utility>

#include "platform/FieldReader.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr const char* kFoldersMark = "[FOLDERS]";
constexpr const char* kFilesMark = "[FILES]";
constexpr const char* kErrorsMark = "[ERRORS]";

void AppendSection(std::string& bytes, const char* mark, const std::vector<std::string>& entries) {
  bytes += QuotedLine(mark);
  for (const std::string& entry : entries) bytes += QuotedLine(entry);
}

}  // namespace

std::string EncodeReport(const ReportData& report) {
  std::string bytes = QuotedLine(report.jobName) + QuotedLine(report.stamp);
  AppendSection(bytes, kFoldersMark, report.folders);
  AppendSection(bytes, kFilesMark, report.files);
  AppendSection(bytes, kErrorsMark, report.errors);
  return bytes;
}

ReportData DecodeReport(std::string_view bytes) {
  ReportData report;
  FieldReader reader(bytes);
  report.jobName = reader.Next();
  report.stamp = reader.Next();
  reader.Next();  // the folders' mark: its place makes it that, whatever it says

  std::vector<std::string>* section = &report.folders;
  while (!reader.AtEnd()) {
    std::string field = reader.Next();
    if (field == kFilesMark) {
      section = &report.files;
    } else if (field == kErrorsMark) {
      section = &report.errors;
    } else {
      ToInt16(static_cast<std::int64_t>(section->size()) + 1);
      section->push_back(std::move(field));
    }
  }
  return report;
}

}  // namespace zq
