// The ways to the end of the program, and what it finds at the next start.
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

void EndWithASave(Walk& walk, const std::string& letter) {
  DropOnList(walk, {letter});
  walk.Main().WaitItems("1 Item");
  walk.Command("mnuFileExit");
  walk.Answer("job-save-question", "Cancel");
  walk.Main().window.WaitEnabled();
  EXPECT_EQ(walk.Main().Items(), "1 Item");
  walk.Command("mnuFileExit");
  walk.Answer("job-save-question", "Yes");
  const Window save = walk.Dialog("frmSave", "Save Job");
  save.ChildOfClass("Edit").SetText("Kept");
  save.Child("OK").WaitEnabled();
  save.Child("OK").Press();
  walk.WaitExit();
  walk.ExpectJob("Kept", {"N/A", "[FOLDERS]", "[FILES]", letter});
}

void OpenByTheCommandLine(Walk& walk, const std::string& letter, const std::string& sheet) {
  walk.Start(Quoted(walk.JobPath("Kept")));
  walk.Main().WaitItems("1 Item");
  EXPECT_FALSE(walk.Run().FindWindow("Welcome to Zeroquill"));
  EXPECT_EQ(JobPanel(walk), "Job: Kept");
  walk.Exit();  // nothing has changed, so nothing is asked

  walk.Start(Quoted(walk.JobPath("Kept")));
  walk.Main().WaitItems("1 Item");
  DropOnList(walk, {sheet});
  walk.Main().WaitItems("2 Items");
  walk.Main().window.Close();
  walk.Answer("job-save-question", "Yes");
  walk.WaitExit();
  walk.ExpectJob("Kept", {"N/A", "[FOLDERS]", "[FILES]", letter, sheet});
}

void DropTheJob(Walk& walk, const std::string& letter, const std::string& sheet) {
  walk.Start(Quoted(letter) + " " + Quoted(sheet));
  walk.Main().WaitItems("2 Items");
  EXPECT_THAT(walk.Main().list.Row(0), ElementsAre(letter, "5 Bytes", "", ""));
  walk.Main().window.Close();
  walk.Answer("job-save-question", "No");
  walk.WaitExit();

  walk.Start(Quoted(letter));
  walk.Main().WaitItems("1 Item");
  walk.Main().window.Close();
  walk.Answer("job-save-question", "Yes");
  const Window save = walk.Dialog("frmSave", "Save Job");
  save.Child("Cancel").Press();
  walk.WaitExit();
}

}  // namespace

void LeaveAndComeBack(Walk& walk) {
  const std::string letter = walk.scratch.Make("papers\\letter.txt", "12345");
  const std::string sheet = walk.scratch.Make("papers\\sheet.xls", "123");
  EndWithASave(walk, letter);
  OpenByTheCommandLine(walk, letter, sheet);
  DropTheJob(walk, letter, sheet);
  walk.ExpectJob("Kept", {"N/A", "[FOLDERS]", "[FILES]", letter, sheet});
  EXPECT_EQ(ReadFileBytes(letter), "12345");
  EXPECT_EQ(ReadFileBytes(sheet), "123");
}

void EndByAFailure(Walk& walk) {
  WriteFileBytes(walk.JobPath("Empty"), "");
  walk.Start();
  walk.Command("OpenJob");
  walk.Answer("run-time-error", "OK");
  walk.WaitExit(1);
}

}  // namespace zq::test
