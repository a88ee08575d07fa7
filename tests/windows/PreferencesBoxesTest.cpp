// The boxes that the preferences and the control of the companion show, as the system shows them.
#include <gtest/gtest.h>

#include "Driving.h"
#include "RealBoxes.h"
#include "core/state/AppState.h"
#include "platform/win32/Win32MessageBoxes.h"
#include "preferences/frmPreferences.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"

namespace zq::test {
namespace {

class PreferencesBoxesTest : public testing::Test {
 protected:
  void SetUp() override {
    state_.AppFolder = "C:\\Zeroquill\\";
    fake_.files.AddFolder("C:\\Zeroquill");
    Default<frmPreferences>::SetFactory(
        [this] { return std::make_unique<frmPreferences>(state_, platform_, mainWindow_); });
  }
  void TearDown() override {
    if (Default<frmPreferences>::IsLoaded()) Default<frmPreferences>::Touch().Unload();
    Form::DestroyClosed();
  }

  // The dialog on its third tab, in front.
  HWND Open() {
    Default<frmPreferences>::Touch().Show();
    ::SendMessageW(Form().TabStrip1.Handle(), TCM_SETCURFOCUS, 2, 0);
    ::SetForegroundWindow(Handle());
    PumpMessages();
    return Handle();
  }
  static frmPreferences& Form() { return Default<frmPreferences>::Touch(); }
  static HWND Handle() { return static_cast<zq::Form&>(Form()).Handle(); }
  static void PressManager() { Press(Form(), IDC_frmPreferences_chkManager); }
  static void PressOk() { Press(Form(), IDC_frmPreferences_cmdOK); }

  AppState state_;
  FakePlatform fake_;
  FakeMainWindow mainWindow_{fake_.log};
  Win32MessageBoxes boxes_;
  Platform platform_{fake_.files,        boxes_,         fake_.process,
                     fake_.regional,     fake_.registry, UntoldWork::Instance(),
                     fake_.systemWindows};
};

TEST_F(PreferencesBoxesTest, UntickingWarnsAndAPostThatIsRefusedIsTold) {
  state_.Settings.ExplorerManager = 1;
  fake_.systemWindows.windows = {{"ZQ Explorer Manager"}};
  fake_.systemWindows.refusesPost = true;
  const HWND dialog = Open();
  const std::string warning =
      "Shutting down the Zeroquill Explorer Manager will remove the right click menu integration with "
      "Windows "
      "as well as the Recycle Bin Wiping option.\r\n\r\nAre you sure you wish to remove the Manager from "
      "system startup?";
  const std::vector<ShownBox> shown =
      AnswerBoxes({{"Cancel", "preferences-remove"}, {"OK", ""}, {"OK", "preferences-shut-down"}}, [&] {
        PressManager();
        EXPECT_TRUE(IsTicked(Form(), IDC_frmPreferences_chkManager)) << "Cancel ticks it again";
        PressManager();
        EXPECT_FALSE(IsTicked(Form(), IDC_frmPreferences_chkManager));
        PressOk();
      });
  ASSERT_EQ(shown.size(), 3U);
  for (const int i : {0, 1})
    ExpectShown(shown[i], dialog, "Explorer Manager", warning, BoxIcon::Question, {"OK", "Cancel"}, "OK");
  ExpectShown(
      shown[2], dialog, "Error",
      "Zeroquill was unable to shut down the Explorer Manager automatically for this session of Windows.  "
      "To shut down the Manager from your System Tray, you can right click the Manager icon and choose the "
      "Exit option.",
      BoxIcon::Warning, {"OK"}, "OK");
  EXPECT_FALSE(Default<frmPreferences>::IsLoaded()) << "it closes all the same";
}

TEST_F(PreferencesBoxesTest, TickingOffersToLaunchAndALaunchThatFailsIsTold) {
  fake_.process.startFails = true;
  const HWND dialog = Open();
  const std::vector<ShownBox> shown =
      AnswerBoxes({{"Yes", "preferences-offer"}, {"OK", "preferences-offered-launch"}}, [&] {
        PressManager();
        PressOk();
      });
  ASSERT_EQ(shown.size(), 2U);
  ExpectShown(shown[0], dialog, "Explorer Manager",
              "Do you wish to launch the Zeroquill Explorer Manager now?", BoxIcon::Question, {"Yes", "No"},
              "Yes");
  ExpectShown(
      shown[1], dialog, "Error Loading",
      "An error was encountered trying to load the Zeroquill Explorer Manager.  The Manager should be "
      "loaded the next time you restart your system.",
      BoxIcon::Warning, {"OK"}, "OK");
  EXPECT_FALSE(Default<frmPreferences>::IsLoaded()) << "it closes all the same";
  EXPECT_EQ(state_.Settings.ExplorerManager, 1);
}

TEST_F(PreferencesBoxesTest, LaunchOfTheMenuThatFailsIsTold) {
  fake_.process.startFails = true;
  const HWND before = Open();
  ExplorerManager manager(state_, platform_);
  const std::vector<ShownBox> shown =
      AnswerBoxes({{"OK", "preferences-launch"}}, [&] { manager.LaunchManager(); });
  ASSERT_EQ(shown.size(), 1U);
  ExpectShown(shown[0], before, "Error Loading",
              "An error was encountered trying to lauch the Zeroquill Explorer Manager.", BoxIcon::Warning,
              {"OK"}, "OK");
}

}  // namespace
}  // namespace zq::test
