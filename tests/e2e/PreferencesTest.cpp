// The preferences in the real program, and the companion that they start and shut down: the real registry,
// and a second process with its window, which is the real companion or the least that passes for one.
#include "e2e/ManagerStage.h"

namespace zq::test {
namespace {

class PreferencesDialog : public ZeroquillTest {
 protected:
  void SetUp() override { Prepare(); }
  void TearDown() override {
    RemoveRunValue();
    if (const Window manager = ManagerWindow()) manager.Close();
    Await("the companion to be gone", [] { return !ManagerWindow(); });
  }
  void PutStandIn() const {
    const std::string copy = scratch_.CopyIn("zq_manager_stand_in.exe");
    WriteFileBytes(folder_ + "\\ZQExMan.exe", ReadFileBytes(copy));
  }
  void RegisterStartRemoveAndShutDown() const;
  static Window Open(const Program& program, const MainWindow& main) {
    main.ChooseMenu('F', 'P');
    return program.WaitWindow("Preferences");
  }
  static void Tick(Window dialog, std::string_view caption, bool ticked) {
    dialog.Child(caption).Press();
    Await("the box to change", [&] { return dialog.Child(caption).IsChecked() == ticked; });
  }
  // Once the menu is open, its entry's key starts the companion or does nothing.
  static void TryLaunch(const MainWindow& main) {
    const Window menu = main.OpenMenu('F');
    TypeKey(main.window, 'L');
    TypeKey(main.window, VK_ESCAPE);
    Await("the end of the menu", [&] { return !menu.IsVisible(); });
    TypeKey(main.window, VK_ESCAPE);
  }
};

TEST_F(PreferencesDialog, AreWrittenAtOnceAndActOnTheMainWindow) {
  const Program program(exe_);
  const MainWindow main(program);
  const Window dialog = Open(program, main);
  EXPECT_EQ(dialog.Owner(), main.window);
  EXPECT_FALSE(main.window.IsEnabled());
  Tick(dialog, "Level 5 Wiping (equal to 15 data writes per byte) - Stronger Security", true);
  TypeKey(dialog, VK_TAB, {VK_CONTROL});
  dialog.Child("Display Gridlines in Zeroquill Bin").WaitVisible();
  Tick(dialog, "Display Gridlines in Zeroquill Bin", true);
  Tick(dialog, "Maximize Window at Startup", true);
  EXPECT_EQ(main.list.TheWindow().Send(LVM_GETEXTENDEDLISTVIEWSTYLE) & LVS_EX_GRIDLINES, 0);
  TypeKey(dialog, 'O', {VK_MENU});  // the mnemonic of OK
  dialog.WaitGone();
  main.window.WaitEnabled();
  EXPECT_NE(main.list.TheWindow().Send(LVM_GETEXTENDEDLISTVIEWSTYLE) & LVS_EX_GRIDLINES, 0);
  SettingsFile wanted;
  wanted.promptToSave = 0;
  wanted.gridLines = wanted.maximize = 1;
  wanted.passes = 5;
  wanted.lastFolder = std::string(150, ' ');
  const std::string written = ReadFileBytes(settingsPath_);
  EXPECT_EQ(written.size(), 322u);
  EXPECT_EQ(written.substr(0, 4), wanted.Bytes().substr(0, 4));
  EXPECT_EQ(written.substr(304, 6), wanted.Bytes().substr(304, 6));
  EXPECT_FALSE(::IsZoomed(main.window.Handle())) << "at the next start";
}

// A folder of the file's name stands in for a file that may not be written: unlike a read-only mark, it
// holds for every user.
TEST_F(PreferencesDialog, ThatCannotBeWrittenEndTheProgramWithAReportAndLeaveTheCompanionAlone) {
  const Program program(exe_);
  const MainWindow main(program);
  const Window dialog = Open(program, main);
  ASSERT_TRUE(::DeleteFileA(settingsPath_.c_str()));
  ASSERT_TRUE(::CreateDirectoryA(settingsPath_.c_str(), nullptr));
  Tick(dialog, "Load Explorer Manager at System Startup", true);
  dialog.Child("OK").Press();
  TakePicture(program.WaitBox("Zeroquill").window, "preferences-unwritten");
  ExpectRunTimeError(program, "Run-time error '75':\r\n\r\nPath/File access error");
  EXPECT_EQ(RunValue(), "");
  EXPECT_FALSE(ManagerWindow());
}

void PreferencesDialog::RegisterStartRemoveAndShutDown() const {
  const Program program(exe_);
  const MainWindow main(program);
  Window dialog = Open(program, main);
  Tick(dialog, "Load Explorer Manager at System Startup", true);
  dialog.Child("OK").Press();
  MessageBoxView box = program.WaitBox("Explorer Manager");
  ExpectBox(box, "Explorer Manager", "Do you wish to launch the Zeroquill Explorer Manager now?",
            BoxIcon::Question, {"Yes", "No"}, "Yes");
  EXPECT_EQ(RunValue(), folder_ + "\\ZQExMan.exe");
  box.Answer("Yes");
  dialog.WaitGone();
  Await("the companion", [] { return static_cast<bool>(ManagerWindow()); });
  const Window manager = ManagerWindow();
  TryLaunch(main);
  EXPECT_TRUE(program.Boxes().empty());

  dialog = Open(program, main);
  EXPECT_TRUE(dialog.Child("Load Explorer Manager at System Startup").IsChecked());
  dialog.Child("Load Explorer Manager at System Startup").Press();
  box = program.WaitBox("Explorer Manager");
  TakePicture(box.window, "preferences-remove");
  ExpectBox(box, "Explorer Manager",
            "Shutting down the Zeroquill Explorer Manager will remove the right click menu integration with "
            "Windows as well as the Recycle Bin Wiping option.\r\n\r\nAre you sure you wish to remove the "
            "Manager from system startup?",
            BoxIcon::Question, {"OK", "Cancel"}, "OK");
  box.Answer("OK");
  EXPECT_NE(RunValue(), "") << "not before OK";
  dialog.WaitEnabled();
  dialog.Child("OK").Press();
  dialog.WaitGone();
  EXPECT_EQ(RunValue(), "");
  manager.WaitGone();
}

TEST_F(PreferencesDialog, RegisterStartRemoveAndShutDownTheCompanion) {
  RegisterStartRemoveAndShutDown();
}

TEST_F(PreferencesDialog, RegisterStartRemoveAndShutDownWhateverHasTheCompanionsWindow) {
  PutStandIn();
  RegisterStartRemoveAndShutDown();
}

TEST_F(PreferencesDialog, MissingCompanionIsToldWhenItIsToBeLaunched) {
  ASSERT_TRUE(::DeleteFileA((folder_ + "\\ZQExMan.exe").c_str()));
  const Program program(exe_);
  const MainWindow main(program);
  main.ChooseMenu('F', 'L');
  const MessageBoxView box = program.WaitBox("Error Loading");
  TakePicture(box.window, "preferences-launch");
  ExpectBox(box, "Error Loading", "An error was encountered trying to lauch the Zeroquill Explorer Manager.",
            BoxIcon::Warning, {"OK"}, "OK");
  box.Answer("OK");
  main.window.WaitEnabled();
}

}  // namespace
}  // namespace zq::test
