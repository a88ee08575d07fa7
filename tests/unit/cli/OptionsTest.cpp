#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Options.h"

namespace zq::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Options Accepted(const std::vector<std::string>& arguments) {
  const Parsed parsed = ParseCommandLine(arguments);
  EXPECT_TRUE(parsed.options.has_value()) << parsed.text;
  return parsed.options.value_or(Options{});
}

std::string Refused(const std::vector<std::string>& arguments) {
  const Parsed parsed = ParseCommandLine(arguments);
  EXPECT_FALSE(parsed.options.has_value());
  EXPECT_EQ(parsed.code, ExitCode::Usage);
  return parsed.text;
}

TEST(CommandLine, TakesPathsAndIsCarefulByDefault) {
  const Options options = Accepted({"a", "b/c"});
  EXPECT_THAT(options.paths, ElementsAre("a", "b/c"));
  EXPECT_EQ(options.level, 3);
  EXPECT_FALSE(options.recursive || options.mask || options.dryRun || options.yes || options.report ||
               options.json || options.quiet);
}

TEST(CommandLine, TakesEveryOption) {
  const Options options = Accepted({"--level", "7", "--recursive", "--mask", "*.tmp", "--dry-run", "--yes",
                                    "--trust-file-system", "--report", "r.txt", "--json", "--quiet", "a"});
  EXPECT_TRUE(options.trustFileSystem);
  EXPECT_EQ(options.level, 7);
  EXPECT_EQ(options.mask, "*.tmp");
  EXPECT_EQ(options.report, "r.txt");
  EXPECT_TRUE(options.recursive && options.dryRun && options.yes && options.json && options.quiet);
  EXPECT_THAT(options.paths, ElementsAre("a"));
  EXPECT_EQ(Accepted({"--level=5", "a"}).level, 5);
}

TEST(CommandLine, TakesOneDriveForItsFreeSpace) {
  const Options options = Accepted({"--free-space", "--level", "5", "--yes", "--json", "--", "-drive"});
  EXPECT_TRUE(options.freeSpace && options.yes && options.json);
  EXPECT_EQ(options.level, 5);
  EXPECT_THAT(options.paths, ElementsAre("-drive"));
  EXPECT_FALSE(Accepted({"a"}).freeSpace);
  EXPECT_THAT(Refused({"--free-space"}), HasSubstr("PATH is required"));
  EXPECT_EQ(Refused({"--free-space", "a", "b"}), "--free-space takes one drive");
  EXPECT_EQ(Refused({"--free-space", ""}), "a path is empty");
  const std::vector<std::vector<std::string>> others = {{"--recursive"}, {"--mask", "*"}, {"--dry-run"}};
  for (std::vector<std::string> arguments : others) {
    arguments.insert(arguments.end(), {"--free-space", "a"});
    EXPECT_EQ(Refused(arguments), "--free-space goes with none of --recursive, --mask and --dry-run");
  }
}

TEST(CommandLine, TakesEveryNameForWhatItIs) {
  const std::vector<std::string> names = {"[a,b]", "[]", "[x",        "\x01y", "\x01[z]",
                                          "{}",    "%%", "++",        "a,b",   "a=b",
                                          "/dev",  "-",  "new\nline", "a b",   "\xFF\xFE"};
  EXPECT_EQ(Accepted(names).paths, names);
}

TEST(CommandLine, TakesAllBehindTheTwoDashesForPaths) {
  const std::vector<std::string> names = {"-x", "--yes", "--", "-", "[a]", "--level=9", "++", "a"};
  std::vector<std::string> arguments = {"--quiet", "--"};
  arguments.insert(arguments.end(), names.begin(), names.end());
  const Options options = Accepted(arguments);
  EXPECT_EQ(options.paths, names);
  EXPECT_FALSE(options.yes);
  EXPECT_TRUE(options.quiet);
}

TEST(CommandLine, TakesMasksWithBrackets) {
  EXPECT_EQ(Accepted({"--mask", "[a,b]", "d"}).mask, "[a,b]");
  EXPECT_EQ(Accepted({"--mask=[a-c]*", "d"}).mask, "[a-c]*");
  EXPECT_EQ(Accepted({"--mask", "[ab]", "--report", "[r]", "d"}).report, "[r]");
}

TEST(CommandLine, RefusesWhatItDoesNotUnderstand) {
  EXPECT_THAT(Refused({}), HasSubstr("PATH is required"));
  EXPECT_THAT(Refused({"--yes"}), HasSubstr("PATH is required"));
  EXPECT_THAT(Refused({"--recusrive", "a"}), HasSubstr("--recusrive"));
  EXPECT_THAT(Refused({"a", "-r"}), HasSubstr("-r"));
  EXPECT_THAT(Refused({"--level", "4", "a"}), HasSubstr("--level"));
  EXPECT_THAT(Refused({"--level", "x", "a"}), HasSubstr("--level"));
  EXPECT_THAT(Refused({"--level", "3", "--level", "7", "a"}), HasSubstr("--level"));
  EXPECT_THAT(Refused({"--mask"}), HasSubstr("--mask"));
  EXPECT_EQ(Refused({"--mask=", "a"}).empty(), false);
  EXPECT_EQ(Refused({"--mask", "", "a"}), "the mask is empty");
  EXPECT_EQ(Refused({"--report", "", "a"}), "the name of the report is empty");
  EXPECT_EQ(Refused({"a", ""}), "a path is empty");
}

TEST(CommandLine, GivesHelpAndVersion) {
  for (const char* option : {"--help", "-h"}) {
    const Parsed parsed = ParseCommandLine({option});
    EXPECT_FALSE(parsed.options.has_value());
    EXPECT_EQ(parsed.code, ExitCode::AllGone);
    for (const char* name : {"--level", "--recursive", "--mask", "--dry-run", "--yes", "--report", "--json",
                             "--quiet", "Exit code"}) {
      EXPECT_THAT(parsed.text, HasSubstr(name));
    }
  }
  const Parsed version = ParseCommandLine({"--version"});
  EXPECT_EQ(version.code, ExitCode::AllGone);
  EXPECT_THAT(version.text, testing::AllOf(testing::StartsWith("zqwipe 1"), testing::EndsWith("\n")));
}

}  // namespace
}  // namespace zq::cli
