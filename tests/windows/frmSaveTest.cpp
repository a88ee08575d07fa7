#include <gtest/gtest.h>

#include "Driving.h"
#include "jobs/JobName.h"
#include "jobs/frmSave.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

class frmSaveTest : public testing::Test {
 protected:
  void SetUp() override {
    state_.AppFolder = "C:\\Zeroquill\\";
    fake_.files.AddFolder("C:\\Zeroquill");
    fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
    fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Monthly.zqj");
    Default<frmSave>::SetFactory([this] { return std::make_unique<frmSave>(state_, fake_.platform); });
  }
  void TearDown() override {
    if (Default<frmSave>::IsLoaded()) Default<frmSave>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmSave& OpenWith(const std::string& name) {
    frmSave& form = Default<frmSave>::Touch();
    form.Show();
    Type(form, IDC_frmSave_txtName, name);
    ::SetFocus(Item(form, IDC_frmSave_cmdOK));
    return form;
  }

  FakePlatform fake_;
  AppState state_;
};

TEST_F(frmSaveTest, OpensWithItsTextsAndOkDisabled) {
  frmSave& form = Default<frmSave>::Touch();
  EXPECT_EQ(CaptionOf(form), "Save Job");
  EXPECT_EQ(TextOf(form, IDC_frmSave_Label1), "Enter a Name for your Wiping Job:");
  EXPECT_EQ(TextOf(form, IDC_frmSave_txtName), "");
  EXPECT_EQ(TextOf(form, IDC_frmSave_cmdOK), "&OK");
  EXPECT_EQ(TextOf(form, IDC_frmSave_cmdCancel), "&Cancel");
  EXPECT_FALSE(IsEnabled(form, IDC_frmSave_cmdOK));
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmSave_cmdOK);
  Type(form, IDC_frmSave_txtName, "x");
  EXPECT_EQ(TabOrder(form),
            (std::vector<int>{IDC_frmSave_txtName, IDC_frmSave_cmdOK, IDC_frmSave_cmdCancel}));
}

TEST_F(frmSaveTest, OkIsForANameThatIsNotBlank) {
  frmSave& form = OpenWith("a");
  EXPECT_TRUE(IsEnabled(form, IDC_frmSave_cmdOK));
  Type(form, IDC_frmSave_txtName, "  ");
  EXPECT_FALSE(IsEnabled(form, IDC_frmSave_cmdOK));
}

TEST_F(frmSaveTest, OkTakesTheNameWithoutItsBlanks) {
  Press(OpenWith("  Tax 2024-b. "), IDC_frmSave_cmdOK);
  EXPECT_FALSE(Default<frmSave>::IsLoaded());
  EXPECT_EQ(state_.CurrentJobName, "Tax 2024-b.");
}

TEST_F(frmSaveTest, NameOfAnyLengthCanBeTyped) {
  const std::string name(40000, 'n');
  Press(OpenWith(name), IDC_frmSave_cmdOK);
  EXPECT_EQ(state_.CurrentJobName, name);
}

TEST_F(frmSaveTest, IllegalNameIsRefusedAndSelectedForAnotherTry) {
  frmSave& form = OpenWith("a?b");
  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(form, IDC_frmSave_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(JobNameVerdict::Illegal)});
  EXPECT_TRUE(Default<frmSave>::IsLoaded());
  EXPECT_EQ(::GetFocus(), Item(form, IDC_frmSave_txtName));
  EXPECT_EQ(SelectionOf(form, IDC_frmSave_txtName), std::make_pair(DWORD{0}, DWORD{3}));
  EXPECT_EQ(state_.CurrentJobName, "");
}

TEST_F(frmSaveTest, NameOfASavedJobIsAskedAbout) {
  frmSave& form = OpenWith(" monthly");
  fake_.boxes.answers = {MessageAnswer::Cancel};
  Press(form, IDC_frmSave_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(JobNameVerdict::Exists)});
  EXPECT_EQ(::GetFocus(), Item(form, IDC_frmSave_txtName));
  EXPECT_EQ(state_.CurrentJobName, "");
  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(form, IDC_frmSave_cmdOK);
  EXPECT_EQ(state_.CurrentJobName, "monthly");
  EXPECT_FALSE(Default<frmSave>::IsLoaded());
}

TEST_F(frmSaveTest, CancelAndTheCloseBoxLeaveTheName) {
  Press(OpenWith("a"), IDC_frmSave_cmdCancel);
  EXPECT_FALSE(Default<frmSave>::IsLoaded());
  Close(OpenWith("a"));
  EXPECT_FALSE(Default<frmSave>::IsLoaded());
  EXPECT_EQ(state_.CurrentJobName, "");
}

TEST_F(frmSaveTest, OpensEmptyEachTime) {
  Press(OpenWith("a"), IDC_frmSave_cmdCancel);
  EXPECT_EQ(TextOf(Default<frmSave>::Touch(), IDC_frmSave_txtName), "");
}

}  // namespace
}  // namespace zq::test
