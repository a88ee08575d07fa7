#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Driving.h"
#include "jobs/JobList.h"
#include "support/driver/Driver.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/WipeHandlers.h"
#include "wipe/frmSpaceStatus.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::Not;

const Message kCancelQuestion{.text = "Cancel the current operation?",
                              .title = "Cancel",
                              .icon = MessageIcon::Question,
                              .buttons = MessageButtons::YesNo};

class frmSpaceStatusTest : public testing::Test {
 protected:
  void SetUp() override {
    state_.FreeSpaceDrive = "D:\\";
    state_.FreeSpacePasses = 3;
    wipe_.SetEngine(&engine_);
    Default<frmSpaceStatus>::SetFactory(
        [this] { return std::make_unique<frmSpaceStatus>(state_, fake_.platform, wipe_); });
  }
  void TearDown() override {
    if (Default<frmSpaceStatus>::IsLoaded()) Default<frmSpaceStatus>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmSpaceStatus& Open() { return Default<frmSpaceStatus>::Touch(); }
  void Tell(std::int32_t percent, std::int32_t kbDone, std::int32_t kbTotal) {
    handlers_.SFD1_FreeSpaceProgress("filler", percent, kbDone, kbTotal);
  }

  FakePlatform fake_;
  EventLog& log_ = fake_.files.log;
  AppState state_;
  JobList jobList_{fake_.regional};
  FakeMainWindow mainWindow_{log_};
  FakeStatusWindow jobStatus_{log_};
  SpaceStatusWindow statusWindow_;
  JobWipe jobWipe_{state_, jobList_, fake_.platform, mainWindow_, jobStatus_, nullptr};
  FreeSpaceWipe wipe_{state_, fake_.platform, mainWindow_, statusWindow_};
  WipeHandlers handlers_{jobWipe_, wipe_};
  FakeEngine engine_{log_, handlers_};
};

TEST_F(frmSpaceStatusTest, OpensWithItsTexts) {
  Form& form = Open();
  EXPECT_EQ(CaptionOf(form), "Wipe Drive Free Space");
  EXPECT_EQ(TextOf(form, IDC_frmSpaceStatus_Frame1), "Operation Status");
  EXPECT_EQ(TextOf(form, IDC_frmSpaceStatus_lblStatus), "Preparing free space wipe operation...");
  EXPECT_EQ(TextOf(form, IDC_frmSpaceStatus_cmdCancel), "Cancel Operation");
  EXPECT_EQ(Open().pbCurrent.Value(), 0);
  EXPECT_TRUE(IsEnabled(form, IDC_frmSpaceStatus_cmdCancel));
}

TEST_F(frmSpaceStatusTest, ShowsTheProgress) {
  statusWindow_.Show();
  EXPECT_TRUE(Open().IsVisible());
  Tell(0, 0, 300000);
  EXPECT_EQ(Open().lblStatus.Text(), "Preparing free space wipe operation...");
  EXPECT_EQ(CaptionOf(Open()), "0% - Wipe Drive Free Space (D:\\)");
  Tell(42, 126000, 300000);
  EXPECT_EQ(Open().lblStatus.Text(), "Wiped 126,000 KB of 300,000 KB...");
  EXPECT_EQ(Open().pbCurrent.Value(), 42);
  EXPECT_EQ(CaptionOf(Open()), "42% - Wipe Drive Free Space (D:\\)");
  Tell(103, 126000, 300000);
  EXPECT_EQ(Open().lblStatus.Text(),
            "Drive contents changed.  Now including any additional free space in the wipe operation.  "
            "Please wait...103%...");
  EXPECT_EQ(Open().pbCurrent.Value(), 100);
  EXPECT_EQ(CaptionOf(Open()), "100% - Wipe Drive Free Space (D:\\)");
  TakePicture(Window(Open().Handle()), "frmSpaceStatus-growth");
}

TEST_F(frmSpaceStatusTest, CancelButtonAsksAndOnNoTheWipeGoesOn) {
  fake_.boxes.answers = {MessageAnswer::No};
  Press(Open(), IDC_frmSpaceStatus_cmdCancel);
  EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion});
  EXPECT_TRUE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_FALSE(state_.CancelRequested);
  EXPECT_THAT(log_, Not(Contains("CancelOperation")));
}

TEST_F(frmSpaceStatusTest, CancelButtonStopsTheEngineAndClosesTheWindow) {
  for (const MessageAnswer answer : {MessageAnswer::Yes, MessageAnswer::Cancel}) {
    log_.clear();
    fake_.boxes.shown.clear();
    state_.CancelRequested = false;
    fake_.boxes.answers = {answer};
    Press(Open(), IDC_frmSpaceStatus_cmdCancel);
    EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion}) << "its own unload asks nothing";
    EXPECT_FALSE(Default<frmSpaceStatus>::IsLoaded());
    EXPECT_TRUE(state_.CancelRequested);
    EXPECT_THAT(log_, Contains("CancelOperation"));
  }
}

TEST_F(frmSpaceStatusTest, CloseBoxAsksTheSame) {
  fake_.boxes.answers = {MessageAnswer::No};
  Close(Open());
  EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion});
  EXPECT_TRUE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_FALSE(state_.CancelRequested);

  fake_.boxes.answers = {MessageAnswer::Yes};
  Close(Open());
  EXPECT_FALSE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_TRUE(state_.CancelRequested);
  EXPECT_THAT(log_, Contains("CancelOperation"));
}

TEST_F(frmSpaceStatusTest, CloseByTheProgramAsksNothing) {
  statusWindow_.Show();
  statusWindow_.Unload();
  EXPECT_FALSE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_TRUE(fake_.boxes.shown.empty());
  EXPECT_FALSE(state_.CancelRequested);
}

TEST_F(frmSpaceStatusTest, EscDoesNothing) {
  Open().Show();
  ::SendMessageW(Open().Handle(), WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_TRUE(fake_.boxes.shown.empty());
}

TEST_F(frmSpaceStatusTest, EventAfterTheCloseWorksOnAFreshHiddenInstance) {
  statusWindow_.Show();
  statusWindow_.Unload();
  Tell(50, 10, 20);
  ASSERT_TRUE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_FALSE(Open().IsVisible());
  EXPECT_EQ(Open().lblStatus.Text(), "Wiped 10 KB of 20 KB...");
}

TEST_F(frmSpaceStatusTest, EndOfTheRunUnloadsTheInstanceThatCameAfterACancel) {
  fake_.boxes.answers = {MessageAnswer::Ok, MessageAnswer::Yes, MessageAnswer::Ok};
  engine_.work = [this](const std::string&, WipeEvents& events) {
    events.SFD1_FreeSpaceProgress("filler", 10, 1, 10);
    EXPECT_TRUE(IsEnabled(Open(), IDC_frmSpaceStatus_cmdCancel));
    Press(Open(), IDC_frmSpaceStatus_cmdCancel);
    EXPECT_FALSE(Default<frmSpaceStatus>::IsLoaded());
    events.SFD1_FreeSpaceProgress("filler", 11, 1, 10);
    EXPECT_TRUE(Default<frmSpaceStatus>::IsLoaded());
    EXPECT_FALSE(Open().IsVisible());
  };
  wipe_.RunFreeSpaceWipe();
  EXPECT_FALSE(Default<frmSpaceStatus>::IsLoaded());
  EXPECT_EQ(fake_.boxes.shown.back().title, "Cancelled");
}

TEST_F(frmSpaceStatusTest, BarIsPlainForEverySettingButOne) {
  for (const int value : {-1, 0, 1, 2}) {
    state_.Settings.ProgressBars = static_cast<std::int16_t>(value);
    Open().Show();
    Open().pbCurrent.SetValue(100);
    ::UpdateWindow(Open().pbCurrent.Handle());
    const HDC context = ::GetDC(Open().pbCurrent.Handle());
    EXPECT_EQ(::GetPixel(context, 5, 5) == kProgressColourPlain, value != 1) << value;
    ::ReleaseDC(Open().pbCurrent.Handle(), context);
    Open().Unload();
    Form::DestroyClosed();
  }
}

}  // namespace
}  // namespace zq::test
