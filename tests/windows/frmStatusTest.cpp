#include <gtest/gtest.h>

#include "controls/MessageLoop.h"
#include "jobs/JobList.h"
#include "support/driver/Picture.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"
#include "wipe/JobWipe.h"
#include "wipe/frmStatus.h"

namespace zq::test {
namespace {

const Message kCancelQuestion{.text = "Cancel the current operation?",
                              .title = "Cancel",
                              .icon = MessageIcon::Question,
                              .buttons = MessageButtons::YesNo};

class frmStatusTest : public testing::Test {
 protected:
  void SetUp() override {
    jobWipe_.SetEngine(&engine_);
    Default<frmStatus>::SetFactory(
        [this] { return std::make_unique<frmStatus>(state_, fake_.platform, jobWipe_); });
  }
  void TearDown() override {
    if (Default<frmStatus>::IsLoaded()) Default<frmStatus>::Touch().Unload();
    Form::DestroyClosed();
  }

  bool EngineWasCancelled() const {
    return std::find(fake_.files.log.begin(), fake_.files.log.end(), "CancelOperation") !=
           fake_.files.log.end();
  }
  void PressCancel() { ::SendMessageA(Default<frmStatus>::Touch().cmdCancel.Handle(), BM_CLICK, 0, 0); }
  void PressCloseBox() { ::SendMessageA(Default<frmStatus>::Touch().Handle(), WM_CLOSE, 0, 0); }

  FakePlatform fake_;
  AppState state_;
  JobList jobList_{fake_.regional};
  FakeMainWindow mainWindow_{fake_.files.log};
  StatusWindow statusWindow_;
  JobWipe jobWipe_{state_, jobList_, fake_.platform, mainWindow_, statusWindow_, nullptr};
  FakeEngine engine_{fake_.files.log, jobWipe_};
};

TEST_F(frmStatusTest, OpensWithItsTexts) {
  frmStatus& form = Default<frmStatus>::Touch();
  char caption[100] = {};
  ::GetWindowTextA(form.Handle(), caption, sizeof caption);
  EXPECT_STREQ(caption, "Wipe Operation");
  EXPECT_EQ(form.lblStatus.Text(), "Preparing wipe operation...please wait...");
  EXPECT_EQ(form.cmdCancel.Text(), "Cancel Operation");
  const auto text = [&](int id) {
    char buffer[100] = {};
    ::GetDlgItemTextA(form.Handle(), id, buffer, sizeof buffer);
    return std::string(buffer);
  };
  EXPECT_EQ(text(IDC_frmStatus_Frame1), "Operation Status");
  EXPECT_EQ(text(IDC_frmStatus_Label2), "Current Item");
  EXPECT_EQ(text(IDC_frmStatus_Label3), "Overall Items");
}

// How often the label's text is drawn.
int drawings = 0;
LRESULT CALLBACK CountDrawings(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message == WM_DRAWITEM) ++drawings;
  return ::DefSubclassProc(hwnd, message, wParam, lParam);
}

TEST_F(frmStatusTest, DrawsATextWhenTheWindowIsPainted) {
  statusWindow_.Show();
  PumpMessages();
  frmStatus& form = Default<frmStatus>::Touch();
  ASSERT_TRUE(::SetWindowSubclass(form.Handle(), &CountDrawings, 1, 0));
  drawings = 0;
  for (int i = 0; i < 10; ++i) statusWindow_.SetStatus("Processed " + std::to_string(i));
  EXPECT_EQ(form.lblStatus.Text(), "Processed 9");
  EXPECT_EQ(drawings, 0);
  PumpMessages();
  EXPECT_GT(drawings, 0);
  const int before = drawings;
  statusWindow_.SetStatus("Creating Report Data...Please Wait...");
  statusWindow_.Repaint();
  EXPECT_GT(drawings, before);
}

TEST_F(frmStatusTest, ATextAsksToBeDrawnOnceForAllUntilItIsDrawn) {
  statusWindow_.Show();
  PumpMessages();
  const HWND label = Default<frmStatus>::Touch().lblStatus.Handle();
  const auto isToBeDrawn = [&] { return ::GetUpdateRect(label, nullptr, FALSE) != FALSE; };
  statusWindow_.SetStatus("Processed 1");
  EXPECT_TRUE(isToBeDrawn());
  ::ValidateRect(label, nullptr);  // shows whether the next text asks again
  statusWindow_.SetStatus("Processed 2");
  EXPECT_FALSE(isToBeDrawn());
  ::InvalidateRect(label, nullptr, FALSE);
  PumpMessages();
  statusWindow_.SetStatus("Processed 3");
  EXPECT_TRUE(isToBeDrawn());
}

TEST_F(frmStatusTest, IsPaintedAtTimesBetweenTheStepsOfWork) {
  statusWindow_.Show();
  PumpMessages();
  ASSERT_TRUE(::SetWindowSubclass(Default<frmStatus>::Touch().Handle(), &CountDrawings, 1, 0));
  drawings = 0;
  const ULONGLONG started = ::GetTickCount64();
  for (int i = 0; i < 500; ++i) {
    statusWindow_.SetStatus("Processed " + std::to_string(i));
    PumpBetweenSteps();
  }
  EXPECT_LE(static_cast<ULONGLONG>(drawings), (::GetTickCount64() - started) / 30 + 1);
  constexpr ULONGLONG kLimit = 60'000;
  for (int i = 0; i < 3; ++i) {
    const int before = drawings;
    statusWindow_.SetStatus("Processed again " + std::to_string(i));
    while (drawings == before && ::GetTickCount64() - started < kLimit) PumpBetweenSteps();
    EXPECT_GT(drawings, before);
  }
}

TEST_F(frmStatusTest, TakesAClickOnCancelAtEachStepOfWork) {
  statusWindow_.Show();
  PumpMessages();
  frmStatus& form = Default<frmStatus>::Touch();
  for (std::size_t i = 1; i <= 5; ++i) {
    fake_.boxes.answers = {MessageAnswer::No};
    ::PostMessageW(form.Handle(), WM_COMMAND, MAKEWPARAM(form.cmdCancel.Id(), BN_CLICKED),
                   reinterpret_cast<LPARAM>(form.cmdCancel.Handle()));
    PumpBetweenSteps();
    EXPECT_EQ(fake_.boxes.shown.size(), i);
  }
}

TEST_F(frmStatusTest, CloseBoxIsRefusedWithoutAWordWhileCancelIsDisabled) {
  statusWindow_.SetCancelEnabled(false);
  PressCloseBox();
  EXPECT_TRUE(Default<frmStatus>::IsLoaded());
  EXPECT_TRUE(fake_.boxes.shown.empty());
  EXPECT_FALSE(state_.CancelRequested);
}

TEST_F(frmStatusTest, CancelButtonHasTheFocusOnceItIsEnabled) {
  statusWindow_.Show();
  statusWindow_.SetCancelEnabled(false);
  PumpMessages();
  EXPECT_NE(::GetFocus(), Default<frmStatus>::Touch().cmdCancel.Handle());
  statusWindow_.SetCancelEnabled(true);
  EXPECT_EQ(::GetFocus(), Default<frmStatus>::Touch().cmdCancel.Handle());
}

TEST_F(frmStatusTest, EnterHeldDownPressesNothingAFreshOneDoes) {
  statusWindow_.Show();
  statusWindow_.SetCancelEnabled(true);
  fake_.boxes.answers = {MessageAnswer::No};
  const HWND button = Default<frmStatus>::Touch().cmdCancel.Handle();
  ::PostMessageW(button, WM_KEYDOWN, VK_RETURN, 0x401C0001);
  PumpMessages();
  EXPECT_TRUE(fake_.boxes.shown.empty());
  ::PostMessageW(button, WM_KEYDOWN, VK_RETURN, 0x001C0001);
  PumpMessages();
  EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion});
}

TEST_F(frmStatusTest, CancelButtonAsksAndOnNoTheWipeGoesOn) {
  fake_.boxes.answers = {MessageAnswer::No};
  PressCancel();
  EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion});
  EXPECT_TRUE(Default<frmStatus>::IsLoaded());
  EXPECT_FALSE(state_.CancelRequested);
  EXPECT_FALSE(EngineWasCancelled());
}

TEST_F(frmStatusTest, CancelButtonStopsTheEngineAndClosesTheWindow) {
  fake_.boxes.answers = {MessageAnswer::Yes};
  PressCancel();
  EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion}) << "its own unload asks nothing";
  EXPECT_FALSE(Default<frmStatus>::IsLoaded());
  EXPECT_TRUE(state_.CancelRequested);
  EXPECT_TRUE(EngineWasCancelled());
}

TEST_F(frmStatusTest, AnyAnswerButNoCancels) {
  fake_.boxes.answers = {MessageAnswer::Cancel};
  PressCancel();
  EXPECT_TRUE(state_.CancelRequested);
  EXPECT_FALSE(Default<frmStatus>::IsLoaded());
}

TEST_F(frmStatusTest, CloseBoxAsksTheSameWhileCancelIsEnabled) {
  fake_.boxes.answers = {MessageAnswer::No};
  PressCloseBox();
  EXPECT_EQ(fake_.boxes.shown, std::vector{kCancelQuestion});
  EXPECT_TRUE(Default<frmStatus>::IsLoaded());
  EXPECT_FALSE(state_.CancelRequested);

  fake_.boxes.answers = {MessageAnswer::Yes};
  PressCloseBox();
  EXPECT_FALSE(Default<frmStatus>::IsLoaded());
  EXPECT_TRUE(state_.CancelRequested);
  EXPECT_TRUE(EngineWasCancelled());
}

TEST_F(frmStatusTest, CloseByTheProgramAsksNothing) {
  statusWindow_.SetCancelEnabled(true);
  statusWindow_.Unload();
  EXPECT_FALSE(Default<frmStatus>::IsLoaded());
  EXPECT_TRUE(fake_.boxes.shown.empty());
  EXPECT_FALSE(state_.CancelRequested);
}

TEST_F(frmStatusTest, EventAfterTheCloseWorksOnAFreshHiddenInstance) {
  statusWindow_.Show();
  statusWindow_.Unload();
  jobWipe_.SFD1_WipeProgress(50, 100, 0, "C:\\a.txt");
  ASSERT_TRUE(Default<frmStatus>::IsLoaded());
  EXPECT_FALSE(Default<frmStatus>::Touch().IsVisible());
  EXPECT_EQ(Default<frmStatus>::Touch().lblStatus.Text(), "Processed 50 bytes of 100 of C:\\a.txt...");
  EXPECT_EQ(Default<frmStatus>::Touch().pbCurrent.Value(), 50);
}

TEST_F(frmStatusTest, AnEndlessNameIsDrawnWithAnEllipsisAndItsEndAndKeptAsText) {
  statusWindow_.Show();
  frmStatus& form = Default<frmStatus>::Touch();
  const auto look = [&](const std::string& name) {
    const std::string text = "Processed 1,234 bytes of 268,435,456 of " + name + "...";
    statusWindow_.SetStatus(text);
    form.Repaint();
    PumpMessages();
    EXPECT_EQ(form.lblStatus.Text(), text);
    RECT rect{};
    ::GetWindowRect(form.lblStatus.Handle(), &rect);
    return GrabScreen(rect);
  };
  const Picture doc = look(std::string(237, 'n') + ".doc");
  TakePicture(Window(form.Handle()), "status-long-name");
  EXPECT_FALSE(doc == look(std::string(237, 'n') + ".txt")) << "its end is to be seen";
  EXPECT_TRUE(look(std::string(1000, 'n') + ".doc") == look(std::string(1001, 'n') + ".doc"));
  look("letter.doc");
  TakePicture(Window(form.Handle()), "status-short-name");
}

TEST_F(frmStatusTest, PathsWithAmpersandsAreShownAsTheyAre) {
  statusWindow_.SetStatus("Processed  bytes of 5 of C:\\R&D\\a.txt...");
  const auto style = ::GetWindowLongA(Default<frmStatus>::Touch().lblStatus.Handle(), GWL_STYLE);
  EXPECT_TRUE(style & SS_NOPREFIX);
}

TEST_F(frmStatusTest, BarsArePlainForEverySettingButOne) {
  for (const int value : {-1, 0, 1, 2}) {
    state_.Settings.ProgressBars = static_cast<std::int16_t>(value);
    frmStatus& form = Default<frmStatus>::Touch();
    form.Show();
    for (ProgressBarEx* bar : {&form.pbCurrent, &form.pbOverall}) {
      bar->SetValue(100);
      ::UpdateWindow(bar->Handle());
      const HDC context = ::GetDC(bar->Handle());
      EXPECT_EQ(::GetPixel(context, 5, 5) == kProgressColourPlain, value != 1) << value;
      ::ReleaseDC(bar->Handle(), context);
    }
    form.Unload();
    Form::DestroyClosed();
  }
}

}  // namespace
}  // namespace zq::test
