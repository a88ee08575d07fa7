// The drop wipe step by step, with an engine that destroys nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/RunTimeError.h"
#include "quickbin/DropWipe.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeToolStates.h"
#include "support/fakes/FakeWindows.h"

namespace zq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// The Bin's window: a line in the log for each call, with whether the Bin is busy at that moment.
class FakeBin final : public QuickBinWindow {
 public:
  FakeBin(test::EventLog& log, const AppState& state) : log_(log), state_(state) {}
  void SetCancelEnabled(bool enabled) override { Add(enabled ? "cancel on" : "cancel off"); }
  void SetDropEnabled(bool enabled) override { Add(enabled ? "drop on" : "drop off"); }
  void ShowStatusProgress(bool show) override { Add(show ? "bar" : "no bar"); }
  void SetMessage(const std::string& text) override { Add("panel " + text); }
  void SetProgress(int percent) override { Add(std::to_string(percent) + "%"); }

 private:
  void Add(const std::string& line) { log_.push_back((state_.QuickBinBusy ? "busy: " : "idle: ") + line); }
  test::EventLog& log_;
  const AppState& state_;
};

class DropWipeTest : public testing::Test, protected test::FakePlatform {
 protected:
  DropWipeTest() {
    wipe.SetEngine(&engine, &whole);
    state.Settings.Passes = 5;
  }
  // What the window and the engine were told, without the files' attributes.
  std::vector<std::string> Told() const {
    std::vector<std::string> told;
    for (const std::string& line : log) {
      if (!line.starts_with("attributes")) told.push_back(line);
    }
    return told;
  }
  // The panel and the bar on an event of the engine.
  std::vector<std::string> OnProgress(std::int32_t done, std::int32_t total) {
    log.clear();
    wipe.SFD1_WipeProgress(done, total, 0, "a.txt");
    return log;
  }

  AppState state;
  FakeBin bin{log, state};
  DropWipe wipe{state, platform, bin};
  test::FakeEngine engine{log, wipe};
  test::FakeWholeWipes whole{log};
};

TEST_F(DropWipeTest, GoesStepByStep) {
  files.AddFile("C:\\a.txt", "a");
  files.AddFile("C:\\b.txt", "b");
  wipe.Drop({"C:\\b.txt", "C:\\a.txt"});
  EXPECT_THAT(log, ElementsAre("idle: cancel off", "idle: drop off", "idle: bar", "BeginWhole",
                               "attributes C:\\b.txt 128", "WipeFile C:\\b.txt 5", "attributes C:\\a.txt 128",
                               "WipeFile C:\\a.txt 5", "EndWhole", "busy: panel Last Operation: Success",
                               "busy: no bar", "busy: drop on", "idle: cancel on"));
  EXPECT_FALSE(state.QuickBinBusy);
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_THAT(log, Not(Contains("pump")));
}

TEST_F(DropWipeTest, PassesOverFoldersWithoutAWord) {
  files.AddFolder("C:\\Papers");
  files.AddFile("C:\\Papers\\one.txt", "one");
  files.AddFile("C:\\a.txt", "a");
  wipe.Drop({"C:\\Papers", "C:\\a.txt"});
  EXPECT_THAT(log, Contains("WipeFile C:\\a.txt 5"));
  EXPECT_THAT(log, Not(Contains("WipeFile C:\\Papers 5")));
  EXPECT_THAT(log, Contains("busy: panel Last Operation: Success"));
}

TEST_F(DropWipeTest, OfFoldersAloneOrOfNothingIsASuccess) {
  files.AddFolder("C:\\Papers");
  for (const std::vector<std::string>& paths : {std::vector<std::string>{"C:\\Papers"}, {}}) {
    log.clear();
    wipe.Drop(paths);
    EXPECT_THAT(log, ElementsAre("idle: cancel off", "idle: drop off", "idle: bar",
                                 "busy: panel Last Operation: Success", "busy: no bar", "busy: drop on",
                                 "idle: cancel on"));
  }
}

// What a file turns into while others are wiped changes nothing any more.
TEST_F(DropWipeTest, CollectsAllBeforeTheFirstIsTouched) {
  files.AddFile("C:\\a.txt", "a");
  files.AddFile("C:\\b.txt", "b");
  engine.work = [&](const std::string& path, WipeEvents&) {
    if (path != "C:\\a.txt") return;
    files.Delete("C:\\b.txt");
    files.AddFolder("C:\\b.txt");
  };
  wipe.Drop({"C:\\a.txt", "C:\\b.txt"});
  EXPECT_THAT(log, Contains("WipeFile C:\\b.txt 5"));
}

TEST_F(DropWipeTest, FailureIsKeptAndTheNextFileFollows) {
  engine.failures = {{"C:\\locked.txt", "It is in use."}, {"C:\\gone.txt", "It isn't there."}};
  wipe.Drop({"C:\\locked.txt", "C:\\a.txt", "C:\\gone.txt"});
  EXPECT_THAT(wipe.Errors(), ElementsAre("C:\\locked.txt - It is in use.", "C:\\gone.txt - It isn't there."));
  EXPECT_THAT(log, Contains("WipeFile C:\\a.txt 5"));
  EXPECT_THAT(log, Contains("WipeFile C:\\gone.txt 5")) << "a path that isn't there is handed on, too";
  EXPECT_THAT(log, Contains("busy: panel Last Operation: Errors"));
}

TEST_F(DropWipeTest, ErrorsLastUntilTheNextDrop) {
  engine.failures = {{"C:\\locked.txt", "It is in use."}};
  wipe.Drop({"C:\\locked.txt"});
  EXPECT_EQ(wipe.Errors().size(), 1U);
  wipe.Drop({"C:\\a.txt"});
  EXPECT_THAT(wipe.Errors(), IsEmpty());
}

TEST_F(DropWipeTest, OfAThousandFilesWipesEachOnceInItsOrder) {
  std::vector<std::string> paths;
  std::vector<std::string> wanted;
  for (int i = 0; i < 1000; ++i) {
    paths.push_back("C:\\" + std::to_string(i) + ".txt");
    wanted.push_back("WipeFile " + paths.back() + " 5");
  }
  wipe.Drop(paths);
  std::vector<std::string> wiped;
  for (const std::string& line : log) {
    if (line.starts_with("WipeFile")) wiped.push_back(line);
  }
  EXPECT_EQ(wiped, wanted);
  EXPECT_EQ(std::ranges::count(log, "BeginWhole"), 1) << "all of them are one operation";
  EXPECT_THAT(log, Not(Contains("pump")));
}

TEST_F(DropWipeTest, LevelIsThatOfTheSettingsAtTheDrop) {
  wipe.Drop({"C:\\a.txt"});
  state.Settings.Passes = 7;
  wipe.Drop({"C:\\a.txt"});
  EXPECT_THAT(log, Contains("WipeFile C:\\a.txt 5"));
  EXPECT_THAT(log, Contains("WipeFile C:\\a.txt 7"));
}

TEST_F(DropWipeTest, NextDropWipesItsOwnFilesAlone) {
  wipe.Drop({"C:\\a.txt"});
  log.clear();
  wipe.Drop({"C:\\b.txt"});
  EXPECT_THAT(log, Contains("WipeFile C:\\b.txt 5"));
  EXPECT_THAT(log, Not(Contains("WipeFile C:\\a.txt 5")));
}

TEST_F(DropWipeTest, AttributesThatStayAreNotToldByThemselves) {
  files.AddFile("C:\\a.txt", "a", kAttributeReadOnly);
  files.keepAttributes = {"C:\\a.txt"};
  wipe.Drop({"C:\\a.txt"});
  EXPECT_THAT(log, Contains("WipeFile C:\\a.txt 5"));
  EXPECT_THAT(wipe.Errors(), IsEmpty());
}

TEST_F(DropWipeTest, WhatTheEngineCannotEndIsAnError) {
  whole.ends = false;
  engine.lastErrorText = "The log could not be cleared.";
  wipe.Drop({"C:\\a.txt"});
  EXPECT_THAT(wipe.Errors(), ElementsAre("The log could not be cleared."));
  EXPECT_THAT(log, Contains("busy: panel Last Operation: Errors"));
}

TEST_F(DropWipeTest, PathOfAnotherNameSpaceIsNotTouched) {
  const std::string path = R"(\\?\Volume{6a8c8c2e-0000-0000-0000-100000000000}\a.txt)";
  files.AddFile(path, "a");
  wipe.Drop({path});
  EXPECT_THAT(Told(), Not(Contains("WipeFile " + path + " 5")));
  EXPECT_EQ(wipe.Errors().size(), 1U);
}

TEST_F(DropWipeTest, MoreFilesThanCanBeCountedRaiseBeforeTheFirstIsTouched) {
  test::ExpectRaises(ErrorNumber::Overflow, [&] { wipe.Drop(std::vector<std::string>(32768, "C:\\a.txt")); });
  EXPECT_THAT(Told(), ElementsAre("idle: cancel off", "idle: drop off", "idle: bar"));
}

TEST_F(DropWipeTest, WholeEndsWithWhatAHandlerRaises) {
  engine.work = [](const std::string&, WipeEvents&) { throw RunTimeError(ErrorNumber::OutOfMemory); };
  test::ExpectRaises(ErrorNumber::OutOfMemory, [&] { wipe.Drop({"C:\\a.txt"}); });
  EXPECT_EQ(log.back(), "EndWhole");
}

TEST_F(DropWipeTest, WithoutAnEngineItRaisesAndChangesNothing) {
  wipe.SetEngine(nullptr, nullptr);
  test::ExpectRaises(ErrorNumber::ObjectVariableNotSet, [&] { wipe.Drop({"C:\\a.txt"}); });
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(DropWipeTest, TouchesNeitherTheJobNorTheReport) {
  state.JobSaved = false;
  state.ReportFiles.Add("C:\\former.txt");
  engine.failures = {{"C:\\a.txt", "It is in use."}};
  wipe.Drop({"C:\\a.txt"});
  EXPECT_FALSE(state.JobSaved);
  EXPECT_THAT(state.ReportFiles.Items(), ElementsAre("C:\\former.txt"));
  EXPECT_THAT(state.ReportErrors.Items(), IsEmpty());
  EXPECT_FALSE(files.Exists("Report\\Report.dat"));
}

TEST_F(DropWipeTest, ProgressShowsTheNameAndTheShare) {
  EXPECT_THAT(OnProgress(0, 200), ElementsAre("idle: panel a.txt", "idle: 0%"));
  EXPECT_THAT(OnProgress(101, 200), ElementsAre("idle: panel a.txt", "idle: 50%")) << "50.5 to the even side";
  EXPECT_THAT(OnProgress(103, 200), ElementsAre("idle: panel a.txt", "idle: 52%")) << "51.5 to the even side";
  EXPECT_THAT(OnProgress(200, 200), ElementsAre("idle: panel a.txt", "idle: 100%"));
  EXPECT_THAT(OnProgress(300, 200), ElementsAre("idle: panel a.txt", "idle: 100%"));
}

TEST_F(DropWipeTest, EmptyFileLeavesTheBarAsItStands) {
  EXPECT_THAT(OnProgress(0, 0), ElementsAre("idle: panel a.txt"));
}

TEST_F(DropWipeTest, WorkElsewhereIsNamedAndLeavesTheBarAsItStands) {
  wipe.SFD1_WorkElsewhere("Clearing the log");
  EXPECT_THAT(log, ElementsAre("idle: panel Clearing the log"));
}

TEST_F(DropWipeTest, LeavingBringsBackTheMainWindowAndTheTool) {
  test::FakeMainWindow mainWindow{log};
  test::FakeToolStates tools{log};
  state.QuickBinOpen = true;
  state.SavedWindowState = kWindowMaximised;
  LeaveQuickBin(state, mainWindow, tools);
  EXPECT_THAT(log, ElementsAre("main: state 2", "o mnuFileQuickWipeBin"));
  EXPECT_FALSE(state.QuickBinOpen);
}

}  // namespace
}  // namespace zq
