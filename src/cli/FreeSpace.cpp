#include "cli/FreeSpace.h"

#include <algorithm>
#include <utility>

#include "cli/Shown.h"
#include "engine/PassPlan.h"
#include "platform/Like.h"
#include "version.h"

namespace zq::cli {
namespace {

using End = SpaceResult::Outcome;

const char* OutcomeText(End outcome) {
  switch (outcome) {
    case End::Overwritten:
      return "overwritten";
    case End::Failed:
      return "failed";
    case End::Cancelled:
      return "cancelled";
    case End::NotBegun:
      break;
  }
  return "refused";
}

void WriteText(JsonWriter& json, const char* key, const std::string& text) {
  json.Key(key);
  json.BeginArray();
  if (!text.empty()) json.Value(text);
  json.EndArray();
}

}  // namespace

std::string WhyNoDrive(const std::string& canonical, const Surroundings& surroundings) {
  if (canonical.empty()) return "it can't be looked at";
  if (IsRoot(canonical, surroundings.style)) return {};
  for (const std::string& mountPoint : surroundings.mountPoints) {
    if (IsSame(canonical, mountPoint, surroundings.style)) return {};
  }
  return "it is neither a drive nor where one is mounted; free space is that of a whole drive";
}

SpaceRunner::SpaceRunner(Runner::Parts parts)
    : parts_(std::move(parts)), engine_(parts_.device, parts_.seeds, parts_.clock, *this, &Like) {
}

SpaceResult SpaceRunner::Run(const std::string& drive, std::int32_t level) {
  result_ = {};
  share_ = 0;
  stopped_ = false;
  if (parts_.interrupted()) {
    result_.outcome = End::Cancelled;
    return result_;
  }
  const bool done = engine_.WipeFreeSpace(drive, level);
  result_.note = engine_.Note();
  result_.outcome = done ? End::Overwritten : stopped_ ? End::Cancelled : End::Failed;
  if (result_.outcome == End::Failed) result_.failure = engine_.LastErrorText();
  parts_.progress.Clear();
  return std::move(result_);
}

void SpaceRunner::LookForInterrupt() {
  if (!parts_.interrupted()) return;
  stopped_ = true;
  engine_.CancelOperation();
}

// In a run that was cancelled too: a drive that stays full is what the user has to know.
void SpaceRunner::WipeError(std::int32_t, const std::string& errorText) {
  LookForInterrupt();
  result_.failure = errorText;
}

void SpaceRunner::FreeSpaceProgress(const std::string& drive, std::int32_t, std::int32_t kbDone,
                                    std::int32_t kbTotal) {
  LookForInterrupt();
  constexpr std::uint64_t kKiB = 1024;
  result_.bytes = static_cast<std::uint64_t>(std::max(kbTotal, 0)) * kKiB;
  // Where the space grows meanwhile the share would go back.
  if (kbTotal > 0) share_ = std::max(share_, static_cast<double>(kbDone) / static_cast<double>(kbTotal));
  parts_.progress.Show(share_, ShownBytes(result_.bytes) + " free on " + drive);
}

ExitCode CodeOf(const SpaceResult& result) {
  switch (result.outcome) {
    case End::Overwritten:
      return ExitCode::AllGone;
    case End::Failed:
      return ExitCode::SomeKept;
    case End::Cancelled:
      return ExitCode::Cancelled;
    case End::NotBegun:
      break;
  }
  return ExitCode::Usage;
}

std::string JsonReport(const SpaceFinished& finished) {
  const auto& [options, drive, result, record, when] = finished;
  const ExitCode code = CodeOf(result);
  JsonWriter json;
  json.BeginObject();
  json.Member("program", "zqwipe");
  json.Member("version", ZQ_VERSION_TEXT);
  json.Member("operation", "free-space");
  json.Member("drive", drive);
  json.Member("level", static_cast<std::uint64_t>(options.level));
  json.Member("cancelled", code == ExitCode::Cancelled);
  json.Member("exitCode", static_cast<std::uint64_t>(code));
  json.BreakLine();
  json.Member("outcome", OutcomeText(result.outcome));
  json.Member("bytes", result.bytes);
  WriteRecord(json, record, options.level);
  json.BreakLine();
  WriteText(json, "failures", result.failure);
  WriteText(json, "notes", result.note);
  WriteText(json, "refused", result.refusal);
  json.EndObject();
  return json.Text() + '\n';
}

std::string TextReport(const SpaceFinished& finished) {
  const auto& [options, drive, result, record, when] = finished;
  std::string text = "zqwipe " ZQ_VERSION_TEXT ", " + when + "\nLevel " + std::to_string(options.level) +
                     ", " + std::to_string(engine::PassesOfLevel(options.level).size()) + " writes\n\n";
  if (!result.failure.empty()) text += "failed " + Shown(result.failure) + '\n';
  if (!result.note.empty()) text += "note   " + Shown(result.note) + '\n';
  for (const std::string& line : DeviceWarnings(record)) text += "note   " + line + '\n';
  return text + Summary(finished) + '\n';
}

std::string Summary(const SpaceFinished& finished) {
  const std::string what = "the free space of " + Shown(finished.drive);
  switch (finished.result.outcome) {
    case End::Overwritten:
      return "Overwritten: " + what + " (" + ShownBytes(finished.result.bytes) + ").";
    case End::Cancelled:
      return "Cancelled: " + what + " is not overwritten, or in part.";
    case End::Failed:
      return "Not overwritten, or in part: " + what + '.';
    case End::NotBegun:
      break;
  }
  return "Not begun: " + what + " is as it was.";
}

}  // namespace zq::cli
