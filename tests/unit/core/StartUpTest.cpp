#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/StartUp.h"
#include "platform/Files.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

using test::FakeFiles;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kAppFolder = "C:\\Zeroquill\\";

TEST(AppFolderFrom, EndsInExactlyOneBackslash) {
  EXPECT_EQ(AppFolderFrom("C:\\Zeroquill"), "C:\\Zeroquill\\");
  EXPECT_EQ(AppFolderFrom("C:\\Zeroquill\\"), "C:\\Zeroquill\\");
  EXPECT_EQ(AppFolderFrom("D:\\"), "D:\\");
  EXPECT_EQ(AppFolderFrom("  C:\\My Tools  "), "C:\\My Tools\\");
  EXPECT_EQ(AppFolderFrom("\\\\server\\share"), "\\\\server\\share\\");
}

TEST(EnsureDataFolders, CreatesBothInOrder) {
  FakeFiles files;
  files.AddFolder("C:\\Zeroquill");
  EnsureDataFolders(files, kAppFolder);
  EXPECT_THAT(files.log, ElementsAre("folder C:\\Zeroquill\\Jobs\\", "folder C:\\Zeroquill\\Report\\"));
  EXPECT_TRUE(files.Exists("C:\\Zeroquill\\Jobs"));
  EXPECT_TRUE(files.Exists("C:\\Zeroquill\\Report"));
}

TEST(EnsureDataFolders, LeavesFoldersThatAreThere) {
  FakeFiles files;
  files.AddFolder("C:\\Zeroquill\\Jobs");
  EnsureDataFolders(files, kAppFolder);
  EXPECT_THAT(files.log, ElementsAre("folder C:\\Zeroquill\\Report\\"));
  files.log.clear();
  EnsureDataFolders(files, kAppFolder);
  EXPECT_THAT(files.log, IsEmpty());
}

TEST(EnsureDataFolders, TriesTheSecondAfterTheFirstHasFailed) {
  FakeFiles files;
  files.failEverything = true;
  EnsureDataFolders(files, kAppFolder);
  EXPECT_THAT(files.log, ElementsAre("folder C:\\Zeroquill\\Jobs\\", "folder C:\\Zeroquill\\Report\\"));
}

TEST(ItemExists, FindsFilesOfWhateverAttributes) {
  FakeFiles files;
  for (std::uint32_t attributes :
       {kAttributeNormal, kAttributeReadOnly, kAttributeHidden, kAttributeSystem, kAttributeArchive,
        kAttributeReadOnly | kAttributeHidden | kAttributeSystem}) {
    files.AddFile("C:\\a.txt", "x", attributes);
    EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\a.txt")) << attributes;
  }
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\b.txt"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "D:\\a.txt"));
}

TEST(ItemExists, TakesNoFolderForAFile) {
  FakeFiles files;
  files.AddFolder("C:\\Papers", kAttributeDirectory | kAttributeReadOnly | kAttributeHidden);
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\Papers"));
}

TEST(ItemExists, FindsFoldersAndPlainFilesForAnyOtherKind) {
  FakeFiles files;
  files.AddFolder("C:\\Papers");
  files.AddFolder("C:\\Hidden", kAttributeDirectory | kAttributeHidden | kAttributeSystem);
  files.AddFile("C:\\a.txt");
  for (int kind : {kItemIsFolder, 0, 3, -1}) {
    EXPECT_TRUE(ItemExists(files, kind, "C:\\Papers")) << kind;
    EXPECT_TRUE(ItemExists(files, kind, "C:\\Hidden")) << kind;
    EXPECT_TRUE(ItemExists(files, kind, "C:\\a.txt")) << kind;
    EXPECT_FALSE(ItemExists(files, kind, "C:\\Gone")) << kind;
  }
}

TEST(ItemExists, LooksAtTheContentOfAPathThatEndsInABackslash) {
  FakeFiles files;
  files.AddFolder("C:\\Empty");
  files.AddFolder("C:\\OnlyFolders\\Sub");
  files.AddFile("C:\\WithFile\\a.txt");
  EXPECT_TRUE(ItemExists(files, kItemIsFolder, "C:\\Empty\\"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\Empty\\"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\OnlyFolders\\"));
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\WithFile\\"));
  EXPECT_FALSE(ItemExists(files, kItemIsFolder, "C:\\Gone\\"));
}

TEST(ItemExists, MatchesWildcards) {
  FakeFiles files;
  files.AddFolder("C:\\a.folder");
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\a.*"));
  EXPECT_TRUE(ItemExists(files, kItemIsFolder, "C:\\a.*"));
  files.AddFile("C:\\a.txt");  // behind the folder in the listing
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\a.*"));
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\?.txt"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\b*"));
}

TEST(ItemExists, GivesFalseForNoPathAndForAnyFailure) {
  FakeFiles files;
  files.AddFile("C:\\a.txt");
  for (int kind : {kItemIsFile, kItemIsFolder}) EXPECT_FALSE(ItemExists(files, kind, ""));
  files.failEverything = true;
  for (int kind : {kItemIsFile, kItemIsFolder}) EXPECT_FALSE(ItemExists(files, kind, "C:\\a.txt"));
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
