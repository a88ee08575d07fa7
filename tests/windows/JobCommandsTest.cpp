// The commands of the open job through the main window's tools and its own dialogs.
#include <gtest/gtest.h>

#include <algorithm>

#include "Driving.h"
#include "controls/MessageLoop.h"
#include "core/main/frmMain.h"
#include "core/state/Settings.h"
#include "jobs/FileMask.h"
#include "jobs/frmEdit.h"
#include "jobs/frmFolder.h"
#include "jobs/frmNew.h"
#include "jobs/frmOpenJob.h"
#include "jobs/frmSave.h"
#include "support/driver/Scratch.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

constexpr char kMonthly[] =
    "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\Papers\"\r\n\"*.doc\"\r\n\"Yes\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n";

class JobCommandsTest : public testing::Test {
 protected:
  void SetUp() override {
    fake_.files.AddFolder("C:\\Zeroquill");
    fake_.files.AddFile("C:\\Zeroquill\\Settings.dat", EncodeSettings({}));
    fake_.files.AddFile("C:\\Zeroquill\\Settings2.dat",
                        EncodePlacement({.Width = 12000, .Height = 6000, .Left = 0, .Top = 0}));
    fake_.files.AddFile("C:\\Zeroquill\\sfrun.dat");
    fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
    fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Monthly.zqj", kMonthly);
    fake_.files.AddFolder("C:\\Papers");
    fake_.files.AddFile("C:\\a.txt", "content");
    Default<frmMain>::SetFactory([this] { return std::make_unique<frmMain>(state_, fake_.platform); });
    Default<frmFolder>::SetFactory(
        [this] { return std::make_unique<frmFolder>(state_, fake_.platform, Jobs()); });
    Default<frmEdit>::SetFactory(
        [this] { return std::make_unique<frmEdit>(state_, fake_.platform, Jobs()); });
    Default<frmNew>::SetFactory([this] { return std::make_unique<frmNew>(state_); });
    Default<frmSave>::SetFactory([this] { return std::make_unique<frmSave>(state_, fake_.platform); });
    Default<frmOpenJob>::SetFactory([this] { return std::make_unique<frmOpenJob>(state_, fake_.platform); });
  }
  void TearDown() override {
    state_.Settings.PromptToSave = 0;
    if (Default<frmMain>::IsLoaded()) Default<frmMain>::Touch().Unload();
    Form::DestroyClosed();
  }

  static frmMain& Main() { return Default<frmMain>::Touch(); }
  static JobList& Jobs() { return Main().Jobs(); }
  void Open(const std::string& commandLine = "") {
    fake_.process.commandLine = commandLine;
    Main().Show();
    PumpMessages();
  }
  static void Click(const char* tool) { Main().DockStudio1.ToolClick(tool); }
  static void DoubleClick() {
    NMITEMACTIVATE notification{};
    notification.hdr = {Main().ListView1.Handle(), IDC_frmMain_ListView1, static_cast<UINT>(NM_DBLCLK)};
    ::SendMessageA(static_cast<Form&>(Main()).Handle(), WM_NOTIFY, IDC_frmMain_ListView1,
                   reinterpret_cast<LPARAM>(&notification));
  }
  std::vector<std::string> Listed() const {
    std::vector<std::string> paths;
    for (int row = 1; row <= static_cast<int>(Jobs().Count()); ++row)
      paths.push_back(Jobs().Row(row).NameAndLocation);
    return paths;
  }

  ScratchFolder scratch_;
  FakePlatform fake_;
  AppState state_;
};

TEST_F(JobCommandsTest, AddFolderStartsAtTheFolderOfTheLastTime) {
  Open();
  state_.Settings.LastFolder = scratch_.Path();
  Later([] { Press(Default<frmFolder>::Touch(), IDC_frmFolder_cmdOK); });
  Click("AddFolder");
  EXPECT_EQ(Listed(), std::vector<std::string>{scratch_.Path()});
  EXPECT_TRUE(Main().DockStudio1.IsEnabled("WipeNow"));
}

TEST_F(JobCommandsTest, AddFolderWithoutAFolderOfTheLastTimeHasNothingToAdd) {
  Open();
  bool enabled = true;
  Later([&] {
    enabled = IsEnabled(Default<frmFolder>::Touch(), IDC_frmFolder_cmdOK);
    Press(Default<frmFolder>::Touch(), IDC_frmFolder_cmdCancel);
  });
  Click("mnuActionsAddFolder");
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(Listed().empty());
}

TEST_F(JobCommandsTest, EachFolderOfTheCommandLineGetsItsDialogOneAfterTheOther) {
  scratch_.Make("One\\a.txt", "a");
  scratch_.Make("Two\\a.txt", "a");
  const std::string one = scratch_ / "One";
  const std::string two = scratch_ / "Two";
  for (const std::string& path : {one, two}) fake_.files.AddFolder(path);
  std::vector<std::string> before;
  Later([&] {
    before = Listed();
    Later([&] { Press(Default<frmFolder>::Touch(), IDC_frmFolder_cmdOK); });
    Type(Default<frmFolder>::Touch(), IDC_frmFolder_txtMask, "*.doc");
    Press(Default<frmFolder>::Touch(), IDC_frmFolder_cmdOK);
  });
  Open("C:\\a.txt \"" + one + "\" C:\\b.txt \"" + two + "\"");
  EXPECT_EQ(before, std::vector<std::string>{"C:\\a.txt"}) << "in their order";
  EXPECT_EQ(Listed(), (std::vector<std::string>{"C:\\a.txt", one, "C:\\b.txt", two}));
  EXPECT_EQ(Jobs().Row(2), MakeFolderRow(one, "*.doc", false));
  EXPECT_EQ(Jobs().Row(4), MakeFolderRow(two, "*.*", false));
}

TEST_F(JobCommandsTest, JobOfTheCommandLineIsOpenedAndItsPathIsNoItem) {
  Open("\"C:\\Zeroquill\\Jobs\\Monthly.zqj\"");
  EXPECT_EQ(state_.CurrentJobName, "Monthly");
  EXPECT_TRUE(state_.JobSaved);
  EXPECT_EQ(Listed(), (std::vector<std::string>{"C:\\Papers", "C:\\a.txt"}));
  EXPECT_TRUE(Main().DockStudio1.IsEnabled("mnuFileDelete"));
  EXPECT_EQ(Main().ListView1.RowCount(), 2);
}

TEST_F(JobCommandsTest, OpenListsTheJobsAndLoadsTheChosenOne) {
  Open();
  Later([] { Press(Default<frmOpenJob>::Touch(), IDC_frmOpenJob_cmdOK); });
  Click("OpenJob");
  EXPECT_EQ(state_.CurrentJobName, "Monthly");
  EXPECT_EQ(Jobs().Count(), 2U);
  EXPECT_EQ(Jobs().Row(1), MakeFolderRow("C:\\Papers", "*.doc", true));
}

TEST_F(JobCommandsTest, SaveAsksForANameAndWritesTheJob) {
  Open("C:\\a.txt");
  Later([] {
    Type(Default<frmSave>::Touch(), IDC_frmSave_txtName, "Tax");
    Press(Default<frmSave>::Touch(), IDC_frmSave_cmdOK);
  });
  Click("SaveJob");
  EXPECT_EQ(fake_.files.Read("C:\\Zeroquill\\Jobs\\Tax.zqj"),
            "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n");
  EXPECT_TRUE(state_.JobSaved);
  EXPECT_TRUE(Main().DockStudio1.IsEnabled("mnuFileDelete"));
}

TEST_F(JobCommandsTest, NewShowsItsNoteUntilItIsSwitchedOff) {
  Open();
  Later([] {
    Press(Default<frmNew>::Touch(), IDC_frmNew_chkShow);
    Press(Default<frmNew>::Touch(), IDC_frmNew_cmdOK);
  });
  Click("NewJob");
  EXPECT_EQ(state_.Settings.SkipNewJobNote, 1);
  Click("mnuFileNew");
  EXPECT_FALSE(Default<frmNew>::IsLoaded());
}

TEST_F(JobCommandsTest, DeleteRemovesTheFileOfTheOpenJob) {
  Open("C:\\Zeroquill\\Jobs\\Monthly.zqj");
  fake_.boxes.answers = {MessageAnswer::Ok};
  Click("mnuFileDelete");
  EXPECT_FALSE(fake_.files.Exists("C:\\Zeroquill\\Jobs\\Monthly.zqj"));
  EXPECT_TRUE(Listed().empty());
  EXPECT_EQ(Main().ListView1.RowCount(), 0);
}

TEST_F(JobCommandsTest, CloseAsksToSaveAndOnCancelChangesNothing) {
  Open("C:\\a.txt");
  fake_.boxes.answers = {MessageAnswer::Cancel};
  Click("mnuFileClose");
  EXPECT_EQ(Listed(), std::vector<std::string>{"C:\\a.txt"});
  fake_.boxes.answers = {MessageAnswer::No};
  Click("mnuFileClose");
  EXPECT_TRUE(Listed().empty());
}

TEST_F(JobCommandsTest, ExitStaysWhenTheQuestionIsCancelled) {
  Open("C:\\a.txt");
  fake_.boxes.answers = {MessageAnswer::Cancel};
  Close(Main());
  EXPECT_TRUE(Default<frmMain>::IsLoaded());
  EXPECT_EQ(Listed(), std::vector<std::string>{"C:\\a.txt"});
  fake_.boxes.answers = {MessageAnswer::No};
  Close(Main());
  EXPECT_FALSE(Default<frmMain>::IsLoaded());
  EXPECT_EQ(fake_.files.log.back(), "end");
}

TEST_F(JobCommandsTest, EditShowsTheSelectedFolderRowAndChangesIt) {
  Open("C:\\Zeroquill\\Jobs\\Monthly.zqj");
  Main().ListView1.SelectRow(1);
  Jobs().UserSelected(1);
  std::string folder;
  std::string mask;
  bool ticked = false;
  Later([&] {
    frmEdit& form = Default<frmEdit>::Touch();
    folder = TextOf(form, IDC_frmEdit_lblFolder);
    mask = TextOf(form, IDC_frmEdit_txtMask);
    ticked = IsTicked(form, IDC_frmEdit_chkSub);
    Type(form, IDC_frmEdit_txtMask, "*.*");
    Press(form, IDC_frmEdit_cmdOK);
  });
  Click("mnuActionsEdit");
  EXPECT_EQ(folder, "C:\\Papers");
  EXPECT_EQ(mask, "*.doc");
  EXPECT_TRUE(ticked);
  EXPECT_EQ(Jobs().Row(1), MakeFolderRow("C:\\Papers", "*.*", true));
  EXPECT_FALSE(state_.JobSaved);
}

TEST_F(JobCommandsTest, DoubleClickEditsAFolderRowAndPassesOverAllElse) {
  Open("C:\\Zeroquill\\Jobs\\Monthly.zqj");
  DoubleClick();  // nothing is selected
  Jobs().UserSelected(2);
  DoubleClick();  // a file
  EXPECT_FALSE(Default<frmEdit>::IsLoaded());
  Jobs().UserSelected(1);
  bool shown = false;
  Later([&] {
    shown = Default<frmEdit>::Touch().IsVisible();
    Press(Default<frmEdit>::Touch(), IDC_frmEdit_cmdCancel);
  });
  DoubleClick();
  EXPECT_TRUE(shown);
  EXPECT_TRUE(state_.JobSaved);
}

}  // namespace
}  // namespace zq::test
