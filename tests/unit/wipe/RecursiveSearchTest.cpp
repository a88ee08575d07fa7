#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeProcess.h"
#include "wipe/RecursiveSearch.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kLocked = kAttributeReadOnly | kAttributeHidden | kAttributeSystem;

class RecursiveSearchTest : public testing::Test {
 protected:
  // The number of files counted below `path`.
  std::int64_t Search(std::string path, const std::string& mask, bool includeSubFolders,
                      const std::string& pathPattern = "*") {
    FixedPoint total;
    SearchFolder(files, process, path, pathPattern, mask, includeSubFolders, total);
    return total.Whole();
  }
  test::FakeFiles files;
  test::EventLog events;
  test::FakeProcess process{events};
};

TEST_F(RecursiveSearchTest, TheWalkIsDepthFirstInTheFileSystemsOrder) {
  files.AddFile("C:\\r\\b.txt");
  files.AddFolder("C:\\r\\sub");
  files.AddFile("C:\\r\\a.txt");
  files.AddFolder("C:\\r\\sub\\deep");
  files.AddFile("C:\\r\\sub\\deep\\d.txt");
  files.AddFile("C:\\r\\sub\\c.txt");
  EXPECT_EQ(Search("C:\\r", "*.txt", true), 4);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\b.txt 128", "attributes C:\\r\\sub\\deep\\d.txt 128",
                                     "attributes C:\\r\\sub\\c.txt 128", "attributes C:\\r\\a.txt 128"));
}

TEST_F(RecursiveSearchTest, UnderTheFullMaskFoldersAreClearedByTheirParentsPass) {
  files.AddFolder("C:\\r", kAttributeDirectory | kLocked);
  files.AddFile("C:\\r\\a.txt", "", kLocked);
  files.AddFolder("C:\\r\\one", kAttributeDirectory | kLocked);
  files.AddFile("C:\\r\\one\\b.txt", "", kLocked);
  files.AddFolder("C:\\r\\two", kAttributeDirectory | kLocked);
  EXPECT_EQ(Search("C:\\r", "*.*", true), 2);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\a.txt 128", "attributes C:\\r\\ 128",
                                     "attributes C:\\r\\one 128", "attributes C:\\r\\one\\b.txt 128",
                                     "attributes C:\\r\\ 128", "attributes C:\\r\\two 128"));
  for (const char* path : {"C:\\r", "C:\\r\\a.txt", "C:\\r\\one", "C:\\r\\one\\b.txt", "C:\\r\\two"}) {
    EXPECT_EQ(files.Find(path)->attributes & kLocked, 0U) << path;
  }
}

TEST_F(RecursiveSearchTest, AFolderWithoutSubFoldersKeepsItsOwnAttributes) {
  files.AddFolder("C:\\r", kAttributeDirectory | kAttributeReadOnly);
  files.AddFile("C:\\r\\a.txt", "", kLocked);
  EXPECT_EQ(Search("C:\\r", "*.*", true), 1);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\a.txt 128"));
  EXPECT_EQ(files.Find("C:\\r")->attributes, kAttributeDirectory | kAttributeReadOnly);
}

TEST_F(RecursiveSearchTest, UnderAnyOtherMaskFoldersKeepTheirAttributes) {
  files.AddFolder("C:\\r\\sub", kAttributeDirectory | kLocked);
  files.AddFile("C:\\r\\sub\\a.txt", "", kLocked);
  for (const char* mask : {"*", "*.txt", "*.*x*"}) {
    files.log.clear();
    Search("C:\\r", mask, true);
    EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\sub\\a.txt 128")) << mask;
  }
}

TEST_F(RecursiveSearchTest, WithoutSubFoldersTheyAreNeitherEnteredNorChanged) {
  files.AddFile("C:\\r\\a.txt");
  files.AddFolder("C:\\r\\sub", kAttributeDirectory | kLocked);
  files.AddFile("C:\\r\\sub\\b.txt", "", kLocked);
  EXPECT_EQ(Search("C:\\r", "*.*", false), 1);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\a.txt 128"));
}

TEST_F(RecursiveSearchTest, TheFullMaskNeedsADot) {
  files.AddFile("C:\\r\\README", "", kAttributeReadOnly);
  files.AddFile("C:\\r\\a.txt");
  files.AddFile("C:\\r\\.profile");
  EXPECT_EQ(Search("C:\\r", "*.*", true), 2);
  EXPECT_EQ(files.Find("C:\\r\\README")->attributes, kAttributeReadOnly);
  EXPECT_EQ(Search("C:\\r", "*", true), 3);
}

TEST_F(RecursiveSearchTest, TheMaskRespectsCase) {
  files.AddFile("C:\\r\\report.doc", "", kAttributeReadOnly);
  files.AddFile("C:\\r\\LETTER.DOC", "", kAttributeReadOnly);
  EXPECT_EQ(Search("C:\\r", "*.DOC", false), 1);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\LETTER.DOC 128"));
  EXPECT_EQ(files.Find("C:\\r\\report.doc")->attributes, kAttributeReadOnly);
}

TEST_F(RecursiveSearchTest, ThePathHasToMatchItsPatternToo) {
  files.AddFile("C:\\r\\a.txt");
  files.AddFile("C:\\r\\sub\\b.txt");
  EXPECT_EQ(Search("C:\\r", "*", true, "*\\sub\\"), 1);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\r\\sub\\b.txt 128"));
}

// A large folder takes longer than the system waits for a program; but a click that waits must not be taken.
TEST_F(RecursiveSearchTest, MessagesAreLookedAtWithEachEntryAndNoneIsTaken) {
  files.AddFile("C:\\r\\a.txt");
  files.AddFile("C:\\r\\b.doc");
  files.AddFile("C:\\r\\sub\\c.txt");
  EXPECT_EQ(Search("C:\\r", "*.txt", true), 2);
  EXPECT_GE(process.looks, 4) << "three files and a folder";
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(RecursiveSearchTest, TheCallersPathGetsItsBackslash) {
  files.AddFile("C:\\a.txt");
  FixedPoint total;
  std::string path = "C:";
  SearchFolder(files, process, path, "*", "*", false, total);
  EXPECT_EQ(path, "C:\\");
  SearchFolder(files, process, path, "*", "*", false, total);
  EXPECT_EQ(path, "C:\\");
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\a.txt 128", "attributes C:\\a.txt 128"));
  EXPECT_EQ(total, FixedPoint(2));  // the sum runs on
}

TEST_F(RecursiveSearchTest, WhatCannotBeOpenedAddsNothing) {
  files.AddFolder("C:\\empty");
  EXPECT_EQ(Search("C:\\empty", "*.*", true), 0);
  EXPECT_EQ(Search("C:\\none", "*.*", true), 0);
  files.AddFile("C:\\r\\a.txt");
  files.failEverything = true;
  EXPECT_EQ(Search("C:\\r", "*.*", true), 0);
  EXPECT_THAT(files.log, IsEmpty());
}

TEST_F(RecursiveSearchTest, AFileWhoseAttributesStayIsCountedAllTheSame) {
  files.AddFile("C:\\r\\a.txt", "", kAttributeReadOnly);
  files.keepAttributes.insert("C:\\r\\a.txt");
  EXPECT_EQ(Search("C:\\r", "*.*", true), 1);
  EXPECT_EQ(files.Find("C:\\r\\a.txt")->attributes, kAttributeReadOnly);
}

TEST_F(RecursiveSearchTest, APathThatTheNarrowCallsDontFindIsPassedOver) {
  // Counted as the system counts: in UTF-16, the "*" of the listing included.
  const std::string deepest = "C:\\" + std::string(254, 'a');
  files.AddFile(deepest + "\\in.txt");
  EXPECT_EQ(Search(deepest, "*.*", true), 1);
  files.AddFile(deepest + "\\b\\out.txt");
  EXPECT_EQ(Search(deepest, "*.*", true), 1);
  EXPECT_EQ(Search(deepest + "\\b", "*.*", true), 0);
  files.AddFile("C:\\" + std::string(255, 'a') + "\\out.txt");
  EXPECT_EQ(Search("C:\\" + std::string(255, 'a'), "*.*", true), 0);
  std::string cjk = "C:\\";
  for (int i = 0; i < 254; ++i) cjk += "\u4e2d";
  files.AddFile(cjk + "\\in.txt");
  EXPECT_EQ(Search(cjk, "*.*", true), 1);
  std::string faces = "C:\\";
  for (int i = 0; i < 128; ++i) faces += "\U0001F600";
  files.AddFile(faces + "\\out.txt");
  EXPECT_EQ(Search(faces, "*.*", true), 0);
}

TEST_F(RecursiveSearchTest, AListingThatBreaksOffEndsThatFolderAlone) {
  files.AddFolder("C:\\r\\sub");
  files.AddFile("C:\\r\\sub\\a.txt");
  files.AddFile("C:\\r\\b.txt");
  files.AddFile("C:\\r\\c.txt");
  files.listingBreaksAfter = 4;  // "." and ".." among them
  EXPECT_EQ(Search("C:\\r", "*", true), 2);
}

TEST_F(RecursiveSearchTest, NamesBeyondAsciiAreWalkedWhole) {
  files.AddFile("C:\\\u0416\\\u4e2d\\\U0001F600.txt");
  EXPECT_EQ(Search("C:\\\u0416", "?.txt", true), 1);
  EXPECT_THAT(files.log, ElementsAre("attributes C:\\\u0416\\\u4e2d\\\U0001F600.txt 128"));
}

// A file system whose names come as whole fields, padded behind a null.
class PaddingFiles final : public Files {
 public:
  std::vector<std::string> log;

  ListEnd List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) override {
    log.push_back("list " + pattern);
    if (pattern != "C:\\r\\*") return ListEnd::NothingFound;
    using namespace std::string_literals;
    visit({".\0junk"s, kAttributeDirectory, 0, 0});
    visit({"..\0.txt"s, kAttributeDirectory, 0, 0});
    visit({"a.txt\0.doc"s, kAttributeArchive, 0, 0});
    visit({"sub\0x"s, kAttributeDirectory, 0, 0});
    return ListEnd::Complete;
  }
  bool SetAttributes(const std::string& path, std::uint32_t) override {
    log.push_back("attributes " + path);
    return true;
  }

  std::optional<FileEntry> FindEntry(const std::string&) override { return std::nullopt; }
  std::optional<std::uint32_t> Attributes(const std::string&) override { return std::nullopt; }
  bool MakeFolder(const std::string&) override { return false; }
  bool Remove(const std::string&) override { return false; }
  std::string Read(const std::string&) override { return {}; }
  void Write(const std::string&, const std::string&) override {}
  void WriteRecord(const std::string&, const std::string&) override {}
  std::string CurrentFolder() override { return {}; }
};

TEST(RecursiveSearch, ANameEndsAtItsFirstNull) {
  PaddingFiles files;
  test::EventLog events;
  test::FakeProcess process{events};
  FixedPoint total;
  std::string path = "C:\\r";
  SearchFolder(files, process, path, "*", "*.txt", true, total);
  EXPECT_EQ(total, FixedPoint(1));
  EXPECT_THAT(files.log, ElementsAre("list C:\\r\\*", "attributes C:\\r\\a.txt", "list C:\\r\\sub\\*"));
}

}  // namespace
}  // namespace zq
