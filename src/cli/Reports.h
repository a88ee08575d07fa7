// What was done, for programs (JSON), for the files (the report) and for the terminal.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Options.h"
#include "cli/Plan.h"
#include "cli/Record.h"
#include "cli/Runner.h"

namespace zq::cli {

struct Finished {
  const Options& options;
  const Plan& plan;
  const RunResult& result;
  ExitCode code;
  std::string when;  // the time of the end, as the report shows it
  Record record = {};
};

// 0, 1 or 3, from what became of the items. In a dry run: from what can be known beforehand.
ExitCode CodeOf(const Options& options, const Plan& plan, const RunResult& result);

// One object, ending in a line break:
//   program, version, operation "files", level, dryRun, cancelled, exitCode, and what WriteRecord says
//   items: [{path, kind: "file" | "folder" | "link" | "other", bytes, outcome: "wiped" | "kept" |
//   "destroyed", reason}] failures: [text]  those that belong to no item alsoWiped: [path] files that came
//   into a folder while it was being wiped notes: [text]     what there is to say beside the results refused:
//   [text]   why nothing was done at all totals: {wiped, kept, bytesWiped, bytesKept}
// `reason` is there for what wasn't wiped alone. "destroyed" is what has no content any more, but whose entry
// is still there, or may be.
std::string JsonReport(const Finished& finished);
// The same in parts, each as it comes: there can be a hundred thousand items.
void JsonReport(const Finished& finished, const std::function<void(std::string_view part)>& take);

std::string TextReport(const Finished& finished);

// What was kept, with the reasons, one line each; what else went wrong.
std::vector<std::string> Complaints(const Finished& finished);

// "Wiped: 3 files (1.2 MiB). Kept: 1 file (4 bytes)."
std::string Summary(const Finished& finished);

}  // namespace zq::cli
