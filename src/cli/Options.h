// The command line of zqwipe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zq::cli {

// How the program ends. Scripts rely on these numbers.
enum class ExitCode {
  AllGone = 0,    // everything that was named is gone; the free space is overwritten
  SomeKept = 1,   // something failed and is still there
  Usage = 2,      // nothing was destroyed: a wrong command line, a protected path, nobody to confirm
  Cancelled = 3,  // stopped by the user, before it began or on the way
};

struct Options {
  std::int32_t level = 3;
  bool freeSpace = false;  // of the one drive that is named; then none of recursive, mask and dryRun
  bool recursive = false;
  std::optional<std::string> mask;
  bool dryRun = false;
  bool yes = false;
  bool trustFileSystem = false;  // as engine::DeviceOptions
  std::optional<std::string> report;
  bool json = false;
  bool quiet = false;
  std::vector<std::string> paths;
};

// What came of a command line. Without options the program is to print `text` and end: on standard output
// if `code` is AllGone (help, version), else on standard error.
struct Parsed {
  std::optional<Options> options;
  std::string text;
  ExitCode code = ExitCode::AllGone;
};

// `arguments` without the program's name.
Parsed ParseCommandLine(std::vector<std::string> arguments);

}  // namespace zq::cli
