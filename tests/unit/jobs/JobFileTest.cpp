// The job's file. Its fixture plays one program with one job; the disc is in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/state/AppState.h"
#include "jobs/FileIcons.h"
#include "jobs/JobFile.h"
#include "jobs/JobList.h"
#include "platform/Platform.h"
#include "support/ExpectRaises.h"
#include "support/Rows.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakeMessageBoxes.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeProcess.h"
#include "support/fakes/FakeRegional.h"
#include "support/fakes/FakeRegistry.h"
#include "support/fakes/FakeToolStates.h"
#include "support/fakes/OneSizeFiles.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FileRow;
using test::FolderRow;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kJob = "C:\\Zeroquill\\Jobs\\Weekly.zqj";

const Message kLoadError{"An error was encountered trying to open the existing Zeroquill Job.", "Error",
                         MessageIcon::Exclamation, MessageButtons::Ok};
const Message kSaveError{
    "An error was encountered trying to save the current wiping job.  Ensure that Zeroquill was installed "
    "with "
    "the proper permissions to create a Jobs sub folder under the main folder and can write files within the "
    "folder.",
    "Error", MessageIcon::Exclamation, MessageButtons::Ok};

JobRow Ghosted(JobRow row) {
  row.Ghosted = true;
  return row;
}

class JobFileTest : public testing::Test, protected test::FakePlatform {
 protected:
  JobFileTest() {
    state.AppFolder = "C:\\Zeroquill\\";
    state.CurrentJobName = "Weekly";
    files.AddFolder("C:\\Zeroquill\\Jobs");
  }

  std::vector<JobRow> Rows() const {
    std::vector<JobRow> rows;
    for (int row = 1; row <= jobList.RowLoopEnd(); ++row) rows.push_back(jobList.Row(row));
    return rows;
  }
  std::string JobOnDisc() const { return files.Find(kJob)->content; }

  // Loads `bytes` as the job "Weekly" into an empty list of a program that shows no job.
  void Load(const std::string& bytes) {
    files.AddFile(kJob, bytes);
    LoadFromDisc();
  }
  void LoadFromDisc() {
    state.CurrentJobName = "Weekly";
    state.JobSaved = false;
    state.LastWiping = "before";
    tools.panels["Static2"] = "before";
    jobList.Clear();
    boxes.shown.clear();
    boxes.answers = {MessageAnswer::Ok};
    jobFile.LoadJob();
  }
  void ExpectLoaded(const std::vector<JobRow>& rows) {
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(state.CurrentJobName, "Weekly");
    EXPECT_TRUE(state.JobSaved);
    EXPECT_EQ(tools.panels["Static2"], "Job: Weekly");
    EXPECT_THAT(boxes.shown, IsEmpty());
  }
  void ExpectRefused(const std::string& stamp) {
    EXPECT_EQ(jobList.Count(), 0U);
    EXPECT_EQ(state.CurrentJobName, "");
    EXPECT_TRUE(state.JobSaved);
    EXPECT_EQ(state.LastWiping, stamp);
    EXPECT_EQ(tools.panels["Static2"], "before");
    EXPECT_THAT(boxes.shown, ElementsAre(kLoadError));
  }

  AppState state;
  JobList jobList{regional};
  test::FakeIconPainter painter;
  FileIcons icons{painter, regional};
  test::FakeToolStates tools{log};
  JobFile jobFile{state, jobList, platform, icons, tools};
  DataFolder dataFolder{files, state};
};

TEST_F(JobFileTest, StandsOnDiscByteForByte) {
  jobList.Add(FolderRow("C:\\Old Papers"));
  jobList.Add(FileRow("C:\\letter.doc", "1.46 KB"));
  state.JobSaved = false;
  jobFile.SaveJob();
  EXPECT_EQ(JobOnDisc(),
            "\"N/A\"\r\n"
            "\"[FOLDERS]\"\r\n"
            "\"C:\\Old Papers\"\r\n"
            "\"*.*\"\r\n"
            "\"Yes\"\r\n"
            "\"[FILES]\"\r\n"
            "\"C:\\letter.doc\"\r\n");
  EXPECT_TRUE(state.JobSaved);
  EXPECT_EQ(state.CurrentJobName, "Weekly");
  EXPECT_EQ(tools.panels["Static2"], "Job: Weekly");
  EXPECT_THAT(log, ElementsAre(std::string("write ") + kJob, "Static2=Job: Weekly"));
}

TEST_F(JobFileTest, WritesAnEmptyJobAsThreeLines) {
  state.LastWiping = "11/16/2026 4:30:12 AM";
  jobFile.SaveJob();
  EXPECT_EQ(JobOnDisc(), "\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n");
}

TEST_F(JobFileTest, WritesFoldersFirstAndLeavesTheOpenListInItsOrder) {
  const std::vector<JobRow> mixed{
      FileRow("C:\\b.txt"), FolderRow("C:\\B", "*.doc", "No"), FileRow("C:\\a.txt"),
      FolderRow("C:\\A"),   FolderRow("C:\\B", "*.doc", "No"), FileRow("C:\\b.txt")};
  for (const JobRow& row : mixed) jobList.Add(row);
  jobFile.SaveJob();
  EXPECT_EQ(Rows(), mixed);

  for (const char* path : {"C:\\A\\x", "C:\\B\\x", "C:\\a.txt", "C:\\b.txt"}) files.AddFile(path);
  LoadFromDisc();
  const JobRow a = FileRow("C:\\a.txt", "0 Bytes", 3);
  const JobRow b = FileRow("C:\\b.txt", "0 Bytes", 3);
  ExpectLoaded(
      {FolderRow("C:\\B", "*.doc", "No"), FolderRow("C:\\A"), FolderRow("C:\\B", "*.doc", "No"), b, a, b});
}

TEST_F(JobFileTest, TellsARowByItsCellOnSavingAndByItsPlaceOnLoading) {
  jobList.Add(FileRow("C:\\Yes"));
  jobList.Add(FolderRow("C:\\Papers", "*.*", "yes"));  // no folder row, whatever it holds besides
  jobList.Add(FolderRow("C:\\Mail", "", "No"));
  jobFile.SaveJob();
  EXPECT_EQ(JobOnDisc(),
            "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\Mail\"\r\n\"\"\r\n\"No\"\r\n\"[FILES]\"\r\n\"C:\\Yes\"\r\n"
            "\"C:\\Papers\"\r\n");
  LoadFromDisc();
  ExpectLoaded({Ghosted(FolderRow("C:\\Mail", "", "No")), Ghosted(FileRow("C:\\Yes")),
                Ghosted(FileRow("C:\\Papers"))});
}

TEST_F(JobFileTest, ComesBackTheSameByteForByte) {
  const std::string kJobs[] = {
      "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n",
      "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\\"\r\n\"*.doc\"\r\n\"No\"\r\n\"[FILES]\"\r\n",
      "\"16.11.2026, 04:30\"\r\n\"[FOLDERS]\"\r\n\"C:\\a, "
      "b\"\r\n\"*.*\"\r\n\"Yes\"\r\n\"\"\r\n\"*.*\"\r\n\"No\"\r\n"
      "\"[FILES]\"\r\n\"  C:\\blanks, too  \"\r\n\"C:\\\u00e9t\u00e9\\\u65e5\u672c.txt\"\r\n\"[FOLDERS]\"\r\n"
      "\"\\\\server\\share\\x\"\r\n\"C:\\same.txt\"\r\n\"C:\\same.txt\"\r\n",
      "\"\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\'single'.txt\"\r\n",
  };
  for (const std::string& bytes : kJobs) {
    Load(bytes);
    files.Find(kJob)->content = "other";
    jobFile.SaveJob();
    EXPECT_EQ(JobOnDisc(), bytes);
    EXPECT_THAT(boxes.shown, IsEmpty());
  }
}

TEST_F(JobFileTest, LeavesAnUntitledJobAloneWithoutAWord) {
  state.CurrentJobName = "";
  state.JobSaved = false;
  jobList.Add(FileRow("C:\\a.txt"));
  jobFile.SaveJob();
  EXPECT_THAT(log, IsEmpty());
  EXPECT_FALSE(state.JobSaved);
}

TEST_F(JobFileTest, ASaveThatFailsIsToldAndChangesNothing) {
  jobList.Add(FileRow("C:\\a.txt"));
  files.AddFile(kJob, "former");
  files.unwritable.insert(kJob);
  for (const bool saved : {false, true}) {
    state.JobSaved = saved;
    boxes.shown.clear();
    boxes.answers = {MessageAnswer::Ok};
    jobFile.SaveJob();
    EXPECT_THAT(boxes.shown, ElementsAre(kSaveError));
    EXPECT_EQ(state.JobSaved, saved);
    EXPECT_EQ(state.CurrentJobName, "Weekly");
    EXPECT_EQ(Rows(), std::vector<JobRow>{FileRow("C:\\a.txt")});
    EXPECT_TRUE(tools.panels.empty());
  }
}

TEST_F(JobFileTest, ASaveWithoutItsFolderFails) {
  files.Delete("C:\\Zeroquill\\Jobs");
  state.JobSaved = false;
  boxes.answers = {MessageAnswer::Ok};
  jobFile.SaveJob();
  EXPECT_THAT(boxes.shown, ElementsAre(kSaveError));
  EXPECT_FALSE(state.JobSaved);
}

TEST_F(JobFileTest, Saves32767RowsAndRefusesMoreWithoutTouchingTheFile) {
  for (int i = 1; i <= 32767; ++i) jobList.Add(FileRow("C:\\a.txt"));
  jobFile.SaveJob();
  const std::string saved = JobOnDisc();
  EXPECT_EQ(std::count(saved.begin(), saved.end(), '\n'), 3 + 32767);

  jobList.Add(FileRow("C:\\b.txt"));
  state.JobSaved = false;
  boxes.answers = {MessageAnswer::Ok};
  jobFile.SaveJob();
  EXPECT_THAT(boxes.shown, ElementsAre(kSaveError));
  EXPECT_FALSE(state.JobSaved);
  EXPECT_EQ(JobOnDisc(), saved);
}

TEST_F(JobFileTest, LoadsFoldersAndFilesWithWhatTheDiscSaysOfThem) {
  files.AddFile("C:\\Papers\\x");
  files.AddFileOfLength("C:\\letter.doc", 1500);
  files.AddFileOfLength("C:\\picture.jpeg", 5);
  files.AddFile("C:\\hidden.txt", "x", kAttributeHidden | kAttributeSystem | kAttributeReadOnly);
  Load(
      "\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n\"C:\\Papers\"\r\n\"*.doc\"\r\n\"No\"\r\n"
      "\"C:\\Gone\"\r\n\"*.*\"\r\n\"Yes\"\r\n\"[FILES]\"\r\n\"C:\\letter.doc\"\r\n\"C:\\picture.jpeg\"\r\n"
      "\"C:\\gone.txt\"\r\n\"C:\\LETTER.DOC\"\r\n\"C:\\Papers\"\r\n\"C:\\hidden.txt\"\r\n");
  ExpectLoaded({FolderRow("C:\\Papers", "*.doc", "No"), Ghosted(FolderRow("C:\\Gone")),
                FileRow("C:\\letter.doc", "1.46 KB", 3), FileRow("C:\\picture.jpeg", "5 Bytes"),
                Ghosted(FileRow("C:\\gone.txt", "0 Bytes", 4)), FileRow("C:\\LETTER.DOC", "1.46 KB", 3),
                Ghosted(FileRow("C:\\Papers")), FileRow("C:\\hidden.txt", "1 Bytes", 4)});
  EXPECT_EQ(state.LastWiping, "11/16/2026 4:30:12 AM");
  EXPECT_EQ(jobList.SelectedRow(), 0);
}

TEST_F(JobFileTest, TakesMaskAndSubFoldersAsTheyStand) {
  Load("\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\Gone\"\r\n\"report*.html\"\r\n\"maybe\"\r\n");
  ExpectLoaded({Ghosted(FolderRow("C:\\Gone", "report*.html", "maybe"))});
}

TEST_F(JobFileTest, TakesTheSecondFieldForTheFoldersMarkWhateverItSays) {
  for (const std::string mark : {"[FOLDERS]", "[FILES]", "", "C:\\a.txt"}) {
    Load("\"N/A\"\r\n\"" + mark + "\"\r\n\"C:\\Gone\"\r\n\"*.*\"\r\n\"Yes\"\r\n");
    ExpectLoaded({Ghosted(FolderRow("C:\\Gone"))});
  }
}

TEST_F(JobFileTest, AddsToTheListWhatTheFileHolds) {
  files.AddFile(kJob, "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\b.txt\"\r\n");
  jobList.Add(FileRow("C:\\a.txt"));
  jobFile.LoadJob();
  EXPECT_EQ(Rows(), (std::vector<JobRow>{FileRow("C:\\a.txt"), Ghosted(FileRow("C:\\b.txt", "0 Bytes", 3))}));
}

TEST_F(JobFileTest, WithoutTheFilesMarkEveryThreeFieldsAreAFolder) {
  const std::string head = "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\Gone\"\r\n\"*.*\"\r\n\"Yes\"\r\n";
  Load(head + "\"C:\\a.txt\"\r\n\"C:\\b.txt\"\r\n\"C:\\c.txt\"\r\n");
  ExpectLoaded({Ghosted(FolderRow("C:\\Gone")), Ghosted(FolderRow("C:\\a.txt", "C:\\b.txt", "C:\\c.txt"))});
  Load(head + "\"C:\\a.txt\"\r\n");
  ExpectRefused("N/A");
  Load(head + "\"C:\\a.txt\"\r\n\"C:\\b.txt\"\r\n");
  ExpectRefused("N/A");
}

TEST_F(JobFileTest, TheFilesMarkMayComeAgainAndIsKnownByItsExactText) {
  Load(
      "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\Gone\"\r\n\"[FILES]\"\r\n\"[FILES]\"\r\n\"[FILES]\"\r\n\"C:\\a\"\r\n"
      "\"[FILES]\"\r\n\"[files]\"\r\n\"[FILES] \"\r\n\"[FOLDERS]\"\r\n");
  ExpectLoaded({Ghosted(FolderRow("C:\\Gone", "[FILES]", "[FILES]")), Ghosted(FileRow("C:\\a")),
                Ghosted(FileRow("[files]")), Ghosted(FileRow("[FILES] ")), Ghosted(FileRow("[FOLDERS]"))});
}

TEST_F(JobFileTest, ReadsAFileMadeByHandWithoutQuotes) {
  Load("N/A,[FOLDERS]\nC:\\Gone,*.doc,No\r[FILES]\r\n  C:\\two words  \r\n\"C:\\a, b\", C:\\c.d");
  ExpectLoaded({Ghosted(FolderRow("C:\\Gone", "*.doc", "No")), Ghosted(FileRow("C:\\two words")),
                Ghosted(FileRow("C:\\a, b")), Ghosted(FileRow("C:\\c.d"))});
  // A comma in a field without quotes ends it.
  Load("N/A\r\n[FOLDERS]\r\n[FILES]\r\nC:\\Smith, John.txt\r\n");
  ExpectLoaded({Ghosted(FileRow("C:\\Smith")), Ghosted(FileRow("John.txt", "0 Bytes", 3))});
}

TEST_F(JobFileTest, DoesNotReadBackAFieldWithAQuoteInIt) {
  jobList.Add(FileRow("C:\\a\"b.txt"));
  jobFile.SaveJob();
  EXPECT_THAT(JobOnDisc(), testing::EndsWith("\"C:\\a\"b.txt\"\r\n"));
  LoadFromDisc();
  ExpectLoaded({Ghosted(FileRow("C:\\a")), Ghosted(FileRow("b.txt\""))});
}

TEST_F(JobFileTest, RefusesAFileThatIsMissingOrCannotBeRead) {
  LoadFromDisc();
  ExpectRefused("before");
  files.AddFile(kJob, "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n");
  files.unreadable.insert(kJob);
  LoadFromDisc();
  ExpectRefused("before");
}

TEST_F(JobFileTest, RefusesAFileOfFewerThanTwoFields) {
  Load("");
  ExpectRefused("before");
  Load("\"yesterday\"\r\n");
  ExpectRefused("yesterday");
}

TEST_F(JobFileTest, RefusesAPathOfThreeCharactersOrFewer) {
  const std::string head = "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n\"";
  for (const std::string path : {"", "a", "abc", "C:\\", "\u00e9\u00e9\u00e9"}) {
    Load(head + path + "\"\r\n\"C:\\b.txt\"\r\n");
    ExpectRefused("N/A");
  }
  for (const std::string path : {"abcd", "\u00e9\u00e9\u00e9\u00e9"}) {
    Load(head + path + "\"\r\n");
    ExpectLoaded({Ghosted(FileRow("C:\\a.txt", "0 Bytes", 3)), Ghosted(FileRow(path))});
  }
  Load("\"N/A\"\r\n\"[FOLDERS]\"\r\n\"\"\r\n\"*.*\"\r\n\"No\"\r\n");  // a folder may have one
  ExpectLoaded({Ghosted(FolderRow("", "*.*", "No"))});
}

TEST_F(JobFileTest, RefusesAnEmptyLineAmongTheFiles) {
  Load("\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n\r\n");
  ExpectRefused("N/A");
}

TEST_F(JobFileTest, RefusesAFileWhoseLengthCannotBeHeld) {
  files.AddFileOfLength("C:\\huge.bin", 922337203685478);
  Load("\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\huge.bin\"\r\n");
  ExpectRefused("N/A");
}

TEST_F(JobFileTest, NoPartOfAJobIsThereWhileTheErrorIsShown) {
  boxes.whileShown = [this] {
    EXPECT_EQ(jobList.Count(), 0U);
    EXPECT_EQ(state.CurrentJobName, "");
    EXPECT_TRUE(state.JobSaved);
  };
  Load("\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\Gone\"\r\n\"*.*\"\r\n\"Yes\"\r\n\"C:\\More\"\r\n");
  ExpectRefused("N/A");
}

// What a file cut short at any byte has to give, told from the places of the cuts alone.
TEST_F(JobFileTest, CutShortAtAnyByteItIsLoadedUpToThereOrRefused) {
  const std::vector<std::string> fields{"N/A",     "[FOLDERS]",     "C:\\Mail",      "*.doc",   "No",
                                        "C:\\Old", "*.*",           "Yes",           "[FILES]", "C:\\a.b",
                                        "[FILES]", "C:\\caf\u00e9", "C:\\letter.doc"};
  std::string whole;
  for (const std::string& field : fields) whole += "\"" + field + "\"\r\n";

  std::size_t refused = 0;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    SCOPED_TRACE(length);
    // The fields of which at least the opening quote is there, the last one perhaps in part.
    std::vector<std::string> left;
    std::size_t start = 0;
    for (const std::string& field : fields) {
      if (start >= length) break;
      left.push_back(field.substr(0, length - start - 1));
      start += field.size() + 4;
    }
    std::vector<JobRow> rows;
    bool good = left.size() >= 2;
    bool inFolders = true;
    for (std::size_t i = 2; good && i < left.size(); ++i) {
      if (left[i] == "[FILES]") {
        inFolders = false;
      } else if (inFolders) {
        good = i + 2 < left.size();
        if (good) rows.push_back(Ghosted(FolderRow(left[i], left[i + 1], left[i + 2])));
        i += 2;
      } else {
        good = left[i].size() > 3;  // no cut leaves three characters in more bytes
        rows.push_back(
            Ghosted(FileRow(left[i], "0 Bytes", left[i].ends_with(".doc") ? 3 : kPlainFilePicture)));
      }
    }
    Load(whole.substr(0, length));
    if (good) {
      ExpectLoaded(rows);
      EXPECT_EQ(state.LastWiping, "N/A");
    } else {
      ++refused;
      ExpectRefused(left.empty() ? "before" : left[0]);
    }
  }
  EXPECT_GT(refused, 40U);
  EXPECT_LT(refused, whole.size());
}

TEST_F(JobFileTest, MoreRowsThanCanBeSavedAreLoaded) {
  std::string bytes = "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n";
  for (int i = 1; i <= 32768; ++i) bytes += "\"C:\\a\"\r\n";
  Load(bytes);
  EXPECT_EQ(jobList.Count(), 32768U);
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(JobFileTest, ReadsTheStampAndNothingBehindIt) {
  files.AddFile(kJob, "\"16.11.2026, 04:30\"\r\ngarbage \" \" \"");
  EXPECT_EQ(ReadJobStamp(dataFolder, "Weekly"), "16.11.2026, 04:30");
  files.AddFile(kJob, "yesterday, at noon");
  EXPECT_EQ(ReadJobStamp(dataFolder, "Weekly"), "yesterday");
  files.AddFile(kJob, "\r\n");
  EXPECT_EQ(ReadJobStamp(dataFolder, "Weekly"), "");
  files.AddFile(kJob, "");
  ExpectRaises(ErrorNumber::InputPastEndOfFile, [this] { ReadJobStamp(dataFolder, "Weekly"); });
  files.Delete(kJob);
  ExpectRaises(ErrorNumber::FileNotFound, [this] { ReadJobStamp(dataFolder, "Weekly"); });
}

TEST_F(JobFileTest, ListsTheSavedJobsInTheOrderOfTheFileSystem) {
  EXPECT_THAT(ListSavedJobs(dataFolder), IsEmpty());
  const std::string folder = "C:\\Zeroquill\\Jobs\\";
  files.AddFile(folder + "b.zqj", "\"N/A\"\r\n");
  files.AddFile(folder + "a.b.ZQJ", "\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n");
  files.AddFile(folder + "Read only.zqj", "no job at all", kAttributeReadOnly);
  files.AddFile(folder + "\u00e9t\u00e9.zqj", "\"N/A\"");
  files.AddFile(folder + "Hidden.zqj", "\"N/A\"", kAttributeHidden);
  files.AddFile(folder + "System.zqj", "\"N/A\"", kAttributeSystem);
  files.AddFile(folder + "old.zqj.bak", "\"N/A\"");
  files.AddFile(folder + "notes.txt", "\"N/A\"");
  files.AddFolder(folder + "Folder.zqj");
  EXPECT_THAT(ListSavedJobs(dataFolder),
              ElementsAre(SavedJob{"b", "N/A"}, SavedJob{"a.b", "11/16/2026 4:30:12 AM"},
                          SavedJob{"Read only", "no job at all"}, SavedJob{"\u00e9t\u00e9", "N/A"}));
}

TEST_F(JobFileTest, OneSavedJobWithoutAStampFailsTheWholeList) {
  files.AddFile("C:\\Zeroquill\\Jobs\\good.zqj", "\"N/A\"");
  files.AddFile("C:\\Zeroquill\\Jobs\\empty.zqj", "");
  ExpectRaises(ErrorNumber::InputPastEndOfFile, [this] { ListSavedJobs(dataFolder); });
  files.unreadable.insert("C:\\Zeroquill\\Jobs\\empty.zqj");
  ExpectRaises(ErrorNumber::PermissionDenied, [this] { ListSavedJobs(dataFolder); });
}

// As an editor leaves it in a file made by hand. With the mark in the stamp, the first line wouldn't begin
// with a quote, and be saved as a line that can't be read again.
TEST_F(JobFileTest, AByteOrderMarkIsPassedOver) {
  const std::string bytes = "\"16.11.2026\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n";
  files.AddFile(kJob, "\xEF\xBB\xBF" + bytes);
  EXPECT_THAT(ListSavedJobs(dataFolder), ElementsAre(SavedJob{"Weekly", "16.11.2026"}));
  jobFile.LoadJob();
  EXPECT_EQ(state.LastWiping, "16.11.2026");
  ASSERT_EQ(Rows().size(), 1U);
  jobFile.SaveJob();
  EXPECT_EQ(JobOnDisc(), bytes);
}

TEST_F(JobFileTest, AListOfSavedJobsThatBreaksOffIsAFailure) {
  files.AddFile("C:\\Zeroquill\\Jobs\\one.zqj", "\"N/A\"");
  files.AddFile("C:\\Zeroquill\\Jobs\\two.zqj", "\"N/A\"");
  files.listingBreaksAfter = 1;
  ExpectRaises(ErrorNumber::DeviceIoError, [this] { ListSavedJobs(dataFolder); });
}

TEST_F(JobFileTest, AStampLeavesTheDiscAsItIs) {
  const std::string bytes = "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n";
  files.AddFile(kJob, bytes);
  state.LastWiping = "11/16/2026 4:30:12 AM";
  state.JobSaved = true;
  StampJobFile(state, dataFolder);
  EXPECT_EQ(JobOnDisc(), bytes);
  EXPECT_FALSE(files.Exists("C:\\Zeroquill\\Jobs\\Weekly.tmp"));
  EXPECT_THAT(log, IsEmpty());
  EXPECT_TRUE(state.JobSaved);

  // The save by hand writes it.
  jobFile.SaveJob();
  EXPECT_THAT(JobOnDisc(), testing::StartsWith("\"11/16/2026 4:30:12 AM\"\r\n"));
}

TEST_F(JobFileTest, AFileThatHappensToHaveTheTemporaryNameIsSafe) {
  files.AddFile("C:\\Zeroquill\\Jobs\\Weekly.tmp", "mine");
  StampJobFile(state, dataFolder);
  EXPECT_EQ(files.Find("C:\\Zeroquill\\Jobs\\Weekly.tmp")->content, "mine");
  files.failEverything = true;
  StampJobFile(state, dataFolder);
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST(JobFileOfManyRows, AsksTheDiscAFixedNumberOfTimesForEachRow) {
  test::EventLog log;
  test::FakeMessageBoxes boxes{log};
  test::FakeProcess process{log};
  test::FakeRegional regional;
  test::FakeRegistry registry;
  test::FakeIconPainter painter;
  test::FakeToolStates tools{log};
  for (const std::size_t rows : {std::size_t{1000}, std::size_t{30000}}) {
    test::OneSizeFiles files;
    Platform platform{files, boxes, process, regional, registry};
    AppState state;
    state.CurrentJobName = "Many";
    JobList jobList{regional};
    FileIcons icons{painter, regional};
    JobFile jobFile{state, jobList, platform, icons, tools};
    for (std::size_t i = 0; i < rows; ++i) {
      const std::string path = "C:\\data\\" + std::to_string(i);
      jobList.Add(i % 2 == 0 ? FileRow(path + ".doc", "1.46 KB", 3) : FolderRow(path));
    }
    jobFile.SaveJob();
    EXPECT_EQ(files.calls, 1U);
    const std::string saved = files.content;
    jobList.Clear();
    jobFile.LoadJob();
    ASSERT_EQ(jobList.Count(), rows);
    EXPECT_EQ(files.calls,
              1 + 1 + rows / 2 + rows / 2 * 2);  // a folder is looked for, a file is measured, too
    EXPECT_EQ(jobList.Row(1), FolderRow("C:\\data\\1"));
    EXPECT_EQ(jobList.Row(static_cast<int>(rows)),
              FileRow("C:\\data\\" + std::to_string(rows - 2) + ".doc", "1.46 KB", 3));
    jobFile.SaveJob();
    EXPECT_EQ(files.content, saved);
  }
  EXPECT_THAT(boxes.shown, IsEmpty());
}

}  // namespace
}  // namespace zq
