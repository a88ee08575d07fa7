#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Driving.h"
#include "Ink.h"
#include "jobs/frmOpenJob.h"
#include "platform/RunTimeError.h"
#include "support/fakes/FakeHelp.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

class frmOpenJobTest : public testing::Test {
 protected:
  void SetUp() override {
    state_.AppFolder = "C:\\Zeroquill\\";
    state_.CurrentJobName = "Monthly";
    state_.JobActionCancelled = true;  // as the Open command sets it
    fake_.files.AddFolder("C:\\Zeroquill");
    fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
    Default<frmOpenJob>::SetFactory(
        [this] { return std::make_unique<frmOpenJob>(state_, fake_.platform, &help_); });
  }
  void TearDown() override {
    if (Default<frmOpenJob>::IsLoaded()) Default<frmOpenJob>::Touch().Unload();
    Form::DestroyClosed();
  }

  void AddJobs() {
    fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Monthly.zqj", "\"1/2/2026 10:00:00 AM\"\r\n");
    fake_.files.AddFile("C:\\Zeroquill\\Jobs\\a.b.zqj", "\"N/A\"\r\nand no more of a job");
    fake_.files.AddFile("C:\\Zeroquill\\Jobs\\monthly cleaning.zqj", "\"N/A\"\r\n");
  }
  frmOpenJob& Open() { return Default<frmOpenJob>::Touch(); }
  std::string Cell(int row, int column) { return Open().ListView1.CellText(row, column); }
  void DoubleClick() {
    NMITEMACTIVATE notification{};
    notification.hdr = {Open().ListView1.Handle(), IDC_frmOpenJob_ListView1, static_cast<UINT>(NM_DBLCLK)};
    ::SendMessageA(Open().Handle(), WM_NOTIFY, IDC_frmOpenJob_ListView1,
                   reinterpret_cast<LPARAM>(&notification));
  }

  // The part of the list where no row comes to lie.
  Picture BelowTheRows() {
    Open().Show();
    PumpMessages();
    ::RedrawWindow(Open().Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    PumpMessages();  // what is drawn reaches the screen when the thread has nothing else to do
    RECT list{};
    ::GetWindowRect(Open().ListView1.Handle(), &list);
    list.top += (list.bottom - list.top) * 2 / 5;
    ::InflateRect(&list, -10, -10);
    return GrabScreen(list);
  }

  FakePlatform fake_;
  AppState state_;
  EventLog asked_;
  FakeHelp help_{asked_};
};

TEST_F(frmOpenJobTest, OpensWithItsTexts) {
  AddJobs();
  Form& form = Open();
  EXPECT_EQ(CaptionOf(form), "Open Job");
  EXPECT_EQ(TextOf(form, IDC_frmOpenJob_Label1),
            "This option allows you to open any previously saved Wiping Jobs.  Select the Job you wish to "
            "open and click OK, or simply double click a listed Job to open it.");
  EXPECT_EQ(TextOf(form, IDC_frmOpenJob_cmdOK), "&OK");
  EXPECT_EQ(TextOf(form, IDC_frmOpenJob_cmdCancel), "&Close");
  EXPECT_EQ(TextOf(form, IDC_frmOpenJob_cmdHelp), "&Help");
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmOpenJob_cmdOK);
  EXPECT_EQ(TabOrder(form), (std::vector<int>{IDC_frmOpenJob_ListView1, IDC_frmOpenJob_cmdOK,
                                              IDC_frmOpenJob_cmdCancel, IDC_frmOpenJob_cmdHelp}));
}

TEST_F(frmOpenJobTest, EscIsItsCloseButton) {
  AddJobs();
  Open().Show();
  PostKey(Open(), VK_ESCAPE);
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  EXPECT_TRUE(state_.JobActionCancelled);
  EXPECT_EQ(state_.SelectedJobName, "");
}

TEST_F(frmOpenJobTest, ListsTheSavedJobsWithTheirLastWipingAndSelectsTheFirst) {
  AddJobs();
  frmOpenJob& form = Open();
  ASSERT_EQ(form.ListView1.RowCount(), 3);
  EXPECT_EQ(Cell(1, 0), "Monthly");
  EXPECT_EQ(Cell(1, 1), "1/2/2026 10:00:00 AM");
  EXPECT_EQ(Cell(2, 0), "a.b");
  EXPECT_EQ(Cell(2, 1), "N/A");
  EXPECT_EQ(form.ListView1.SelectedRow(), 1);
  EXPECT_TRUE(IsEnabled(form, IDC_frmOpenJob_cmdOK));
}

TEST_F(frmOpenJobTest, WithoutSavedJobsOnlyCloseAndHelpWork) {
  frmOpenJob& form = Open();
  EXPECT_EQ(form.ListView1.RowCount(), 0);
  EXPECT_FALSE(IsEnabled(form, IDC_frmOpenJob_cmdOK));
  DoubleClick();
  EXPECT_TRUE(Default<frmOpenJob>::IsLoaded());
  Press(form, IDC_frmOpenJob_cmdHelp);
  EXPECT_THAT(asked_, testing::ElementsAre("help: topic 6"));
  EXPECT_TRUE(Default<frmOpenJob>::IsLoaded());
  Press(form, IDC_frmOpenJob_cmdCancel);
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  EXPECT_TRUE(state_.JobActionCancelled);
}

TEST_F(frmOpenJobTest, WithoutSavedJobsTheListSaysSoInGrey) {
  EXPECT_EQ(Open().ListView1.EmptyText, "No job has been saved yet");
  const Picture empty = BelowTheRows();
  EXPECT_GT(InkContrast(empty), 2.0);
  EXPECT_LT(InkContrast(empty), 8.0) << "not as if it were a row";
  TakePicture(Window(Open().Handle()), "open-job-empty");
  Open().Unload();
  Form::DestroyClosed();

  AddJobs();
  EXPECT_LT(InkContrast(BelowTheRows()), 1.1);
  TakePicture(Window(Open().Handle()), "open-job");
}

TEST_F(frmOpenJobTest, OkChoosesTheSelectedJob) {
  AddJobs();
  Open().ListView1.SelectRow(2);
  Press(Open(), IDC_frmOpenJob_cmdOK);
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  EXPECT_EQ(state_.SelectedJobName, "a.b");
  EXPECT_FALSE(state_.JobActionCancelled);
}

TEST_F(frmOpenJobTest, OkOnTheOpenJobIsACancel) {
  AddJobs();
  Press(Open(), IDC_frmOpenJob_cmdOK);
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  EXPECT_EQ(state_.SelectedJobName, "");
  EXPECT_TRUE(state_.JobActionCancelled);
}

TEST_F(frmOpenJobTest, DoubleClickDoesAsOkDoes) {
  AddJobs();
  Open().ListView1.SelectRow(3);
  DoubleClick();
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  EXPECT_EQ(state_.SelectedJobName, "monthly cleaning");
}

TEST_F(frmOpenJobTest, WithNoRowSelectedNothingCanBeChosen) {
  AddJobs();
  frmOpenJob& form = Open();
  // As the user does, by a click beside the rows.
  ListView_SetItemState(form.ListView1.Handle(), -1, 0, LVIS_SELECTED);
  EXPECT_FALSE(IsEnabled(form, IDC_frmOpenJob_cmdOK));
  DoubleClick();
  EXPECT_TRUE(Default<frmOpenJob>::IsLoaded());
  ListView_SetItemState(form.ListView1.Handle(), 1, LVIS_SELECTED, LVIS_SELECTED);
  EXPECT_TRUE(IsEnabled(form, IDC_frmOpenJob_cmdOK));
}

TEST_F(frmOpenJobTest, CloseAndTheCloseBoxChooseNothing) {
  AddJobs();
  Open().ListView1.SelectRow(2);
  Press(Open(), IDC_frmOpenJob_cmdCancel);
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  Open().ListView1.SelectRow(2);
  Close(Open());
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
  EXPECT_EQ(state_.SelectedJobName, "");
  EXPECT_TRUE(state_.JobActionCancelled);
}

TEST_F(frmOpenJobTest, TypingFindsTheNextJobWhoseNameBeginsSo) {
  AddJobs();
  const auto& findRow = Open().ListView1.FindRow;
  EXPECT_EQ(findRow("MONTHLY", 1), 1);
  EXPECT_EQ(findRow("mon", 2), 3);
  EXPECT_EQ(findRow("A", 3), 2);
  EXPECT_EQ(findRow("mon", 4), 1);
  EXPECT_EQ(findRow("x", 1), 0);

  const auto type = [&](wchar_t letter) {
    ::SendMessageW(Open().ListView1.Handle(), WM_CHAR, letter, 1);
    return Open().ListView1.SelectedRow();
  };
  EXPECT_EQ(type('m'), 3) << "behind the job that is chosen";
}

TEST_F(frmOpenJobTest, JobWhoseFirstFieldIsMissingEndsTheLoad) {
  AddJobs();
  fake_.files.AddFile("C:\\Zeroquill\\Jobs\\empty.zqj", "");
  EXPECT_THROW(Open(), RunTimeError);
  EXPECT_FALSE(Default<frmOpenJob>::IsLoaded());
}

}  // namespace
}  // namespace zq::test
