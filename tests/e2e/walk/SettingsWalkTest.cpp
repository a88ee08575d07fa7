// A walk through the settings in the real program, from its first start: each is changed by its own control,
// and looked for on the disc, on the screen at once, and at the next start, where everything is done with all
// of them changed.
#include <functional>

#include "e2e/FilesDialog.h"
#include "e2e/walk/SettingsWalk.h"

namespace zq::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Page = PreferencesWindow::Page;

struct Change {
  const char* picture;
  Page page;
  std::function<void(const PreferencesWindow&)> make;
  std::function<void(SettingsFile&)> record;
};

// One by one, in the order of the dialog.
const Change kChanges[] = {
    {"level", Page::Security, [](const PreferencesWindow& dialog) { dialog.Tick(kOption7, true); },
     [](SettingsFile& settings) { settings.passes = 7; }},
    {"progress-bars", Page::Settings,
     [](const PreferencesWindow& dialog) { dialog.Tick(kProgressBars, false); },
     [](SettingsFile& settings) { settings.progressBars = 0; }},
    {"tool-bars", Page::Settings, [](const PreferencesWindow& dialog) { dialog.Tick(kToolBars, false); },
     [](SettingsFile& settings) { settings.toolBars = 0; }},
    {"grid-lines", Page::Settings, [](const PreferencesWindow& dialog) { dialog.Tick(kGridLines, true); },
     [](SettingsFile& settings) { settings.gridLines = 1; }},
    {"maximize", Page::Settings, [](const PreferencesWindow& dialog) { dialog.Tick(kMaximize, true); },
     [](SettingsFile& settings) { settings.maximize = 1; }},
    {"prompt", Page::Settings, [](const PreferencesWindow& dialog) { dialog.Tick(kPrompt, false); },
     [](SettingsFile& settings) { settings.promptToSave = 0; }},
    {"font-size", Page::Settings, [](const PreferencesWindow& dialog) { dialog.ChooseFontSize("12"); },
     [](SettingsFile& settings) { settings.reportFontSize = 12; }},
    {"manager", Page::Manager, [](const PreferencesWindow& dialog) { dialog.Tick(kManager, true); },
     [](SettingsFile& settings) { settings.explorerManager = 1; }},
};

}  // namespace

void SettingsWalk::StartForTheFirstTime(const Program& program, const MainWindow& main) {
  const Window welcome = program.WaitWindow("Welcome to Zeroquill");
  TakePicture(welcome, "settings-01-welcome");
  welcome.Child("OK").Press();
  welcome.WaitGone();
  main.window.WaitEnabled();
  ExpectStored();
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'));
  EXPECT_TRUE(::IsZoomed(main.window.Handle()));
  main.list.WaitRows(1);
  main.window.Post(WM_SYSCOMMAND, SC_RESTORE);
  Await("the window to be restored", [&] { return ::IsZoomed(main.window.Handle()) == FALSE; });
  TakePicture(main.window, "settings-02-main");
  ExpectSeen(main);
  Give(main, "mnuFileClose");
  WaitSaveQuestion(program).Answer("Cancel");
}

// Everything changed, and called off by the button and by the close box.
void SettingsWalk::LeaveAllUnchanged(const Program& program, const MainWindow& main) const {
  for (const bool byCloseBox : {false, true}) {
    const PreferencesWindow dialog(program, main);
    for (const Change& change : kChanges) {
      dialog.Show(change.page);
      change.make(dialog);
    }
    if (byCloseBox) {
      dialog.window.Close();
    } else {
      dialog.window.Child("Cancel").Press();
    }
    dialog.WaitGone();
    ExpectStored();
    EXPECT_EQ(RunValue(), "");
    ExpectSeen(main);
  }
}

void SettingsWalk::ChangeEach(const Program& program, const MainWindow& main) {
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.picture);
    const PreferencesWindow dialog(program, main);
    dialog.ExpectShows(settings_);
    dialog.Show(change.page);
    change.make(dialog);
    TakePicture(dialog.window, std::string("settings-03-change-") + change.picture);
    ExpectStored();
    change.record(settings_);
    dialog.PressOk();
    if (change.page == Page::Manager) {
      const MessageBoxView box = program.WaitBox("Explorer Manager");
      ExpectBox(box, "Explorer Manager", "Do you wish to launch the Zeroquill Explorer Manager now?",
                BoxIcon::Question, {"Yes", "No"}, "Yes");
      TakePicture(box.window, "settings-04-launch");
      box.Answer("No");
    }
    dialog.WaitGone();
    ExpectStored();
    ExpectSeen(main);
  }
  EXPECT_EQ(RunValue(), folder_ + "\\ZQExMan.exe");
  EXPECT_FALSE(::IsZoomed(main.window.Handle())) << "not before the next start";
  TakePicture(main.window, "settings-05-main");
}

// They reach the disc at the exit alone.
void SettingsWalk::ChangeWhatTheDialogHasNot(const Program& program, const MainWindow& main) {
  const std::string stored = ReadFileBytes(settingsPath_);
  Give(main, "mnuFileNew");
  const Window note = program.WaitWindow("New Job", "#32770");
  EXPECT_EQ(main.list.Rows(), 0) << "the job goes without a question";
  note.Child("Do Not Show Again").Press();
  Await("the tick", [&] { return note.Child("Do Not Show Again").IsChecked(); });
  TakePicture(note, "settings-06-new-job");
  note.Child("OK").Press();
  note.WaitGone();
  settings_.skipNewJobNote = 1;
  Give(main, "mnuFileNew");
  ExpectNothingCame(program, main);

  DragFilesTo(main.list.TheWindow().Centre(), {papers_});
  const Window folder = program.WaitWindow("Add Folder");
  EXPECT_FALSE(folder.Child(kSubFolders).IsChecked());
  folder.Child(kSubFolders).Press();
  Await("the tick", [&] { return folder.Child(kSubFolders).IsChecked(); });
  folder.Child("OK").Press();
  folder.WaitGone();
  main.list.WaitRows(1);
  EXPECT_THAT(main.list.Row(0), ElementsAre(papers_, "N/A", "*.*", "Yes"));
  settings_.lastFolder = papers_;
  settings_.includeSubFolders = 1;

  Give(main, "mnuActionsAddFiles");
  const FilesDialog files(program, main);
  files.Enter(letters_ + "\\open.txt");
  files.WaitGone();
  main.list.WaitRows(2);
  settings_.lastFilesFolder = letters_ + "\\";

  EXPECT_EQ(RowsOfBands(main), 1);
  DragLastBandDown(main);
  Await("a second row of bands", [&] { return RowsOfBands(main) == 2; });
  TakePicture(main.window, "settings-07-bands");
  EXPECT_EQ(ReadFileBytes(settingsPath_), stored);
  EXPECT_FALSE(PathExists(folder_ + "\\Zeroquill.dsl"));
}

void SettingsWalk::ChangeAllBack(const Program& program, const MainWindow& main) {
  const PreferencesWindow dialog(program, main);
  dialog.Tick(kOption5, true);
  dialog.Show(Page::Settings);
  dialog.Tick(kProgressBars, true);
  dialog.Tick(kToolBars, true);
  dialog.Tick(kGridLines, false);
  dialog.Tick(kMaximize, false);
  dialog.Tick(kPrompt, true);
  dialog.ChooseFontSize("10");
  dialog.Show(Page::Manager);
  dialog.window.Child(kManager).Press();
  const MessageBoxView box = program.WaitBox("Explorer Manager");
  TakePicture(box.window, "settings-16-remove");
  EXPECT_EQ(box.buttons, (std::vector<std::string>{"OK", "Cancel"}));
  box.Answer("OK");
  dialog.window.WaitEnabled();
  EXPECT_NE(RunValue(), "") << "not before OK";
  dialog.PressOk();
  dialog.WaitGone();
  EXPECT_EQ(RunValue(), "");

  settings_.passes = 5;
  settings_.progressBars = settings_.toolBars = settings_.promptToSave = 1;
  settings_.gridLines = settings_.maximize = settings_.explorerManager = 0;
  settings_.reportFontSize = 10;
  ExpectStored();
  ExpectSeen(main);
  TakePicture(main.window, "settings-17-main");
}

TEST_F(SettingsWalk, EachIsChangedAndEverythingDoneWithAllChanged) {
  {
    const Program program(exe_, Quoted(letters_ + "\\open.txt"));
    const MainWindow main(program);
    StartForTheFirstTime(program, main);
    LeaveAllUnchanged(program, main);
    ChangeEach(program, main);
    ChangeWhatTheDialogHasNot(program, main);
    main.window.Close();
    EXPECT_EQ(program.WaitExit(), 0u) << "without a question, with a job that isn't saved";
  }
  ExpectStored();
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'))
      << "as it was read, where the user maximizes";
  const std::string bands = ReadFileBytes(folder_ + "\\Zeroquill.dsl");

  // A place to be restored to, so that only the setting maximizes the window.
  const std::string placement = PlacementFile::Of({120, 90, 900, 640}).Bytes();
  WriteFileBytes(placementPath_, placement);
  {
    const Program program(exe_);
    const MainWindow main(program);
    EXPECT_TRUE(::IsZoomed(main.window.Handle()));
    ExpectSeen(main);
    EXPECT_EQ(RowsOfBands(main), 2);
    TakePicture(main.window, "settings-08-next-start");
    Give(main, "mnuFileNew");
    ExpectNothingCame(program, main);
    LookAtTheDialog(program, main);
    LookAtTheFreeSpaceDialog(program, main);
    AddByTheRemembered(program, main);
    WipeTheJob(program, main);
    WipeInTheBin(program, main);
    EXPECT_EQ(ReadFileBytes(placementPath_), placement);
    ChangeAllBack(program, main);
    main.window.Close();
    WaitSaveQuestion(program).Answer("No");
    EXPECT_EQ(program.WaitExit(), 0u);
  }
  ExpectStored();
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0')) << "of a maximised window";
  EXPECT_EQ(ReadFileBytes(folder_ + "\\Zeroquill.dsl"), bands);
}

// Values that no control can bring are of no effect, are shown as the dialog can show them, and become those
// by its OK alone.
TEST_F(SettingsWalk, ValuesThatNoControlBringsStayUntilTheOkOfTheDialog) {
  settings_.passes = 4;
  settings_.reportFontSize = 9;
  settings_.gridLines = settings_.maximize = settings_.promptToSave = 2;
  settings_.toolBars = settings_.progressBars = -1;
  settings_.includeSubFolders = 3;
  Prepare();
  WriteFileBytes(settingsPath_, settings_.Bytes());
  const Program program(exe_, Quoted(letters_ + "\\open.txt"));
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_FALSE(::IsZoomed(main.window.Handle()));
  ExpectSeen(main);
  // There is no such level: nothing is touched, by a job or in the Bin.
  const StampWindow stamps;
  Confirm(program, main);
  Close(program, main, kComplete);
  const Report report = ReadReport(stamps);
  EXPECT_THAT(report.files, ElementsAre(kept_[2]));
  EXPECT_THAT(report.errors, ElementsAre(AllOf(StartsWith(kept_[2] + " - "), HasSubstr("no level 4"))));
  EXPECT_THAT(ReadFileBytes(folder_ + "\\Report\\Report.rtf"), HasSubstr("\\fs18"));
  DropIntoTheBinInVain(program, main);
  for (const std::string& path : kept_) ExpectKept(path);

  {
    const PreferencesWindow dialog(program, main);
    dialog.ExpectShows(settings_);
    dialog.Show(Page::Settings);
    TakePicture(dialog.window, "settings-odd");
    dialog.window.Child("Cancel").Press();
    dialog.WaitGone();
    ExpectStored();
  }
  const PreferencesWindow dialog(program, main);
  dialog.PressOk();
  dialog.WaitGone();
  settings_.passes = 7;
  settings_.reportFontSize = 12;
  settings_.gridLines = settings_.maximize = settings_.promptToSave = 0;
  settings_.toolBars = settings_.progressBars = 0;
  ExpectStored();
  main.window.Close();
  EXPECT_EQ(program.WaitExit(), 0u);
  ExpectStored();
}

}  // namespace zq::test
