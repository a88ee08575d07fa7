#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Paths.h"

namespace zq::cli {
namespace {

using testing::ElementsAre;

constexpr PathStyle kPosix = PathStyle::Posix;
constexpr PathStyle kWindows = PathStyle::Windows;

struct NameCase {
  PathStyle style;
  const char* path;
  const char* name;
};

constexpr NameCase kNames[] = {
    {kPosix, "/a/b", "b"},
    {kPosix, "/a/b///", "b"},
    {kPosix, "b", "b"},
    {kPosix, "a/..", ".."},
    {kPosix, "a/./", "."},
    {kPosix, "/", ""},
    {kPosix, "///", ""},
    {kPosix, "a\\b", "a\\b"},
    {kWindows, "C:\\a\\b", "b"},
    {kWindows, "C:/a/b/", "b"},
    {kWindows, "C:a", "a"},
    {kWindows, "C:", ""},
    {kWindows, "C:\\", ""},
    {kWindows, "c:/", ""},
    {kWindows, "\\\\server\\share", ""},
    {kWindows, "\\\\server\\share\\", ""},
    {kWindows, "\\\\server", ""},
    {kWindows, "//server/share/a", "a"},
    {kWindows, "\\\\?\\C:\\", ""},
    {kWindows, "\\\\?\\C:\\a", "a"},
    {kWindows, "\\\\?\\Volume{1-2}\\", ""},
    {kWindows, "\\\\?\\Volume{1-2}\\a", "a"},
    {kWindows, "\\\\?\\UNC\\server\\share", ""},
    {kWindows, "\\\\?\\unc\\server\\share\\a", "a"},
    {kWindows, "\\\\.\\PhysicalDrive0", ""},
    {kWindows, "\\", ""},
};

TEST(Paths, EndInANameUnlessTheyAreARoot) {
  for (const NameCase& test : kNames) {
    EXPECT_EQ(LastName(test.path, test.style), test.name) << test.path;
    EXPECT_EQ(IsRoot(test.path, test.style), *test.name == '\0') << test.path;
  }
  EXPECT_FALSE(IsRoot("", kPosix));
  EXPECT_FALSE(IsRoot("", kWindows));
}

struct WithinCase {
  PathStyle style;
  const char* path;
  const char* folder;
  bool isWithin;
};

constexpr WithinCase kWithin[] = {
    {kPosix, "/a/b", "/a", true},
    {kPosix, "/a/b/", "/a//", true},
    {kPosix, "/a", "/a", true},
    {kPosix, "/a", "/", true},
    {kPosix, "/", "/", true},
    {kPosix, "/ab", "/a", false},
    {kPosix, "/a", "/a/b", false},
    {kPosix, "/A/b", "/a", false},
    {kPosix, "/a", "", false},
    {kPosix, "", "/", false},
    {kWindows, "C:\\A\\b", "c:\\a", true},
    {kWindows, "C:\\a", "C:\\", true},
    {kWindows, "C:/a/b", "C:\\a", true},
    {kWindows, "C:\\ab", "C:\\a", false},
    {kWindows, "D:\\a", "C:\\", false},
};

TEST(Paths, LieWithinAFolderAtWholeNamesOnly) {
  for (const WithinCase& test : kWithin) {
    EXPECT_EQ(IsWithin(test.path, test.folder, test.style), test.isWithin)
        << test.path << " in " << test.folder;
  }
}

TEST(Paths, AreListedWithAllFoldersAboveUpToTheRoot) {
  EXPECT_THAT(WithAllAbove("/a/bc/d", kPosix), ElementsAre("/a/bc/d", "/a/bc", "/a", "/"));
  EXPECT_THAT(WithAllAbove("/", kPosix), ElementsAre("/"));
  EXPECT_THAT(WithAllAbove("C:\\a\\b", kWindows), ElementsAre("C:\\a\\b", "C:\\a", "C:\\"));
  EXPECT_THAT(WithAllAbove("\\\\s\\h\\a", kWindows), ElementsAre("\\\\s\\h\\a", "\\\\s\\h\\"));
  EXPECT_THAT(WithAllAbove("", kPosix), ElementsAre());
}

}  // namespace
}  // namespace zq::cli
