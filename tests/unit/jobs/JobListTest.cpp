#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "jobs/JobList.h"
#include "support/ExpectRaises.h"
#include "support/Rows.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FileRow;
using test::FolderRow;
using testing::ElementsAre;

class RecordingView final : public JobListView {
 public:
  std::vector<std::string> log;
  void RevealRows(int first) override { log.push_back("reveal " + std::to_string(first)); }
  void RowsChanged() override { log.push_back("rows"); }
  void RowChanged(int row) override { log.push_back("row " + std::to_string(row)); }
  void SelectionChanged(int row) override { log.push_back("selected " + std::to_string(row)); }
  void ShowPendingRows() override { log.push_back("shown"); }
};

class JobListTest : public testing::Test {
 protected:
  std::vector<std::string> Paths() const {
    std::vector<std::string> paths;
    for (int row = 1; row <= jobList.RowLoopEnd(); ++row) paths.push_back(jobList.Row(row).NameAndLocation);
    return paths;
  }
  test::FakeRegional regional;
  JobList jobList{regional};
};

TEST_F(JobListTest, RowsStandInTheOrderInWhichTheyWereAdded) {
  jobList.Add(FileRow("C:\\b.txt"));
  jobList.Add(FolderRow("C:\\z"));
  jobList.Add(FileRow("C:\\a.txt"));
  EXPECT_EQ(jobList.Count(), 3U);
  EXPECT_THAT(Paths(), ElementsAre("C:\\b.txt", "C:\\z", "C:\\a.txt"));
}

TEST_F(JobListTest, RowsOutsideTheListAreNotToBeHad) {
  jobList.Add(FileRow("C:\\a.txt"));
  for (const int row : {0, -1, 2}) {
    ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.Row(row); });
    ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.Remove(row); });
    ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.SetGhosted(row, true); });
    ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.SetSize(row, ""); });
    ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.SetSmallIcon(row, 3); });
    ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.SetMask(row, "*", "No"); });
  }
  ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.Select(2); });
  ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { jobList.Select(-1); });
  EXPECT_EQ(jobList.Row(1), FileRow("C:\\a.txt"));
  EXPECT_EQ(jobList.SelectedRow(), 0);
}

TEST_F(JobListTest, PathsAreComparedWithCaseIgnoredAndOnTheWhole) {
  jobList.Add(FileRow("C:\\Caf\u00e9\\a.txt"));
  jobList.Add(FolderRow("C:\\Papers"));
  EXPECT_TRUE(jobList.IsInJobList("c:\\CAF\u00c9\\A.TXT"));
  EXPECT_TRUE(jobList.IsInJobList("C:\\PAPERS"));
  EXPECT_FALSE(jobList.IsInJobList("C:\\Papers\\"));  // another spelling of the same folder
  EXPECT_FALSE(jobList.IsInJobList("C:\\Papers\\letter.doc"));
  EXPECT_FALSE(jobList.IsInJobList("C:\\Cafe\\a.txt"));
  EXPECT_FALSE(jobList.IsInJobList(""));
}

TEST_F(JobListTest, AFolderListedTwiceStaysListedUntilItsLastRowGoes) {
  jobList.Add(FolderRow("C:\\Papers"));
  jobList.Add(FileRow("C:\\a.txt"));
  jobList.Add(FolderRow("C:\\PAPERS"));
  jobList.Remove(1);
  EXPECT_TRUE(jobList.IsInJobList("C:\\Papers"));
  EXPECT_THAT(Paths(), ElementsAre("C:\\a.txt", "C:\\PAPERS"));
  jobList.Remove(2);
  EXPECT_FALSE(jobList.IsInJobList("C:\\Papers"));
  EXPECT_TRUE(jobList.IsInJobList("C:\\a.txt"));
}

TEST_F(JobListTest, AClearedListHasNoPathsAndNoSelection) {
  jobList.Add(FileRow("C:\\a.txt"));
  jobList.Select(1);
  jobList.Clear();
  EXPECT_EQ(jobList.Count(), 0U);
  EXPECT_EQ(jobList.SelectedRow(), 0);
  EXPECT_FALSE(jobList.IsInJobList("C:\\a.txt"));
}

TEST_F(JobListTest, ARemovalKeepsTheSelectionOnItsRowOrDropsIt) {
  for (const char* path : {"C:\\1", "C:\\2", "C:\\3", "C:\\4"}) jobList.Add(FileRow(path));
  jobList.UserSelected(3);
  jobList.Remove(4);
  EXPECT_EQ(jobList.SelectedRow(), 3);
  jobList.Remove(1);
  EXPECT_EQ(jobList.SelectedRow(), 2);
  EXPECT_EQ(jobList.Row(jobList.SelectedRow()).NameAndLocation, "C:\\3");
  jobList.Remove(2);
  EXPECT_EQ(jobList.SelectedRow(), 0);
}

TEST_F(JobListTest, OnlyTheExactTextOfColumnThreeMakesAFolderRow) {
  EXPECT_TRUE(FolderRow("C:\\Papers", "*.*", "Yes").IsFolderRow());
  EXPECT_TRUE(FolderRow("C:\\Papers", "*.*", "No").IsFolderRow());
  for (const char* text : {"", "yes", "NO", "Yes ", "Ja"}) {
    EXPECT_FALSE(FolderRow("C:\\Papers", "*.*", text).IsFolderRow()) << text;
  }
  EXPECT_FALSE(FolderRow("Yes", "No", "").IsFolderRow());
}

TEST_F(JobListTest, TypingFindsAPathByItsBeginningAndByItsName) {
  for (const char* path : {"C:\\data\\cat.txt", "C:\\data\\README", "D:\\Readings", "readme.txt"})
    jobList.Add(FileRow(path));
  EXPECT_EQ(jobList.FindByPrefix("c:\\data\\r", 1), 2);
  EXPECT_EQ(jobList.FindByPrefix("read", 1), 2);
  EXPECT_EQ(jobList.FindByPrefix("READ", 3), 3);
  EXPECT_EQ(jobList.FindByPrefix("readm", 3), 4);
  EXPECT_EQ(jobList.FindByPrefix("ca", 2), 1) << "once round";
  EXPECT_EQ(jobList.FindByPrefix("data", 1), 0) << "a folder on the way is neither";
  EXPECT_EQ(jobList.FindByPrefix("readme.txt and more", 1), 0);
}

TEST_F(JobListTest, TheViewHearsOfEachChange) {
  RecordingView view;
  jobList.SetView(&view);
  jobList.Add(FolderRow("C:\\Papers"));
  jobList.Add(FileRow("C:\\a.txt"));
  jobList.SetMask(1, "*.doc", "No");
  jobList.SetSize(2, "0 Bytes");
  jobList.SetSmallIcon(2, 3);
  jobList.SetGhosted(2, true);
  jobList.SetGhosted(2, true);  // no change, and nothing to paint
  jobList.SetGhosted(2, false);
  jobList.Select(2);
  jobList.Select(0);
  jobList.UserSelected(1);  // told by the view itself
  jobList.Reveal(2);
  jobList.Remove(2);
  jobList.Clear();
  EXPECT_THAT(view.log, ElementsAre("rows", "rows", "row 1", "row 2", "row 2", "row 2", "row 2", "selected 2",
                                    "selected 0", "reveal 2", "rows", "rows"));
}

TEST_F(JobListTest, SettersChangeTheirCellsAndNoOthers) {
  jobList.Add(FolderRow("C:\\Papers"));
  jobList.SetMask(1, "*.doc", "No");
  JobRow expected = FolderRow("C:\\Papers");
  expected.FolderMask = "*.doc";
  expected.SubFolders = "No";
  EXPECT_EQ(jobList.Row(1), expected);
  jobList.SetGhosted(1, true);
  jobList.SetSize(1, "0 Bytes");
  jobList.SetSmallIcon(1, 7);
  expected.Ghosted = true;
  expected.Size = "0 Bytes";
  expected.SmallIcon = 7;
  EXPECT_EQ(jobList.Row(1), expected);
}

TEST_F(JobListTest, TheRowLoopAndTheLookUpEndAt32767Rows) {
  for (int i = 1; i <= 32767; ++i) jobList.Add(FileRow("C:\\" + std::to_string(i)));
  EXPECT_EQ(jobList.RowLoopEnd(), 32767);
  EXPECT_TRUE(jobList.IsInJobList("C:\\32767"));
  jobList.Add(FileRow("C:\\32768"));
  ExpectRaises(ErrorNumber::Overflow, [&] { jobList.RowLoopEnd(); });
  ExpectRaises(ErrorNumber::Overflow, [&] { jobList.IsInJobList("C:\\1"); });
  jobList.Remove(32768);
  EXPECT_EQ(jobList.RowLoopEnd(), 32767);
}

}  // namespace
}  // namespace zq
