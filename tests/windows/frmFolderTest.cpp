#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Driving.h"
#include "jobs/FileMask.h"
#include "jobs/JobList.h"
#include "jobs/frmFolder.h"
#include "support/driver/Scratch.h"
#include "support/fakes/FakeHelp.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

class frmFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    Default<frmFolder>::SetFactory(
        [this] { return std::make_unique<frmFolder>(state_, fake_.platform, jobList_, &help_); });
  }
  void TearDown() override {
    if (Default<frmFolder>::IsLoaded()) Default<frmFolder>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmFolder& Open() { return Default<frmFolder>::Touch(); }
  frmFolder& OpenAt(const std::string& path) {
    frmFolder& form = Open();
    form.FT1.SelectPath(path);
    return form;
  }
  static bool IsTopmost(Form& form) {
    return (::GetWindowLongA(form.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
  }

  ScratchFolder scratch_;
  FakePlatform fake_;
  AppState state_;
  JobList jobList_{fake_.regional};
  EventLog asked_;
  FakeHelp help_{asked_};
};

TEST_F(frmFolderTest, OpensWithItsTexts) {
  Form& form = Open();
  EXPECT_EQ(CaptionOf(form), "Add Folder");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_Label1),
            "This option allows you to add a folder to be wiped.  Caution should be used when defining an "
            "entire folder to be wiped.  Select the Help button for full information on adding a folder.");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_Label2), "File Mask:");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_txtMask), "*.*");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_Label3), "*.* means all files found in the folder");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_chkSub), "Process any found sub folders beneath chosen folder");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_cmdOK), "&OK");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_cmdCancel), "&Cancel");
  EXPECT_EQ(TextOf(form, IDC_frmFolder_cmdHelp), "&Help");
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmFolder_cmdOK);
}

TEST_F(frmFolderTest, TabGoesFromTheTreeDownToTheButtons) {
  Form& form = OpenAt("C:\\");
  form.Show();
  EXPECT_EQ(TabOrder(form),
            (std::vector<int>{IDC_frmFolder_FT1, IDC_frmFolder_txtMask, IDC_frmFolder_chkSub,
                              IDC_frmFolder_cmdOK, IDC_frmFolder_cmdCancel, IDC_frmFolder_cmdHelp}));
}

TEST_F(frmFolderTest, TicksTheSubFoldersAsTheSettingsRememberThem) {
  EXPECT_FALSE(IsTicked(Open(), IDC_frmFolder_chkSub));
  Open().Unload();
  state_.Settings.IncludeSubFolders = 1;
  EXPECT_TRUE(IsTicked(Open(), IDC_frmFolder_chkSub));
}

TEST_F(frmFolderTest, AddsTheSelectedFolderAndRemembersIt) {
  state_.JobSaved = true;
  frmFolder& form = OpenAt(scratch_.Path());
  Type(form, IDC_frmFolder_txtMask, " *.doc ");
  Press(form, IDC_frmFolder_chkSub);
  Press(form, IDC_frmFolder_cmdOK);
  EXPECT_FALSE(Default<frmFolder>::IsLoaded());
  ASSERT_EQ(jobList_.Count(), 1U);
  EXPECT_EQ(jobList_.Row(1), MakeFolderRow(scratch_.Path(), "*.doc", true));
  EXPECT_EQ(jobList_.SelectedRow(), 1);
  EXPECT_FALSE(state_.JobSaved);
  EXPECT_EQ(state_.Settings.LastFolder.Trimmed(), scratch_.Path());
  EXPECT_EQ(state_.Settings.IncludeSubFolders, 1);
}

TEST_F(frmFolderTest, CancelAndTheCloseBoxChangeNothing) {
  const SettingsRecord before = state_.Settings;
  for (const bool byCloseBox : {false, true}) {
    frmFolder& form = OpenAt(scratch_.Path());
    Press(form, IDC_frmFolder_chkSub);
    if (byCloseBox) {
      Close(form);
    } else {
      Press(form, IDC_frmFolder_cmdCancel);
    }
    EXPECT_FALSE(Default<frmFolder>::IsLoaded());
    EXPECT_EQ(jobList_.Count(), 0U);
    EXPECT_EQ(state_.Settings, before);
  }
}

TEST_F(frmFolderTest, OkIsForNodesThatCarryAPath) {
  frmFolder& form = Open();
  EXPECT_FALSE(IsEnabled(form, IDC_frmFolder_cmdOK)) << "the desktop is selected";
  form.FT1.SelectPath(scratch_.Path());
  EXPECT_TRUE(IsEnabled(form, IDC_frmFolder_cmdOK));
  form.FT1.SelectDesktop();
  EXPECT_FALSE(IsEnabled(form, IDC_frmFolder_cmdOK));
}

TEST_F(frmFolderTest, OkIsNotForAPathThatTheTreeCantShow) {
  for (const std::string& path : {scratch_ / "none", std::string("none"), std::string("\\\\?\\unix\\usr")}) {
    frmFolder& form = OpenAt(path);
    EXPECT_FALSE(IsEnabled(form, IDC_frmFolder_cmdOK)) << path;
    form.Unload();
  }
}

TEST_F(frmFolderTest, OkIsForAMaskThatIsNotBlank) {
  frmFolder& form = OpenAt(scratch_.Path());
  Type(form, IDC_frmFolder_txtMask, "   ");
  EXPECT_FALSE(IsEnabled(form, IDC_frmFolder_cmdOK));
  Type(form, IDC_frmFolder_txtMask, "x");
  EXPECT_TRUE(IsEnabled(form, IDC_frmFolder_cmdOK));
}

TEST_F(frmFolderTest, TypingAMaskEnablesOkForTheLastFolderThatCarriedAPath) {
  frmFolder& form = OpenAt(scratch_.Path());
  form.FT1.SelectDesktop();
  Type(form, IDC_frmFolder_txtMask, "*.txt");
  Press(form, IDC_frmFolder_cmdOK);
  ASSERT_EQ(jobList_.Count(), 1U);
  EXPECT_EQ(jobList_.Row(1).NameAndLocation, scratch_.Path());
}

TEST_F(frmFolderTest, ImproperMaskIsRefusedAndTheMaskGetsTheFocus) {
  frmFolder& form = OpenAt(scratch_.Path());
  form.Show();
  Type(form, IDC_frmFolder_txtMask, "*.html");
  form.FT1.SetFocus();
  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(form, IDC_frmFolder_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(FolderVerdict::ImproperMask)});
  EXPECT_EQ(::GetFocus(), Item(form, IDC_frmFolder_txtMask));
  EXPECT_EQ(SelectionOf(form, IDC_frmFolder_txtMask), std::make_pair(DWORD{0}, DWORD{6}));
  EXPECT_TRUE(Default<frmFolder>::IsLoaded());
  EXPECT_EQ(jobList_.Count(), 0U);
}

TEST_F(frmFolderTest, WholeDriveIsRefused) {
  frmFolder& form = OpenAt("C:\\");
  form.Show();
  fake_.boxes.answers = {MessageAnswer::Ok};
  form.FT1.SetFocus();
  Press(form, IDC_frmFolder_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(FolderVerdict::WholeDriveAdded)});
  EXPECT_NE(::GetFocus(), Item(form, IDC_frmFolder_txtMask));
  EXPECT_TRUE(Default<frmFolder>::IsLoaded());
  EXPECT_EQ(jobList_.Count(), 0U);
}

TEST_F(frmFolderTest, RootDriveWithANarrowerMaskIsAskedAbout) {
  frmFolder& form = OpenAt("C:\\");
  Type(form, IDC_frmFolder_txtMask, "*.tmp");
  fake_.boxes.answers = {MessageAnswer::Cancel};
  Press(form, IDC_frmFolder_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(FolderVerdict::RootDriveAdded)});
  EXPECT_TRUE(Default<frmFolder>::IsLoaded());
  EXPECT_EQ(jobList_.Count(), 0U);

  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(form, IDC_frmFolder_cmdOK);
  EXPECT_FALSE(Default<frmFolder>::IsLoaded());
  ASSERT_EQ(jobList_.Count(), 1U);
  EXPECT_EQ(jobList_.Row(1).NameAndLocation, "C:\\");
}

TEST_F(frmFolderTest, SameFolderCanBeAddedTwice) {
  for (int i = 0; i < 2; ++i) Press(OpenAt(scratch_.Path()), IDC_frmFolder_cmdOK);
  EXPECT_EQ(jobList_.Count(), 2U);
}

TEST_F(frmFolderTest, StaysAboveOtherWindowsUntilHelpIsAskedFor) {
  frmFolder& form = Open();
  EXPECT_TRUE(IsTopmost(form)) << "from its load on";
  form.Show();
  EXPECT_TRUE(IsTopmost(form));
  Press(form, IDC_frmFolder_cmdHelp);
  EXPECT_FALSE(IsTopmost(form));
  EXPECT_THAT(asked_, testing::ElementsAre("help: topic 5"));
  EXPECT_TRUE(Default<frmFolder>::IsLoaded());
}

// Help of which nothing comes, since its file is missing, has taken the window down all the same: the box
// that says so must be seen.
TEST_F(frmFolderTest, IsBelowTheTopmostWindowsBeforeHelpIsAskedFor) {
  struct LookingHelp final : Help {
    void ShowTopic(int) override { topmost = IsTopmost(Default<frmFolder>::Touch()); }
    void ShowContents() override {}
    void ShowWebPage() override {}
    bool topmost = true;
  } help;
  Default<frmFolder>::SetFactory(
      [&] { return std::make_unique<frmFolder>(state_, fake_.platform, jobList_, &help); });
  Open().Show();
  Press(Open(), IDC_frmFolder_cmdHelp);
  EXPECT_FALSE(help.topmost);
}

TEST_F(frmFolderTest, F1AsksForNoHelp) {
  frmFolder& form = Open();
  form.Show();
  PostKey(form, VK_F1);
  EXPECT_THAT(asked_, testing::IsEmpty());
  EXPECT_TRUE(IsTopmost(form));
}

TEST_F(frmFolderTest, FocusOnTheMaskSelectsAllOfIt) {
  frmFolder& form = Open();
  form.Show();
  ::SetFocus(Item(form, IDC_frmFolder_txtMask));
  EXPECT_EQ(SelectionOf(form, IDC_frmFolder_txtMask), std::make_pair(DWORD{0}, DWORD{3}));
}

}  // namespace
}  // namespace zq::test
