#include "jobs/JobName.h"

#include "core/state/DataFolder.h"
#include "platform/Regional.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr std::string_view kIllegalCharacters = "\"?*/\\><:|";

constexpr const char* kIllegalName =
    "One or more of the characters included in the job name are not allowed and are illegal characters for "
    "file names on the Windows operating system.";
// What it asks for is narrower than the test: a blank, a dash or a dot is accepted.
constexpr const char* kUseNumbersOrLetters = "Please name the job using only numbers or letters.";
constexpr const char* kOverwrite =
    "A Zeroquill Job already exists by that name.  Do you wish to overwrite the existing Zeroquill Job?";

}  // namespace

std::string JobFileName(const std::string& name) {
  return kJobsFolder + name + kJobExtension;
}

bool IsJobFile(const FileEntry& entry) {
  return (entry.attributes & (kAttributeDirectory | kAttributeHidden | kAttributeSystem)) == 0;
}

bool HasJobNameText(std::string_view nameText) {
  return !TrimBlanks(nameText).empty();
}

bool HasIllegalCharacter(std::string_view nameText) {
  return nameText.find_first_of(kIllegalCharacters) != std::string_view::npos;
}

JobNameVerdict VerdictOnJobName(const DataFolder& folder, std::string_view nameText) {
  if (HasIllegalCharacter(nameText)) return JobNameVerdict::Illegal;
  const std::optional<FileEntry> entry = folder.FindEntry(JobFileName(TrimBlanks(nameText)));
  return entry && IsJobFile(*entry) ? JobNameVerdict::Exists : JobNameVerdict::Accepted;
}

Message BoxOf(JobNameVerdict verdict) {
  switch (verdict) {
    case JobNameVerdict::Illegal:
      return {std::string(kIllegalName) + kTwoLineBreaks + kUseNumbersOrLetters, "Job Name",
              MessageIcon::Exclamation, MessageButtons::Ok};
    case JobNameVerdict::Exists:
      return {kOverwrite, "Overwrite Job", MessageIcon::Question, MessageButtons::OkCancel};
    case JobNameVerdict::Accepted:
      break;
  }
  throw RunTimeError(ErrorNumber::InvalidProcedureCall);
}

std::optional<std::string> JobNameFromCommandLine(const std::string& commandLine,
                                                  const std::string& appFolder, Regional& regional) {
  std::string_view text = commandLine;
  if (text.starts_with('"')) {
    text.remove_prefix(1);
    if (text.ends_with('"')) text.remove_suffix(1);
  }

  const std::string upper = regional.UpperCase(text);
  if (upper.find(regional.UpperCase(appFolder)) == std::string::npos) return std::nullopt;
  if (upper.find(".ZQJ") == std::string::npos) return std::nullopt;
  return std::string(WithoutLastCharacters(text.substr(text.rfind('\\') + 1), 4));
}

}  // namespace zq
