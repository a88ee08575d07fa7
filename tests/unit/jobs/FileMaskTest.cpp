#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "jobs/FileMask.h"
#include "jobs/JobList.h"
#include "support/ExpectRaises.h"
#include "support/Rows.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

using test::FileRow;
using test::FolderRow;

TEST(FileMask, IsProperWithThreeToFiveCharactersADotAndAStar) {
  for (const char* mask : {"*.*", "*.doc", "a*.c", "..*", "*.??", "*.**", "**.", "*.c", ".*x",
                           "\u00e9*.\u00e9\u00e9", "\U0001F600*.\U0001F600", "  *.*  ", " *.doc"}) {
    EXPECT_FALSE(IsImproperMask(mask)) << mask;
  }
  for (const char* mask : {"", "   ", "*", ".", "*.", ".*", "*.html", "report*.doc", "*doc", "doc", "a.doc",
                           "*.docx", "*  .doc", "***", "...", " *. ", "\u00e9\u00e9*.\u00e9\u00e9"}) {
    EXPECT_TRUE(IsImproperMask(mask)) << mask;
  }
}

TEST(FileMask, EnablesOkForAnythingButBlanks) {
  for (const char* mask : {"", " ", "     "}) EXPECT_FALSE(HasMaskText(mask));
  for (const char* mask : {"*.*", "x", " x ", "\t"}) EXPECT_TRUE(HasMaskText(mask));
}

TEST(FileMask, TakesThreeCharactersForARootDriveWhateverTheySay) {
  for (const char* path : {"C:\\", "z:\\", "abc", "\\\\s", "   ", "\u00e9:\\", "\U0001F600:\\"}) {
    EXPECT_TRUE(IsRootDrive(path)) << path;
  }
  for (const char* path : {"", "C:", "C:\\a", "\\\\server\\share", "\u00e9\\", "\U0001F600"}) {
    EXPECT_FALSE(IsRootDrive(path)) << path;
  }
}

TEST(FileMask, KnowsANodeWithAPathByItsFirstTwoCharacters) {
  for (const char* text : {"C:\\Windows", "C:", "\\\\server", "\\\\", "::", "\u00e9:\\", "\U0001F600:"}) {
    EXPECT_TRUE(CarriesPath(text)) << text;
  }
  for (const char* text :
       {"", "C", ":", ": ", "\\", "\\a\\", "Desktop", "My Computer", "\u00e9", "ab:", "Local Disk (C:)"}) {
    EXPECT_FALSE(CarriesPath(text)) << text;
  }
}

struct Case {
  const char* path;
  const char* mask;
  FolderVerdict added;
  FolderVerdict edited;
};

TEST(FileMask, RefusesAWholeDriveAndWarnsOfARootWhenItIsAdded) {
  using enum FolderVerdict;
  const Case kCases[] = {
      {"C:\\Windows", "*.*", Accepted, Accepted},
      {"C:\\Windows", "*.doc", Accepted, Accepted},
      {"C:\\", "*.*", WholeDriveAdded, WholeDriveEdited},
      {"C:\\", "  *.* ", WholeDriveAdded, WholeDriveEdited},
      {"C:\\", "*.doc", RootDriveAdded, Accepted},
      {"C:\\", "*.??", RootDriveAdded, Accepted},
      {"C:\\", "*.**", RootDriveAdded, Accepted},
      {"C:\\", "**.*", RootDriveAdded, Accepted},
      {"C:\\", "*.html", ImproperMask, ImproperMask},
      {"C:\\", "doc", ImproperMask, ImproperMask},
      {"C:\\Windows", "", ImproperMask, ImproperMask},
      {"\\\\server\\share", "*.*", Accepted, Accepted},
      {"", "*.*", Accepted, Accepted},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(VerdictOnAddedFolder(c.path, c.mask), c.added) << c.path << " " << c.mask;
    EXPECT_EQ(VerdictOnEditedFolder(c.path, c.mask), c.edited) << c.path << " " << c.mask;
  }
}

TEST(FileMask, HasABoxForEachVerdictButTheGoodOne) {
  EXPECT_EQ(
      BoxOf(FolderVerdict::ImproperMask),
      (Message{"It does not appear that the formatting of your file mask is correct.  File masks need to be "
               "defined properly to ensure only the files you want wiped will indeed be wiped.\r\n\r\nAn "
               "example of a proper file mask would be *.doc (this would include all .doc files contained "
               "within the chosen folder).",
               "Improper Format", MessageIcon::Exclamation, MessageButtons::Ok}));
  EXPECT_EQ(
      BoxOf(FolderVerdict::WholeDriveAdded),
      (Message{"You have selected a main root drive and defined the file mask to include ALL files.  This "
               "action cannot be performed by Zeroquill.  The program cannot wipe an entire drives contents.",
               "Allowed Action", MessageIcon::Exclamation, MessageButtons::Ok}));
  EXPECT_EQ(
      BoxOf(FolderVerdict::WholeDriveEdited),
      (Message{"Your folder is a main root drive and you have defined the file mask to include ALL files.  "
               "This action cannot be performed by Zeroquill.  The program cannot wipe an entire drives "
               "contents.",
               "Allowed Action", MessageIcon::Exclamation, MessageButtons::Ok}));
  EXPECT_EQ(
      BoxOf(FolderVerdict::RootDriveAdded),
      (Message{
          "You have selected a main root drive.  It is highly suggested that you do not define a main "
          "root drive as a selected folder.\r\n\r\nWiping files over a main root drive is an action that "
          "can cause serious problems with your computer if you are not fully aware of the file types "
          "your are wiping.  Continue with this selection?",
          "Main Root Drive Selected", MessageIcon::Question, MessageButtons::OkCancel}));
  test::ExpectRaises(ErrorNumber::InvalidProcedureCall, [] { BoxOf(FolderVerdict::Accepted); });
}

class FolderItemTest : public testing::Test {
 protected:
  AppState state;
  test::FakeRegional regional;
  JobList jobList{regional};
};

TEST_F(FolderItemTest, ARowHoldsTheTrimmedMaskAndTheFlagAsAWord) {
  EXPECT_EQ(MakeFolderRow("C:\\Papers", " *.* ", true), FolderRow("C:\\Papers", "*.*", "Yes"));
  EXPECT_EQ(MakeFolderRow(" C:\\x ", "*.doc", false), FolderRow(" C:\\x ", "*.doc", "No"));
  EXPECT_TRUE(MakeFolderRow("", "*.*", false).IsFolderRow());
}

TEST_F(FolderItemTest, AnAddedFolderGoesToTheEndAndSelectsTheFirstRow) {
  jobList.Add(FileRow("C:\\a.txt"));
  AddFolderItem(state, jobList, "C:\\Papers", " *.doc", true);
  ASSERT_EQ(jobList.Count(), 2U);
  EXPECT_EQ(jobList.Row(2), FolderRow("C:\\Papers", "*.doc", "Yes"));
  EXPECT_EQ(jobList.SelectedRow(), 1);
  EXPECT_FALSE(state.JobSaved);
  EXPECT_EQ(state.Settings.LastFolder.Trimmed(), "C:\\Papers");
  EXPECT_EQ(state.Settings.IncludeSubFolders, 1);

  AddFolderItem(state, jobList, "D:\\", "*.doc", false);
  EXPECT_EQ(jobList.Row(3), FolderRow("D:\\", "*.doc", "No"));
  EXPECT_EQ(state.Settings.LastFolder.Trimmed(), "D:\\");
  EXPECT_EQ(state.Settings.IncludeSubFolders, 0);
}

TEST_F(FolderItemTest, TheSameFolderCanBeAddedTwice) {
  AddFolderItem(state, jobList, "C:\\Papers", "*.*", false);
  AddFolderItem(state, jobList, "C:\\Papers", "*.*", false);
  ASSERT_EQ(jobList.Count(), 2U);
  EXPECT_EQ(jobList.Row(1), jobList.Row(2));
}

TEST_F(FolderItemTest, WithoutASelectionInTheTreeARowWithAnEmptyPathIsAdded) {
  AddFolderItem(state, jobList, "", "*.*", false);
  EXPECT_EQ(jobList.Row(1), FolderRow("", "*.*", "No"));
  EXPECT_EQ(state.Settings.LastFolder.Trimmed(), "");
}

TEST_F(FolderItemTest, ALongFolderIsRememberedInPart) {
  const std::string path = "C:\\" + std::string(200, 'x');
  AddFolderItem(state, jobList, path, "*.*", false);
  EXPECT_EQ(jobList.Row(1).NameAndLocation, path);
  EXPECT_EQ(state.Settings.LastFolder.Trimmed(), path.substr(0, 150));
}

TEST_F(FolderItemTest, AnEditChangesMaskAndFlagOfTheSelectedRowAlone) {
  for (const char* path : {"C:\\1", "C:\\2", "C:\\3"}) jobList.Add(FolderRow(path));
  jobList.SetGhosted(2, true);
  jobList.UserSelected(2);
  const SettingsRecord before = state.Settings;
  ChangeFolderItem(state, jobList, " *.doc ", false);
  JobRow expected = FolderRow("C:\\2", "*.doc", "No");
  expected.Ghosted = true;
  EXPECT_EQ(jobList.Row(1), FolderRow("C:\\1"));
  EXPECT_EQ(jobList.Row(2), expected);
  EXPECT_EQ(jobList.Row(3), FolderRow("C:\\3"));
  EXPECT_EQ(jobList.SelectedRow(), 2);
  EXPECT_FALSE(state.JobSaved);
  EXPECT_EQ(state.Settings, before);

  ChangeFolderItem(state, jobList, "*.*", true);
  EXPECT_EQ(jobList.Row(2).SubFolders, "Yes");
}

TEST_F(FolderItemTest, AnEditWithoutASelectedRowFailsAndLeavesTheJobAsItIs) {
  jobList.Add(FolderRow("C:\\1"));
  test::ExpectRaises(ErrorNumber::SubscriptOutOfRange,
                     [this] { ChangeFolderItem(state, jobList, "*.doc", true); });
  EXPECT_EQ(jobList.Row(1), FolderRow("C:\\1"));
  EXPECT_TRUE(state.JobSaved);
}

}  // namespace
}  // namespace zq
