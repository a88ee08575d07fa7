// Files and folders on their way into the list, changed there, and taken out again.
#include "e2e/FilesDialog.h"
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

constexpr char kSubFolders[] = "Process any found sub folders beneath chosen folder";
constexpr char kDrive[] = "D:\\";  // never wiped: its row goes before a wipe comes

Window FolderDialog(Walk& walk, std::string_view part) {
  const Window dialog = walk.Dialog("frmFolder", "Add Folder", part);
  EXPECT_TRUE(dialog.IsTopmost());
  EXPECT_EQ(dialog.Child(kSubFolders).IsChecked(), walk.settings.includeSubFolders == 1);
  return dialog;
}

void SetMask(Window dialog, std::string_view mask) {
  dialog.ChildOfClass("Edit").SetText(mask);
}

void Tick(Window dialog, bool ticked) {
  const Window box = dialog.Child(kSubFolders);
  if (box.IsChecked() != ticked) box.Press();
  Await("the tick", [&] { return box.IsChecked() == ticked; });
}

void AddFilesByTheDialog(Walk& walk, const std::string& letter, const std::string& sheet) {
  walk.Command("mnuActionsAddFiles");
  {
    const FilesDialog dialog(walk.Run(), walk.Main());
    walk.visits.See("AddFilesDialog", dialog.TheWindow());
    dialog.Cancel();
  }
  EXPECT_EQ(walk.Main().list.Rows(), 0);
  for (const std::string& path : {letter, sheet}) {
    walk.Command("AddFiles");
    const FilesDialog dialog(walk.Run(), walk.Main());
    dialog.Enter(path);
    dialog.WaitGone();
  }
  walk.settings.lastFilesFolder = walk.scratch / "papers\\";
  walk.Main().WaitItems("2 Items");
  EXPECT_THAT(walk.Main().list.Row(0), ElementsAre(letter, "5 Bytes", "", ""));
  EXPECT_THAT(walk.Main().list.Row(1), ElementsAre(sheet, "1.46 KB", "", ""));
}

void AddFolders(Walk& walk, const std::string& folder) {
  DropOnList(walk, {folder});
  {
    const Window dialog = FolderDialog(walk, "dropped");
    PressHelp(walk, dialog, "of-folder");
    SetMask(dialog, "*.html");
    dialog.Child("OK").Press();
    walk.Answer("folder-improper-mask", "OK");
    SetMask(dialog, " *.* ");
    Tick(dialog, true);
    AcceptDialog(dialog);
  }
  walk.settings.lastFolder = folder;
  walk.settings.includeSubFolders = 1;
  walk.Main().WaitItems("3 Items");

  // At the folder of the last time.
  walk.Command("AddFolder");
  {
    const Window dialog = FolderDialog(walk, "again");
    SetMask(dialog, "*.doc");
    Tick(dialog, false);
    AcceptDialog(dialog);
  }
  walk.settings.includeSubFolders = 0;
  walk.Main().WaitItems("4 Items");
  walk.Command("mnuActionsAddFolder");
  {
    const Window dialog = FolderDialog(walk, "");
    dialog.Child("Cancel").Press();
    dialog.WaitGone();
  }
  EXPECT_THAT(walk.Main().list.Row(2), ElementsAre(folder, "N/A", "*.*", "Yes"));
  EXPECT_THAT(walk.Main().list.Row(3), ElementsAre(folder, "N/A", "*.doc", "No"));
  EXPECT_EQ(walk.Main().Items(), "4 Items");
}

void AddARoot(Walk& walk) {
  DropOnList(walk, {kDrive});
  const Window dialog = FolderDialog(walk, "root");
  dialog.Child("OK").WaitEnabled();
  dialog.Child("OK").Press();
  walk.Answer("folder-whole-drive", "OK");
  SetMask(dialog, "*.doc");
  dialog.Child("OK").Press();
  walk.Answer("folder-root-drive", "Cancel");
  EXPECT_EQ(walk.Main().list.Rows(), 4);
  dialog.WaitEnabled();
  dialog.Child("OK").Press();
  walk.Answer("folder-root-drive", "OK");
  dialog.WaitGone();
  walk.settings.lastFolder = kDrive;
  walk.Main().WaitItems("5 Items");
}

void EditTheRoot(Walk& walk) {
  const int row = walk.Main().list.Find(kDrive);
  walk.Main().list.Select(row);
  walk.Command("mnuActionsEdit");
  const Window dialog = walk.Dialog("frmEdit", "Edit Folder Settings");
  SetMask(dialog, "report");
  dialog.Child("OK").Press();
  walk.Answer("folder-improper-mask", "OK");
  SetMask(dialog, "*.*");
  dialog.Child("OK").Press();
  walk.Answer("edit-whole-drive", "OK");
  EXPECT_THAT(walk.Main().list.Row(row), ElementsAre(kDrive, "N/A", "*.doc", "No"));
  SetMask(dialog, "*.txt");
  Tick(dialog, true);
  AcceptDialog(dialog);
  EXPECT_THAT(walk.Main().list.Row(row), ElementsAre(kDrive, "N/A", "*.txt", "Yes"));
}

// As a click beside all rows does it.
void SelectNothing(const ListView& list) {
  const RemoteMemory memory(list.TheWindow(), sizeof(LVITEMW));
  LVITEMW item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  memory.Write(0, &item, sizeof item);
  list.TheWindow().Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), memory.Param());
}

void RemoveTheRoot(Walk& walk) {
  const ListView& list = walk.Main().list;
  list.Select(list.Find(kDrive));
  walk.Command("mnuActionsRemove");
  walk.Answer("remove-item", "No");
  EXPECT_EQ(list.Rows(), 5);
  walk.Command("mnuActionsRemove");
  walk.Answer("remove-item", "Yes");
  walk.Main().WaitItems("4 Items");
  EXPECT_EQ(list.Find(kDrive), -1);
  SelectNothing(list);
  walk.Command("mnuActionsRemove");
  walk.Answer("remove-nothing", "OK");
  EXPECT_EQ(list.Rows(), 4);
}

}  // namespace

void AddItems(Walk& walk) {
  const std::string letter = walk.scratch.Make("papers\\letter.txt", "12345");
  const std::string sheet = walk.scratch.Make("papers\\Größe & mehr.xls", std::string(1500, 'x'));
  const std::string folder = walk.scratch / "papers";
  AddFilesByTheDialog(walk, letter, sheet);
  AddFolders(walk, folder);
  AddARoot(walk);
  EditTheRoot(walk);
  walk.visits.See("frmMain", walk.Main().window, "items");
  SeeMenus(walk, "items");
  RemoveTheRoot(walk);
  EXPECT_EQ(ReadFileBytes(letter), "12345");
  EXPECT_EQ(ReadFileBytes(sheet), std::string(1500, 'x'));
}

}  // namespace zq::test
