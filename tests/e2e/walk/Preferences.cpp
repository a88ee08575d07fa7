// The preferences, and the companion that they register.
#include "e2e/ManagerStage.h"
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {
namespace {

constexpr char kTitle[] = "Preferences";
constexpr char kLoadManager[] = "Load Explorer Manager at System Startup";

// A tab by its place, as a click chooses it.
void ChooseTab(Window dialog, int tab) {
  const Window tabs = dialog.ChildOfClass(WC_TABCONTROLA);
  const RemoteMemory memory(tabs, sizeof(RECT));
  ASSERT_NE(tabs.Send(TCM_GETITEMRECT, static_cast<WPARAM>(tab), memory.Param()), 0);
  RECT rect{};
  memory.Read(0, &rect, sizeof rect);
  const LPARAM place = MAKELPARAM((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
  tabs.Post(WM_LBUTTONDOWN, MK_LBUTTON, place);
  tabs.Post(WM_LBUTTONUP, 0, place);
  Await("the tab", [&] { return SelectedTab(tabs) == tab; });
}

Window OpenPreferences(Walk& walk) {
  walk.Command("mnuFilePreferences");
  const Window dialog = walk.Run().WaitWindow(kTitle, "#32770");
  EXPECT_EQ(dialog.Owner(), walk.Main().window);
  return dialog;
}

void ExpectTick(Window dialog, std::string_view caption, std::int16_t value) {
  EXPECT_EQ(dialog.Child(caption).IsChecked(), value == 1) << caption;
}

void ExpectShown(Window dialog, const SettingsFile& settings) {
  EXPECT_TRUE(dialog
                  .Child(settings.passes == 3
                             ? "Level 3 Wiping (equal to 9 data writes per byte) - Strong Security"
                         : settings.passes == 5
                             ? "Level 5 Wiping (equal to 15 data writes per byte) - Stronger Security"
                             : "Level 7 Wiping (equal to 21 data writes per byte) - Strongest Security")
                  .IsChecked());
  ExpectTick(dialog, "Use Progress Bar Visual Styles", settings.progressBars);
  ExpectTick(dialog, "Use Menu Visual Styles (XP or higher)", settings.toolBars);
  ExpectTick(dialog, "Display Gridlines in Zeroquill Bin", settings.gridLines);
  ExpectTick(dialog, "Maximize Window at Startup", settings.maximize);
  ExpectTick(dialog, "Prompt to Save Zeroquill Jobs", settings.promptToSave);
  ExpectTick(dialog, kLoadManager, settings.explorerManager);
  EXPECT_EQ(SelectedEntry(dialog.ChildOfClass("ComboBox")), std::to_string(settings.reportFontSize));
}

void Press(Window dialog, std::string_view caption, bool ticked) {
  dialog.Child(caption).Press();
  Await("the tick", [&] { return dialog.Child(caption).IsChecked() == ticked; });
}

void RegisterAManagerThatIsMissing(Walk& walk) {
  const std::string manager = walk.folder + "\\ZQExMan.exe";
  const std::string aside = walk.folder + "\\ZQExMan.aside";
  ASSERT_TRUE(::MoveFileA(manager.c_str(), aside.c_str()));
  walk.Command("mnuFileLaunch");
  walk.Answer("manager-launch-failed", "OK");
  const Window dialog = OpenPreferences(walk);
  ChooseTab(dialog, 2);
  Press(dialog, kLoadManager, true);
  dialog.Child("OK").Press();
  walk.Answer("manager-offer", "Yes");
  walk.Answer("manager-offer-failed", "OK");
  dialog.WaitGone();
  EXPECT_EQ(RunValue(), manager);
  EXPECT_FALSE(ManagerWindow());
  ASSERT_TRUE(::MoveFileA(aside.c_str(), manager.c_str()));
  walk.settings.explorerManager = 1;
  EXPECT_EQ(ReadFileBytes(walk.settingsPath), walk.settings.Bytes());
}

void RemoveTheManager(Walk& walk, Window manager) {
  const Window dialog = OpenPreferences(walk);
  ExpectShown(dialog, walk.settings);
  ChooseTab(dialog, 2);
  dialog.Child(kLoadManager).Press();
  walk.Answer("manager-remove", "Cancel");
  dialog.WaitEnabled();
  Await("the tick", [&] { return dialog.Child(kLoadManager).IsChecked(); });
  dialog.Child(kLoadManager).Press();
  walk.Answer("manager-remove", "OK");
  dialog.WaitEnabled();
  EXPECT_NE(RunValue(), "") << "not before OK";
  EXPECT_TRUE(static_cast<bool>(manager));
  AcceptDialog(dialog);
  walk.settings.explorerManager = 0;
  EXPECT_EQ(RunValue(), "");
  EXPECT_EQ(ReadFileBytes(walk.settingsPath), walk.settings.Bytes());
  manager.WaitGone();
}

}  // namespace

void LookAtThePreferences(Walk& walk) {
  Window dialog = OpenPreferences(walk);
  ExpectShown(dialog, walk.settings);
  walk.visits.See("frmPreferences", dialog, "security");
  ChooseTab(dialog, 1);
  walk.visits.See("frmPreferences", dialog, "settings");
  ChooseTab(dialog, 2);
  walk.visits.See("frmPreferences", dialog, "manager");
  PressHelp(walk, dialog, "of-preferences");
  // What is only looked at goes by Cancel, and nothing is written.
  const std::string before = ReadFileBytes(walk.settingsPath);
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  EXPECT_EQ(ReadFileBytes(walk.settingsPath), before);

  // OK writes all settings, among them what the dialogs have remembered since the start.
  dialog = OpenPreferences(walk);
  AcceptDialog(dialog);
  walk.ExpectSettingsOnDisc();
}

void ControlTheManager(Walk& walk) {
  RegisterAManagerThatIsMissing(walk);
  walk.Command("mnuFileLaunch");
  const Window manager = WaitManager();
  SeeMenus(walk, "manager-runs");
  RemoveTheManager(walk, manager);
}

}  // namespace zq::test
