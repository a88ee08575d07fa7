#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "support/fakes/FakeDrives.h"
#include "support/fakes/FakeFiles.h"
#include "wipe/FillerRecord.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kPath[] = "C:\\Zeroquill\\FreeSpace.dat";

class FillerRecordTest : public testing::Test {
 protected:
  FillerRecordTest() {
    state.AppFolder = "C:\\Zeroquill\\";
    files.AddFolder("C:\\Zeroquill");
    drives.types = {{"C:\\", kDriveFixed}, {"D:\\", kDriveRemovable}, {"E:\\", kDriveRemote}};
  }
  // The drives that were looked through.
  std::vector<std::string> Start(bool done = true) {
    std::vector<std::string> asked;
    RemoveLeftFillers(record, drives, [&](const std::string& drive) {
      asked.push_back(drive);
      return done;
    });
    return asked;
  }

  test::FakeFiles files;
  test::FakeDrives drives;
  AppState state;
  FillerRecord record{DataFolder(files, state)};
};

TEST_F(FillerRecordTest, IsThereOnlyWhileThereIsSomethingToRemember) {
  EXPECT_THAT(record.Drives(), IsEmpty());
  record.Add("D:\\");
  record.Add("C:\\");
  record.Add("D:\\");
  EXPECT_EQ(files.Read(kPath), "D:\\C:\\");
  EXPECT_THAT(record.Drives(), ElementsAre("D:\\", "C:\\"));
  record.Drop("D:\\");
  record.Drop("E:\\");
  EXPECT_EQ(files.Read(kPath), "C:\\");
  record.Drop("C:\\");
  EXPECT_FALSE(files.Exists(kPath));
}

TEST_F(FillerRecordTest, IsNothingWhenItIsNotOurs) {
  for (const std::string bytes :
       {"", "D", "D:", "D:\\C", "d:\\", "D:/", "\\\\s", "D:\\\r\n", "C:\\Windows", "1:\\"}) {
    files.AddFile(kPath, bytes);
    EXPECT_THAT(record.Drives(), IsEmpty()) << bytes;
    EXPECT_THAT(Start(), IsEmpty());
  }
  std::string many;
  for (int i = 0; i < 27; ++i) many += "D:\\";
  files.AddFile(kPath, many);
  EXPECT_THAT(record.Drives(), IsEmpty());
}

TEST_F(FillerRecordTest, CannotKeepAWipeFromItsWork) {
  record.Add("folder");
  EXPECT_FALSE(files.Exists(kPath));
  files.unwritable.insert(kPath);
  record.Add("D:\\");
  EXPECT_THAT(record.Drives(), IsEmpty());
  files.unwritable.clear();
  record.Add("D:\\");
  files.unreadable.insert(kPath);
  EXPECT_THAT(record.Drives(), IsEmpty());
  record.Drop("D:\\");
  EXPECT_TRUE(files.Exists(kPath));
}

TEST_F(FillerRecordTest, LooksThroughEachDriveOnceAndForgetsIt) {
  EXPECT_THAT(Start(), IsEmpty()) << "without a record nothing is looked at";
  record.Add("D:\\");
  record.Add("C:\\");
  EXPECT_THAT(Start(), ElementsAre("D:\\", "C:\\"));
  EXPECT_FALSE(files.Exists(kPath));
  EXPECT_THAT(Start(), IsEmpty());
}

TEST_F(FillerRecordTest, KeepsTheDrivesThatItIsNotDoneWith) {
  record.Add("D:\\");
  EXPECT_THAT(Start(false), ElementsAre("D:\\"));
  EXPECT_THAT(record.Drives(), ElementsAre("D:\\"));
}

TEST_F(FillerRecordTest, WaitsForNoDriveThatIsNotThereOrMayNotAnswer) {
  record.Add("E:\\");
  record.Add("F:\\");
  record.Add("D:\\");
  EXPECT_THAT(Start(), ElementsAre("D:\\"));
  EXPECT_THAT(record.Drives(), ElementsAre("E:\\", "F:\\"));
}

}  // namespace
}  // namespace zq
