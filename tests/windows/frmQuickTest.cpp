// The QuickWipe Bin as a window: what it shows, how it opens and closes.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstdlib>

#include "NameService.h"
#include "QuickBinForm.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class frmQuickTest : public QuickBinForm {};

TEST_F(frmQuickTest, OpensWithItsTextsInFrontOfAllOthers) {
  Open();
  Form& form = Bin();
  EXPECT_EQ(CaptionOf(form), "QuickWipe Bin");
  EXPECT_EQ(TextOf(form, IDC_frmQuick_Frame1), "QuickWipe Bin");
  EXPECT_EQ(
      TextOf(form, IDC_frmQuick_Label1),
      "The QuickWipe Bin allows you to drag and drop files from Windows Explorer and have them wiped "
      "automatically for you.  This option should only be used by advanced users, as any file dropped in "
      "this Bin will be permanently wiped and cannot be recovered.");
  EXPECT_EQ(TextOf(form, IDC_frmQuick_cmdCancel), "&Close Bin");
  EXPECT_EQ(Panel(), "");
  EXPECT_EQ(::SendMessageW(Bin().StatusBar1.Handle(), SB_GETPARTS, 0, 0), 2);
  EXPECT_FALSE(::IsWindowVisible(Bin().pb1.Handle()));
  EXPECT_TRUE(state_.QuickBinOpen);
  EXPECT_FALSE(state_.QuickBinBusy);
  const Window window(form.Handle());
  EXPECT_TRUE(window.IsTopmost());
  EXPECT_FALSE(window.Owner());
  EXPECT_NE(window.ExtendedStyle() & WS_EX_APPWINDOW, 0) << "a button of its own on the task bar";
  EXPECT_EQ(window.Style() & (WS_THICKFRAME | WS_MAXIMIZEBOX), 0);
  EXPECT_EQ(::GetWindowLongW(Bin().StatusBar1.Handle(), GWL_STYLE) & SBARS_SIZEGRIP, 0);
  // Where the system puts it, which isn't in the user's way in the middle.
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  ASSERT_TRUE(::GetMonitorInfoW(::MonitorFromWindow(form.Handle(), MONITOR_DEFAULTTONEAREST), &monitor));
  const RECT place = window.ScreenRect();
  const RECT& work = monitor.rcWork;
  constexpr LONG kRounding = 2;
  EXPECT_GT(std::abs(place.left + place.right - work.left - work.right), kRounding);
  EXPECT_GT(std::abs(place.top + place.bottom - work.top - work.bottom), kRounding);
  TakePicture(window, "frmQuick");
}

TEST_F(frmQuickTest, NamesItsPictureAndItsBarForScreenReaders) {
  const NameService service;
  Open();
  EXPECT_EQ(service.NameOf(Bin().imgDrop.Handle()), "Drop files here");
  EXPECT_EQ(service.NameOf(Bin().pb1.Handle()), "Progress");
  Bin().Unload();
  EXPECT_TRUE(service.IsEmpty()) << "numbers of windows are given again";
}

TEST_F(frmQuickTest, OpensWithoutADropTargetWhereTheShellIsHeldBackAndSaysSo) {
  fake_.shellDrops.heldBack = true;
  Open();
  // Neither for Explorer, which sees no target, nor for whoever posts what looks like a drop.
  for (const HWND window : {Bin().imgDrop.Handle(), HandleOf(Bin())}) {
    EXPECT_EQ(::RevokeDragDrop(window), DRAGDROP_E_NOTREGISTERED);
    EXPECT_EQ(::GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
  }
  EXPECT_THAT(log_, Not(Contains(StartsWith("allow"))));
  EXPECT_THAT(log_, Not(Contains("accept files")));
  EXPECT_EQ(Panel(), "");

  MoveMouseTo(Window(Bin().imgDrop.Handle()).Centre());
  const HWND tip = AwaitTip();
  EXPECT_EQ(
      Window(tip).Text(),
      "Nothing can be dropped here: Zeroquill runs with administrator rights.  The Bin wipes without a "
      "question, so it takes nothing from programs with lesser rights, Windows Explorer among them.  Start "
      "Zeroquill without administrator rights to use the Bin.");
  PumpMessages();
  TakePicture(Window(tip), "frmQuick-tip");
  MoveMouseTo({0, 0});
}

TEST_F(frmQuickTest, OpensAsADropTargetWithoutATipWhereTheShellReachesIt) {
  Open();
  EXPECT_EQ(::RevokeDragDrop(Bin().imgDrop.Handle()), S_OK) << "it was registered";
  EXPECT_FALSE(HasTip());
}

TEST_F(frmQuickTest, ClosesByItsButtonItsCloseBoxAndByTheProgram) {
  for (int way = 0; way < 3; ++way) {
    Open();
    state_.SavedWindowState = kWindowMaximised;
    log_.clear();
    const HWND window = HandleOf(Bin());
    bool topmostAtItsEnd = true;
    const Watch watch(window, [&](UINT message, LPARAM) {
      if (message == WM_DESTROY) topmostAtItsEnd = Window(window).IsTopmost();
    });
    if (way == 0) Press(Bin(), IDC_frmQuick_cmdCancel);
    if (way == 1) Close(Bin());
    if (way == 2) Bin().Unload();
    EXPECT_FALSE(Default<frmQuick>::IsLoaded()) << way;
    EXPECT_FALSE(state_.QuickBinOpen);
    EXPECT_THAT(log_, ElementsAre("main: state 2", "o mnuFileQuickWipeBin"));
    Form::DestroyClosed();
    EXPECT_FALSE(topmostAtItsEnd);
  }
}

TEST_F(frmQuickTest, CloseBoxIsRefusedWhileAWipeRunsAndTheProgramsCloseIsNot) {
  Open();
  ::EnableWindow(Item(Bin(), IDC_frmQuick_cmdCancel), FALSE);
  log_.clear();
  Close(Bin());
  EXPECT_TRUE(Default<frmQuick>::IsLoaded());
  EXPECT_THAT(log_, IsEmpty());
  Bin().Unload();
  EXPECT_FALSE(Default<frmQuick>::IsLoaded());
}

// What the bar of an open Bin looks like, in a corner of it.
TEST_F(frmQuickTest, BarTakesTheLookOfTheSettingAtItsOpeningAndKeepsIt) {
  const auto colour = [&] {
    Bin().pb1.SetValue(100);
    Bin().pb1.SetVisible(true);
    PumpMessages();
    const RECT place = Window(Bin().pb1.Handle()).ScreenRect();
    const Picture picture = GrabScreen(place);
    Bin().pb1.SetVisible(false);
    return picture.At(picture.width / 8, picture.height - 4);
  };
  constexpr std::uint32_t kPlain = 0x28D22B;
  for (const bool plain : {true, false, true}) {
    state_.Settings.ProgressBars = plain ? 0 : 1;
    Open();
    EXPECT_EQ(colour() == kPlain, plain);
    // The setting changes while the Bin is open: neither now nor at a drop does the bar.
    state_.Settings.ProgressBars = plain ? 1 : 0;
    EXPECT_EQ(colour() == kPlain, plain);
    Bring({scratch_.Make("dropped.txt", "secret")});
    ::SetParent(Bin().pb1.Handle(), HandleOf(Bin()));
    EXPECT_EQ(colour() == kPlain, plain);
    Bin().Unload();
  }
}

}  // namespace
}  // namespace zq::test
