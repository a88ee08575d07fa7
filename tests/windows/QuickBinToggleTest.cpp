// The QuickWipe Bin over the real main window: opened and closed by its command, with the main window going
// and coming, and with settings that change meanwhile.
#include <windows.h>
#include <commctrl.h>
#include <gmock/gmock.h>
#include <uxtheme.h>

#include "Driving.h"
#include "MainFormTest.h"
#include "preferences/frmPreferences.h"
#include "quickbin/frmQuick.h"

namespace zq::test {
namespace {

class QuickBinToggleTest : public MainFormTest {
 protected:
  void SetUp() override {
    MainFormTest::SetUp();
    Default<frmQuick>::SetFactory([this] {
      frmMain& main = Default<frmMain>::Touch();
      return std::make_unique<frmQuick>(state_, fake_.platform, main, main.DockStudio1,
                                        [&main] { return WindowOf(main); });
    });
  }
  void TearDown() override {
    if (Default<frmQuick>::IsLoaded()) Default<frmQuick>::Touch().Unload();
    MainFormTest::TearDown();
  }

  static UINT Command(frmMain& main) { return ::GetMenuItemID(File(main), 12); }
  static HMENU File(frmMain& main) { return ::GetSubMenu(::GetMenu(WindowOf(main)), 0); }
  // As the menu, the button and the key send it.
  static void Toggle(frmMain& main) {
    ::SendMessageW(WindowOf(main), WM_COMMAND, Command(main), 0);
    PumpMessages();
  }
  // As the menu shows it when it opens.
  static bool IsChecked(frmMain& main) {
    ::SendMessageW(WindowOf(main), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(File(main)), 0);
    return (::GetMenuState(File(main), Command(main), MF_BYCOMMAND) & MF_CHECKED) != 0;
  }
};

TEST_F(QuickBinToggleTest, MaximisedMainWindowGoesAndComesBackMaximised) {
  frmMain& main = Open();
  const HWND window = WindowOf(main);
  ::ShowWindow(window, SW_SHOWMAXIMIZED);
  EXPECT_FALSE(IsChecked(main));
  Toggle(main);
  EXPECT_TRUE(::IsIconic(window));
  EXPECT_TRUE(::IsWindowEnabled(window)) << "it isn't locked";
  EXPECT_TRUE(IsChecked(main));
  EXPECT_TRUE(state_.QuickBinOpen);
  Toggle(main);
  EXPECT_FALSE(Default<frmQuick>::IsLoaded());
  EXPECT_FALSE(state_.QuickBinOpen);
  EXPECT_FALSE(IsChecked(main));
  EXPECT_TRUE(::IsZoomed(window));
  EXPECT_FALSE(::IsIconic(window));
}

TEST_F(QuickBinToggleTest, ClosingSetsTheStateOfTheOpeningWhateverTheUserHasMadeOfIt) {
  frmMain& main = Open();
  const HWND window = WindowOf(main);
  ::ShowWindow(window, SW_SHOWNORMAL);
  for (const bool byButton : {true, false}) {
    Toggle(main);
    ::ShowWindow(window, SW_SHOWMAXIMIZED);
    if (byButton) {
      Press(Default<frmQuick>::Touch(), IDC_frmQuick_cmdCancel);
    } else {
      Close(Default<frmQuick>::Touch());
    }
    EXPECT_FALSE(Default<frmQuick>::IsLoaded());
    EXPECT_FALSE(::IsZoomed(window));
    EXPECT_FALSE(::IsIconic(window));
    EXPECT_FALSE(IsChecked(main));
  }
}

TEST_F(QuickBinToggleTest, ExitOfTheMainWindowEndsTheProgramWithTheBinOpen) {
  frmMain& main = Open();
  Toggle(main);
  main.Unload();
  EXPECT_THAT(fake_.log, testing::Contains("end"));
  EXPECT_TRUE(Default<frmQuick>::IsLoaded()) << "no other window is told";
}

// The lines of the job list, both ways, though the box speaks of the Bin; the bars with the Bin open.
TEST_F(QuickBinToggleTest, PreferencesActOnTheMainWindowAtOnce) {
  frmMain& main = Open();
  Toggle(main);
  Default<frmPreferences>::SetFactory(
      [&] { return std::make_unique<frmPreferences>(state_, fake_.platform, main); });
  const auto lines = [&] {
    return (ListView_GetExtendedListViewStyle(main.ListView1.Handle()) & LVS_EX_GRIDLINES) != 0;
  };
  const auto themed = [&] { return ::GetWindowTheme(Below(main, REBARCLASSNAMEA).at(0)) != nullptr; };
  for (const bool wanted : {true, false}) {
    frmPreferences& dialog = Default<frmPreferences>::Touch();
    Press(dialog, IDC_frmPreferences_chkGridLines);
    Press(dialog, IDC_frmPreferences_chkToolBars);
    EXPECT_EQ(lines(), !wanted) << "not before OK";
    EXPECT_EQ(themed(), wanted);
    Press(dialog, IDC_frmPreferences_cmdOK);
    EXPECT_EQ(lines(), wanted);
    EXPECT_EQ(themed(), !wanted);
  }
}

TEST_F(QuickBinToggleTest, FileMenuGreysTheLaunchWhileTheCompanionRuns) {
  frmMain& main = Open();
  const auto greyed = [&] {
    ::SendMessageW(WindowOf(main), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(File(main)), 0);
    for (int place = 0; place < ::GetMenuItemCount(File(main)); ++place) {
      wchar_t text[100] = L"";
      ::GetMenuStringW(File(main), static_cast<UINT>(place), text, 100, MF_BYPOSITION);
      if (std::wstring_view(text) == L"&Launch Explorer Manager")
        return (::GetMenuState(File(main), static_cast<UINT>(place), MF_BYPOSITION) & MF_GRAYED) != 0;
    }
    ADD_FAILURE() << "no such entry";
    return false;
  };
  EXPECT_FALSE(greyed());
  fake_.systemWindows.windows = {{"zq explorer manager 2"}};
  EXPECT_TRUE(greyed());
  fake_.systemWindows.windows.clear();
  EXPECT_FALSE(greyed());
}

}  // namespace
}  // namespace zq::test
