#include "cli/Reports.h"

#include <algorithm>

#include "cli/Json.h"
#include "cli/Shown.h"
#include "version.h"

namespace zq::cli {
namespace {

constexpr char kDryRun[] = "dry run";

const char* KindText(ItemKind kind) {
  switch (kind) {
    case ItemKind::File:
      return "file";
    case ItemKind::Folder:
      return "folder";
    case ItemKind::Link:
      return "link";
    case ItemKind::Other:
      break;
  }
  return "other";
}

void WriteTexts(JsonWriter& json, const char* key, const std::vector<std::string>& texts) {
  json.Key(key);
  json.BeginArray();
  for (const std::string& text : texts) json.Value(text);
  json.EndArray();
}

// What is Pending at the end was not to be destroyed, and what is Destroyed is still there.
Totals Kept(const Plan& plan) {
  Totals kept = Count(plan, Outcome::Kept);
  for (const Outcome outcome : {Outcome::Pending, Outcome::Destroyed}) {
    const Totals also = Count(plan, outcome);
    kept.files += also.files;
    kept.folders += also.folders;
    kept.links += also.links;
    kept.others += also.others;
    kept.bytes += also.bytes;
  }
  return kept;
}

const char* OutcomeText(Outcome outcome) {
  if (outcome == Outcome::Wiped) return "wiped";
  return outcome == Outcome::Destroyed ? "destroyed" : "kept";
}

}  // namespace

ExitCode CodeOf(const Options& options, const Plan& plan, const RunResult& result) {
  if (result.cancelled) return ExitCode::Cancelled;
  const bool anyKept = std::ranges::any_of(plan.items, [&](const Item& item) {
    return item.outcome == Outcome::Kept || item.outcome == Outcome::Destroyed ||
           (item.outcome == Outcome::Pending && !options.dryRun);
  });
  return anyKept || !result.failures.empty() ? ExitCode::SomeKept : ExitCode::AllGone;
}

std::string JsonReport(const Finished& finished) {
  std::string text;
  JsonReport(finished, [&](std::string_view part) { text += part; });
  return text;
}

void JsonReport(const Finished& finished, const std::function<void(std::string_view part)>& take) {
  const auto& [options, plan, result, code, when, record] = finished;
  JsonWriter json;
  json.BeginObject();
  json.Member("program", "zqwipe");
  json.Member("version", ZQ_VERSION_TEXT);
  json.Member("operation", "files");
  json.Member("level", static_cast<std::uint64_t>(options.level));
  json.Member("dryRun", options.dryRun);
  json.Member("cancelled", code == ExitCode::Cancelled);
  json.Member("exitCode", static_cast<std::uint64_t>(code));
  json.BreakLine();
  WriteRecord(json, record, options.level);

  json.BreakLine();
  json.Key("items");
  json.BeginArray();
  for (const Item& item : plan.items) {
    json.BreakLine();
    json.BeginObject();
    json.Member("path", item.path);
    json.Member("kind", KindText(item.kind));
    json.Member("bytes", item.bytes);
    json.Member("outcome", OutcomeText(item.outcome));
    if (!item.reason.empty()) json.Member("reason", item.reason);
    if (item.outcome == Outcome::Pending) json.Member("reason", options.dryRun ? kDryRun : "not begun");
    json.EndObject();
    take(json.TakeText());
  }
  json.EndArray();
  json.BreakLine();
  WriteTexts(json, "failures", result.failures);
  WriteTexts(json, "alsoWiped", result.alsoWiped);
  WriteTexts(json, "notes", result.notes);
  WriteTexts(json, "refused", plan.refusals);

  const Totals wiped = Count(plan, Outcome::Wiped);
  const Totals kept = Kept(plan);
  json.BreakLine();
  json.Key("totals");
  json.BeginObject();
  json.Member("wiped", std::uint64_t{wiped.Items()});
  json.Member("kept", std::uint64_t{kept.Items()});
  json.Member("bytesWiped", wiped.bytes);
  json.Member("bytesKept", kept.bytes);
  json.EndObject();
  json.EndObject();
  take(json.TakeText() + '\n');
}

std::string TextReport(const Finished& finished) {
  const auto& [options, plan, result, code, when, record] = finished;
  std::string text = "zqwipe " ZQ_VERSION_TEXT ", " + when + "\nLevel " + std::to_string(options.level);
  if (options.dryRun) text += ", dry run: nothing was destroyed";
  if (code == ExitCode::Cancelled) text += ", cancelled";
  text += "\n\n";
  for (const Item& item : plan.items) {
    switch (item.outcome) {
      case Outcome::Wiped:
        text += "wiped  " + Shown(item.path) + '\n';
        break;
      case Outcome::Kept:
      case Outcome::Destroyed:
        text += "kept   " + Shown(item.path) + ": " + Shown(item.reason) + '\n';
        break;
      case Outcome::Pending:
        text += (options.dryRun ? "would  " : "kept   ") + Shown(item.path) + '\n';
        break;
    }
  }
  for (const std::string& failure : result.failures) text += "failed " + Shown(failure) + '\n';
  for (const std::string& name : result.alsoWiped) {
    text += "wiped  " + Shown(name) + " (came after the start)\n";
  }
  for (const std::string& note : result.notes) text += "note   " + Shown(note) + '\n';
  if (!options.dryRun) {
    for (const std::string& warning : DeviceWarnings(record)) text += "note   " + warning + '\n';
  }
  return text + '\n' + Summary(finished) + '\n';
}

std::vector<std::string> Complaints(const Finished& finished) {
  std::vector<std::string> lines;
  for (const Item& item : finished.plan.items) {
    if (item.outcome == Outcome::Kept || item.outcome == Outcome::Destroyed)
      lines.push_back("kept " + Shown(item.path) + ": " + Shown(item.reason));
  }
  for (const std::string& failure : finished.result.failures) lines.push_back(Shown(failure));
  for (const std::string& name : finished.result.alsoWiped) {
    lines.push_back("wiped " + Shown(name) + " too, which came after the start");
  }
  return lines;
}

std::string Summary(const Finished& finished) {
  std::string text = finished.code == ExitCode::Cancelled ? "Cancelled. " : "";
  if (finished.options.dryRun) {
    return text + "Would be wiped: " + ShownTotals(Count(finished.plan, Outcome::Pending)) +
           ". Kept: " + ShownTotals(Count(finished.plan, Outcome::Kept)) + '.';
  }
  return text + "Wiped: " + ShownTotals(Count(finished.plan, Outcome::Wiped)) +
         ". Kept: " + ShownTotals(Kept(finished.plan)) + '.';
}

}  // namespace zq::cli
