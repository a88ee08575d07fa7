// What is done with all settings changed.
#include <algorithm>

#include "e2e/FilesDialog.h"
#include "e2e/walk/SettingsWalk.h"

namespace zq::test {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Page = PreferencesWindow::Page;

void SettingsWalk::ExpectSeen(const MainWindow& main) const {
  Await("the list's lines to come or go", [&] { return HasLines(main.list) == (settings_.gridLines == 1); });
  Await("the look of the bars", [&] { return HasPlainBars(main) == (settings_.toolBars != 1); });
}

MessageBoxView SettingsWalk::WaitSaveQuestion(const Program& program) {
  const MessageBoxView box = program.WaitBox("Save");
  ExpectBox(box, "Save", "Save the current Wiping Job?", BoxIcon::Question, {"Yes", "No", "Cancel"}, "Yes");
  return box;
}

void SettingsWalk::ExpectNothingCame(const Program& program, const MainWindow& main) {
  Give(main, "mnuHelpAbout");
  const Window about = program.WaitWindow("About Zeroquill");
  // A tip comes wherever the pointer happens to rest.
  const std::vector<Window> windows = program.Windows();
  EXPECT_EQ(std::count_if(windows.begin(), windows.end(),
                          [](Window window) { return window.ClassName() != TOOLTIPS_CLASSA; }),
            2)
      << program.Describe();
  about.Child("OK").Press();
  about.WaitGone();
  main.window.WaitEnabled();
}

void SettingsWalk::LookAtTheDialog(const Program& program, const MainWindow& main) const {
  const PreferencesWindow dialog(program, main);
  dialog.ExpectShows(settings_);
  for (const Page page : {Page::Security, Page::Settings, Page::Manager}) {
    dialog.Show(page);
    TakePicture(dialog.window, "settings-09-page-" + std::to_string(static_cast<int>(page) + 1));
  }
  dialog.PressOk();
  dialog.WaitGone();
  EXPECT_TRUE(program.Boxes().empty()) << "the companion is registered already";
  ExpectStored();
}

void SettingsWalk::LookAtTheFreeSpaceDialog(const Program& program, const MainWindow& main) const {
  main.PressTool("Wipe Free Space");
  const Window dialog = program.WaitWindow("Wipe Drive Free Space");
  EXPECT_TRUE(dialog.Child("Level 7 Wiping (21 data writes per byte) - Strongest Security").IsChecked());
  TakePicture(dialog, "settings-11-free-space");
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  main.window.WaitEnabled();
}

void SettingsWalk::AddByTheRemembered(const Program& program, const MainWindow& main) const {
  main.PressTool("Add Folder");
  const Window folder = program.WaitWindow("Add Folder");
  folder.Child("OK").WaitEnabled();
  const TreeView tree(folder.ChildOfClass(WC_TREEVIEWA));
  Await("the remembered folder", [&] {
    const HTREEITEM selected = tree.Selected();
    return selected != nullptr && tree.Text(selected) == "papers";
  });
  EXPECT_TRUE(folder.Child(kSubFolders).IsChecked());
  TakePicture(folder, "settings-10-add-folder");
  folder.Child("OK").Press();
  folder.WaitGone();
  main.window.WaitEnabled();
  main.list.WaitRows(1);
  EXPECT_THAT(main.list.Row(0), ElementsAre(papers_, "N/A", "*.*", "Yes"));

  main.PressTool("Add Files");
  const FilesDialog files(program, main);
  files.Enter("secret.txt");  // in the remembered folder
  files.WaitGone();
  main.list.WaitRows(2);
  EXPECT_EQ(main.list.Text(1), secrets_.back());
}

void SettingsWalk::WipeTheJob(const Program& program, const MainWindow& main) const {
  Confirm(program, main);
  const MessageBoxView box = WaitClosingBox(program);
  EXPECT_EQ(box.text, kComplete);
  box.Answer("Yes");
  const Window window = program.WaitWindow("Zeroquill Report", "#32770");
  TakePicture(window, "settings-13-report");
  window.Close();
  window.WaitGone();
  main.window.WaitEnabled();
  TakePicture(main.window, "settings-14-wiped");
  const std::string rtf = ReadFileBytes(folder_ + "\\Report\\Report.rtf");
  EXPECT_THAT(rtf, HasSubstr("\\fs24"));
  EXPECT_THAT(rtf, HasSubstr("\\fs20")) << "the running line has a size of its own";
  EXPECT_EQ(rtf.find("\\fs16"), std::string::npos);
  for (const std::string& path : secrets_) EXPECT_FALSE(PathExists(path)) << path;
  EXPECT_FALSE(PathExists(papers_));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  for (const std::string& path : kept_) ExpectKept(path);
  const std::vector<std::string> report = Lines(ReadFileBytes(reportPath_));
  ASSERT_EQ(report.size(), 7u);
  EXPECT_THAT(report, Contains(Quoted(papers_)));
  EXPECT_EQ(report.back(), "\"[ERRORS]\"");
}

Window SettingsWalk::OpenBin(const Program& program, const MainWindow& main) {
  Give(main, "mnuFileQuickWipeBin");
  const Window bin = program.WaitWindow("QuickWipe Bin");
  Await("the main window to be minimised", [&] { return ::IsIconic(main.window.Handle()) != FALSE; });
  return bin;
}

std::string SettingsWalk::DropOn(Window bin, const std::string& path) {
  for (const Window child : bin.Children()) {
    if (child.ClassName() != "Static" || (child.Style() & SS_NOTIFY) == 0) continue;
    EXPECT_EQ(DragFilesTo(child.Centre(), {path}), static_cast<DWORD>(DROPEFFECT_COPY));
  }
  return StatusPanels(bin.ChildOfClass(STATUSCLASSNAMEA)).front();
}

void SettingsWalk::CloseBin(Window bin, const MainWindow& main) {
  bin.Child("Close Bin").Press();
  bin.WaitGone();
  Await("the main window to be back", [&] { return ::IsIconic(main.window.Handle()) == FALSE; });
}

void SettingsWalk::WipeInTheBin(const Program& program, const MainWindow& main) const {
  constexpr char kDropped[] = "dropped into the Bin ";
  const std::string path = scratch_.Make("letters\\dropped.txt", Marked(kDropped, 20000));
  const Window bin = OpenBin(program, main);
  EXPECT_EQ(DropOn(bin, path), "Last Operation: Success");
  TakePicture(bin, "settings-15-bin");
  EXPECT_FALSE(PathExists(path));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kDropped));
  for (const std::string& kept : kept_) ExpectKept(kept);
  CloseBin(bin, main);
  EXPECT_TRUE(::IsZoomed(main.window.Handle())) << "as it was";
}

void SettingsWalk::DropIntoTheBinInVain(const Program& program, const MainWindow& main) const {
  const Window bin = OpenBin(program, main);
  EXPECT_EQ(DropOn(bin, kept_[3]), "Last Operation: Errors");
  const RECT panels = bin.ChildOfClass(STATUSCLASSNAMEA).ScreenRect();
  ClickAt({panels.left + 20, (panels.top + panels.bottom) / 2});
  const Window errors = program.WaitWindow("QuickWipe Errors");
  TakePicture(errors, "settings-odd-errors");
  EXPECT_THAT(Entries(errors.ChildOfClass("ListBox")),
              ElementsAre(AllOf(StartsWith(kept_[3] + " - "), HasSubstr("no level 4"))));
  errors.Child("OK").Press();
  errors.WaitGone();
  bin.WaitEnabled();
  CloseBin(bin, main);
}

}  // namespace zq::test
