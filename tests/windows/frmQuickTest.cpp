// The QuickWipe Bin as a window, with the real engine on files that the test has made, and a main
// window that is a bare one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ole2.h>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Driving.h"
#include "core/state/AppState.h"
#include "platform/win32/Win32Files.h"
#include "quickbin/frmQuick.h"
#include "quickbin/frmQuickErrors.h"
#include "support/driver/Driver.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeToolStates.h"
#include "support/fakes/FakeWindows.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Hears what a window is sent, a paint once it is done and all else before, for as long as it lives.
class Watch {
 public:
  Watch(HWND window, std::function<void(UINT message, LPARAM lParam)> heard)
      : window_(window), heard_(std::move(heard)) {
    ::SetWindowSubclass(window_, &Watch::Receive, Id(), reinterpret_cast<DWORD_PTR>(this));
  }
  ~Watch() { ::RemoveWindowSubclass(window_, &Watch::Receive, Id()); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  UINT_PTR Id() const { return reinterpret_cast<UINT_PTR>(this); }
  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                  DWORD_PTR self) {
    const auto& heard = reinterpret_cast<const Watch*>(self)->heard_;
    if (message != WM_PAINT) heard(message, lParam);
    const LRESULT result = ::DefSubclassProc(window, message, wParam, lParam);
    if (message == WM_PAINT) heard(message, lParam);
    return result;
  }

  HWND window_;
  std::function<void(UINT message, LPARAM lParam)> heard_;
};

class frmQuickTest : public testing::Test {
 protected:
  void SetUp() override {
    main_ =
        ::CreateWindowExW(0, L"STATIC", L"main", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    Default<frmQuick>::SetFactory([this] {
      return std::make_unique<frmQuick>(state_, platform_, mainWindow_, tools_, [this] { return main_; });
    });
    Default<frmQuickErrors>::SetFactory([] { return std::make_unique<frmQuickErrors>(); });
  }
  void TearDown() override {
    if (Default<frmQuickErrors>::IsLoaded()) Default<frmQuickErrors>::Touch().Unload();
    if (Default<frmQuick>::IsLoaded()) Default<frmQuick>::Touch().Unload();
    Form::DestroyClosed();
    ::DestroyWindow(main_);
  }

  frmQuick& Bin() { return Default<frmQuick>::Touch(); }
  static HWND HandleOf(frmQuick& bin) { return static_cast<Form&>(bin).Handle(); }
  void Open() {
    Bin().Show();
    PumpMessages();
  }
  // Away from the corner that drags begin in.
  void MoveIntoView() {
    ::SetWindowPos(HandleOf(Bin()), nullptr, 300, 200, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    PumpMessages();
  }
  // The picture with what is around it, as it lies on the screen.
  Picture AroundThePicture() { return GrabScreen(Window(Item(Bin(), IDC_frmQuick_dropFrame)).ScreenRect()); }
  // A look at the messages, of which it takes none, has Wine bring to the screen what is painted.
  static void BringToScreen() {
    MSG none{};
    ::PeekMessageW(&none, nullptr, WM_APP, WM_APP, PM_NOREMOVE);
  }
  // A drop with the mouse. It ends behind the last file.
  void Drop(const std::vector<std::string>& paths) {
    EXPECT_EQ(DragFilesTo(Window(Bin().imgDrop.Handle()).Centre(), paths),
              static_cast<DWORD>(DROPEFFECT_COPY));
  }
  // What such a drop brings, without the mouse.
  void Bring(const std::vector<std::string>& paths) { Bin().imgDrop_OLEDragDrop(paths); }
  std::string Panel() { return Bin().StatusBar1.Text(0); }
  void ClickPanel(int panel) {
    const RECT place = Bin().StatusBar1.PanelPlace(panel);
    const LPARAM point = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
    ::SendMessageW(Bin().StatusBar1.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, point);
    ::SendMessageW(Bin().StatusBar1.Handle(), WM_LBUTTONUP, 0, point);
  }
  // The tips of this process are the Bin's: no other form is open.
  static std::vector<Window> Tips() {
    return TopLevelWindows([](Window window) {
      return window.ClassName() == TOOLTIPS_CLASSA && window.ProcessId() == ::GetCurrentProcessId();
    });
  }
  static bool HasTip() { return !Tips().empty(); }
  static HWND AwaitTip() {
    HWND shown = nullptr;
    Await("the tip", [&] {
      PumpMessages();
      for (const Window tip : Tips()) {
        if (tip.IsVisible()) shown = tip.Handle();
      }
      return shown != nullptr;
    });
    return shown;
  }
  // As far as the screen lets it.
  static void ExpectInTheMiddleOf(RECT dialog, RECT owner) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ASSERT_TRUE(::GetMonitorInfoW(::MonitorFromRect(&owner, MONITOR_DEFAULTTONEAREST), &monitor));
    const RECT& work = monitor.rcWork;
    const LONG left = (owner.left + owner.right - (dialog.right - dialog.left)) / 2;
    const LONG top = (owner.top + owner.bottom - (dialog.bottom - dialog.top)) / 2;
    EXPECT_EQ(dialog.left, std::clamp(left, work.left, work.right - (dialog.right - dialog.left)));
    EXPECT_EQ(dialog.top, std::clamp(top, work.top, work.bottom - (dialog.bottom - dialog.top)));
  }
  // Clicks the first panel, reads what the dialog lists, and closes it. Empty when none comes.
  std::vector<std::string> ErrorsByClick(const char* picture) {
    std::vector<std::string> lines;
    Later([&] {
      if (!Default<frmQuickErrors>::IsLoaded()) return;
      Form& form = Default<frmQuickErrors>::Touch();
      EXPECT_EQ(CaptionOf(form), "QuickWipe Errors");
      EXPECT_EQ(DefaultButtonOf(form), IDC_frmQuickErrors_cmdOK);
      EXPECT_EQ(::GetWindow(form.Handle(), GW_OWNER), HandleOf(Bin()));
      const Window dialog(form.Handle());
      EXPECT_TRUE(dialog.IsTopmost()) << "or the Bin would hide it";
      EXPECT_EQ(dialog.Style() & (WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX), 0);
      EXPECT_NE(dialog.ExtendedStyle() & WS_EX_DLGMODALFRAME, 0);
      EXPECT_EQ(dialog.ExtendedStyle() & WS_EX_APPWINDOW, 0) << "no button on the task bar";
      ExpectInTheMiddleOf(dialog.ScreenRect(), Window(HandleOf(Bin())).ScreenRect());
      TakePicture(Window(form.Handle()), picture);
      const HWND list = Item(form, IDC_frmQuickErrors_List1);
      for (LRESULT i = 0; i < ::SendMessageW(list, LB_GETCOUNT, 0, 0); ++i) {
        char text[600] = "";
        ::SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        lines.emplace_back(text);
      }
      Press(form, IDC_frmQuickErrors_cmdOK);
    });
    ClickPanel(0);
    return lines;
  }

  const ScratchFolder scratch_;
  AppState state_;
  FakePlatform fake_;
  Win32Files files_;
  Platform platform_{files_,
                     fake_.boxes,
                     fake_.process,
                     fake_.regional,
                     fake_.registry,
                     UntoldWork::Instance(),
                     fake_.systemWindows,
                     fake_.shellDrops};
  EventLog& log_ = fake_.files.log;
  FakeMainWindow mainWindow_{log_};
  FakeToolStates tools_{log_};
  HWND main_ = nullptr;
};

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
    if (way == 0) Press(Bin(), IDC_frmQuick_cmdCancel);
    if (way == 1) Close(Bin());
    if (way == 2) Bin().Unload();
    EXPECT_FALSE(Default<frmQuick>::IsLoaded()) << way;
    EXPECT_FALSE(state_.QuickBinOpen);
    EXPECT_THAT(log_, ElementsAre("main: state 2", "o mnuFileQuickWipeBin"));
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

TEST_F(frmQuickTest, WipesWhatIsDroppedBeforeTheDropReturns) {
  const std::string readOnly = scratch_.Make("read only.txt", "secret", FILE_ATTRIBUTE_READONLY);
  const std::string empty = scratch_.Make("empty.txt", "");
  const std::string inside = scratch_.Make("folder\\inside.txt", "stays");
  Open();
  Drop({readOnly, scratch_ / "folder", empty});
  // No message has been handled since.
  EXPECT_FALSE(PathExists(readOnly));
  EXPECT_FALSE(PathExists(empty));
  EXPECT_EQ(ReadFileBytes(inside), "stays");
  EXPECT_EQ(Panel(), "Last Operation: Success");
  EXPECT_TRUE(IsEnabled(Bin(), IDC_frmQuick_cmdCancel));
  EXPECT_FALSE(state_.QuickBinBusy);
  EXPECT_FALSE(::IsWindowVisible(Bin().pb1.Handle()));
  EXPECT_EQ(::GetParent(Bin().pb1.Handle()), main_) << "where the bar rests";
  EXPECT_EQ(Bin().pb1.Value(), 100);
  ClickPanel(0);
  ClickPanel(1);
  EXPECT_FALSE(Default<frmQuickErrors>::IsLoaded());
  PumpMessages();
  TakePicture(Window(HandleOf(Bin())), "frmQuick-success");

  // A bar that rests elsewhere goes with the Bin all the same.
  Bin().Unload();
  EXPECT_EQ(::GetWindow(main_, GW_CHILD), nullptr);
}

// No message is handled in a drop: whatever changes is on the screen before the wipe goes on.
TEST_F(frmQuickTest, PaintsItsPanelAndItsBarWhileAWipeRunsAndStaysOpen) {
  state_.Settings.ProgressBars = 0;
  const std::string first = scratch_.Make("first letter.txt", std::string(20000, 'a'));
  const std::string second = scratch_.Make("second letter.txt", std::string(20000, 'b'));
  Open();
  const HWND bar = Bin().StatusBar1.Handle();
  bool between = false;
  // Between the two files: the first is at its end, and the panel is about to name the second.
  const Watch watch(bar, [&](UINT message, LPARAM text) {
    if (between || message != SB_SETTEXTW ||
        std::wstring_view(reinterpret_cast<const wchar_t*>(text)).find(L"second") == std::wstring_view::npos)
      return;
    between = true;
    EXPECT_FALSE(PathExists(first));
    EXPECT_TRUE(PathExists(second));
    EXPECT_TRUE(state_.QuickBinBusy);
    EXPECT_NE(Panel().find("first letter.txt"), std::string::npos);
    EXPECT_EQ(Bin().pb1.Value(), 100);
    EXPECT_TRUE(::IsWindowVisible(Bin().pb1.Handle()));
    EXPECT_EQ(::GetParent(Bin().pb1.Handle()), bar);
    const RECT panel = Bin().StatusBar1.PanelPlace(1);
    RECT place{};
    ::GetWindowRect(Bin().pb1.Handle(), &place);
    ::MapWindowPoints(nullptr, bar, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_TRUE(::EqualRect(&place, &panel)) << "it fills the second panel";
    for (const HWND window : {bar, Bin().pb1.Handle(), Item(Bin(), IDC_frmQuick_cmdCancel)})
      EXPECT_FALSE(::GetUpdateRect(window, nullptr, FALSE)) << "nothing of it waits to be painted";
    EXPECT_FALSE(IsEnabled(Bin(), IDC_frmQuick_cmdCancel));
    Close(Bin());
    EXPECT_TRUE(Default<frmQuick>::IsLoaded()) << "the close box does nothing";
    EXPECT_TRUE(state_.QuickBinOpen);
    TakePicture(Window(HandleOf(Bin())), "frmQuick-busy", When::AtOnce);
  });
  Bring({first, second});
  EXPECT_TRUE(between);
  EXPECT_FALSE(PathExists(second));
  EXPECT_EQ(Panel(), "Last Operation: Success");
}

TEST_F(frmQuickTest, FrameAroundThePictureAnswersTheDragUntilItIsLetGo) {
  const std::string path = scratch_.Make("dragged.txt", "secret");
  Open();
  const HWND frame = Item(Bin(), IDC_frmQuick_dropFrame);
  EXPECT_FALSE(::IsWindowVisible(frame));
  MoveIntoView();
  const Picture atRest = AroundThePicture();
  std::vector<std::string> told;
  const Watch watch(frame, [&](UINT message, LPARAM) {
    if (message == WM_PAINT && told.empty()) {
      told.emplace_back("framed");
      BringToScreen();
      TakePicture(Window(HandleOf(Bin())), "frmQuick-hover", When::AtOnce);
    }
  });
  const Watch drop(Bin().StatusBar1.Handle(), [&](UINT message, LPARAM) {
    if (message != SB_SETTEXTW || told.size() != 1) return;
    told.emplace_back(::IsWindowVisible(frame) ? "wipes framed" : "wipes");
    // No message is handled until the wipe ends: what the frame has left is painted by now.
    EXPECT_TRUE(WaitFor([&] {
      BringToScreen();
      return AroundThePicture() == atRest;
    })) << "the picture isn't whole while the wipe runs";
  });
  EXPECT_EQ(DragFilesTo(Window(Bin().imgDrop.Handle()).Centre(), {path}),
            static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_THAT(told, ElementsAre("framed", "wipes"));
  EXPECT_FALSE(PathExists(path));
  EXPECT_EQ(Panel(), "Last Operation: Success");
  MoveMouseTo({0, 0});
}

TEST_F(frmQuickTest, LockedFileAndOneThatIsGoneAreListedByAClickOnThePanel) {
  const std::string locked = scratch_.Make("locked.txt", "in use");
  const std::string free = scratch_.Make("free.txt", "secret");
  const std::string gone = scratch_ / "gone.txt";
  Open();
  const HANDLE held = ::CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  MoveIntoView();
  Drop({locked, free, gone});
  ::CloseHandle(held);
  EXPECT_EQ(ReadFileBytes(locked), "in use");
  EXPECT_FALSE(PathExists(free));
  EXPECT_EQ(Panel(), "Last Operation: Errors");
  EXPECT_THAT(fake_.boxes.shown, IsEmpty());
  PumpMessages();
  TakePicture(Window(HandleOf(Bin())), "frmQuick-errors");
  ClickPanel(1);
  EXPECT_FALSE(Default<frmQuickErrors>::IsLoaded());
  for (int time = 0; time < 2; ++time) {
    const std::vector<std::string> lines = ErrorsByClick("frmQuickErrors");
    ASSERT_EQ(lines.size(), 2U) << "each opening lists them once";
    EXPECT_THAT(lines[0], StartsWith(locked + " - "));
    EXPECT_THAT(lines[1], StartsWith(gone + " - "));
  }
  Bring({locked});
  EXPECT_FALSE(PathExists(locked)) << "nobody holds it any more";
  EXPECT_EQ(Panel(), "Last Operation: Success");
}

TEST_F(frmQuickTest, DropOfNothingIsASuccess) {
  Open();
  Bring({});
  EXPECT_EQ(Panel(), "Last Operation: Success") << "nothing has failed";
}

TEST_F(frmQuickTest, DropWithoutItsListChangesNothingAndADamagedListIsADropOfNothing) {
  const std::string gone = scratch_ / "gone.txt";
  Open();
  const POINT picture = Window(Bin().imgDrop.Handle()).Centre();
  Bring({gone});
  ASSERT_EQ(Panel(), "Last Operation: Errors");
  EXPECT_EQ(DragListTo(picture, {}), static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_EQ(Panel(), "Last Operation: Errors") << "the last status stays";
  EXPECT_EQ(ErrorsByClick("frmQuickErrors-one").size(), 1U);

  const std::string kept = scratch_.Make("kept.txt", "stays");
  std::vector<char> damaged = DropFilesBytes({kept});
  damaged.resize(damaged.size() - 2 * sizeof(wchar_t));  // without the zeros of its end
  EXPECT_EQ(DragListTo(picture, damaged), static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_EQ(Panel(), "Last Operation: Success");
  EXPECT_EQ(ReadFileBytes(kept), "stays");
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
