#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/main/StartUp.h"
#include "support/fakes/FakeFiles.h"

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

}  // namespace
}  // namespace zq
