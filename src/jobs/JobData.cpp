#include "jobs/JobData.h"

#include <utility>

#include "platform/FieldReader.h"

namespace zq {
namespace {

constexpr const char* kFoldersMark = "[FOLDERS]";
constexpr const char* kFilesMark = "[FILES]";

// The bytes behind a mark of their encoding, which an editor may have put there.
std::string_view WithoutByteOrderMark(std::string_view bytes) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
  return bytes;
}

}  // namespace

std::string EncodeJob(const JobData& job) {
  std::string bytes = QuotedLine(job.lastWiping) + QuotedLine(kFoldersMark);
  for (const JobFolder& folder : job.folders) {
    bytes += QuotedLine(folder.path);
    bytes += QuotedLine(folder.mask);
    bytes += QuotedLine(folder.subFolders);
  }
  bytes += QuotedLine(kFilesMark);
  for (const std::string& file : job.files) bytes += QuotedLine(file);
  return bytes;
}

JobData DecodeJob(std::string_view bytes) {
  JobData job;
  FieldReader reader(WithoutByteOrderMark(bytes));
  job.lastWiping = reader.Next();
  reader.Next();  // the folders' mark: its place makes it that, whatever it says

  bool inFolders = true;
  while (!reader.AtEnd()) {
    std::string field = reader.Next();
    if (field == kFilesMark) {
      inFolders = false;
    } else if (inFolders) {
      std::string mask = reader.Next();
      std::string subFolders = reader.Next();
      job.folders.push_back({std::move(field), std::move(mask), std::move(subFolders)});
    } else {
      job.files.push_back(std::move(field));
    }
  }
  return job;
}

std::string DecodeJobStamp(std::string_view bytes) {
  return FieldReader(WithoutByteOrderMark(bytes)).Next();
}

}  // namespace zq
