// Jobs by the windows: folders added by a drop, saved, opened again; the arrangement of the bars.
#include <algorithm>

#include "e2e/Zeroquill.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

class Jobs : public ZeroquillTest {};

// The place of a window among those of the program, the front one being 0.
std::size_t PlaceInFront(const Program& program, Window window) {
  const std::vector<Window> windows = program.Windows();
  return static_cast<std::size_t>(std::find(windows.begin(), windows.end(), window) - windows.begin());
}

TEST_F(Jobs, FoldersOfADropAreAskedAboutOneAfterTheOther) {
  Prepare();
  const std::string file = scratch_.Make("papers\\a.txt", "12345");
  scratch_.Make("one & two\\b.txt", "b");
  scratch_.Make("three\\c.txt", "c");
  const std::string first = scratch_ / "one & two";
  const std::string second = scratch_ / "three";
  const Program program(exe_);
  const MainWindow main(program);
  DragFilesTo(main.list.TheWindow().Centre(), {first, file, second});

  const Window dialog = program.WaitWindow("Add Folder");
  TakePicture(dialog, "jobs-add-folder");
  EXPECT_TRUE(dialog.IsTopmost());
  EXPECT_EQ(dialog.Owner(), main.window);
  EXPECT_FALSE(main.window.IsEnabled());
  dialog.Child("Process any found sub folders beneath chosen folder").Press();
  dialog.Child("OK").Press();
  dialog.WaitGone();

  const Window next = program.WaitWindow("Add Folder");
  EXPECT_THAT(main.list.Row(0), ElementsAre(first, "N/A", "*.*", "Yes"));
  EXPECT_TRUE(next.Child("Process any found sub folders beneath chosen folder").IsChecked())
      << "as at the last time";
  next.Child("OK").Press();
  next.WaitGone();
  main.list.WaitRows(3);
  EXPECT_THAT(main.list.Row(1), ElementsAre(file, "5 Bytes", "", ""));
  EXPECT_THAT(main.list.Row(2), ElementsAre(second, "N/A", "*.*", "Yes"));
  main.WaitItems("3 Items");
}

TEST_F(Jobs, BoxesOfTheFolderDialogComeBeforeIt) {
  SettingsFile settings;
  settings.lastFolder = "C:\\";
  Prepare(settings);
  const Program program(exe_);
  const MainWindow main(program);
  main.PressTool("Add Folder");
  const Window dialog = program.WaitWindow("Add Folder");
  dialog.Child("OK").WaitEnabled();
  dialog.Child("OK").Press();
  const MessageBoxView box = program.WaitBox("Allowed Action");
  ExpectBox(
      box, "Allowed Action",
      "You have selected a main root drive and defined the file mask to include ALL files.  This action "
      "cannot be performed by Zeroquill.  The program cannot wipe an entire drives contents.",
      BoxIcon::Warning, {"OK"}, "OK");
  EXPECT_LT(PlaceInFront(program, box.window), PlaceInFront(program, dialog));
  EXPECT_EQ(box.window.Owner(), dialog);
  box.Answer("OK");
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  EXPECT_EQ(main.list.Rows(), 0);
}

TEST_F(Jobs, SavedJobIsListedAndOpenedAtALaterStart) {
  Prepare();
  const std::string file = scratch_.Make("papers\\Grüße.txt", "12345");
  {
    const Program program(exe_, "\"" + file + "\"");
    const MainWindow main(program);
    main.list.WaitRows(1);
    main.PressTool("Save Job");
    const Window dialog = program.WaitWindow("Save Job", "#32770");
    dialog.ChildOfClass("Edit").SetText("Grüße & mehr");
    TakePicture(dialog, "jobs-save");
    dialog.Child("OK").Press();
    dialog.WaitGone();
    main.window.Close();
    EXPECT_EQ(program.WaitExit(), 0u);
  }
  EXPECT_EQ(ReadFileBytes(folder_ + "\\Jobs\\Grüße & mehr.zqj"),
            "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"" + file + "\"\r\n");

  const Program program(exe_);
  const MainWindow main(program);
  main.PressTool("Open Job");
  const Window dialog = program.WaitWindow("Open Job", "#32770");
  const ListView jobs(dialog.ChildOfClass(WC_LISTVIEWA));
  EXPECT_THAT(jobs.Columns(), ElementsAre("Job Name", "Last Wiping"));
  EXPECT_THAT(jobs.Row(0), ElementsAre("Grüße & mehr", "N/A"));
  TakePicture(dialog, "jobs-open");
  dialog.Child("OK").Press();
  dialog.WaitGone();
  main.list.WaitRows(1);
  EXPECT_EQ(main.list.Text(0), file);
  EXPECT_EQ(StatusPanels(main.statusBar).at(1), "Job: Grüße & mehr");
}

// Puts the focus on a box by the dialog's own way, and types over its text.
void TypeInto(Window dialog, Window box, std::string_view text) {
  dialog.Post(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(box.Handle()), TRUE);
  Await("the focus on " + box.Describe(), [box] { return box.HasFocus(); });
  TypeText(dialog, text);
  box.WaitText(text);
}

// The euro sign, a Thai letter, CJK: three bytes each in the files.
TEST_F(Jobs, TypedCharactersOfThreeBytesAreStoredWhole) {
  Prepare();
  scratch_.Make("papers\\a.txt", "a");
  const std::string folder = scratch_ / "papers";
  const Program program(exe_, "\"" + folder + "\"");
  const Window adding = program.WaitWindow("Add Folder");
  TypeInto(adding, adding.ChildOfClass("Edit"), "*.ไ€");
  adding.Child("OK").Press();
  adding.WaitGone();
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_THAT(main.list.Row(0), ElementsAre(folder, "N/A", "*.ไ€", "No"));

  main.PressTool("Save Job");
  const Window saving = program.WaitWindow("Save Job", "#32770");
  TypeInto(saving, saving.ChildOfClass("Edit"), "ภาษาไทย 漢字 5 €");
  TakePicture(saving, "jobs-save-typed");
  saving.Child("OK").Press();
  saving.WaitGone();
  main.window.Close();
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_EQ(ReadFileBytes(folder_ + "\\Jobs\\ภาษาไทย 漢字 5 €.zqj"),
            "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"" + folder + "\"\r\n\"*.ไ€\"\r\n\"No\"\r\n\"[FILES]\"\r\n");
}

TEST_F(Jobs, BarsComeBackAsTheyWereLeft) {
  Prepare();
  const std::string path = folder_ + "\\Zeroquill.dsl";
  const std::string arranged =
      "Zeroquill bars 1\r\nband 2 same row 150\r\nband 1 new row 180\r\nband 3 same row 500\r\n";
  WriteFileBytes(path, arranged);
  std::string left;
  for (int start = 0; start < 2; ++start) {
    const Program program(exe_);
    const MainWindow main(program);
    std::vector<std::string> captions;
    for (const ToolButton& tool : main.Tools()) captions.push_back(tool.separator ? "-" : tool.caption);
    EXPECT_THAT(captions, ElementsAre("Add Files", "Add Folder", "-", "New Job", "Open Job", "Save Job", "-",
                                      "Wipe Now", "Wipe Free Space"));
    TakePicture(main.window, "jobs-bars");
    main.window.Close();
    EXPECT_EQ(program.WaitExit(), 0u);
    if (start == 0) left = ReadFileBytes(path);
  }
  EXPECT_EQ(ReadFileBytes(path), left) << "it doesn't wander from start to start";
}

}  // namespace
}  // namespace zq::test
