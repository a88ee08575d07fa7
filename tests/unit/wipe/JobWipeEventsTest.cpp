// What the engine's events do during a job wipe.
#include "unit/wipe/JobWipeFixture.h"

namespace zq {
namespace {

using test::FolderRow;
using testing::ElementsAre;
using testing::IsEmpty;

using JobWipeEventsTest = test::JobWipeTest;

TEST_F(JobWipeEventsTest, AnEmptyFileLeavesTheBarOfTheCurrentItemAlone) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  engine.work = [](const std::string& path, WipeEvents& events) {
    events.SFD1_WipeProgress(0, 0, 0, path);
    events.SFD1_ItemWiped(path);
  };
  Run();
  EXPECT_THAT(LogOf("status: current"), ElementsAre("status: current 0"));  // the report phase's
  EXPECT_THAT(LogOf("status: overall"),
              ElementsAre("status: overall 0", "status: overall 50", "status: overall 0"));
}

TEST_F(JobWipeEventsTest, FilesThatWereNotCountedCarryTheOverallBarPastAHundred) {
  for (int i = 1; i <= 50; ++i) files.AddFile("C:\\Papers\\" + std::to_string(i) + ".doc");
  files.AddFile("C:\\Papers\\README");
  files.AddFile("C:\\Papers\\LICENCE");
  jobList.Add(FolderRow("C:\\Papers"));
  engine.work = [](const std::string& path, WipeEvents& events) {
    for (int i = 1; i <= 52; ++i) events.SFD1_ItemWiped(path);
    events.SFD1_WipeProgress(6, 6, 0, path);
  };
  Run();
  EXPECT_EQ(state.TotalWipeItems, FixedPoint(50));
  EXPECT_THAT(LogOf("status: overall"), ElementsAre("status: overall 104", "status: overall 0"));
  EXPECT_THAT(LogOf("status: caption"), ElementsAre("status: caption 104% - Wipe Operation"));
}

TEST_F(JobWipeEventsTest, DuringAFreeSpaceWipeProgressOfFilesIsNotShown) {
  state.FreeSpaceActive = true;
  wipe.SFD1_WipeProgress(1, 2, 0, "C:\\a.txt");
  EXPECT_THAT(log, IsEmpty());
}

}  // namespace
}  // namespace zq
