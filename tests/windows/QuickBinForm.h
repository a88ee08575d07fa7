// The QuickWipe Bin as a window, with the real engine on files that the test has made, and a main
// window that is a bare one.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>
#include <ole2.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
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

class QuickBinForm : public testing::Test {
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
  std::vector<std::string> ErrorsByClick(const char* picture) {
    return ErrorsBy([this] { ClickPanel(0); }, picture);
  }
  // Asks for the errors, reads what the dialog lists, and closes it. Empty when none comes.
  std::vector<std::string> ErrorsBy(const std::function<void()>& ask, const char* picture) {
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
      PumpMessages();
      TakePicture(dialog, picture);
      const HWND list = Item(form, IDC_frmQuickErrors_List1);
      for (LRESULT i = 0; i < ::SendMessageW(list, LB_GETCOUNT, 0, 0); ++i) {
        char text[600] = "";
        ::SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        lines.emplace_back(text);
      }
      Press(form, IDC_frmQuickErrors_cmdOK);
    });
    ask();
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

}  // namespace zq::test
