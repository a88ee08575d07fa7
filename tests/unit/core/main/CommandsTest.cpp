// What the commands decide and do, with windows that a test plays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/main/Commands.h"
#include "core/state/AppState.h"
#include "jobs/AddFiles.h"
#include "jobs/FileIcons.h"
#include "jobs/FileMask.h"
#include "jobs/JobLifecycle.h"
#include "jobs/JobList.h"
#include "platform/Platform.h"
#include "preferences/ExplorerManager.h"
#include "support/ExpectRaises.h"
#include "support/Rows.h"
#include "support/fakes/FakeCommandWindows.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakeHelp.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakeJobDialogs.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeToolStates.h"
#include "support/fakes/FakeWindows.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/JobWipe.h"
#include "wipe/WipeHandlers.h"

namespace zq {
namespace {

using test::FileRow;
using test::FolderRow;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kReport = "C:\\Zeroquill\\Report\\Report.dat";
const Message kNoReport{"There is no report available to view at this time.", "No Report",
                        MessageIcon::Information, MessageButtons::Ok};
const Message kBinBusy{"An operation is currently being performed.  The QuickWipe Bin cannot be closed.",
                       "Operation", MessageIcon::Exclamation, MessageButtons::Ok};

class CommandsTest : public testing::Test, protected test::FakePlatform {
 protected:
  CommandsTest() {
    state.AppFolder = "C:\\Zeroquill\\";
    jobWipe.SetEngine(&engine);
    freeSpaceWipe.SetEngine(&engine);
  }

  void Answer(MessageAnswer answer) { boxes.answers = {answer}; }
  // The rows 1 to `count`, of which `selected` is selected.
  void List(int count, int selected) {
    for (int row = 1; row <= count; ++row) jobList.Add(FileRow("C:\\" + std::to_string(row) + ".txt"));
    jobList.UserSelected(selected);
    state.JobSaved = true;
  }
  std::vector<std::string> Paths() const {
    std::vector<std::string> paths;
    for (int row = 1; row <= jobList.RowLoopEnd(); ++row) paths.push_back(jobList.Row(row).NameAndLocation);
    return paths;
  }
  // Whether the tools were brought in step since the log was cleared.
  bool ToolsUpdated() const {
    for (const std::string& line : log) {
      if (line.starts_with("Static3=")) return true;
    }
    return false;
  }

  AppState state;
  JobList jobList{regional};
  test::FakeIconPainter painter;
  FileIcons icons{painter, regional};
  test::FakeToolStates tools{log};
  test::FakeJobDialogs dialogs{log};
  test::FakeCommandWindows windows{log};
  test::FakeMainWindow mainWindow{log};
  test::FakeStatusWindow statusWindow{log};
  test::FakeFreeSpaceStatusWindow spaceStatusWindow{log};
  test::FakeReportViewer reportViewer{log};
  test::FakeHelp help{log};
  AddFiles addFiles{state, jobList, files, icons, regional, &windows};
  JobLifecycle jobLifecycle{state, jobList, platform, icons, tools, dialogs};
  JobWipe jobWipe{state, jobList, platform, mainWindow, statusWindow, &reportViewer};
  FreeSpaceWipe freeSpaceWipe{state, platform, mainWindow, spaceStatusWindow};
  ExplorerManager explorerManager{state, platform};
  WipeHandlers handlers{jobWipe, freeSpaceWipe};
  test::FakeEngine engine{log, handlers};
  CommandParts parts{.state = state,
                     .jobList = jobList,
                     .platform = platform,
                     .tools = tools,
                     .addFiles = addFiles,
                     .jobLifecycle = jobLifecycle,
                     .jobWipe = jobWipe,
                     .freeSpaceWipe = freeSpaceWipe,
                     .explorerManager = explorerManager,
                     .mainWindow = mainWindow,
                     .folderDialog = windows,
                     .windows = windows,
                     .reportViewer = &reportViewer,
                     .help = &help};
  Commands commands{parts};
};

TEST_F(CommandsTest, EachToolRunsItsOperation) {
  const std::pair<std::vector<std::string_view>, const char*> kSeen[] = {
      {{"AddFiles", "mnuActionsAddFiles"}, "Add Files in C:\\"},
      {{"AddFolder", "mnuActionsAddFolder"}, "frmFolder at \"\""},
      {{"NewJob", "mnuFileNew"}, "frmNew"},
      {{"OpenJob", "mnuFileOpen"}, "frmOpenJob"},
      {{"SaveJob", "mnuFileSave"}, "frmSave"},
      {{"mnuFileClose"}, "Static2="},
      {{"mnuFileDelete"}, "box Delete Job"},
      {{"mnuFileExit"}, "main: close"},
      {{"mnuFileView"}, "box No Report"},
      {{"mnuFilePreferences"}, "frmPreferences"},
      {{"mnuFileLaunch"}, "start C:\\Zeroquill\\ZQExMan.exe"},
      {{"mnuHelpAbout"}, "frmAbout"},
      {{"mnuHelpContents"}, "help: contents"},
      {{"mnuHelpWebPage"}, "help: web page"},
      {{"WipeNow", "mnuActionsWipeNow"}, "box No Items Found"},
      {{"WipeFreeSpace", "mnuActionsWipeFreeSpace"}, "frmDriveWipe"},
  };
  state.Settings.LastFilesFolder = "C:\\";
  for (const auto& [names, seen] : kSeen) {
    for (const std::string_view name : names) {
      log.clear();
      Answer(MessageAnswer::Cancel);
      commands.Run(name);
      EXPECT_THAT(log, Contains(seen)) << name;
    }
  }
}

TEST_F(CommandsTest, ToolThatIsNotInTheTableDoesNothing) {
  List(1, 1);
  log.clear();
  for (const std::string_view name : {"", "Unknown", "wipenow", "mnuFile", "Static3"}) commands.Run(name);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(CommandsTest, AddFilesStartsInTheFolderOfTheLastTimeAndAddsWhatIsChosen) {
  state.Settings.LastFilesFolder = "D:\\Letters\\";
  windows.choice.fileName = "D:\\Letters\\one.txt";
  commands.AddFilesDialog();
  EXPECT_EQ(log.front(), "Add Files in D:\\Letters\\");
  EXPECT_THAT(Paths(), ElementsAre("D:\\Letters\\one.txt"));
  EXPECT_THAT(log, Contains("busy"));
  EXPECT_TRUE(tools.enabledTools["WipeNow"]);
}

TEST_F(CommandsTest, AddFilesThatIsCancelledAddsNothingButBringsTheToolsInStep) {
  commands.AddFilesDialog();
  EXPECT_EQ(jobList.Count(), 0U);
  EXPECT_THAT(log, Not(Contains("busy")));
  EXPECT_TRUE(ToolsUpdated());
}

TEST_F(CommandsTest, MoreFilesThanTheDialogCanGiveAreToldAndNoneIsAdded) {
  windows.choice = {.tooMany = true, .fileName = "C:\\cut off.txt"};
  Answer(MessageAnswer::Ok);
  commands.AddFilesDialog();
  EXPECT_EQ(jobList.Count(), 0U);
  ASSERT_EQ(boxes.shown.size(), 1U);
  EXPECT_EQ(boxes.shown[0].title, "Add Files");
  EXPECT_EQ(boxes.shown[0].icon, MessageIcon::Exclamation);
  EXPECT_TRUE(ToolsUpdated());
}

TEST_F(CommandsTest, AddFolderStartsAtTheFolderOfTheLastTimeWithoutItsPadding) {
  state.Settings.LastFolder = "C:\\Papers";
  windows.inFolder = [this] { AddFolderItem(state, jobList, "C:\\Papers\\Old", "*.*", true); };
  commands.AddFolder();
  EXPECT_EQ(log.front(), "frmFolder at \"C:\\Papers\"");
  EXPECT_THAT(Paths(), ElementsAre("C:\\Papers\\Old"));
  EXPECT_TRUE(tools.enabledTools["WipeNow"]);
}

TEST_F(CommandsTest, EditIsOfTheSelectedRow) {
  jobList.Add(FolderRow("C:\\One"));
  jobList.Add(FolderRow("C:\\Two"));
  jobList.UserSelected(2);
  commands.Run("mnuActionsEdit");
  EXPECT_EQ(log.back(), "frmEdit of C:\\Two");
}

TEST_F(CommandsTest, EditWithoutASelectedRowRaises) {
  test::ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { commands.EditFolderItem(); });
}

TEST_F(CommandsTest, DoubleClickEditsAFolderRowAlone) {
  commands.ListDoubleClicked();  // nothing is listed
  jobList.Add(FolderRow("C:\\Papers"));
  jobList.Add(FileRow("C:\\a.txt"));
  for (const int row : {0, 2}) {
    jobList.UserSelected(row);
    commands.ListDoubleClicked();
  }
  EXPECT_THAT(log, IsEmpty());
  jobList.UserSelected(1);
  commands.ListDoubleClicked();
  EXPECT_THAT(log, ElementsAre("frmEdit of C:\\Papers"));
}

TEST_F(CommandsTest, RemoveAsksAndTakesTheRowOnYes) {
  List(3, 2);
  Answer(MessageAnswer::Yes);
  commands.Run("mnuActionsRemove");
  EXPECT_EQ(boxes.shown[0], (Message{"Remove C:\\2.txt from your listing?", "Remove Item",
                                     MessageIcon::Question, MessageButtons::YesNo}));
  EXPECT_THAT(Paths(), ElementsAre("C:\\1.txt", "C:\\3.txt"));
  EXPECT_EQ(jobList.SelectedRow(), 2) << "the row that took its place";
  EXPECT_FALSE(state.JobSaved);
  EXPECT_TRUE(ToolsUpdated());
}

TEST_F(CommandsTest, RemoveOfTheLastRowSelectsTheOneBefore) {
  List(3, 3);
  Answer(MessageAnswer::Yes);
  commands.RemoveSelectedItem();
  EXPECT_EQ(jobList.SelectedRow(), 2);
}

TEST_F(CommandsTest, RemoveOfTheOnlyRowLeavesNothingToWipe) {
  List(1, 1);
  Answer(MessageAnswer::Yes);
  commands.RemoveSelectedItem();
  EXPECT_EQ(jobList.Count(), 0U);
  EXPECT_EQ(jobList.SelectedRow(), 0);
  EXPECT_FALSE(tools.enabledTools["WipeNow"]);
}

TEST_F(CommandsTest, RemoveKeepsTheRowOnAnyOtherAnswer) {
  for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Cancel}) {
    jobList.Clear();
    List(2, 1);
    Answer(answer);
    log.clear();
    commands.RemoveSelectedItem();
    EXPECT_EQ(jobList.Count(), 2U);
    EXPECT_TRUE(state.JobSaved);
    EXPECT_TRUE(ToolsUpdated());
  }
}

TEST_F(CommandsTest, RemoveWithoutASelectedRowSaysSo) {
  List(2, 0);
  Answer(MessageAnswer::Ok);
  commands.RemoveSelectedItem();
  EXPECT_THAT(
      boxes.shown,
      ElementsAre(Message{"No item is selected.  Select the item that you wish to remove from your listing.",
                          "Remove Item", MessageIcon::Information, MessageButtons::Ok}));
  EXPECT_EQ(jobList.Count(), 2U);
  EXPECT_TRUE(state.JobSaved);
  EXPECT_TRUE(ToolsUpdated());
}

TEST_F(CommandsTest, ReportIsShownIfThereIsOne) {
  files.AddFile(kReport, "");
  commands.Run("mnuFileView");
  EXPECT_THAT(log, ElementsAre("report: show"));
}

TEST_F(CommandsTest, MissingReportIsToldAndSoIsAFolderOfItsName) {
  Answer(MessageAnswer::Ok);
  commands.ViewReport();
  files.AddFolder(kReport);
  Answer(MessageAnswer::Ok);
  commands.ViewReport();
  EXPECT_THAT(boxes.shown, ElementsAre(kNoReport, kNoReport));
  EXPECT_THAT(log, Not(Contains("report: show")));
}

TEST_F(CommandsTest, ReportThatFailsToShowIsToldAsNone) {
  struct Failing final : ReportViewer {
    void Load() override {}
    void ShowModal() override { throw RunTimeError(ErrorNumber::InputPastEndOfFile); }
  };
  Failing failing;
  CommandParts others = parts;
  others.reportViewer = &failing;
  Commands failingCommands{others};
  files.AddFile(kReport, "");
  Answer(MessageAnswer::Ok);
  failingCommands.ViewReport();
  EXPECT_THAT(boxes.shown, ElementsAre(kNoReport));
}

TEST_F(CommandsTest, ReportWithoutAWindowForItIsNotToldAsNone) {
  CommandParts others = parts;
  others.reportViewer = nullptr;
  Commands windowless{others};
  files.AddFile(kReport, "");
  windowless.ViewReport();
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(CommandsTest, ClosedBinIsOpenedAndTheMainWindowMinimised) {
  mainWindow.windowState = kWindowMaximised;
  commands.Run("mnuFileQuickWipeBin");
  EXPECT_THAT(log, ElementsAre("x mnuFileQuickWipeBin", "main: state 1", "frmQuick"));
  EXPECT_EQ(state.SavedWindowState, kWindowMaximised);
}

TEST_F(CommandsTest, OpenBinIsClosedAndTheMainWindowAsItWasAtItsOpening) {
  state.QuickBinOpen = true;
  state.SavedWindowState = kWindowMaximised;
  mainWindow.windowState = kWindowNormal;  // the user has brought it back meanwhile
  commands.Run("mnuFileQuickWipeBin");
  EXPECT_THAT(log, ElementsAre("o mnuFileQuickWipeBin", "main: state 2", "frmQuick: close"));
}

TEST_F(CommandsTest, BusyBinIsNotToggledAndSaysSo) {
  state.QuickBinBusy = true;
  Answer(MessageAnswer::Ok);
  commands.Run("mnuFileQuickWipeBin");
  EXPECT_THAT(boxes.shown, ElementsAre(kBinBusy));
  EXPECT_THAT(log, ElementsAre("box Operation"));
}

TEST_F(CommandsTest, ActionsMenuBringsEditInStepAsItOpens) {
  jobList.Add(FolderRow("C:\\Papers"));
  jobList.UserSelected(1);
  for (const std::string_view other : {"mnuHelp", "other"}) commands.MenuOpening(other);
  EXPECT_THAT(log, IsEmpty());
  commands.MenuOpening("mnuActions");
  EXPECT_TRUE(tools.enabledTools["mnuActionsEdit"]);
}

TEST_F(CommandsTest, FileMenuOffersToLaunchTheManagerWhileItDoesNotRun) {
  commands.MenuOpening("mnuFile");
  EXPECT_THAT(log, ElementsAre("+mnuFileLaunch"));
  systemWindows.windows = {{"ZQ Explorer Manager"}};
  EXPECT_TRUE(tools.enabledTools["mnuFileLaunch"]) << "until the menu opens again";
  commands.MenuOpening("mnuFile");
  EXPECT_THAT(log, ElementsAre("+mnuFileLaunch", "-mnuFileLaunch"));
  systemWindows.windows.clear();
  commands.MenuOpening("mnuFile");
  EXPECT_TRUE(tools.enabledTools["mnuFileLaunch"]);
}

TEST_F(CommandsTest, ExitAsksToSaveAndStaysOnCancel) {
  List(1, 1);
  state.JobSaved = false;
  Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(commands.CloseForExit());
  EXPECT_EQ(jobList.Count(), 1U);
  Answer(MessageAnswer::No);
  EXPECT_TRUE(commands.CloseForExit());
  EXPECT_EQ(jobList.Count(), 0U);
}

TEST_F(CommandsTest, ExitIsRefusedWhileAJobIsWipedAndTheJobStays) {
  files.AddFile("C:\\1.txt", "secret");
  files.AddFolder("C:\\Zeroquill\\Report");
  List(1, 1);
  bool refused = false;
  engine.work = [&](const std::string&, WipeEvents&) {
    refused = !commands.CloseForExit();
    EXPECT_EQ(jobList.Count(), 1U);
  };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::No};
  commands.Run("WipeNow");
  EXPECT_TRUE(refused);
  EXPECT_THAT(boxes.answers, IsEmpty());
  EXPECT_TRUE(commands.CloseForExit()) << "the wipe is over";
}

TEST_F(CommandsTest, FreeSpaceIsWipedIfADriveCameBack) {
  windows.inDriveWipe = [this] {
    state.FreeSpaceDrive = "D:\\";
    state.FreeSpacePasses = 5;
  };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  commands.Run("WipeFreeSpace");
  EXPECT_THAT(log, ElementsAre("frmDriveWipe", "box Wipe Operation", "space: show", "main: hide",
                               "record C:\\Zeroquill\\FreeSpace.dat", "WipeFreeSpace D:\\ 5", "main: show",
                               "space: unload", "box Free Space Wipe Complete"));
}

TEST_F(CommandsTest, FreeSpaceIsLeftAloneIfNoDriveCameBack) {
  state.FreeSpaceDrive = "D:\\";
  windows.inDriveWipe = [this] { state.FreeSpaceDrive = ""; };
  commands.Run("mnuActionsWipeFreeSpace");
  EXPECT_THAT(log, ElementsAre("frmDriveWipe"));
}

TEST_F(CommandsTest, FreeSpaceWipeKeepsTheJobAsItIs) {
  files.AddFile("C:\\1.txt", "secret");
  List(1, 1);
  state.ReportFiles.Add("C:\\former.txt");
  windows.inDriveWipe = [this] { state.FreeSpaceDrive = "D:\\"; };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  commands.Run("WipeFreeSpace");
  EXPECT_THAT(Paths(), ElementsAre("C:\\1.txt"));
  EXPECT_THAT(state.ReportFiles.Items(), ElementsAre("C:\\former.txt"));
  EXPECT_FALSE(files.Exists(kReport)) << "no report is written";
  EXPECT_EQ(files.Read("C:\\1.txt"), "secret");
}

TEST_F(CommandsTest, ExitIsRefusedWhileFreeSpaceIsWiped) {
  bool refused = false;
  bool sessionHeld = false;
  engine.work = [&](const std::string&, WipeEvents&) {
    refused = !commands.CloseForExit();
    sessionHeld = !commands.AllowSessionEnd();
  };
  windows.inDriveWipe = [this] { state.FreeSpaceDrive = "D:\\"; };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  commands.Run("WipeFreeSpace");
  EXPECT_TRUE(refused);
  EXPECT_TRUE(sessionHeld);
  EXPECT_TRUE(commands.CloseForExit()) << "the wipe is over";
}

}  // namespace
}  // namespace zq
