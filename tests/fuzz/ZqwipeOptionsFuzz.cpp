// The command line of zqwipe, one argument a line: any is accepted or refused, and what stands behind the
// two dashes comes back as paths, byte for byte. A path that came back changed would be another file's.
#include <string>
#include <vector>

#include "cli/Options.h"
#include "fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  std::vector<std::string> arguments(1);
  for (const char c : test::TextOf(data, size)) {
    if (c == '\n') {
      arguments.emplace_back();
    } else {
      arguments.back() += c;
    }
  }

  const cli::Parsed parsed = cli::ParseCommandLine(arguments);
  if (parsed.options) {
    test::Require(!parsed.options->paths.empty());
    // Who fills a drive has named it alone, and asked for nothing that would mean another thing there.
    if (parsed.options->freeSpace) {
      test::Require(parsed.options->paths.size() == 1 && !parsed.options->recursive &&
                    !parsed.options->mask && !parsed.options->dryRun);
    }
    for (const std::string& path : parsed.options->paths) {
      // Nothing becomes a path that was not written as one.
      bool written = false;
      for (const std::string& argument : arguments) written = written || argument == path;
      test::Require(written);
    }
  } else {
    test::Require(!parsed.text.empty());
  }

  std::vector<std::string> behind = {"--"};
  bool anyEmpty = false;
  for (const std::string& argument : arguments) {
    anyEmpty = anyEmpty || argument.empty();
    behind.push_back(argument);
  }
  const cli::Parsed again = cli::ParseCommandLine(behind);
  test::Require(again.options.has_value() != anyEmpty);
  if (again.options) test::Require(again.options->paths == arguments);
  return 0;
}
