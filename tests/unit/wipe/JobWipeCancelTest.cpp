// How a cancel travels from the progress window to the engine, the driver and the report.
#include "unit/wipe/JobWipeFixture.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FileRow;
using test::FolderRow;
using test::kCancelled;
using test::kCancelLine;
using test::kComplete;
using test::kConfirmation;
using test::kFormerReport;
using test::kReport;
using testing::ElementsAre;

using JobWipeCancelTest = test::JobWipeTest;

TEST_F(JobWipeCancelTest, ACancelEndsTheRunAfterItsRow) {
  for (const char* path : {"C:\\1.txt", "C:\\2.txt", "C:\\3.txt"}) AddFile(path);
  CancelWhileIn("C:\\2.txt");
  engine.failures["C:\\2.txt"] = "Cancelled";
  Run();
  EXPECT_THAT(LogOf("Wipe"), ElementsAre("WipeFile C:\\1.txt 3", "WipeFile C:\\2.txt 3"));
  EXPECT_THAT(LogOf("CancelOperation"), testing::SizeIs(1));
  EXPECT_TRUE(jobList.Row(1).Ghosted);
  EXPECT_FALSE(jobList.Row(2).Ghosted);
  EXPECT_FALSE(jobList.Row(3).Ghosted);
  EXPECT_EQ(Report(),
            std::string("\"Untitled Job\"\r\n\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n"
                        "\"C:\\1.txt\"\r\n\"C:\\2.txt\"\r\n\"[ERRORS]\"\r\n\"C:\\2.txt - Cancelled\"\r\n") +
                kCancelLine);
  EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation, kCancelled));
}

TEST_F(JobWipeCancelTest, ACancelReachesTheEngineWhileItsMemberRuns) {
  AddFile("C:\\a.txt");
  CancelWhileIn("C:\\a.txt");
  Run();
  const auto call = std::find(log.begin(), log.end(), "WipeFile C:\\a.txt 3");
  EXPECT_THAT(std::vector<std::string>(call, log.end()),
              ElementsAre("WipeFile C:\\a.txt 3",                                 //
                          "status: text Processed 1 bytes of 6 of C:\\a.txt...",  //
                          "status: current 17", "status: overall 17",             //
                          "status: caption 17% - Wipe Operation", "pump", "CancelOperation",
                          // the row's own pump, then the report in a window that nobody sees
                          "pump", "status: cancel off", "status: current 0", "status: overall 0",
                          "status: text Creating Report Data...Please Wait...", "status: repaint",
                          "write C:\\Zeroquill\\Report\\Report.dat", "report: load", "main: show",
                          "status: unload", "box Wipe Operation"));
}

TEST_F(JobWipeCancelTest, ACancelInTheLastRowIsACancelToo) {
  AddFile("C:\\1.txt");
  AddFile("C:\\2.txt");
  CancelWhileIn("C:\\2.txt");
  Run();
  // The engine finished the file all the same: no error line of its own.
  EXPECT_THAT(Report(), testing::EndsWith(std::string("\"C:\\2.txt\"\r\n\"[ERRORS]\"\r\n") + kCancelLine));
  EXPECT_TRUE(jobList.Row(2).Ghosted);
  EXPECT_EQ(boxes.shown.back(), kCancelled);
}

TEST_F(JobWipeCancelTest, ACancelDuringAFolderEndsTheRunAfterIt) {
  for (const char* mask : {"*.*", "*.doc"}) {
    jobList.Clear();
    files.AddFile("C:\\Papers\\a.doc");
    jobList.Add(FolderRow("C:\\Papers", mask));
    AddFile("C:\\b.txt");
    CancelWhileIn("C:\\Papers");
    engine.failures["C:\\Papers"] = "Cancelled";
    log.clear();
    Run();
    EXPECT_EQ(LogOf("Wipe").size(), 1U);
    EXPECT_FALSE(jobList.Row(1).Ghosted);
    EXPECT_EQ(
        Report(),
        std::string("\"Untitled Job\"\r\n\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n\"C:\\Papers\"\r\n"
                    "\"[FILES]\"\r\n\"[ERRORS]\"\r\n\"C:\\Papers - Cancelled\"\r\n") +
            kCancelLine);
    EXPECT_EQ(boxes.shown.back(), kCancelled);
  }
}

TEST_F(JobWipeCancelTest, ACancelBetweenTwoRowsIsSeenAtOnce) {
  AddFile("C:\\1.txt");
  AddFile("C:\\2.txt");
  process.onPump = [this] {
    if (log[log.size() - 2].starts_with("WipeFile")) wipe.CancelOperation();
  };
  Run();
  EXPECT_THAT(LogOf("Wipe"), ElementsAre("WipeFile C:\\1.txt 3"));
  EXPECT_EQ(boxes.shown.back(), kCancelled);
}

TEST_F(JobWipeCancelTest, AReportListHolds32767Entries) {
  files.AddFile("C:\\a.txt");
  for (int i = 1; i <= 32767; ++i) jobList.Add(FileRow("C:\\a.txt"));
  engine.failures["C:\\a.txt"] = "In use";
  Run();
  EXPECT_EQ(LogOf("Wipe").size(), 32767U);
  EXPECT_EQ(boxes.shown.back(), kComplete);

  // A cancel in the last row has one line more to add.
  files.Find(kReport)->content = kFormerReport;
  process.onPump = [this] {
    if (state.ReportErrors.Count() == 32767) wipe.CancelOperation();
  };
  ExpectRaises(ErrorNumber::Overflow, [this] { Run(); });
  EXPECT_EQ(Report(), kFormerReport);
}

TEST_F(JobWipeCancelTest, ACancelIsToldToTheEngineAndTheDriver) {
  // The engine first: what it raises on the way must not find a driver that has stopped already.
  engine.onCancel = [this] { EXPECT_FALSE(state.CancelRequested); };
  wipe.CancelOperation();
  EXPECT_THAT(log, ElementsAre("CancelOperation"));
  EXPECT_TRUE(state.CancelRequested);
}

}  // namespace
}  // namespace zq
