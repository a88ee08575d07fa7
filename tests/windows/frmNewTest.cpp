#include <gtest/gtest.h>

#include "Driving.h"
#include "jobs/frmNew.h"

namespace zq::test {
namespace {

class frmNewTest : public testing::Test {
 protected:
  void SetUp() override {
    Default<frmNew>::SetFactory([this] { return std::make_unique<frmNew>(state_); });
  }
  void TearDown() override {
    if (Default<frmNew>::IsLoaded()) Default<frmNew>::Touch().Unload();
    Form::DestroyClosed();
  }

  AppState state_;
};

TEST_F(frmNewTest, OpensWithItsTexts) {
  Form& form = Default<frmNew>::Touch();
  EXPECT_EQ(CaptionOf(form), "New Job");
  EXPECT_EQ(TextOf(form, IDC_frmNew_Label2), "New Job Started");
  EXPECT_EQ(TextOf(form, IDC_frmNew_Label1),
            "A new Zeroquill Job has been started for you.  Use the Add Files button to add individual files "
            "to be wiped.  Use the Add Folder button to add an entire folder of files or to add only defined "
            "file types from a selected folder.");
  EXPECT_EQ(TextOf(form, IDC_frmNew_Label3),
            "After you have added items to be wiped, you can save this Job for later use if you wish, by "
            "using the Save Job option.");
  EXPECT_EQ(TextOf(form, IDC_frmNew_chkShow), "Do Not Show Again");
  EXPECT_FALSE(IsTicked(form, IDC_frmNew_chkShow));
  EXPECT_EQ(TextOf(form, IDC_frmNew_cmdOK), "&OK");
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmNew_cmdOK);
}

TEST_F(frmNewTest, OkKeepsTheTick) {
  Press(Default<frmNew>::Touch(), IDC_frmNew_chkShow);
  Press(Default<frmNew>::Touch(), IDC_frmNew_cmdOK);
  EXPECT_FALSE(Default<frmNew>::IsLoaded());
  EXPECT_EQ(state_.Settings.SkipNewJobNote, 1);
}

TEST_F(frmNewTest, OkWithoutTheTickKeepsTheNoteComing) {
  Press(Default<frmNew>::Touch(), IDC_frmNew_cmdOK);
  EXPECT_EQ(state_.Settings.SkipNewJobNote, 0);
}

TEST_F(frmNewTest, CloseBoxLosesTheTick) {
  Press(Default<frmNew>::Touch(), IDC_frmNew_chkShow);
  Close(Default<frmNew>::Touch());
  EXPECT_FALSE(Default<frmNew>::IsLoaded());
  EXPECT_EQ(state_.Settings.SkipNewJobNote, 0);
}

TEST_F(frmNewTest, FocusIsOnOkAtFirst) {
  Form& form = Default<frmNew>::Touch();
  form.Show();
  EXPECT_EQ(::GetFocus(), Item(form, IDC_frmNew_cmdOK));
  EXPECT_EQ(TabOrder(form), (std::vector<int>{IDC_frmNew_chkShow, IDC_frmNew_cmdOK}));
}

TEST_F(frmNewTest, EscClosesItAndLosesTheTick) {
  Form& form = Default<frmNew>::Touch();
  form.Show();
  Press(form, IDC_frmNew_chkShow);
  PostKey(form, VK_ESCAPE);
  EXPECT_FALSE(Default<frmNew>::IsLoaded());
  EXPECT_EQ(state_.Settings.SkipNewJobNote, 0);
}

}  // namespace
}  // namespace zq::test
