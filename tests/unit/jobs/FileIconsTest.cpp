#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "jobs/FileIcons.h"
#include "jobs/JobRow.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

using test::ExpectRaises;
using testing::ElementsAre;
using testing::IsEmpty;

class FileIconsTest : public testing::Test {
 protected:
  int Icon(std::string key, const std::string& path) { return icons.IconForExtension(key, path); }
  test::FakeRegional regional;
  test::FakeIconPainter painter;
  FileIcons icons{painter, regional};
};

TEST_F(FileIconsTest, ATypeMetFirstIsMeasuredDrawnByNameAndAdded) {
  EXPECT_EQ(Icon(".DOC", "C:\\a.doc"), 3);
  EXPECT_THAT(painter.log, ElementsAre("measure .DOC 1", "draw .DOC 17", "add"));
}

TEST_F(FileIconsTest, TheShellIsAskedOnceForEachType) {
  EXPECT_EQ(icons.Count(), 2);
  EXPECT_EQ(Icon(".DOC", "C:\\a.doc"), 3);
  EXPECT_EQ(Icon(".TXT", "C:\\a.txt"), 4);
  painter.log.clear();
  EXPECT_EQ(Icon(".DOC", "D:\\b.DOC"), 3);
  EXPECT_EQ(Icon(".TXT", "D:\\b.Txt"), 4);
  EXPECT_EQ(icons.Count(), 4);
  EXPECT_THAT(painter.log, IsEmpty());
}

TEST_F(FileIconsTest, TheTypeComesFromTheEndOfThePathUpperCased) {
  EXPECT_EQ(Icon(".\u00c9T\u00c9", "C:\\a.\u00e9t\u00e9"), 3);
  EXPECT_EQ(Icon(".\u00c9T\u00c9", "C:\\b.\u00c9t\u00e9"), 3);
  // A key that isn't the end of its path is never met again, and each time a new picture.
  EXPECT_EQ(Icon(".XYZ", "C:\\a.abc"), 4);
  EXPECT_EQ(Icon(".XYZ", "C:\\b.abc"), 5);
  EXPECT_EQ(Icon(".ABC", "C:\\c.abc"), 4);
  EXPECT_EQ(Icon(".doc", "C:\\a.doc"), 6);  // keys are compared with case respected
  EXPECT_EQ(Icon(".doc", "C:\\a.doc"), 7);
}

TEST_F(FileIconsTest, TheBuiltInPicturesMatchNoKey) {
  EXPECT_EQ(Icon("", "C:\\a"), 3);
}

TEST_F(FileIconsTest, AKeyThatEndsInABackslashBecomesTheWindowsFolder) {
  for (const char* folder : {"C:\\WINDOWS", "C:\\WINDOWS\\"}) {
    painter.windowsFolder = folder;
    painter.log.clear();
    std::string key = ".BC\\";
    icons.IconForExtension(key, "C:\\a.bc\\");
    EXPECT_EQ(key, "C:\\WINDOWS\\");
    EXPECT_THAT(painter.log, ElementsAre("measure C:\\WINDOWS\\ 1", "draw C:\\WINDOWS\\ 1", "add"));
  }
}

TEST_F(FileIconsTest, AnUnknownWindowsFolderLeavesABackslash) {
  painter.windowsFolder = "";
  std::string key = "\\";
  icons.IconForExtension(key, "C:\\");
  EXPECT_EQ(key, "\\");
  EXPECT_THAT(painter.log, ElementsAre("measure \\ 1", "draw \\ 1", "add"));
}

TEST_F(FileIconsTest, OnlyAnExtensionOfThreeCharactersGetsATypePicture) {
  for (const char* path :
       {"C:\\report.html", "C:\\a.c", "C:\\a.jpeg", "C:\\README", "C:\\a.do\u00e9x", "C:\\a"}) {
    EXPECT_EQ(icons.IconForFileRow(path, path), kPlainFilePicture) << path;
  }
  EXPECT_THAT(painter.log, IsEmpty());
  EXPECT_EQ(icons.IconForFileRow("C:\\report.doc", "report.doc"), 3);
  EXPECT_THAT(painter.log, ElementsAre("measure .DOC 1", "draw .DOC 17", "add"));
}

TEST_F(FileIconsTest, NameAndWholePathGiveTheSameKey) {
  EXPECT_EQ(icons.IconForFileRow("C:\\a b.doc", "a b.doc"), 3);
  EXPECT_EQ(icons.IconForFileRow("D:\\x\\c.Doc", "D:\\x\\c.Doc"), 3);
}

TEST_F(FileIconsTest, AnExtensionIsCountedInCharactersNotInBytes) {
  // Three characters of two, three and four bytes: by bytes the dot would be missed, or a character cut.
  EXPECT_EQ(icons.IconForFileRow("C:\\a.\u00e9\u20ac\U0001F600", "a.\u00e9\u20ac\U0001F600"), 3);
  EXPECT_THAT(painter.log,
              ElementsAre("measure .\u00c9\u20ac\U0001F600 1", "draw .\u00c9\u20ac\U0001F600 17", "add"));
  // The fourth byte from the end is a dot, the fourth character isn't.
  EXPECT_EQ(icons.IconForFileRow("C:\\abc.\u20ac", "abc.\u20ac"), kPlainFilePicture);
}

TEST_F(FileIconsTest, BytesThatAreNotUtf8AreTakenWithoutHarm) {
  EXPECT_EQ(icons.IconForFileRow("C:\\a.\x80\x80\x80\x80\x80\x80", ""), kPlainFilePicture);
  EXPECT_EQ(icons.IconForFileRow(std::string("\x80\x80\x80\x80") + ".doc", "a.doc"), 3);
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { icons.IconForFileRow("\x80\x80\x80", ""); });
}

TEST_F(FileIconsTest, BlanksAroundTheNameAreTrimmedOnlyForTheKey) {
  // The dot is looked for in the path as it stands, the key is taken from the trimmed name.
  EXPECT_EQ(icons.IconForFileRow("C:\\a.b  ", "C:\\a.b  "), 3);
  EXPECT_THAT(painter.log, ElementsAre("measure \\A.B 1", "draw \\A.B 17", "add"));
  EXPECT_EQ(icons.IconForFileRow("C:\\a.doc ", "C:\\a.doc "), kPlainFilePicture);
}

TEST_F(FileIconsTest, APathOfThreeCharactersHasNoFourthFromItsEnd) {
  for (const char* path : {"", "a", "C:\\", "\u00e9\u00e9\u00e9"}) {
    ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { icons.IconForFileRow(path, path); });
  }
  EXPECT_EQ(icons.IconForFileRow("C:\\a", "a"), kPlainFilePicture);
  EXPECT_EQ(icons.IconForFileRow(".doc", ".doc"), 3);
}

}  // namespace
}  // namespace zq
