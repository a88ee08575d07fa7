#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "jobs/JobName.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

const std::string kAppFolder = "C:\\Zeroquill\\";

JobNameVerdict VerdictOn(const std::string& nameText) {
  test::FakeFiles files;
  files.AddFile("C:\\Zeroquill\\Jobs\\Weekly.zqj");
  files.AddFile("C:\\Zeroquill\\Jobs\\Locked.zqj", "", kAttributeReadOnly);
  files.AddFile("C:\\Zeroquill\\Jobs\\Hidden.zqj", "", kAttributeHidden);
  files.AddFile("C:\\Zeroquill\\Jobs\\System.zqj", "", kAttributeSystem);
  files.AddFolder("C:\\Zeroquill\\Jobs\\Folder.zqj");
  files.AddFile("C:\\Zeroquill\\Elsewhere.zqj");
  AppState state;
  state.AppFolder = kAppFolder;
  return VerdictOnJobName(DataFolder(files, state), nameText);
}

TEST(JobName, NamesTheJobsFile) {
  EXPECT_EQ(JobFileName("Weekly"), "Jobs\\Weekly.zqj");
  EXPECT_EQ(JobFileName("a.b"), "Jobs\\a.b.zqj");
}

TEST(JobName, RefusesNineCharactersAnywhere) {
  for (const char c : std::string("\"?*/\\><:|")) {
    for (const std::string& name :
         {std::string(1, c), c + std::string("a"), std::string("a") + c, "a" + std::string(1, c) + "b"}) {
      EXPECT_TRUE(HasIllegalCharacter(name)) << name;
      EXPECT_EQ(VerdictOn(name), JobNameVerdict::Illegal) << name;
    }
  }
}

TEST(JobName, AcceptsEveryOtherCharacterAndAnyLength) {
  for (int c = 1; c < 128; ++c) {
    const std::string name(1, static_cast<char>(c));
    EXPECT_EQ(HasIllegalCharacter(name), std::string("\"?*/\\><:|").find(name) != std::string::npos) << c;
  }
  for (const std::string& name :
       {std::string("a b"), std::string("a-b"), std::string("a.b"), std::string("end."), std::string("CON"),
        std::string("'+[]{},;=!"), std::string("\u00e9\u20ac"), std::string(300, 'x'),
        std::string("  blanks  ")}) {
    EXPECT_EQ(VerdictOn(name), JobNameVerdict::Accepted) << name;
  }
}

TEST(JobName, AsksBeforeAJobIsOverwritten) {
  for (const char* name : {"Weekly", "WEEKLY", "  Weekly ", "Locked"}) {
    EXPECT_EQ(VerdictOn(name), JobNameVerdict::Exists) << name;
  }
  for (const char* name : {"Weekly2", "Week", "Hidden", "System", "Folder", "Elsewhere"}) {
    EXPECT_EQ(VerdictOn(name), JobNameVerdict::Accepted) << name;
  }
  EXPECT_EQ(VerdictOn("Weekl?"), JobNameVerdict::Illegal);  // never a wildcard
}

TEST(JobName, EnablesOkForAnythingButBlanks) {
  for (const char* name : {"", " ", "   "}) EXPECT_FALSE(HasJobNameText(name));
  for (const char* name : {"a", " a ", "*", "\t"}) EXPECT_TRUE(HasJobNameText(name));
}

TEST(JobName, HasABoxForEachVerdictButTheGoodOne) {
  EXPECT_EQ(
      BoxOf(JobNameVerdict::Illegal),
      (Message{"One or more of the characters included in the job name are not allowed and are illegal "
               "characters for file names on the Windows operating system.\r\n\r\nPlease name the job using "
               "only numbers or letters.",
               "Job Name", MessageIcon::Exclamation, MessageButtons::Ok}));
  EXPECT_EQ(
      BoxOf(JobNameVerdict::Exists),
      (Message{
          "A Zeroquill Job already exists by that name.  Do you wish to overwrite the existing Zeroquill "
          "Job?",
          "Overwrite Job", MessageIcon::Question, MessageButtons::OkCancel}));
  test::ExpectRaises(ErrorNumber::InvalidProcedureCall, [] { BoxOf(JobNameVerdict::Accepted); });
}

TEST(JobNameFromCommandLine, IsWhatFollowsTheLastBackslashWithoutTheExtension) {
  struct Case {
    const char* commandLine;
    std::optional<std::string> name;
  };
  const Case kCases[] = {
      {"C:\\Zeroquill\\Jobs\\Old papers.zqj", "Old papers"},
      {"\"C:\\Zeroquill\\Jobs\\Old papers.zqj\"", "Old papers"},
      {"c:\\ZEROQUILL\\jobs\\Old papers.ZqJ", "Old papers"},
      // The folder part is thrown away.
      {"C:\\Zeroquill\\Elsewhere\\Deep\\x.zqj", "x"},
      {"C:\\Zeroquill\\x.zqj", "x"},
      // A closing quote without an opening one stays, and counts among the four.
      {"C:\\Zeroquill\\Jobs\\x.zqj\"", "x."},
      {"\"C:\\Zeroquill\\Jobs\\x.zqj", "x"},
      // One pair of quotes at the most.
      {"\"\"C:\\Zeroquill\\Jobs\\x.zqj\"\"", "x."},
      // Two paths count together.
      {"C:\\Zeroquill\\a.txt D:\\b.zqj", "b"},
      {"D:\\b.zqj C:\\Zeroquill\\a.txt", "a"},
      {"C:\\Zeroquill\\a.zqj.txt", "a.zqj"},
      // A last part of up to four characters leaves an empty name.
      {"C:\\Zeroquill\\.zqj", ""},
      {"C:\\Zeroquill\\x.zqj\\", ""},
      {"C:\\Zeroquill\\x.zqj D:\\abc", ""},
      // Four characters, not bytes.
      {"C:\\Zeroquill\\x.zqj D:\\abcdé", "a"},
      {"C:\\Zeroquill\\Jobs\\Café.zqj", "Café"},
      // No job of the program's own folder.
      {"", std::nullopt},
      {"\"", std::nullopt},
      {"\"\"", std::nullopt},
      {"C:\\Zeroquill\\a.txt", std::nullopt},
      {"D:\\Copy\\x.zqj", std::nullopt},
      {"C:\\Zeroquil\\x.zqj", std::nullopt},
      {"C:\\Zeroquill\\zqj", std::nullopt},
  };
  test::FakeRegional regional;
  for (const Case& c : kCases) {
    EXPECT_EQ(JobNameFromCommandLine(c.commandLine, kAppFolder, regional), c.name) << c.commandLine;
  }
}

TEST(JobNameFromCommandLine, IgnoresTheCaseOfLettersBeyondAscii) {
  test::FakeRegional regional;
  EXPECT_EQ(JobNameFromCommandLine("c:\\été\\x.zqj", "C:\\ÉTÉ\\", regional), "x");
}

}  // namespace
}  // namespace zq
