// What the commands do to the open job, and what the user is asked on the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/state/AppState.h"
#include "jobs/AddFiles.h"
#include "jobs/FileIcons.h"
#include "jobs/FileMask.h"
#include "jobs/JobLifecycle.h"
#include "jobs/JobList.h"
#include "platform/Platform.h"
#include "support/Rows.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakeJobDialogs.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeToolStates.h"

namespace zq {
namespace {

using test::FileRow;
using test::FolderRow;
using testing::ElementsAre;
using testing::IsEmpty;

const Message kSaveQuestion{"Save the current Wiping Job?", "Save", MessageIcon::Question,
                            MessageButtons::YesNoCancel};
const Message kDeleteQuestion{"Are you sure you wish to delete the currently open Job?", "Delete Job",
                              MessageIcon::Question, MessageButtons::OkCancel};

std::string JobPath(const std::string& name) {
  return "C:\\Zeroquill\\Jobs\\" + name + ".zqj";
}

std::string JobOf(const std::string& path, const std::string& stamp = "N/A") {
  return "\"" + stamp + "\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"" + path + "\"\r\n";
}

class JobLifecycleTest : public testing::Test, protected test::FakePlatform {
 protected:
  JobLifecycleTest() {
    state.AppFolder = "C:\\Zeroquill\\";
    files.AddFile(JobPath("Weekly"), JobOf("C:\\weekly.doc", "16.11.2026"));
    files.AddFile(JobPath("Daily"), JobOf("C:\\daily.doc", "17.11.2026"));
    files.AddFile(JobPath("Damaged"), "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\x\"\r\n");
  }

  // States to start from. A named job is "Weekly" with the one row of its file.
  void Untitled(bool modified, int rows = 1) {
    jobList.Clear();
    state.CurrentJobName = "";
    for (int i = 1; i <= rows; ++i) jobList.Add(FileRow("C:\\" + std::to_string(i) + ".txt"));
    state.JobSaved = !modified;
  }
  void Named(bool modified) {
    jobList.Clear();
    state.CurrentJobName = "Weekly";
    state.LastWiping = "16.11.2026";
    jobList.Add(FileRow("C:\\weekly.doc", "0 Bytes", 3));
    if (modified) jobList.Add(FileRow("C:\\added.txt"));
    state.JobSaved = !modified;
  }

  // The user answers the next question so.
  void Answer(MessageAnswer answer) { boxes.answers = {answer}; }
  void NameInSave(const std::string& name) {
    dialogs.inSave = [this, name] { state.CurrentJobName = name; };
  }
  void ChooseInOpen(const std::string& name) {
    dialogs.inOpenJob = [this, name] { ChooseSavedJob(state, name); };
  }

  std::vector<std::string> Paths() const {
    std::vector<std::string> paths;
    for (int row = 1; row <= jobList.RowLoopEnd(); ++row) paths.push_back(jobList.Row(row).NameAndLocation);
    return paths;
  }
  std::string OnDisc(const std::string& name) const {
    const auto* node = files.Find(JobPath(name));
    return node ? node->content : "none";
  }
  bool Wrote() const {
    for (const std::string& line : log) {
      if (line.starts_with("write ")) return true;
    }
    return false;
  }

  void ExpectUntitledClean() {
    EXPECT_EQ(state.CurrentJobName, "");
    EXPECT_TRUE(state.JobSaved);
    EXPECT_EQ(state.LastWiping, "N/A");
    EXPECT_EQ(jobList.Count(), 0U);
    EXPECT_EQ(tools.panels["Static2"], "");
    EXPECT_EQ(tools.panels["Static3"], "0 Items");
    EXPECT_FALSE(tools.enabledTools["mnuFileDelete"]);
    EXPECT_FALSE(tools.enabledTools["SaveJob"]);
  }
  void ExpectNamedClean(const std::string& name, const std::string& stamp,
                        const std::vector<std::string>& paths) {
    EXPECT_EQ(state.CurrentJobName, name);
    EXPECT_TRUE(state.JobSaved);
    EXPECT_EQ(state.LastWiping, stamp);
    EXPECT_EQ(Paths(), paths);
    EXPECT_EQ(tools.panels["Static2"], "Job: " + name);
  }

  // The job as a whole, to see that a command left it alone.
  struct Job {
    std::string name, lastWiping;
    bool saved;
    std::vector<std::string> paths;
    bool operator==(const Job&) const = default;
  };
  Job OpenJob() const { return {state.CurrentJobName, state.LastWiping, state.JobSaved, Paths()}; }

  AppState state;
  JobList jobList{regional};
  test::FakeIconPainter painter;
  FileIcons icons{painter, regional};
  test::FakeToolStates tools{log};
  test::FakeJobDialogs dialogs{log};
  JobLifecycle jobs{state, jobList, platform, icons, tools, dialogs};
  DataFolder dataFolder{files, state};
};

// The four ways to leave a job: the question is the same before each. `Leave` gives false if it was called
// off. Opening is of the job "Daily".
struct Leaving {
  const char* name;
  std::function<bool(JobLifecycle&, const AppState&)> leave;
};

std::vector<Leaving> WaysToLeave() {
  return {
      {"New",
       [](JobLifecycle& jobs, const AppState& state) {
         jobs.NewJob();
         return !state.JobActionCancelled;
       }},
      {"Close",
       [](JobLifecycle& jobs, const AppState& state) {
         jobs.CloseJob();
         return !state.JobActionCancelled;
       }},
      {"Open",
       [](JobLifecycle& jobs, const AppState& state) {
         jobs.OpenJob();
         return !state.JobActionCancelled;
       }},
      {"Exit", [](JobLifecycle& jobs, const AppState&) { return jobs.CloseForExit(); }},
  };
}

class LeavingAJob : public JobLifecycleTest, public testing::WithParamInterface<Leaving> {
 protected:
  LeavingAJob() { ChooseInOpen("Daily"); }
  bool Leave() { return GetParam().leave(jobs, state); }
  // The job that was left is gone, and what comes then has come.
  void ExpectLeft() {
    if (GetParam().name == std::string("Open")) {
      ExpectNamedClean("Daily", "17.11.2026", {"C:\\daily.doc"});
    } else {
      ExpectUntitledClean();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(By, LeavingAJob, testing::ValuesIn(WaysToLeave()),
                         [](const auto& param) { return param.param.name; });

TEST_P(LeavingAJob, AsksNothingOfACleanJob) {
  Named(false);
  EXPECT_TRUE(Leave());
  ExpectLeft();
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_FALSE(Wrote());
}

TEST_P(LeavingAJob, AsksNothingOfAnUntitledJobThatIsClean) {
  Untitled(false);
  EXPECT_TRUE(Leave());
  ExpectLeft();
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_P(LeavingAJob, AsksNothingOfAnUntitledJobWhoseRowsAreAllGone) {
  Untitled(true, 0);
  EXPECT_TRUE(Leave());
  ExpectLeft();
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_P(LeavingAJob, AsksForANamedJobWithoutRows) {
  state.CurrentJobName = "Weekly";
  state.JobSaved = false;
  Answer(MessageAnswer::Yes);
  EXPECT_TRUE(Leave());
  EXPECT_THAT(boxes.shown, ElementsAre(kSaveQuestion));
  EXPECT_EQ(OnDisc("Weekly"), "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n");
  ExpectLeft();
}

TEST_P(LeavingAJob, AsksNothingAtAllUnlessTheSettingIsOn) {
  for (const std::int16_t setting : std::vector<std::int16_t>{0, 2, -1}) {
    state.Settings.PromptToSave = setting;
    for (const bool named : {true, false}) {
      if (named) {
        Named(true);
      } else {
        Untitled(true);
      }
      EXPECT_TRUE(Leave());
      ExpectLeft();
    }
  }
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_FALSE(Wrote());
}

TEST_P(LeavingAJob, IsCalledOffByCancelAndLeavesTheJobAsItWas) {
  for (const bool named : {true, false}) {
    for (const MessageAnswer answer :
         {MessageAnswer::Cancel, MessageAnswer::Ok}) {  // anything but Yes and No
      if (named) {
        Named(true);
      } else {
        Untitled(true);
      }
      const Job before = OpenJob();
      boxes.shown.clear();
      log.clear();
      Answer(answer);
      EXPECT_FALSE(Leave());
      EXPECT_THAT(boxes.shown, ElementsAre(kSaveQuestion));
      EXPECT_EQ(OpenJob(), before);
      EXPECT_THAT(log, testing::Not(testing::Contains("frmNew")));
      EXPECT_TRUE(tools.panels.empty());
      EXPECT_FALSE(Wrote());
      state.JobActionCancelled = false;
    }
  }
}

TEST_P(LeavingAJob, DropsTheJobWithoutSavingItOnNo) {
  Named(true);
  const std::string before = OnDisc("Weekly");
  Answer(MessageAnswer::No);
  EXPECT_TRUE(Leave());
  ExpectLeft();
  EXPECT_EQ(OnDisc("Weekly"), before);
  EXPECT_FALSE(Wrote());
}

TEST_P(LeavingAJob, SavesANamedJobOnYes) {
  Named(true);
  Answer(MessageAnswer::Yes);
  EXPECT_TRUE(Leave());
  ExpectLeft();
  EXPECT_EQ(OnDisc("Weekly"),
            "\"16.11.2026\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\weekly.doc\"\r\n\"C:\\added.txt\"\r\n");
  EXPECT_THAT(log, testing::Not(testing::Contains("frmSave")));
}

TEST_P(LeavingAJob, AsksForTheNameOfAnUntitledJobOnYes) {
  Untitled(true);
  NameInSave("Fresh");
  Answer(MessageAnswer::Yes);
  EXPECT_TRUE(Leave());
  ExpectLeft();
  EXPECT_EQ(OnDisc("Fresh"), JobOf("C:\\1.txt"));
}

// Cancel in that dialog isn't Cancel: the user said Yes to leaving.
TEST_P(LeavingAJob, DropsAnUntitledJobWhoseNameIsNotGiven) {
  Untitled(true);
  Answer(MessageAnswer::Yes);
  EXPECT_TRUE(Leave());
  EXPECT_THAT(log, testing::Contains("frmSave"));
  EXPECT_THAT(boxes.shown, ElementsAre(kSaveQuestion));  // and no further one
  EXPECT_FALSE(Wrote());
  ExpectLeft();
}

TEST_P(LeavingAJob, DropsAJobThatCannotBeSaved) {
  Named(true);
  const std::string before = OnDisc("Weekly");
  files.unwritable.insert(JobPath("Weekly"));
  boxes.answers = {MessageAnswer::Yes, MessageAnswer::Ok};
  EXPECT_TRUE(Leave());
  ASSERT_EQ(boxes.shown.size(), 2U);
  EXPECT_EQ(boxes.shown[1].title, "Error");
  EXPECT_EQ(OnDisc("Weekly"), before);
  ExpectLeft();
}

TEST_F(JobLifecycleTest, ACloseGoesThroughItsStepsInOrder) {
  Untitled(true);
  NameInSave("Fresh");
  Answer(MessageAnswer::Yes);
  jobs.CloseJob();
  EXPECT_THAT(log, ElementsAre("box Save", "frmSave", "write " + JobPath("Fresh"), "Static2=Job: Fresh",  //
                               "Static2=", "Static3=",                                                    //
                               "-mnuFileDelete", "-mnuFileClose", "-WipeNow", "-mnuActionsWipeNow",
                               "-mnuActionsRemove", "-SaveJob", "-mnuFileSave", "Static3=0 Items",
                               "-mnuActionsEdit"));
}

TEST_F(JobLifecycleTest, ACloseDoesNotClearTheFlagOfACancel) {
  state.JobActionCancelled = true;
  jobs.CloseJob();
  EXPECT_TRUE(state.JobActionCancelled);
  ExpectUntitledClean();
}

TEST_F(JobLifecycleTest, EveryChangeByTheUserIsOfferedForSaving) {
  files.AddFile("C:\\new.txt");
  AddFiles adding(state, jobList, files, icons, regional, nullptr);
  const std::function<void()> kChanges[] = {
      [&] { adding.AddDropped({"C:\\new.txt"}); },
      [&] { adding.AddDropped({"C:\\weekly.doc"}); },  // listed already: nothing was added
      [&] { AddFolderItem(state, jobList, "C:\\Papers", "*.*", true); },
      [&] {
        jobList.Add(FolderRow("C:\\Papers"));
        jobList.Select(2);
        ChangeFolderItem(state, jobList, "*.doc", false);
      },
  };
  for (const auto& change : kChanges) {
    Named(false);
    change();
    EXPECT_EQ(state.CurrentJobName, "Weekly");
    boxes.shown.clear();
    Answer(MessageAnswer::No);
    jobs.CloseJob();
    EXPECT_THAT(boxes.shown, ElementsAre(kSaveQuestion));
  }
}

TEST_F(JobLifecycleTest, NewShowsItsNoteUnlessItIsSwitchedOff) {
  Named(false);
  jobs.NewJob();
  EXPECT_EQ(log.back(), "frmNew");
  ExpectUntitledClean();
  EXPECT_FALSE(Wrote());  // there is no file before the first save

  dialogs.inNew = [this] { state.Settings.SkipNewJobNote = 1; };
  jobs.NewJob();
  log.clear();
  jobs.NewJob();
  EXPECT_THAT(log, testing::Not(testing::Contains("frmNew")));
  ExpectUntitledClean();
}

TEST_F(JobLifecycleTest, NewShowsItsNoteForZeroAlone) {
  for (const int value : {-32768, -1, 0, 1, 2, 32767}) {
    state.Settings.SkipNewJobNote = static_cast<std::int16_t>(value);
    log.clear();
    jobs.NewJob();
    EXPECT_EQ(std::count(log.begin(), log.end(), "frmNew"), value == 0 ? 1 : 0) << value;
  }
}

TEST_F(JobLifecycleTest, NewForgetsAnEarlierCancel) {
  state.JobActionCancelled = true;
  jobs.NewJob();
  EXPECT_FALSE(state.JobActionCancelled);
  EXPECT_EQ(log.back(), "frmNew");
}

TEST_F(JobLifecycleTest, OpenCancelledChangesNothing) {
  Named(true);
  const Job before = OpenJob();
  jobs.OpenJob();
  EXPECT_THAT(log, ElementsAre("frmOpenJob"));
  EXPECT_EQ(OpenJob(), before);
  EXPECT_TRUE(state.JobActionCancelled);
  EXPECT_EQ(state.SelectedJobName, "");
}

TEST_F(JobLifecycleTest, OpenOfTheOpenJobDoesNothing) {
  Named(true);
  const Job before = OpenJob();
  ChooseInOpen("Weekly");
  jobs.OpenJob();
  EXPECT_THAT(log, ElementsAre("frmOpenJob"));
  EXPECT_EQ(OpenJob(), before);
  EXPECT_EQ(state.SelectedJobName, "");
}

TEST_F(JobLifecycleTest, OpenOfTheOpenJobInOtherLettersLoadsItAnew) {
  Named(true);
  ChooseInOpen("WEEKLY");
  Answer(MessageAnswer::No);
  jobs.OpenJob();
  EXPECT_THAT(boxes.shown, ElementsAre(kSaveQuestion));
  ExpectNamedClean("WEEKLY", "16.11.2026", {"C:\\weekly.doc"});
}

TEST_F(JobLifecycleTest, OpenLoadsTheChosenJobAndBringsTheToolsInStep) {
  Untitled(false, 0);
  ChooseInOpen("Weekly");
  jobs.OpenJob();
  ExpectNamedClean("Weekly", "16.11.2026", {"C:\\weekly.doc"});
  EXPECT_EQ(tools.panels["Static3"], "1 Item");
  EXPECT_TRUE(tools.enabledTools["mnuFileDelete"]);
  EXPECT_TRUE(tools.enabledTools["WipeNow"]);
  EXPECT_EQ(jobList.SelectedRow(), 0);
}

TEST_F(JobLifecycleTest, AnOpenThatFailsLeavesAnUntitledEmptyJob) {
  for (const char* name : {"Damaged", "Missing"}) {
    Named(false);
    ChooseInOpen(name);
    boxes.shown.clear();
    Answer(MessageAnswer::Ok);
    jobs.OpenJob();
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(boxes.shown[0].title, "Error");
    ExpectUntitledClean();
  }
}

TEST_F(JobLifecycleTest, AnOpenThatIsCalledOffPutsTheNameBack) {
  Named(true);
  ChooseInOpen("Daily");
  boxes.whileShown = [this] { state.CurrentJobName = "something else"; };
  Answer(MessageAnswer::Cancel);
  jobs.OpenJob();
  EXPECT_EQ(state.CurrentJobName, "Weekly");
  EXPECT_EQ(state.SelectedJobName, "Daily");  // and not used
  EXPECT_THAT(Paths(), ElementsAre("C:\\weekly.doc", "C:\\added.txt"));
}

TEST_F(JobLifecycleTest, SaveOfANamedJobAsksNothing) {
  Named(true);
  jobs.SaveJob();
  EXPECT_THAT(log, ElementsAre("write " + JobPath("Weekly"), "Static2=Job: Weekly"));
  ExpectNamedClean("Weekly", "16.11.2026", {"C:\\weekly.doc", "C:\\added.txt"});
}

TEST_F(JobLifecycleTest, SaveOfAnUntitledJobAsksForItsName) {
  Untitled(true);
  NameInSave("Fresh");
  jobs.SaveJob();
  ExpectNamedClean("Fresh", "N/A", {"C:\\1.txt"});
  EXPECT_EQ(OnDisc("Fresh"), JobOf("C:\\1.txt"));
  EXPECT_TRUE(tools.enabledTools["mnuFileDelete"]);
  EXPECT_EQ(tools.panels["Static3"], "1 Item");
}

TEST_F(JobLifecycleTest, SaveWithoutANameChangesNothing) {
  for (const bool modified : {true, false}) {
    Untitled(modified);
    const Job before = OpenJob();
    log.clear();
    jobs.SaveJob();
    EXPECT_EQ(log.front(), "frmSave");
    EXPECT_EQ(OpenJob(), before);
    EXPECT_FALSE(Wrote());
    EXPECT_EQ(tools.panels["Static3"], "1 Item");
    EXPECT_FALSE(tools.panels.contains("Static2"));
  }
}

TEST_F(JobLifecycleTest, ASaveThatFailsKeepsTheJobModifiedAndTheNameThatWasGiven) {
  Untitled(true);
  NameInSave("Fresh");
  files.unwritable.insert(JobPath("Fresh"));
  Answer(MessageAnswer::Ok);
  jobs.SaveJob();
  EXPECT_EQ(boxes.shown.back().title, "Error");
  EXPECT_EQ(OpenJob(), (Job{"Fresh", "N/A", false, {"C:\\1.txt"}}));
  EXPECT_FALSE(tools.panels.contains("Static2"));

  Named(true);
  const Job before = OpenJob();
  files.unwritable.insert(JobPath("Weekly"));
  Answer(MessageAnswer::Ok);
  jobs.SaveJob();
  EXPECT_EQ(OpenJob(), before);
}

TEST_F(JobLifecycleTest, DeleteRemovesTheJobsFileAndNoneOfItsItems) {
  files.AddFile("C:\\weekly.doc", "secret");
  Named(true);
  Answer(MessageAnswer::Ok);
  jobs.DeleteOpenJob();
  EXPECT_THAT(boxes.shown, ElementsAre(kDeleteQuestion));  // and no offer to save
  EXPECT_EQ(log[1], "remove " + JobPath("Weekly"));
  EXPECT_EQ(OnDisc("Weekly"), "none");
  EXPECT_EQ(files.Find("C:\\weekly.doc")->content, "secret");
  ExpectUntitledClean();
  EXPECT_THAT(ListSavedJobs(dataFolder),
              ElementsAre(SavedJob{"Daily", "17.11.2026"}, SavedJob{"Damaged", "N/A"}));
}

TEST_F(JobLifecycleTest, DeleteCancelledChangesNothing) {
  for (const MessageAnswer answer : {MessageAnswer::Cancel, MessageAnswer::No, MessageAnswer::Yes}) {
    Named(true);
    const Job before = OpenJob();
    Answer(answer);
    jobs.DeleteOpenJob();
    EXPECT_EQ(OpenJob(), before);
    EXPECT_EQ(OnDisc("Weekly"), JobOf("C:\\weekly.doc", "16.11.2026"));
    EXPECT_FALSE(state.JobActionCancelled);
  }
}

TEST_F(JobLifecycleTest, AJobThatCannotBeDeletedIsClosedAllTheSame) {
  Named(true);
  files.failEverything = true;
  Answer(MessageAnswer::Ok);
  jobs.DeleteOpenJob();
  EXPECT_EQ(OnDisc("Weekly"), JobOf("C:\\weekly.doc", "16.11.2026"));
  EXPECT_EQ(boxes.shown.size(), 1U);
  ExpectUntitledClean();
}

TEST_F(JobLifecycleTest, AfterAWipeACleanJobIsClosedWithoutAQuestionAndItsStampIsLost) {
  Named(false);
  state.LastWiping = "18.11.2026";  // what a wipe leaves behind
  StampJobFile(state, dataFolder);
  jobList.SetSize(1, "0 Bytes");
  jobList.SetGhosted(1, true);
  jobs.CloseJob();
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_EQ(OnDisc("Weekly"), JobOf("C:\\weekly.doc", "16.11.2026"));
}

TEST_F(JobLifecycleTest, AJobThatWasWipedIsListedWithItsStampOnceItIsSaved) {
  Named(false);
  state.LastWiping = "18.11.2026";
  jobs.SaveJob();
  EXPECT_EQ(ReadJobStamp(dataFolder, "Weekly"), "18.11.2026");
}

TEST_F(JobLifecycleTest, ABusyBinKeepsTheProgramOpenWithTheJobClosed) {
  Named(false);
  state.QuickBinBusy = true;
  EXPECT_FALSE(jobs.CloseForExit());
  ExpectUntitledClean();
}

TEST_F(JobLifecycleTest, ASessionEndThatIsCalledOffLeavesTheJobAsItWas) {
  Named(true);
  const std::vector<std::string> paths = Paths();
  Answer(MessageAnswer::No);
  EXPECT_TRUE(jobs.AllowSessionEnd());
  EXPECT_EQ(Paths(), paths);
  EXPECT_EQ(state.CurrentJobName, "Weekly");
  EXPECT_EQ(state.LastWiping, "16.11.2026");
  EXPECT_FALSE(state.JobSaved);
  EXPECT_FALSE(Wrote());

  Answer(MessageAnswer::Yes);
  EXPECT_TRUE(jobs.AllowSessionEnd());
  EXPECT_EQ(Paths(), paths);
  EXPECT_TRUE(state.JobSaved);
  EXPECT_TRUE(Wrote());

  jobs.DropJob();
  ExpectUntitledClean();
}

TEST_F(JobLifecycleTest, ASessionEndIsRefusedByCancelAndByABusyBin) {
  Named(true);
  const std::vector<std::string> paths = Paths();
  Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(jobs.AllowSessionEnd());
  EXPECT_EQ(Paths(), paths);
  // The order of a close holds here as well: what the bin refuses, it refuses behind the job's close.
  state.QuickBinBusy = true;
  Answer(MessageAnswer::No);
  EXPECT_FALSE(jobs.AllowSessionEnd());
  ExpectUntitledClean();
  state.QuickBinBusy = false;
  EXPECT_TRUE(jobs.AllowSessionEnd()) << "the earlier cancel is forgotten";
}

TEST_F(JobLifecycleTest, AnExitForgetsAnEarlierCancel) {
  state.JobActionCancelled = true;
  EXPECT_TRUE(jobs.CloseForExit());
}

TEST_F(JobLifecycleTest, ChoosingAJobTakesItUnlessItIsOpenInTheVeryLetters) {
  state.CurrentJobName = "Report";
  state.SelectedJobName = "before";
  ChooseSavedJob(state, "Report");
  EXPECT_TRUE(state.JobActionCancelled);
  EXPECT_EQ(state.SelectedJobName, "before");
  ChooseSavedJob(state, "report");
  EXPECT_FALSE(state.JobActionCancelled);
  EXPECT_EQ(state.SelectedJobName, "report");
  EXPECT_EQ(state.CurrentJobName, "Report");
}

TEST_F(JobLifecycleTest, TheCommandLineOpensAJobOfTheProgramsOwnFolder) {
  for (const char* line : {"C:\\Zeroquill\\Jobs\\Weekly.zqj", "\"C:\\Zeroquill\\Jobs\\Weekly.zqj\"",
                           "c:\\ZEROQUILL\\elsewhere\\Weekly.ZQJ"}) {
    jobList.Clear();
    EXPECT_TRUE(jobs.OpenJobFromCommandLine(line)) << line;
    ExpectNamedClean("Weekly", "16.11.2026", {"C:\\weekly.doc"});
    EXPECT_EQ(tools.panels["Static3"], "1 Item");
    EXPECT_TRUE(tools.enabledTools["mnuFileDelete"]);
  }
}

TEST_F(JobLifecycleTest, ACommandLineThatNamesNoJobIsLeftForTheItems) {
  for (const char* line : {"C:\\a.txt", "D:\\Weekly.zqj", "C:\\Zeroquill\\notes.txt"}) {
    EXPECT_FALSE(jobs.OpenJobFromCommandLine(line)) << line;
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(state.CurrentJobName, "");
  }
}

TEST_F(JobLifecycleTest, AJobOfTheCommandLineThatCannotBeReadLeavesAnUntitledJob) {
  for (const char* line : {"C:\\Zeroquill\\Jobs\\Missing.zqj", "C:\\Zeroquill\\Jobs\\Damaged.zqj"}) {
    state.LastWiping = "N/A";
    Answer(MessageAnswer::Ok);
    EXPECT_TRUE(jobs.OpenJobFromCommandLine(line));  // it isn't taken for items
    EXPECT_EQ(boxes.shown.back().title, "Error");
    EXPECT_EQ(OpenJob(), (Job{"", "N/A", true, {}}));
    EXPECT_EQ(tools.panels["Static3"], "0 Items");
    EXPECT_FALSE(tools.enabledTools["mnuFileDelete"]);
  }
}

TEST_F(JobLifecycleTest, TheNameIsWhatFollowsTheLastBackslashOfTheWholeCommandLine) {
  EXPECT_TRUE(jobs.OpenJobFromCommandLine("C:\\Zeroquill\\x D:\\other\\Daily.zqj"));
  ExpectNamedClean("Daily", "17.11.2026", {"C:\\daily.doc"});
}

}  // namespace
}  // namespace zq
