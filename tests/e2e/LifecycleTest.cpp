// What becomes of the open job: the questions on the way, each answer, and each failure.
#include "e2e/Zeroquill.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

class Lifecycle : public ZeroquillTest {
 protected:
  // The user is asked before a job is dropped.
  void SetUp() override {
    Prepare();
    WriteFileBytes(settingsPath_, asking_.Bytes());
  }

  std::string JobPath(const std::string& name) const { return folder_ + "\\Jobs\\" + name + ".zqj"; }
  std::string JobBytes(const std::string& path) const {
    return "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"" + path + "\"\r\n";
  }
  void MakeJob(const std::string& name, const std::string& bytes) const {
    ::CreateDirectoryA((folder_ + "\\Jobs").c_str(), nullptr);
    WriteFileBytes(JobPath(name), bytes);
  }
  static std::string JobPanel(const MainWindow& main) { return StatusPanels(main.statusBar).at(1); }

  static MessageBoxView WaitSaveQuestion(const Program& program) {
    const MessageBoxView box = program.WaitBox("Save");
    ExpectBox(box, "Save", "Save the current Wiping Job?", BoxIcon::Question, {"Yes", "No", "Cancel"}, "Yes");
    return box;
  }

  const SettingsFile asking_ = [] {
    SettingsFile settings;
    settings.promptToSave = 1;
    return settings;
  }();
  const std::string paper_ = scratch_.Make("papers\\letter.txt", "12345");
  const std::string argument_ = "\"" + paper_ + "\"";
};

TEST_F(Lifecycle, CloseAnsweredCancelLeavesTheJobAndNoDropsIt) {
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  TypeKey(main.window, 'W', {VK_CONTROL});
  const MessageBoxView box = WaitSaveQuestion(program);
  TakePicture(box.window, "lifecycle-save-question");
  box.Answer("Cancel");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Rows(), 1);

  TypeKey(main.window, 'W', {VK_CONTROL});
  WaitSaveQuestion(program).Answer("No");
  main.list.WaitRows(0);
  main.WaitItems("0 Items");
  EXPECT_EQ(ReadFileBytes(paper_), "12345");
}

TEST_F(Lifecycle, CloseAnsweredYesSavesANamedJob) {
  MakeJob("Papers", "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"" + paper_ + "\"\r\n\"C:\\none.txt\"\r\n");
  const Program program(exe_, "\"" + JobPath("Papers") + "\"");
  const MainWindow main(program);
  main.list.WaitRows(2);
  EXPECT_EQ(JobPanel(main), "Job: Papers");
  EXPECT_TRUE(main.list.State(1) & LVIS_CUT) << "a path that isn't there is greyed";
  main.list.Select(1);
  TypeKey(main.window, VK_DELETE);
  program.WaitBox("Remove Item").Answer("Yes");
  main.list.WaitRows(1);
  TypeKey(main.window, 'W', {VK_CONTROL});
  WaitSaveQuestion(program).Answer("Yes");
  main.list.WaitRows(0);
  EXPECT_EQ(ReadFileBytes(JobPath("Papers")), JobBytes(paper_));
  EXPECT_EQ(JobPanel(main), "");
}

TEST_F(Lifecycle, ExitAnsweredCancelStays) {
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.window.Close();
  WaitSaveQuestion(program).Answer("Cancel");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Rows(), 1);
  EXPECT_TRUE(program.IsRunning());
}

TEST_F(Lifecycle, ExitAnsweredYesWithoutANameGoesOnUnsaved) {
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.window.Close();
  WaitSaveQuestion(program).Answer("Yes");
  const Window save = program.WaitWindow("Save Job", "#32770");
  save.Child("Cancel").Press();
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_FALSE(FolderHolds(folder_ + "\\Jobs", "letter"));
}

TEST_F(Lifecycle, ExitAsksNothingWhereTheUserDoesNotWantIt) {
  Prepare();
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.window.Close();
  EXPECT_EQ(program.WaitExit(), 0u);
}

TEST_F(Lifecycle, SessionEndEmptiesTheJobOnlyIfItComes) {
  Prepare();
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_EQ(main.window.Send(WM_QUERYENDSESSION), TRUE);
  main.window.Send(WM_ENDSESSION, FALSE);
  EXPECT_EQ(main.list.Rows(), 1);
  ASSERT_TRUE(::DeleteFileA(settingsPath_.c_str()));
  EXPECT_EQ(main.window.Send(WM_QUERYENDSESSION), TRUE);
  main.window.Post(WM_ENDSESSION, TRUE);
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_TRUE(PathExists(settingsPath_)) << "settings are saved as at any exit";
}

// Neither Esc nor the close box is an answer to a question of Yes and No.
TEST_F(Lifecycle, EscIsNoAnswerToARemoval) {
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  TypeKey(main.window, VK_DELETE);
  const MessageBoxView box = program.WaitBox("Remove Item");
  box.window.Post(WM_COMMAND, IDCANCEL);
  Await("the box to ask again", [&] {
    const auto boxes = program.Boxes();
    return boxes.size() == 1 && boxes[0] != box.window;
  });
  EXPECT_EQ(main.list.Rows(), 1);
  program.WaitBox("Remove Item").Answer("No");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Rows(), 1);
}

TEST_F(Lifecycle, SaveThatFailsSaysSoAndKeepsTheRowsAndTheName) {
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  ASSERT_TRUE(::RemoveDirectoryA((folder_ + "\\Jobs").c_str()));
  WriteFileBytes(folder_ + "\\Jobs", "no folder");
  main.PressTool("Save Job");
  const Window save = program.WaitWindow("Save Job", "#32770");
  save.ChildOfClass("Edit").SetText("Papers");
  save.Child("OK").Press();
  const MessageBoxView box = program.WaitBox("Error");
  TakePicture(box.window, "lifecycle-save-error");
  ExpectBox(box, "Error",
            "An error was encountered trying to save the current wiping job.  Ensure that Zeroquill was "
            "installed with the proper permissions to create a Jobs sub folder under the main folder and can "
            "write files within the folder.",
            BoxIcon::Warning, {"OK"}, "OK");
  box.Answer("OK");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Rows(), 1);
  EXPECT_EQ(JobPanel(main), "") << "only a save that succeeds is told there";

  // The name is kept: the next save asks for none.
  main.PressTool("Save Job");
  program.WaitBox("Error").Answer("OK");
  // And a close that can't save drops the job all the same.
  TypeKey(main.window, 'W', {VK_CONTROL});
  WaitSaveQuestion(program).Answer("Yes");
  program.WaitBox("Error").Answer("OK");
  main.list.WaitRows(0);
}

TEST_F(Lifecycle, OpenOfTheOpenJobDoesNothing) {
  MakeJob("Papers", JobBytes(paper_));
  const Program program(exe_, "\"" + JobPath("Papers") + "\"");
  const MainWindow main(program);
  main.list.WaitRows(1);
  MakeJob("Papers", JobBytes("C:\\changed.txt"));
  main.PressTool("Open Job");
  const Window open = program.WaitWindow("Open Job", "#32770");
  open.Child("OK").Press();
  open.WaitGone();
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Text(0), paper_) << "it was not loaded again";
}

TEST_F(Lifecycle, OpenOfANameThatDiffersInCaseAloneLoads) {
  MakeJob("papers", JobBytes(paper_));
  const Program program(exe_, "\"" + JobPath("PAPERS") + "\"");
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_EQ(JobPanel(main), "Job: PAPERS");
  MakeJob("papers", JobBytes("C:\\changed.txt"));
  main.PressTool("Open Job");
  const Window open = program.WaitWindow("Open Job", "#32770");
  open.Child("OK").Press();
  open.WaitGone();
  Await("the job to be loaded anew", [&] { return JobPanel(main) == "Job: papers"; });
  main.list.WaitRows(1);
  EXPECT_EQ(main.list.Text(0), "C:\\changed.txt");
}

TEST_F(Lifecycle, OpenAnsweredCancelKeepsTheOldJob) {
  MakeJob("Other", JobBytes("C:\\other.txt"));
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.PressTool("Open Job");
  const Window open = program.WaitWindow("Open Job", "#32770");
  open.Child("OK").Press();
  WaitSaveQuestion(program).Answer("Cancel");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Text(0), paper_);
}

TEST_F(Lifecycle, OpenOfADamagedJobSaysSoAndLeavesAnEmptyOne) {
  MakeJob("Damaged", "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\a folder\"\r\n\"*.*\"\r\n");
  const Program program(exe_);
  const MainWindow main(program);
  main.PressTool("Open Job");
  const Window open = program.WaitWindow("Open Job", "#32770");
  open.Child("OK").Press();
  const MessageBoxView box = program.WaitBox("Error");
  TakePicture(box.window, "lifecycle-open-error");
  ExpectBox(box, "Error", "An error was encountered trying to open the existing Zeroquill Job.",
            BoxIcon::Warning, {"OK"}, "OK");
  box.Answer("OK");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.Rows(), 0);
}

TEST_F(Lifecycle, JobWithoutAFirstFieldEndsTheProgramWhenTheJobsAreListed) {
  MakeJob("Empty", "");
  const Program program(exe_);
  const MainWindow main(program);
  main.PressTool("Open Job");
  ExpectRunTimeError(program, "Run-time error '62':\r\n\r\nInput past end of file");
}

TEST_F(Lifecycle, DeleteAsksRemovesTheJobsFileAndNothingElse) {
  MakeJob("Papers", JobBytes(paper_));
  const Program program(exe_, "\"" + JobPath("Papers") + "\"");
  const MainWindow main(program);
  main.list.WaitRows(1);
  TypeKey(main.window, 'D', {VK_CONTROL});
  MessageBoxView box = program.WaitBox("Delete Job");
  TakePicture(box.window, "lifecycle-delete");
  ExpectBox(box, "Delete Job", "Are you sure you wish to delete the currently open Job?", BoxIcon::Question,
            {"OK", "Cancel"}, "OK");
  box.Answer("Cancel");
  EXPECT_EQ(main.list.Rows(), 1);
  TypeKey(main.window, 'D', {VK_CONTROL});
  program.WaitBox("Delete Job").Answer("OK");
  main.list.WaitRows(0);
  EXPECT_FALSE(PathExists(JobPath("Papers")));
  EXPECT_EQ(ReadFileBytes(paper_), "12345");
}

TEST_F(Lifecycle, DeleteOfAFileThatIsHeldLeavesItBehindInSilence) {
  MakeJob("Papers", JobBytes(paper_));
  const Program program(exe_, "\"" + JobPath("Papers") + "\"");
  const MainWindow main(program);
  main.list.WaitRows(1);
  const HeldFile held(JobPath("Papers"), FILE_SHARE_READ);
  TypeKey(main.window, 'D', {VK_CONTROL});
  program.WaitBox("Delete Job").Answer("OK");
  main.list.WaitRows(0);
  main.window.WaitEnabled();
  EXPECT_TRUE(program.Boxes().empty());
  EXPECT_TRUE(PathExists(JobPath("Papers")));
  EXPECT_EQ(JobPanel(main), "");
}

TEST_F(Lifecycle, NewShowsItsNoteUntilItIsSwitchedOff) {
  const Program program(exe_, argument_);
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.PressTool("New Job");
  WaitSaveQuestion(program).Answer("No");
  const Window note = program.WaitWindow("New Job", "#32770");
  TakePicture(note, "lifecycle-new");
  ExpectLabelsFit(note);
  EXPECT_EQ(main.list.Rows(), 0);
  note.Child("Do Not Show Again").Press();
  Await("the tick", [&] { return note.Child("Do Not Show Again").IsChecked(); });
  note.Child("OK").Press();
  note.WaitGone();
  main.PressTool("New Job");
  main.window.Close();
  EXPECT_EQ(program.WaitExit(), 0u) << "no note stood in the way";
  SettingsFile left = asking_;
  left.skipNewJobNote = 1;
  EXPECT_EQ(ReadFileBytes(settingsPath_).substr(312, 2), left.Bytes().substr(312, 2));
}

TEST_F(Lifecycle, JobFileOutsideTheProgramsFolderIsAnItemLikeAnyOther) {
  const std::string elsewhere = scratch_.Make("elsewhere\\Papers.zqj", JobBytes(paper_));
  const Program program(exe_, "\"" + elsewhere + "\"");
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_EQ(main.list.Text(0), elsewhere);
  EXPECT_EQ(JobPanel(main), "");
}

TEST_F(Lifecycle, WipeOfANamedJobLeavesItsFileByteForByte) {
  MakeJob("Papers", JobBytes(paper_));
  const Program program(exe_, "\"" + JobPath("Papers") + "\"");
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.PressTool("Wipe Now");
  program.WaitBox("Wipe Operation").Answer("OK");
  Await("the end of the wipe", [&] { return !PathExists(paper_) && !program.Boxes().empty(); });
  program.WaitBox("Wipe Operation").Answer("No");
  main.window.WaitVisible();
  main.window.WaitEnabled();
  EXPECT_EQ(ReadFileBytes(JobPath("Papers")), JobBytes(paper_));
  EXPECT_FALSE(PathExists(folder_ + "\\Jobs\\Papers.tmp"));

  // The stamp reaches the disc when the user saves, and the list of jobs then shows it.
  main.PressTool("Save Job");
  // By the size alone: to open the file meanwhile could keep the program from it.
  Await("the stamp", [&] {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return ::GetFileAttributesExA(JobPath("Papers").c_str(), GetFileExInfoStandard, &data) &&
           data.nFileSizeLow > JobBytes(paper_).size();
  });
  const std::string report = ReadFileBytes(reportPath_);
  const std::string stamp = report.substr(
      report.find("\r\n") + 2, report.find("\r\n", report.find("\r\n") + 2) - report.find("\r\n") - 2);
  EXPECT_EQ(ReadFileBytes(JobPath("Papers")).substr(0, stamp.size()), stamp);
}

}  // namespace
}  // namespace zq::test
