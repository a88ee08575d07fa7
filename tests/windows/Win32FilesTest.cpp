// The file system as the program asks for it: names and paths of any length, and failures that are none of
// an end.
#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "core/state/ItemExists.h"
#include "jobs/AddFiles.h"
#include "jobs/mdlSize.h"
#include "platform/RunTimeError.h"
#include "platform/win32/LongPath.h"
#include "platform/win32/Wide.h"
#include "platform/win32/Win32Files.h"
#include "support/ExpectRaises.h"
#include "support/driver/Scratch.h"

namespace zq::test {
namespace {

// The calls that stand in for the system's have no place for a state of their own.
WIN32_FIND_DATAW found;
FINDEX_INFO_LEVELS askedLevel;
DWORD nextError;
int entriesLeft;

// A search that is real, so that its handle can be closed, with an entry of the test's.
HANDLE WINAPI FindTheTests(LPCWSTR, FINDEX_INFO_LEVELS level, LPVOID data, FINDEX_SEARCH_OPS, LPVOID, DWORD) {
  askedLevel = level;
  WIN32_FIND_DATAW ignored{};
  const HANDLE find = ::FindFirstFileW(L"C:\\*", &ignored);
  *static_cast<WIN32_FIND_DATAW*>(data) = found;
  return find;
}

BOOL WINAPI NextOfTheTests(HANDLE, WIN32_FIND_DATAW* data) {
  if (entriesLeft-- > 0) {
    *data = found;
    return TRUE;
  }
  ::SetLastError(nextError);
  return FALSE;
}

HANDLE WINAPI FindNothing(LPCWSTR, FINDEX_INFO_LEVELS, LPVOID, FINDEX_SEARCH_OPS, LPVOID, DWORD) {
  ::SetLastError(nextError);
  return INVALID_HANDLE_VALUE;
}

BOOL WINAPI WriteNothing(HANDLE, LPCVOID, DWORD, DWORD*, OVERLAPPED*) {
  ::SetLastError(ERROR_DISK_FULL);
  return FALSE;
}

class Win32FilesTest : public testing::Test {
 protected:
  void SetUp() override {
    found = {};
    found.dwFileAttributes = FILE_ATTRIBUTE_ARCHIVE;
    found.nFileSizeLow = 5;
    entriesLeft = 0;
    nextError = ERROR_NO_MORE_FILES;
  }

  static int CountIn(Files& files, const std::string& pattern, ListEnd end) {
    int count = 0;
    EXPECT_EQ(files.List(pattern, [&](const FileEntry&) { ++count; }), end) << pattern;
    return count;
  }

  // A folder in the scratch folder whose path is longer than any narrow call takes.
  std::string MakeLongFolder() const {
    std::string name = "papers";
    while (name.size() < 300) name += "\\" + std::string(40, 'p');
    scratch_.Make(name + "\\x", "x");
    return scratch_ / name;
  }

  const ScratchFolder scratch_;
  Win32Files files_;
};

TEST_F(Win32FilesTest, AnEntrysNameIsGivenWholeHoweverManyBytesItTakes) {
  std::fill_n(found.cFileName, 255, L'\u4e2d');
  Win32Files files({.findFirst = &FindTheTests, .findNext = &NextOfTheTests});
  const std::optional<FileEntry> entry = files.FindEntry("C:\\x");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name.size(), 3U * 255);
  EXPECT_EQ(entry->sizeLow, 5U);
  EXPECT_EQ(askedLevel, FindExInfoBasic) << "the 8.3 name, which may not fit, isn't asked for";
  EXPECT_EQ(GetFileSize64(files, "C:\\x").Whole(), 5);
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\x"));
  EXPECT_TRUE(ItemExists(files, kItemIsFolder, "C:\\x"));
}

TEST_F(Win32FilesTest, AListingIsCompleteOnlyIfTheSystemSaysSo) {
  Win32Files files({.findFirst = &FindTheTests, .findNext = &NextOfTheTests});
  entriesLeft = 2;
  EXPECT_EQ(CountIn(files, "C:\\*", ListEnd::Complete), 3);
  for (const DWORD error : {ERROR_MORE_DATA, ERROR_ACCESS_DENIED, ERROR_DEV_NOT_EXIST}) {
    entriesLeft = 2;
    nextError = error;
    EXPECT_EQ(CountIn(files, "C:\\*", ListEnd::BrokenOff), 3);
  }
}

TEST_F(Win32FilesTest, AListingThatFindsNothingIsToldFromOneThatIsRefused) {
  Win32Files files({.findFirst = &FindNothing});
  for (const DWORD error : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND}) {
    nextError = error;
    EXPECT_EQ(CountIn(files, "C:\\*", ListEnd::NothingFound), 0);
  }
  for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_NOT_READY, ERROR_MORE_DATA}) {
    nextError = error;
    EXPECT_EQ(CountIn(files, "C:\\*", ListEnd::BrokenOff), 0);
  }
  EXPECT_EQ(CountIn(files_, scratch_ / "*.none", ListEnd::NothingFound), 0);
  EXPECT_EQ(CountIn(files_, scratch_ / "none\\*", ListEnd::NothingFound), 0);
}

TEST_F(Win32FilesTest, ListsTheNamesOfAnyLanguageThatAFolderHas) {
  scratch_.Make("письмо 中文 😀.txt", "12345");
  std::vector<std::string> names;
  EXPECT_EQ(files_.List(scratch_ / "*", [&](const FileEntry& entry) { names.push_back(entry.name); }),
            ListEnd::Complete);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{".", "..", "письмо 中文 😀.txt"}));
}

TEST_F(Win32FilesTest, AFileOfALongPathExistsAndHasItsSize) {
  const std::string folder = MakeLongFolder();
  const std::string path = folder + "\\a letter.txt";
  ASSERT_GT(path.size(), 300U);
  files_.Write(path, "12345678");
  EXPECT_TRUE(ItemExists(files_, kItemIsFile, path));
  EXPECT_TRUE(ItemExists(files_, kItemIsFolder, folder));
  EXPECT_FALSE(ItemExists(files_, kItemIsFile, folder));
  EXPECT_FALSE(ItemExists(files_, kItemIsFile, folder + "\\none.txt"));
  EXPECT_EQ(PathKind(files_, path), kPathIsFile);
  EXPECT_EQ(PathKind(files_, folder), kPathIsFolder);
  EXPECT_EQ(GetFileSize64(files_, path).Whole(), 8);
  EXPECT_EQ(GetFileSize64(files_, folder + "\\a*.txt").Whole(), 8);
  EXPECT_EQ(files_.Read(path), "12345678");
  EXPECT_TRUE(files_.SetAttributes(path, kAttributeReadOnly));
  EXPECT_EQ(files_.Attributes(path).value_or(0) & kAttributeReadOnly, kAttributeReadOnly);
  EXPECT_TRUE(files_.SetAttributes(path, kAttributeNormal));
  EXPECT_EQ(CountIn(files_, folder + "\\*", ListEnd::Complete), 4) << "two files, and the folder's dots";
  EXPECT_TRUE(files_.Remove(path));
  EXPECT_TRUE(files_.MakeFolder(folder + "\\deeper"));
}

TEST_F(Win32FilesTest, OnlyALongPathGetsThePrefix) {
  const std::string name(260, 'n');
  EXPECT_EQ(SystemPath("C:\\a. "), L"C:\\a. ");
  EXPECT_EQ(SystemPath("a\\..\\b"), L"a\\..\\b");
  EXPECT_EQ(SystemPath("C:/x/../" + name), L"\\\\?\\C:\\" + zq::ToWide(name));
  EXPECT_EQ(SystemPath("\\\\server\\share\\" + name), L"\\\\?\\UNC\\server\\share\\" + zq::ToWide(name));
  EXPECT_EQ(SystemPath("\\\\?\\C:\\" + name), L"\\\\?\\C:\\" + zq::ToWide(name));
  EXPECT_EQ(SystemPath(""), L"");
  using namespace std::string_literals;
  EXPECT_EQ(SystemPath("C:\\a\0b"s), L"C:\\a");
}

TEST_F(Win32FilesTest, WritesHiddenAndSystemFilesAndLeavesThemSo) {
  for (const DWORD attribute : {FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM}) {
    const std::string path = scratch_.Make("hidden.dat", "a longer content than the new one", attribute);
    files_.Write(path, "new");
    EXPECT_EQ(files_.Read(path), "new");
    files_.WriteRecord(path, "record");
    EXPECT_EQ(files_.Read(path), "record");
    files_.WriteRecord(path, "cut");
    EXPECT_EQ(files_.Read(path), "cut");
    EXPECT_EQ(files_.Attributes(path).value_or(0) & attribute, attribute);
    EXPECT_TRUE(files_.SetAttributes(path, kAttributeNormal));
  }
}

TEST_F(Win32FilesTest, ARecordThatCantBeWrittenLeavesTheOldOne) {
  const std::string path = scratch_.Make("Settings.dat", std::string(322, '7'));
  Win32Files failing({.write = &WriteNothing});
  ExpectRaises(ErrorNumber::DiskFull, [&] { failing.WriteRecord(path, std::string(322, '3')); });
  EXPECT_EQ(ReadFileBytes(path), std::string(322, '7'));
  // What is opened for output is emptied at once.
  ExpectRaises(ErrorNumber::DiskFull, [&] { failing.Write(path, "x"); });
  EXPECT_EQ(ReadFileBytes(path), "");
}

TEST_F(Win32FilesTest, TheFullPathIsReckonedFromTheCurrentFolder) {
  EXPECT_EQ(FullPath("papers"), files_.CurrentFolder() + "\\papers");
  EXPECT_EQ(FullPath("C:\\a\\..\\b"), "C:\\b");
  EXPECT_EQ(FullPath(""), "");
}

}  // namespace
}  // namespace zq::test
