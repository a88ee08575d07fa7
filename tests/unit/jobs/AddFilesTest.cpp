#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "jobs/AddFiles.h"
#include "jobs/FileIcons.h"
#include "jobs/JobList.h"
#include "support/ExpectRaises.h"
#include "support/Rows.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

using namespace std::string_literals;
using test::ExpectRaises;
using test::FileRow;
using test::FolderRow;
using testing::ElementsAre;
using testing::IsEmpty;

// The dialog's part is played by adding the row that a user would have made.
class FakeFolderDialog final : public FolderDialog {
 public:
  explicit FakeFolderDialog(JobList& jobList) : jobList_(jobList) {}
  std::vector<std::string> shown;  // the path and the rows that were in the list by then
  void ShowFor(const std::string& path) override {
    shown.push_back(path + " after " + std::to_string(jobList_.Count()));
    jobList_.Add(FolderRow(path));
  }

 private:
  JobList& jobList_;
};

class AddFilesTest : public testing::Test {
 protected:
  std::vector<std::string> Paths() const {
    std::vector<std::string> paths;
    for (int row = 1; row <= jobList.RowLoopEnd(); ++row) paths.push_back(jobList.Row(row).NameAndLocation);
    return paths;
  }
  // Nothing was selected, and the job isn't changed.
  void ExpectUntouched() const {
    EXPECT_EQ(jobList.SelectedRow(), 0);
    EXPECT_TRUE(state.JobSaved);
  }
  void ExpectClosed() const {
    EXPECT_EQ(jobList.SelectedRow(), 1);
    EXPECT_FALSE(state.JobSaved);
  }

  AppState state;
  test::FakeRegional regional;
  test::FakeFiles files;
  test::FakeIconPainter painter;
  JobList jobList{regional};
  FileIcons icons{painter, regional};
  FakeFolderDialog dialog{jobList};
  AddFiles adding{state, jobList, files, icons, regional, &dialog};
};

TEST_F(AddFilesTest, APathIsAFolderOnlyByItsDirectoryBit) {
  files.AddFolder("C:\\dir", kAttributeDirectory | kAttributeHidden);
  files.AddFile("C:\\file", "x", kAttributeReadOnly);
  EXPECT_EQ(PathKind(files, "C:\\dir"), kPathIsFolder);
  EXPECT_EQ(PathKind(files, "C:\\file"), kPathIsFile);
  EXPECT_EQ(PathKind(files, "C:\\none"), kPathIsFile);
  files.failEverything = true;
  EXPECT_EQ(PathKind(files, "C:\\dir"), kPathIsFile);
}

TEST_F(AddFilesTest, TheDialogStartsInTheRememberedFolder) {
  EXPECT_EQ(adding.InitialFolder(), std::string(150, '\0'));  // never set: nulls aren't blanks
  state.Settings.LastFilesFolder = "";
  EXPECT_EQ(adding.InitialFolder(), "C:\\Current");
  state.Settings.LastFilesFolder = "D:\\Papers\\";
  EXPECT_EQ(adding.InitialFolder(), "D:\\Papers\\");
}

TEST_F(AddFilesTest, ACancelledDialogChangesNothing) {
  jobList.Add(FileRow("C:\\old.txt"));
  adding.AddDialogResult("");
  EXPECT_THAT(Paths(), ElementsAre("C:\\old.txt"));
  EXPECT_EQ(adding.InitialFolder(), std::string(150, '\0'));
  ExpectUntouched();
}

TEST_F(AddFilesTest, OneChosenFileBecomesARow) {
  files.AddFileOfLength("C:\\Papers\\a.doc", 1500);
  adding.AddDialogResult("C:\\Papers\\a.doc");
  ASSERT_EQ(jobList.Count(), 1U);
  EXPECT_EQ(jobList.Row(1), FileRow("C:\\Papers\\a.doc", "1.46 KB", 3));
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "C:\\Papers\\");
  ExpectClosed();
}

TEST_F(AddFilesTest, OneFileThatIsListedStillMovesTheFolderAndMarksTheJob) {
  jobList.Add(FileRow("C:\\Papers\\a.doc"));
  adding.AddDialogResult("c:\\PAPERS\\A.DOC");
  EXPECT_EQ(jobList.Count(), 1U);
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "c:\\PAPERS\\");
  EXPECT_THAT(painter.log, IsEmpty());
  ExpectClosed();
}

TEST_F(AddFilesTest, SeveralChosenFilesBecomeRowsInTheirOrder) {
  files.AddFileOfLength("C:\\Papers\\a.doc", 1);
  files.AddFileOfLength("C:\\Papers\\b.doc", 2);
  files.AddFileOfLength("C:\\Papers\\c", 3);
  adding.AddDialogResult("C:\\Papers\0b.doc\0a.doc\0c"s);
  ASSERT_EQ(jobList.Count(), 3U);
  EXPECT_EQ(jobList.Row(1), FileRow("C:\\Papers\\b.doc", "2 Bytes", 3));
  EXPECT_EQ(jobList.Row(2), FileRow("C:\\Papers\\a.doc", "1 Bytes", 3));
  EXPECT_EQ(jobList.Row(3), FileRow("C:\\Papers\\c", "3 Bytes"));
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "C:\\Papers\\");
  ExpectClosed();
}

TEST_F(AddFilesTest, FilesOfADrivesRootGetOneBackslash) {
  adding.AddDialogResult("C:\\\0a.txt\0b.txt"s);
  EXPECT_THAT(Paths(), ElementsAre("C:\\a.txt", "C:\\b.txt"));
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "C:\\");
}

TEST_F(AddFilesTest, SeveralFilesThatAreAllListedStoreTheFolder) {
  jobList.Add(FileRow("C:\\Papers\\A.doc"));
  jobList.Add(FileRow("C:\\Papers\\B.doc"));
  adding.AddDialogResult("C:\\Papers\0a.doc\0b.doc"s);
  EXPECT_EQ(jobList.Count(), 2U);
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "C:\\Papers\\");
  ExpectClosed();
}

TEST_F(AddFilesTest, ANullAtTheEndBeginsNoName) {
  adding.AddDialogResult("C:\\Papers\0a.doc\0"s);
  EXPECT_THAT(Paths(), ElementsAre("C:\\Papers\\a.doc"));
}

TEST_F(AddFilesTest, AFolderWithoutNamesIsOnlyRemembered) {
  adding.AddDialogResult("C:\\Papers\0"s);
  EXPECT_EQ(jobList.Count(), 0U);
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "C:\\Papers\\");
  ExpectUntouched();  // an empty list is never closed
}

TEST_F(AddFilesTest, ALongFolderIsCutAtTheFieldsEnd) {
  adding.AddDialogResult("C:\\" + std::string(200, 'x') + "\0a.txt"s);
  EXPECT_EQ(state.Settings.LastFilesFolder.Trimmed(), "C:\\" + std::string(147, 'x'));
}

TEST_F(AddFilesTest, TheSizeIsReadBeforeAnythingElseIsDone) {
  files.AddFileOfLength("C:\\Papers\\huge.bin", 922337203685478);
  jobList.Add(FileRow("C:\\Papers\\huge.bin"));  // listed, and still its length is read
  ExpectRaises(ErrorNumber::Overflow, [&] { adding.AddDialogResult("C:\\Papers\\huge.bin"); });
  ExpectRaises(ErrorNumber::Overflow, [&] { adding.AddDropped({"C:\\Papers\\huge.bin"}); });
  EXPECT_EQ(adding.InitialFolder(), std::string(150, '\0'));
  ExpectUntouched();
}

TEST_F(AddFilesTest, ADropKeepsTheShellsOrderAroundFolders) {
  files.AddFile("C:\\a.txt");
  files.AddFolder("C:\\dir");
  files.AddFile("C:\\b.txt");
  adding.AddDropped({"C:\\a.txt", "C:\\dir", "C:\\b.txt"});
  EXPECT_THAT(dialog.shown, ElementsAre("C:\\dir after 1"));
  EXPECT_THAT(Paths(), ElementsAre("C:\\a.txt", "C:\\dir", "C:\\b.txt"));
  EXPECT_EQ(adding.InitialFolder(), std::string(150, '\0'));  // a drop remembers no folder
  ExpectClosed();
}

TEST_F(AddFilesTest, ADroppedFolderThatIsListedOpensNoDialog) {
  files.AddFolder("C:\\dir");
  jobList.Add(FolderRow("C:\\DIR"));
  adding.AddDropped({"C:\\dir"});
  EXPECT_THAT(dialog.shown, IsEmpty());
  ExpectClosed();
}

TEST_F(AddFilesTest, AFileInsideAListedFolderIsAdded) {
  files.AddFile("C:\\dir\\a.txt");
  jobList.Add(FolderRow("C:\\dir"));
  adding.AddDropped({"C:\\dir\\a.txt", "c:\\DIR\\A.TXT"});
  EXPECT_THAT(Paths(), ElementsAre("C:\\dir", "C:\\dir\\a.txt"));
}

TEST_F(AddFilesTest, WithoutAFolderDialogFoldersArePassedOver) {
  files.AddFolder("C:\\dir");
  AddFiles withoutDialog(state, jobList, files, icons, regional, nullptr);
  withoutDialog.AddDropped({"C:\\dir"});
  EXPECT_EQ(jobList.Count(), 0U);
  ExpectUntouched();
}

TEST_F(AddFilesTest, AnEmptyDropLeavesAnEmptyListAlone) {
  adding.AddDropped({});
  ExpectUntouched();
}

TEST_F(AddFilesTest, CommandLineWordsAreAddedWithoutALookWhetherTheyExist) {
  files.AddFileOfLength("C:\\a b.txt", 5);
  files.AddFolder("C:\\dir");
  adding.AddCommandLineItems("\"C:\\a b.txt\" word C:\\dir");
  ASSERT_EQ(jobList.Count(), 3U);
  EXPECT_EQ(jobList.Row(1), FileRow("C:\\a b.txt", "5 Bytes", 3));
  EXPECT_EQ(jobList.Row(2), FileRow("word", "0 Bytes"));
  EXPECT_THAT(dialog.shown, ElementsAre("C:\\dir after 2"));
  ExpectClosed();
}

TEST_F(AddFilesTest, AWordOfThreeCharactersGetsItsRowAndThenFails) {
  for (const char* word : {"abc", "\u00e9\u00e9\u00e9"}) {
    jobList.Clear();
    ExpectRaises(ErrorNumber::InvalidProcedureCall,
                 [&] { adding.AddCommandLineItems("C:\\a.txt "s + word + " C:\\b.txt"); });
    EXPECT_THAT(Paths(), ElementsAre("C:\\a.txt", word));
    ExpectUntouched();
  }
}

TEST_F(AddFilesTest, TwoBlanksOnTheCommandLineGiveAnEmptyWordWhichFails) {
  ExpectRaises(ErrorNumber::InvalidProcedureCall,
               [&] { adding.AddCommandLineItems("C:\\a.txt  C:\\b.txt"); });
  EXPECT_THAT(Paths(), ElementsAre("C:\\a.txt", ""));
}

TEST_F(AddFilesTest, AnOpenQuoteFailsBeforeAnythingIsAdded) {
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { adding.AddCommandLineItems("C:\\a.txt \"C:\\b"); });
  EXPECT_EQ(jobList.Count(), 0U);
}

TEST_F(AddFilesTest, TheListTakesOneRowBeyondItsCounterAndThenRefusesToLook) {
  std::vector<std::string> paths;
  for (int i = 1; i <= 32768; ++i) paths.push_back("C:\\dir\\" + std::to_string(i));
  files.failEverything = true;  // their sizes don't matter
  adding.AddDropped(paths);
  EXPECT_EQ(jobList.Count(), 32768U);
  ExpectRaises(ErrorNumber::Overflow, [&] { adding.AddDropped({"C:\\dir\\more"}); });
  EXPECT_EQ(jobList.Count(), 32768U);
}

struct Split {
  std::string path, name, folder;
};

TEST(SplitFileName, CutsAtTheLastBackslash) {
  const Split kCases[] = {
      {"C:\\dir\\a.txt", "a.txt", "C:\\dir\\"},
      {"C:\\a.txt", "a.txt", "C:\\"},
      {"\\a", "a", "\\"},
      {"C:\\dir\\", "", "C:\\dir\\"},
      {"\\", "", "\\"},
      {"C:\\\u00e9t\u00e9\\\u20ac.txt", "\u20ac.txt", "C:\\\u00e9t\u00e9\\"},
      {"a.txt", "", "before"},
      {"", "", "before"},
  };
  for (const Split& c : kCases) {
    std::string folder = "before";
    EXPECT_EQ(SplitFileName(c.path, folder), c.name) << c.path;
    EXPECT_EQ(folder, c.folder) << c.path;
  }
}

TEST(SplitFileName, BlanksAroundThePathShortenTheFolderByWholeCharacters) {
  const Split kCases[] = {
      {"C:\\dir\\a.txt ", "a.txt ", "C:\\dir"},
      {" C:\\dir\\a.txt", "a.txt", " C:\\dir"},
      {"C:\\\u00e9\\a  ", "a  ", "C:\\"},
      {"\\ ", " ", ""},
  };
  for (const Split& c : kCases) {
    std::string folder;
    EXPECT_EQ(SplitFileName(c.path, folder), c.name) << c.path;
    EXPECT_EQ(folder, c.folder) << c.path;
  }
  std::string folder = "before";
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { SplitFileName("\\  ", folder); });
  EXPECT_EQ(folder, "before");
}

TEST(SplitCommandLine, TakesQuotedWordsAndWordsBetweenBlanks) {
  EXPECT_THAT(SplitCommandLine("\"C:\\a b.txt\" C:\\c.txt"), ElementsAre("C:\\a b.txt", "C:\\c.txt"));
  EXPECT_THAT(SplitCommandLine("C:\\c.txt \"C:\\a b.txt\""), ElementsAre("C:\\c.txt", "C:\\a b.txt"));
  EXPECT_THAT(SplitCommandLine("a  b"), ElementsAre("a", "", "b"));
  EXPECT_THAT(SplitCommandLine(" a"), ElementsAre("", "a"));
  EXPECT_THAT(SplitCommandLine("a "), ElementsAre("a", ""));
  EXPECT_THAT(SplitCommandLine(""), ElementsAre(""));
  EXPECT_THAT(SplitCommandLine("\"\""), ElementsAre(""));
  EXPECT_THAT(SplitCommandLine("a\"b c\""), ElementsAre("a\"b", "c\""));  // a quote counts at a word's start
}

TEST(SplitCommandLine, SkipsTheCharacterBehindAClosingQuoteUnseen) {
  EXPECT_THAT(SplitCommandLine("\"a\"bc"), ElementsAre("a", "c"));
  EXPECT_THAT(SplitCommandLine("\"a\"\"b\""), ElementsAre("a", "b\""));
  EXPECT_THAT(SplitCommandLine("\"a\"x"), ElementsAre("a", ""));
}

TEST(SplitCommandLine, AQuoteThatIsNotClosedFails) {
  for (const char* line : {"\"", "\"a", "a \"b c", "\"a\" \"b"}) {
    ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { SplitCommandLine(line); });
  }
}

// The rows that a view was asked to show.
class RevealedRows final : public JobListView {
 public:
  std::vector<int> first;
  void RowsChanged() override {}
  void RowChanged(int) override {}
  void SelectionChanged(int) override { first.clear(); }  // which may scroll to the row that is selected
  void RevealRows(int row) override { first.push_back(row); }
  void ShowPendingRows() override {}
};

TEST_F(AddFilesTest, EachDoorHasTheNewRowsShownThoughTheFirstIsSelected) {
  RevealedRows revealed;
  jobList.SetView(&revealed);
  adding.AddDropped({"C:\\1.txt", "C:\\2.txt"});
  EXPECT_THAT(revealed.first, ElementsAre(1));
  adding.AddDropped({"C:\\2.txt", "C:\\3.txt", "C:\\4.txt"});
  EXPECT_THAT(revealed.first, ElementsAre(3));
  adding.AddDialogResult("C:\\5.txt");
  EXPECT_THAT(revealed.first, ElementsAre(5));
  adding.AddCommandLineItems("C:\\6.txt");
  EXPECT_THAT(revealed.first, ElementsAre(6));
  adding.AddDropped({"C:\\2.txt"});
  EXPECT_THAT(revealed.first, IsEmpty()) << "nothing is new";
  ExpectClosed();
}

}  // namespace
}  // namespace zq
