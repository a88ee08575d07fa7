#include <gtest/gtest.h>

#include "jobs/JobName.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeFiles.h"

namespace zq {
namespace {

constexpr const char* kAppFolder = "C:\\Zeroquill\\";

JobNameVerdict VerdictOn(const std::string& nameText) {
  test::FakeFiles files;
  files.AddFile("C:\\Zeroquill\\Jobs\\Weekly.zqj");
  files.AddFile("C:\\Zeroquill\\Jobs\\Locked.zqj", "", kAttributeReadOnly);
  files.AddFile("C:\\Zeroquill\\Jobs\\Hidden.zqj", "", kAttributeHidden);
  files.AddFile("C:\\Zeroquill\\Jobs\\System.zqj", "", kAttributeSystem);
  files.AddFolder("C:\\Zeroquill\\Jobs\\Folder.zqj");
  files.AddFile("C:\\Zeroquill\\Elsewhere.zqj");
  return VerdictOnJobName(files, kAppFolder, nameText);
}

TEST(JobName, MakesThePathOfTheJobsFile) {
  EXPECT_EQ(JobFilePath(kAppFolder, "Weekly"), "C:\\Zeroquill\\Jobs\\Weekly.zqj");
  EXPECT_EQ(JobFilePath("D:\\", "a.b"), "D:\\Jobs\\a.b.zqj");
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

}  // namespace
}  // namespace zq
