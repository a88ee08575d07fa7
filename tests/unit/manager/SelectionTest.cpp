#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "manager/Selection.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SelectionTest : public ::testing::Test, protected FakePlatform {
 protected:
  SelectionTest() {
    places.windows = "C:\\Windows";
    places.folders = {"C:\\Program Files", "C:\\Users", "C:\\Users\\anna"};
    places.program = "C:\\Tools\\Zeroquill\\";
    places.real = [this](const std::string& path) {
      const auto found = real.find(path);
      return found == real.end() ? path : found->second;
    };
    files.AddFolder("C:\\Windows\\System32");
    files.AddFolder("C:\\Program Files");
    files.AddFolder("C:\\Users\\anna");
    files.AddFolder("C:\\Tools\\Zeroquill\\Jobs");
    files.AddFile("C:\\Papers\\a.txt", "12345");
    files.AddFile("C:\\Papers\\deep\\b.txt", "678");
  }

  Selection Look(const std::vector<std::string>& paths) {
    return LookAtSelection(files, process, regional, places, paths);
  }
  void ExpectRefused(const std::string& path, const std::string& reason) {
    const Selection selection = Look({"C:\\Papers\\a.txt", path});
    EXPECT_THAT(selection.refusals, ElementsAre(path + " - " + reason));
    EXPECT_THAT(selection.items, IsEmpty()) << "the good ones neither";
  }

  SystemPlaces places;
  std::map<std::string, std::string> real;
};

TEST_F(SelectionTest, IsFilesAndFoldersWithTheirSizes) {
  files.AddFile("D:\\c.txt", "9");
  const Selection selection = Look({"C:\\Papers", "D:\\c.txt"});
  EXPECT_THAT(selection.items, ElementsAre(WipeItem{"C:\\Papers", true, "", "C:\\Papers"},
                                           WipeItem{"D:\\c.txt", false, "", "D:\\c.txt"}));
  EXPECT_EQ(selection.measured, (Measured{FixedPoint(3), FixedPoint(2), 9, true}));
  EXPECT_THAT(log, IsEmpty()) << "nothing is changed";
}

TEST_F(SelectionTest, TakesEachOnceAndNoneBelowAnother) {
  const Selection selection = Look({"C:\\Papers\\deep\\b.txt", "C:\\Papers\\deep", "c:\\papers\\DEEP\\",
                                    "C:\\Papers\\a.txt", "C:/Papers/a.txt"});
  EXPECT_THAT(selection.items, ElementsAre(WipeItem{"C:\\Papers\\deep", true, "", "C:\\Papers\\deep"},
                                           WipeItem{"C:\\Papers\\a.txt", false, "", "C:\\Papers\\a.txt"}));
  EXPECT_EQ(selection.measured, (Measured{FixedPoint(2), FixedPoint(1), 8, true}));
}

TEST_F(SelectionTest, OfAWholeDriveOrShareIsRefused) {
  for (const char* root : {"C:\\", "C:\\\\", "\\\\server\\share", "\\\\server\\share\\", "\\\\?\\C:\\",
                           "\\\\?\\UNC\\server\\share\\"})
    ExpectRefused(root, "It is a whole drive or share.");
}

TEST_F(SelectionTest, OfWhatTheSystemNeedsIsRefused) {
  files.AddFolder("\\\\?\\C:\\Windows");
  const std::string needed = "It is or holds a folder that Windows needs.";
  for (const char* path : {"C:\\Windows", "c:\\WINDOWS\\", "C:\\Program Files", "C:\\Users",
                           "C:\\Users\\anna", "\\\\?\\C:\\Windows"})
    ExpectRefused(path, needed);
  ExpectRefused("C:\\Windows\\System32", "It belongs to Windows.");
  files.AddFolder("C:\\System Volume Information");
  ExpectRefused("C:\\System Volume Information", "It belongs to Windows.");
  files.AddFile("C:\\Users\\anna\\mine.txt");
  files.AddFile("C:\\Windows.txt");
  EXPECT_THAT(Look({"C:\\Users\\anna\\mine.txt", "C:\\Windows.txt"}).refusals, IsEmpty());
}

TEST_F(SelectionTest, OfTheFolderThatItRunsFromIsRefused) {
  ExpectRefused("C:\\Tools\\Zeroquill", "It is or holds the folder that Zeroquill runs from.");
  ExpectRefused("C:\\Tools", "It is or holds the folder that Zeroquill runs from.");
  EXPECT_THAT(Look({"C:\\Tools\\Zeroquill\\Jobs"}).refusals, IsEmpty());
}

TEST_F(SelectionTest, OfARecycleBinIsRefused) {
  files.AddFile("C:\\$Recycle.Bin\\S-1-5-21-1-2-3-1002\\$R1", "theirs");
  const std::string reason = "It belongs to the Recycle Bin.  Use Wipe Recycle Bin instead.";
  ExpectRefused("C:\\$Recycle.Bin", reason);
  ExpectRefused("C:\\$RECYCLE.BIN\\S-1-5-21-1-2-3-1002\\$R1", reason);
}

TEST_F(SelectionTest, ByAnotherNameOfAPlaceIsRefusedAsThePlace) {
  files.AddFolder("C:\\WINDOW~1");
  real["C:\\WINDOW~1"] = "\\\\?\\C:\\Windows";
  ExpectRefused("C:\\WINDOW~1", "It is or holds a folder that Windows needs.");
  files.AddFile("S:\\in\\hosts");
  real["S:\\in"] = "\\\\?\\C:\\Windows\\System32";
  ExpectRefused("S:\\in\\hosts", "It belongs to Windows.");
  files.AddFolder("S:\\out");
  real["S:\\out"] = "\\\\?\\D:\\";
  ExpectRefused("S:\\out", "It is a whole drive or share.");
  files.AddFolder("S:\\unknown");
  real["S:\\unknown"] = "";
  ExpectRefused("S:\\unknown", "Where it leads to could not be found out.");
}

TEST_F(SelectionTest, OfALinkIsTheLinkAndNotWhatItLeadsTo) {
  files.AddFolder("C:\\Papers\\link", kAttributeDirectory | kAttributeReparsePoint);
  real["C:\\Papers\\link"] = "C:\\Papers\\deep";
  const Selection selection = Look({"C:\\Papers\\link", "C:\\Papers\\deep"});
  ASSERT_EQ(selection.items.size(), 2u);
  EXPECT_EQ(selection.items[0].path, "C:\\Papers\\link");
  EXPECT_EQ(selection.items[1].path, "C:\\Papers\\deep");
}

TEST_F(SelectionTest, OfWhatIsNoPlaceIsRefused) {
  const std::string reason = "It lies neither on a drive with a letter nor in a share of a server.";
  for (const char* path : {"", "a.txt", "C:a.txt", "\\a.txt", "\\\\.\\PhysicalDrive0", "\\\\?\\Volume{1}\\a",
                           "\\\\?\\unix\\etc\\passwd"})
    ExpectRefused(path, reason);
  ExpectRefused("C:\\Papers\\gone.txt", "It could not be found.");
  ExpectRefused("C:\\Papers\\*", "It could not be found.");
}

TEST_F(SelectionTest, TellsEachReason) {
  EXPECT_EQ(Look({"C:\\", "C:\\Windows", "x"}).refusals.size(), 3u);
}

}  // namespace
}  // namespace zq::test
