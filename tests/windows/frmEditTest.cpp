#include <gtest/gtest.h>

#include "Driving.h"
#include "jobs/FileMask.h"
#include "jobs/JobList.h"
#include "jobs/frmEdit.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

class frmEditTest : public testing::Test {
 protected:
  void SetUp() override {
    Default<frmEdit>::SetFactory(
        [this] { return std::make_unique<frmEdit>(state_, fake_.platform, jobList_); });
    jobList_.Add(MakeFolderRow("C:\\First", "*.*", false));
    jobList_.Add(MakeFolderRow("C:\\Papers & more", "*.doc", true));
    jobList_.Select(2);
    state_.JobSaved = true;
  }
  void TearDown() override {
    if (Default<frmEdit>::IsLoaded()) Default<frmEdit>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmEdit& OpenOn(const std::string& folder) {
    frmEdit& form = Default<frmEdit>::Touch();
    form.lblFolder.SetText(folder);
    form.txtMask.SetText("*.doc");
    form.chkSub.SetValue(1);
    return form;
  }

  FakePlatform fake_;
  AppState state_;
  JobList jobList_{fake_.regional};
};

TEST_F(frmEditTest, OpensWithItsTexts) {
  Form& form = OpenOn("C:\\Papers & more");
  EXPECT_EQ(CaptionOf(form), "Edit Folder Settings");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_Label1), "Folder:");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_lblFolder), "C:\\Papers & more");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_Label2), "File Mask:");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_Label3), "*.* means all files found in the folder");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_chkSub), "Process any found sub folders beneath chosen folder");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_cmdOK), "&OK");
  EXPECT_EQ(TextOf(form, IDC_frmEdit_cmdCancel), "&Cancel");
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmEdit_cmdOK);
  EXPECT_EQ(TabOrder(form), (std::vector<int>{IDC_frmEdit_txtMask, IDC_frmEdit_chkSub, IDC_frmEdit_cmdOK,
                                              IDC_frmEdit_cmdCancel}));
}

TEST_F(frmEditTest, FolderIsShownBold) {
  frmEdit& form = OpenOn("C:\\Papers");
  LOGFONTA font{};
  ::GetObjectA(reinterpret_cast<HFONT>(::SendMessageA(form.lblFolder.Handle(), WM_GETFONT, 0, 0)),
               sizeof font, &font);
  EXPECT_EQ(font.lfWeight, FW_BOLD);
}

TEST_F(frmEditTest, OkChangesTheSelectedRowAlone) {
  frmEdit& form = OpenOn("C:\\Papers & more");
  Type(form, IDC_frmEdit_txtMask, " *.txt ");
  Press(form, IDC_frmEdit_chkSub);
  Press(form, IDC_frmEdit_cmdOK);
  EXPECT_FALSE(Default<frmEdit>::IsLoaded());
  EXPECT_EQ(jobList_.Row(1), MakeFolderRow("C:\\First", "*.*", false));
  EXPECT_EQ(jobList_.Row(2), MakeFolderRow("C:\\Papers & more", "*.txt", false));
  EXPECT_EQ(jobList_.SelectedRow(), 2);
  EXPECT_FALSE(state_.JobSaved);
}

TEST_F(frmEditTest, CancelAndTheCloseBoxChangeNothing) {
  for (const bool byCloseBox : {false, true}) {
    frmEdit& form = OpenOn("C:\\Papers & more");
    Type(form, IDC_frmEdit_txtMask, "*.txt");
    if (byCloseBox) {
      Close(form);
    } else {
      Press(form, IDC_frmEdit_cmdCancel);
    }
    EXPECT_FALSE(Default<frmEdit>::IsLoaded());
    EXPECT_EQ(jobList_.Row(2).FolderMask, "*.doc");
    EXPECT_TRUE(state_.JobSaved);
  }
}

TEST_F(frmEditTest, ImproperMaskIsRefusedAndTheMaskGetsTheFocus) {
  frmEdit& form = OpenOn("C:\\Papers");
  form.Show();
  Type(form, IDC_frmEdit_txtMask, "doc");
  ::SetFocus(Item(form, IDC_frmEdit_cmdOK));
  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(form, IDC_frmEdit_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(FolderVerdict::ImproperMask)});
  EXPECT_EQ(::GetFocus(), Item(form, IDC_frmEdit_txtMask));
  EXPECT_EQ(SelectionOf(form, IDC_frmEdit_txtMask), std::make_pair(DWORD{0}, DWORD{3}));
  EXPECT_TRUE(Default<frmEdit>::IsLoaded());
}

TEST_F(frmEditTest, WholeDriveIsRefusedAndANarrowerMaskIsNotAskedAbout) {
  frmEdit& form = OpenOn("C:\\");
  Type(form, IDC_frmEdit_txtMask, "*.*");
  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(form, IDC_frmEdit_cmdOK);
  EXPECT_EQ(fake_.boxes.shown, std::vector<Message>{BoxOf(FolderVerdict::WholeDriveEdited)});
  ASSERT_TRUE(Default<frmEdit>::IsLoaded());
  Type(form, IDC_frmEdit_txtMask, "*.tmp");
  Press(form, IDC_frmEdit_cmdOK);
  EXPECT_EQ(jobList_.Row(2).FolderMask, "*.tmp");
}

TEST_F(frmEditTest, OkIsForAMaskThatIsNotBlank) {
  frmEdit& form = OpenOn("C:\\Papers");
  Type(form, IDC_frmEdit_txtMask, "  ");
  EXPECT_FALSE(IsEnabled(form, IDC_frmEdit_cmdOK));
  Type(form, IDC_frmEdit_txtMask, "*");
  EXPECT_TRUE(IsEnabled(form, IDC_frmEdit_cmdOK));
}

}  // namespace
}  // namespace zq::test
