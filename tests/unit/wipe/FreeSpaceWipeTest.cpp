#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "jobs/JobList.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakeLongWork.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/JobWipe.h"
#include "wipe/WipeHandlers.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Message kConfirmation{
    "This operation will securely wipe the free space on drive D:\\.  The operation can take some time for "
    "larger drives.\r\n\r\nAre you sure you wish to continue?",
    "Wipe Operation", MessageIcon::Question, MessageButtons::OkCancel};
const Message kCancelled{"The drive wipe operation was cancelled.", "Cancelled", MessageIcon::Information,
                         MessageButtons::Ok};

Message ErrorBox(const std::string& details) {
  return {"An error was encountered wiping drive D:\\.\r\n\r\nError Details: " + details, "Error",
          MessageIcon::Information, MessageButtons::Ok};
}

Message CompleteBox(const std::string& started, const std::string& ended, const std::string& level,
                    const std::string& kb) {
  return {"Drive D:\\ has been successfully wiped.\r\n\r\nDetails:\r\n\r\nWipe Started:  " + started +
              "\r\nWipe Ended:  " + ended + "\r\nSecurity Level:  " + level + "\r\nFree Space Wiped:  " + kb +
              " KB",
          "Free Space Wipe Complete", MessageIcon::Information, MessageButtons::Ok};
}

class FreeSpaceWipeTest : public testing::Test, protected test::FakePlatform {
 protected:
  FreeSpaceWipeTest() {
    jobWipe.SetEngine(&engine);
    wipe.SetEngine(&engine);
    state.AppFolder = "C:\\Zeroquill\\";
    files.AddFolder("C:\\Zeroquill");
    state.FreeSpaceDrive = "D:\\";
    state.FreeSpacePasses = 5;
    state.Settings.Passes = 3;
  }

  void Run() {
    boxes.shown.clear();
    boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
    wipe.RunFreeSpaceWipe();
    EXPECT_THAT(boxes.answers, IsEmpty());
  }

  void Work(std::function<void(WipeEvents&)> work) {
    engine.work = [work = std::move(work)](const std::string&, WipeEvents& events) { work(events); };
  }

  AppState state;
  JobList jobList{regional};
  test::FakeMainWindow mainWindow{log};
  test::FakeStatusWindow jobStatus{log};
  test::FakeFreeSpaceStatusWindow statusWindow{log};
  JobWipe jobWipe{state, jobList, platform, mainWindow, jobStatus, nullptr};
  FreeSpaceWipe wipe{state, platform, mainWindow, statusWindow};
  WipeHandlers handlers{jobWipe, wipe};
  test::FakeEngine engine{log, handlers};
};

TEST_F(FreeSpaceWipeTest, AsksFirstAndOnCancelChangesNothing) {
  state.FreeSpaceError = "of the run before";
  state.CancelRequested = true;
  boxes.answers = {MessageAnswer::Cancel};
  wipe.RunFreeSpaceWipe();
  EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation));
  EXPECT_THAT(log, ElementsAre("box Wipe Operation"));
  EXPECT_FALSE(state.FreeSpaceActive);
  EXPECT_EQ(state.FreeSpaceError, "of the run before");
  EXPECT_TRUE(state.CancelRequested);
}

TEST_F(FreeSpaceWipeTest, RunsStepAfterStepAndTellsTheSuccess) {
  state.FreeSpaceError = "of the run before";
  state.CancelRequested = true;
  regional.now = "11/22/2026 1:02:03 AM";
  Work([&](WipeEvents& events) {
    EXPECT_TRUE(state.FreeSpaceActive);
    EXPECT_EQ(state.FreeSpaceError, "");
    EXPECT_FALSE(state.CancelRequested);
    events.SFD1_FreeSpaceProgress("x", 50, 617283, 1234567);
    regional.now = "11/22/2026 4:05:06 AM";
  });
  Run();
  EXPECT_THAT(log, ElementsAre("box Wipe Operation", "space: show", "main: hide",
                               "record C:\\Zeroquill\\FreeSpace.dat", "WipeFreeSpace D:\\ 5",
                               "space: text Wiped 617,283 KB of 1,234,567 KB...", "space: current 50",
                               "space: caption 50% - Wipe Drive Free Space (D:\\)", "pump",
                               "remove C:\\Zeroquill\\FreeSpace.dat", "main: show", "space: unload",
                               "box Free Space Wipe Complete"));
  EXPECT_THAT(boxes.shown,
              ElementsAre(kConfirmation,
                          CompleteBox("11/22/2026 1:02:03 AM", "11/22/2026 4:05:06 AM", "5", "1,234,567")));
  EXPECT_TRUE(state.FreeSpaceActive) << "until the next job wipe";
  EXPECT_EQ(state.Settings.Passes, 3) << "the level is this operation's alone";
}

TEST_F(FreeSpaceWipeTest, IsToldToTheSystemFromTheConfirmationToTheEnd) {
  test::FakeLongWork longWork{log};
  Platform telling{files, boxes, process, regional, registry, longWork};
  FreeSpaceWipe told{state, telling, mainWindow, statusWindow};
  WipeHandlers toldHandlers{jobWipe, told};
  test::FakeEngine toldEngine{log, toldHandlers};
  told.SetEngine(&toldEngine);
  toldEngine.work = [](const std::string&, WipeEvents& events) {
    events.SFD1_FreeSpaceProgress("x", 50, 4, 8);
    events.SFD1_FreeSpaceProgress("x", 117, 4, 8);
  };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  told.RunFreeSpaceWipe();
  std::vector<std::string> steps;
  for (const std::string& line : log) {
    if (!line.starts_with("space: ") && line != "pump") steps.push_back(line);
  }
  EXPECT_THAT(steps,
              ElementsAre("box Wipe Operation",
                          "work: begin: Free space is being wiped.  Cancel the wipe operation first, or "
                          "let it come to its end.",
                          "main: hide", "record C:\\Zeroquill\\FreeSpace.dat", "WipeFreeSpace D:\\ 5",
                          "work: 50", "work: 100", "remove C:\\Zeroquill\\FreeSpace.dat", "main: show",
                          "work: end", "work: call", "box Free Space Wipe Complete"));
}

TEST_F(FreeSpaceWipeTest, GrowthOfTheFreeSpaceIsShownAsAFullBar) {
  Work([](WipeEvents& events) { events.SFD1_FreeSpaceProgress("x", 117, 5, 20); });
  Run();
  EXPECT_THAT(
      std::vector<std::string>(log.begin() + 5, log.begin() + 9),
      ElementsAre("space: text Drive contents changed.  Now including any additional free space in "
                  "the wipe operation.  Please wait...117%...",
                  "space: current 100", "space: caption 100% - Wipe Drive Free Space (D:\\)", "pump"));
  EXPECT_EQ(boxes.shown[1], CompleteBox(regional.now, regional.now, "5", "20"));
}

TEST_F(FreeSpaceWipeTest, MessagesArePumpedAfterEachEventAndLast) {
  Work([&](WipeEvents& events) {
    for (const std::int32_t percent : {0, 100, 101}) {
      events.SFD1_FreeSpaceProgress("x", percent, 0, 8);
      EXPECT_EQ(log.back(), "pump") << percent;
    }
  });
  Run();
}

TEST_F(FreeSpaceWipeTest, ErrorIsToldWithItsDetails) {
  Work([](WipeEvents& events) { events.SFD1_WipeError(5, "Can't write: access is denied (5)."); });
  Run();
  EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation, ErrorBox("Can't write: access is denied (5).")));
}

TEST_F(FreeSpaceWipeTest, LastErrorWinsAndOneWithoutANumberIsNone) {
  Work([](WipeEvents& events) {
    events.SFD1_WipeError(5, "first");
    events.SFD1_WipeError(-1, "second");
    events.SFD1_WipeError(0, "third");
  });
  Run();
  EXPECT_EQ(boxes.shown[1], ErrorBox("second"));
}

TEST_F(FreeSpaceWipeTest, ErrorOfTheRunBeforeIsForgotten) {
  Work([](WipeEvents& events) { events.SFD1_WipeError(5, "once"); });
  Run();
  engine.work = nullptr;
  Run();
  EXPECT_EQ(boxes.shown[1].title, "Free Space Wipe Complete");
}

TEST_F(FreeSpaceWipeTest, EngineThatFailsWithoutAnEventReadsAsASuccess) {
  engine.failures["D:\\"] = "it failed";
  Run();
  EXPECT_EQ(boxes.shown[1].title, "Free Space Wipe Complete");
}

TEST_F(FreeSpaceWipeTest, CancelOutranksAnError) {
  Work([&](WipeEvents& events) {
    events.SFD1_WipeError(5, "broken");
    wipe.CancelOperation();
  });
  Run();
  EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation, kCancelled));
}

TEST_F(FreeSpaceWipeTest, CancelGetsThroughInThePumpOfAnEvent) {
  bool pressed = false;
  process.onPump = [&] {
    if (!std::exchange(pressed, true)) wipe.CancelOperation();
  };
  Work([&](WipeEvents& events) {
    events.SFD1_FreeSpaceProgress("x", 1, 1, 100);
    EXPECT_EQ(log.back(), "CancelOperation");
    EXPECT_TRUE(state.CancelRequested);
  });
  Run();
  EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation, kCancelled));
}

TEST_F(FreeSpaceWipeTest, TotalOfZeroInAllEventsLeavesAGap) {
  Work([](WipeEvents& events) { events.SFD1_FreeSpaceProgress("x", 100, 0, 0); });
  Run();
  EXPECT_EQ(boxes.shown[1], CompleteBox(regional.now, regional.now, "5", ""));
}

TEST_F(FreeSpaceWipeTest, RunWithoutAnEventTellsTheTotalOfTheRunBefore) {
  Work([](WipeEvents& events) { events.SFD1_FreeSpaceProgress("x", 100, 4096, 4096); });
  Run();
  engine.work = nullptr;
  Run();
  EXPECT_EQ(boxes.shown[1], CompleteBox(regional.now, regional.now, "5", "4,096"));
}

TEST_F(FreeSpaceWipeTest, LastTotalThatWasToldIsTheOneInTheClosingBox) {
  Work([](WipeEvents& events) {
    events.SFD1_FreeSpaceProgress("x", 10, 1, 2000);
    events.SFD1_FreeSpaceProgress("x", 101, 1, 3000);
  });
  Run();
  EXPECT_EQ(boxes.shown[1], CompleteBox(regional.now, regional.now, "5", "3,000"));
}

TEST_F(FreeSpaceWipeTest, ErrorOfAJobWipeIsNotKept) {
  handlers.SFD1_WipeError(5, "Access denied");
  EXPECT_EQ(state.FreeSpaceError, "");
  EXPECT_THAT(log, IsEmpty());
}

// A kill in the middle leaves the record, and so does a failure, which may be one to remove a filler.
TEST_F(FreeSpaceWipeTest, RemembersTheDriveUntilItHasComeToItsEnd) {
  constexpr char kRecord[] = "C:\\Zeroquill\\FreeSpace.dat";
  Work([&](WipeEvents&) { EXPECT_EQ(files.Read(kRecord), "D:\\"); });
  Run();
  EXPECT_FALSE(files.Exists(kRecord));
  Work([](WipeEvents& events) { events.SFD1_WipeError(5, "Removing failed"); });
  Run();
  EXPECT_EQ(files.Read(kRecord), "D:\\");
  Work([](WipeEvents&) {});
  Run();
  EXPECT_FALSE(files.Exists(kRecord));
}

TEST_F(FreeSpaceWipeTest, ProgressOfFilesIsNotShownWhileItRuns) {
  Work([](WipeEvents& events) {
    events.SFD1_WipeProgress(1, 2, 0, "filler");
    events.SFD1_ItemWiped("filler");
  });
  Run();
  EXPECT_THAT(log, ElementsAre("box Wipe Operation", "space: show", "main: hide",
                               "record C:\\Zeroquill\\FreeSpace.dat", "WipeFreeSpace D:\\ 5",
                               "remove C:\\Zeroquill\\FreeSpace.dat", "main: show", "space: unload",
                               "box Free Space Wipe Complete"));
}

// The system is told how far it is, and for how long the computer must not go to sleep.
class FreeSpaceLongWorkTest : public FreeSpaceWipeTest {
 protected:
  FreeSpaceLongWorkTest() { watched.SetEngine(&watchedEngine); }

  std::vector<std::string> Told() const {
    std::vector<std::string> lines;
    for (const std::string& line : log) {
      if (line.starts_with("work: ") || line.starts_with("box ") || line.starts_with("Wipe"))
        lines.push_back(line);
    }
    return lines;
  }

  test::FakeLongWork longWork{log};
  Platform watchedPlatform{files, boxes, process, regional, registry, longWork};
  FreeSpaceWipe watched{state, watchedPlatform, mainWindow, statusWindow};
  WipeHandlers watchedHandlers{jobWipe, watched};
  test::FakeEngine watchedEngine{log, watchedHandlers};
};

TEST_F(FreeSpaceLongWorkTest, EndsWhereAHandlerFails) {
  watchedEngine.work = [](const std::string&, WipeEvents&) { throw RunTimeError(ErrorNumber::Overflow); };
  boxes.answers = {MessageAnswer::Ok};
  test::ExpectRaises(ErrorNumber::Overflow, [&] { watched.RunFreeSpaceWipe(); });
  EXPECT_EQ(log.back(), "work: end");
}

TEST_F(FreeSpaceLongWorkTest, DoesNotBeginWithoutAnOk) {
  boxes.answers = {MessageAnswer::Cancel};
  watched.RunFreeSpaceWipe();
  EXPECT_THAT(Told(), ElementsAre("box Wipe Operation"));
}

TEST_F(FreeSpaceWipeTest, WithoutAnEngineItFails) {
  wipe.SetEngine(nullptr);
  test::ExpectRaises(ErrorNumber::ObjectVariableNotSet, [&] { wipe.RunFreeSpaceWipe(); });
  EXPECT_THAT(boxes.shown, IsEmpty());
}

}  // namespace
}  // namespace zq
