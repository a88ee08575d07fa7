#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/main/StartUp.h"
#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "support/fakes/FakeFiles.h"

namespace zq {
namespace {

using test::FakeFiles;
using testing::ElementsAre;
using testing::IsEmpty;

class EnsureDataFoldersTest : public testing::Test {
 protected:
  EnsureDataFoldersTest() { state.AppFolder = "C:\\Zeroquill\\"; }

  FakeFiles files;
  AppState state;
  DataFolder folder{files, state};
};

TEST(AppFolderFrom, EndsInExactlyOneBackslash) {
  EXPECT_EQ(AppFolderFrom("C:\\Zeroquill"), "C:\\Zeroquill\\");
  EXPECT_EQ(AppFolderFrom("C:\\Zeroquill\\"), "C:\\Zeroquill\\");
  EXPECT_EQ(AppFolderFrom("D:\\"), "D:\\");
  EXPECT_EQ(AppFolderFrom("  C:\\My Tools  "), "C:\\My Tools\\");
  EXPECT_EQ(AppFolderFrom("\\\\server\\share"), "\\\\server\\share\\");
}

TEST_F(EnsureDataFoldersTest, CreatesBothInOrder) {
  files.AddFolder("C:\\Zeroquill");
  EnsureDataFolders(folder);
  EXPECT_THAT(files.log, ElementsAre("folder C:\\Zeroquill\\Jobs\\", "folder C:\\Zeroquill\\Report\\"));
  EXPECT_TRUE(files.Exists("C:\\Zeroquill\\Jobs"));
  EXPECT_TRUE(files.Exists("C:\\Zeroquill\\Report"));
}

TEST_F(EnsureDataFoldersTest, LeavesFoldersThatAreThere) {
  files.AddFolder("C:\\Zeroquill\\Jobs");
  EnsureDataFolders(folder);
  EXPECT_THAT(files.log, ElementsAre("folder C:\\Zeroquill\\Report\\"));
  files.log.clear();
  EnsureDataFolders(folder);
  EXPECT_THAT(files.log, IsEmpty());
}

TEST_F(EnsureDataFoldersTest, TriesTheSecondAfterTheFirstHasFailed) {
  files.failEverything = true;
  EnsureDataFolders(folder);
  EXPECT_THAT(files.log, ElementsAre("folder C:\\Zeroquill\\Jobs\\", "folder C:\\Zeroquill\\Report\\"));
}

}  // namespace
}  // namespace zq
