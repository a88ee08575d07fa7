// Jobs saved, closed, opened, failed and deleted.
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {
namespace {

Window SaveDialog(Walk& walk) {
  return walk.Dialog("frmSave", "Save Job");
}

void Enter(Window dialog, std::string_view name) {
  dialog.ChildOfClass("Edit").SetText(name);
  dialog.Child("OK").WaitEnabled();
  dialog.Child("OK").Press();
}

// The fields of the job that AddItems has left, its folders first.
std::vector<std::string> Fields(const Walk& walk) {
  const std::string folder = walk.scratch / "papers";
  return {"N/A",
          "[FOLDERS]",
          folder,
          "*.*",
          "Yes",
          folder,
          "*.doc",
          "No",
          "[FILES]",
          folder + "\\letter.txt",
          folder + "\\Größe & mehr.xls"};
}

void SaveUnderAName(Walk& walk) {
  walk.Main().WaitJobTools(true);
  walk.Command("SaveJob");
  Window dialog = SaveDialog(walk);
  EXPECT_FALSE(dialog.Child("OK").IsEnabled()) << "without a name";
  dialog.Child("Cancel").Press();
  dialog.WaitGone();

  walk.Command("SaveJob");
  dialog = SaveDialog(walk);
  Enter(dialog, "a:b");
  walk.Answer("job-name", "OK");
  // A folder of its name keeps the file from being written.
  ASSERT_TRUE(::CreateDirectoryA(walk.JobPath("Papers & more").c_str(), nullptr));
  Enter(dialog, "  Papers & more ");
  walk.Answer("job-save-error", "OK");
  EXPECT_EQ(JobPanel(walk), "") << "only a save that succeeds is told there";
  ASSERT_TRUE(::RemoveDirectoryA(walk.JobPath("Papers & more").c_str()));

  // The name is kept: no dialog comes.
  walk.Command("mnuFileSave");
  Await("the job to be saved", [&] { return JobPanel(walk) == "Job: Papers & more"; });
  walk.ExpectJob("Papers & more", Fields(walk));
}

void CloseWithEachAnswer(Walk& walk) {
  const ListView& list = walk.Main().list;
  list.Select(3);
  walk.Command("mnuActionsRemove");
  walk.Answer("remove-item", "Yes");
  list.WaitRows(3);
  walk.Command("mnuFileClose");
  walk.Answer("job-save-question", "Cancel");
  walk.Main().window.WaitEnabled();
  EXPECT_EQ(list.Rows(), 3);
  walk.ExpectJob("Papers & more", Fields(walk));
  walk.Command("mnuFileClose");
  walk.Answer("job-save-question", "Yes");
  list.WaitRows(0);
  walk.Main().WaitItems("0 Items");
  EXPECT_EQ(JobPanel(walk), "");
  std::vector<std::string> fields = Fields(walk);
  fields.erase(fields.begin() + 5, fields.begin() + 8);
  walk.ExpectJob("Papers & more", fields);
}

void SaveOverAnother(Walk& walk) {
  const std::string letter = walk.scratch / "papers\\letter.txt";
  DropOnList(walk, {letter});
  walk.Main().WaitItems("1 Item");
  const std::string before = ReadFileBytes(walk.JobPath("Papers & more"));
  walk.Command("mnuFileSave");
  const Window dialog = SaveDialog(walk);
  Enter(dialog, "Papers & more");
  walk.Answer("job-overwrite", "Cancel");
  EXPECT_EQ(ReadFileBytes(walk.JobPath("Papers & more")), before);
  dialog.WaitEnabled();
  Enter(dialog, "Papers & more");
  walk.Answer("job-overwrite", "OK");
  dialog.WaitGone();
  Await("the job to be saved", [&] { return JobPanel(walk) == "Job: Papers & more"; });
  walk.ExpectJob("Papers & more", {"N/A", "[FOLDERS]", "[FILES]", letter});
}

void OpenAndDelete(Walk& walk) {
  WriteFileBytes(walk.JobPath("Damaged"), "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\a folder\"\r\n\"*.*\"\r\n");
  OpenSavedJob(walk, "OpenJob", "Damaged");
  walk.Answer("job-open-error", "OK");
  walk.Main().list.WaitRows(0);
  OpenSavedJob(walk, "mnuFileOpen", "Papers & more");
  walk.Main().WaitItems("1 Item");
  EXPECT_EQ(JobPanel(walk), "Job: Papers & more");
  walk.visits.See("frmMain", walk.Main().window, "named-job");
  walk.Command("mnuFileDelete");
  walk.Answer("job-delete", "Cancel");
  walk.Main().window.WaitEnabled();
  EXPECT_TRUE(PathExists(walk.JobPath("Papers & more")));
  walk.Command("mnuFileDelete");
  walk.Answer("job-delete", "OK");
  walk.Main().list.WaitRows(0);
  EXPECT_FALSE(PathExists(walk.JobPath("Papers & more")));
  EXPECT_TRUE(::DeleteFileA(walk.JobPath("Damaged").c_str()));
  EXPECT_EQ(ReadFileBytes(walk.scratch / "papers\\letter.txt"), "12345") << "the items aren't touched";
}

}  // namespace

void KeepJobs(Walk& walk) {
  SaveUnderAName(walk);
  CloseWithEachAnswer(walk);
  SaveOverAnother(walk);
  OpenAndDelete(walk);
}

}  // namespace zq::test
