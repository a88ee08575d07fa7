#include "cli/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "version.h"

namespace zq::cli {
namespace {

// The parser takes "[a,b]" for a list of two values where it accepts several, and would so make two other
// files out of the one that bears this name. A mark in front of every such argument keeps it whole; the
// mark is put before arguments that begin with it, too, so that taking it off again is never wrong.
constexpr char kMark = '\x01';

void Mark(std::string& argument) {
  if (!argument.empty() && (argument[0] == '[' || argument[0] == kMark)) argument.insert(0, 1, kMark);
}

void Unmark(std::string& value) {
  if (!value.empty() && value[0] == kMark) value.erase(0, 1);
}

constexpr char kFooter[] =
    R"(A PATH is a file, or with --recursive or --mask a folder. Write -- before paths that begin with a dash.
A link is never followed: one that is named is kept, one inside a folder is removed and what it leads to stays.

Each level is that many rounds of a pattern, its complement and random data over every byte. A file that
can't be overwritten where it lies (compressed, copy-on-write, in use) is kept, and the reason is told.

Never destroyed: a whole drive, a mount point, a home folder, the current folder, the folder of zqwipe, and
every folder that holds one of these.

With --free-space PATH is a drive, or where one is mounted. What is on it stays; what was deleted there before is
overwritten. The drive is full for a moment meanwhile. Ctrl+C gives the space back.

Exit code: 0 all is gone, 1 something was kept, 2 nothing was destroyed (wrong use, protected path, nobody to
confirm), 3 cancelled. Ctrl+C stops at once and tells what was done.

Examples:
  zqwipe letter.txt                   one file, asks first
  zqwipe --recursive --yes old/       a folder with everything in it
  zqwipe --mask "*.tmp" cache         the matching files of a folder, which stays
  zqwipe --dry-run --recursive old/   only lists what would be destroyed
  zqwipe --free-space /mnt/stick      what was deleted on a drive; on Windows: zqwipe --free-space D:
)";

}  // namespace

Parsed ParseCommandLine(std::vector<std::string> arguments) {
  Options options;
  std::string mask;
  std::string report;

  CLI::App app(
      "Destroys files so that nothing of them can be recovered: overwrites them on the device,\n"
      "checks it, hides their names and removes them.",
      "zqwipe");
  app.allow_windows_style_options(false);  // "/dev" is a path everywhere
  app.footer(kFooter);
  app.get_formatter()->column_width(22);
  app.get_formatter()->label("REQUIRED", "");
  app.set_help_flag("-h,--help", "Show this text and exit");
  app.set_version_flag("--version", "zqwipe " ZQ_VERSION_TEXT, "Show the version and exit");

  app.add_option("--level", options.level, "Rounds of three writes: 3, 5 or 7; 3 if not given")
      ->check(CLI::IsMember({3, 5, 7}).description(""))
      ->type_name("N");
  app.add_flag("--recursive", options.recursive,
               "Wipe a folder with all it holds and remove it; with --mask, look below it");
  const CLI::Option* maskOption =
      app.add_option("--mask", mask, "Wipe the folder's files whose names match; folders stay. * ? # [a-z]")
          ->type_name("MASK");
  app.add_flag("--free-space", options.freeSpace, "Overwrite what is free on the drive; its files stay");
  app.add_flag("--dry-run", options.dryRun, "List what would be destroyed, destroy nothing");
  app.add_flag("--yes", options.yes, "Don't ask");
  app.add_flag("--trust-file-system", options.trustFileSystem,
               "Wipe also where it isn't known that new data go to the old place");
  const CLI::Option* reportOption =
      app.add_option("--report", report, "Write a report to FILE, which must not exist")->type_name("FILE");
  app.add_flag("--json", options.json, "Print the outcome of each item as one JSON object");
  app.add_flag("--quiet", options.quiet, "No progress, no summary; what was kept is still told");
  app.add_option("PATH", options.paths, "What to destroy")->required()->type_name("");

  Parsed parsed;
  try {
    for (std::string& argument : arguments) Mark(argument);
    std::ranges::reverse(arguments);  // as the parser wants them
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    parsed.text = app.help();
    return parsed;
  } catch (const CLI::CallForVersion& version) {
    parsed.text = std::string(version.what()) + '\n';
    return parsed;
  } catch (const CLI::Error& error) {
    parsed.code = ExitCode::Usage;
    parsed.text = error.what();
    std::erase(parsed.text, kMark);
    return parsed;
  }

  Unmark(mask);
  Unmark(report);
  for (std::string& path : options.paths) Unmark(path);
  if (maskOption->count() > 0) options.mask = std::move(mask);
  if (reportOption->count() > 0) options.report = std::move(report);

  const auto refuse = [&](const char* why) {
    parsed.code = ExitCode::Usage;
    parsed.text = why;
    return parsed;
  };
  if (options.mask && options.mask->empty()) return refuse("the mask is empty");
  if (options.report && options.report->empty()) return refuse("the name of the report is empty");
  for (const std::string& path : options.paths) {
    if (path.empty()) return refuse("a path is empty");
  }
  if (options.freeSpace && (options.recursive || options.mask || options.dryRun)) {
    return refuse("--free-space goes with none of --recursive, --mask and --dry-run");
  }
  if (options.freeSpace && options.paths.size() != 1) return refuse("--free-space takes one drive");
  parsed.options = std::move(options);
  return parsed;
}

}  // namespace zq::cli
