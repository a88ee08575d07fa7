// What only Windows has: sharing, attributes, colons and device names.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/engine/RealEngine.h"
#include "unit/engine/Scratch.h"

namespace zq::engine::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

TEST(WindowsDevice, FailsOnAFileThatAnotherProgramMayWriteTo) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(100));
  const HANDLE other =
      ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(other, INVALID_HANDLE_VALUE);
  EXPECT_FALSE(real.engine.WipeFile(Utf8(path), 3));
  EXPECT_EQ(real.engine.LastErrorText(), "Opening " + Utf8(path) + ": another program has it open (32)");
  ::CloseHandle(other);
  EXPECT_EQ(ReadBytes(path), Secret(100));
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
}

TEST(WindowsDevice, LetsNobodyWriteWhileItWipes) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(50'000));
  DWORD code = ERROR_SUCCESS;
  real.events.onEvent = [&](const Event&) {
    if (code != ERROR_SUCCESS) return;
    const HANDLE other =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, 0, nullptr);
    code = other == INVALID_HANDLE_VALUE ? ::GetLastError() : ERROR_INVALID_DATA;
    if (other != INVALID_HANDLE_VALUE) ::CloseHandle(other);
  };
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
  EXPECT_EQ(code, DWORD{ERROR_SHARING_VIOLATION});
}

// Each is opened for one alone, so the second name can't be before the first has gone.
TEST(WindowsDevice, RemovesAllNamesOfAFileThatLieInTheFolder) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/sub");
  WriteBytes(scratch / "top/one", Secret(50'000));
  WriteBytes(scratch / "top/other", Secret(500));
  for (const char* name : {"top/two", "top/sub/three"}) {
    if (::CreateHardLinkW((scratch / name).c_str(), (scratch / "top/one").c_str(), nullptr) == 0) {
      GTEST_SKIP() << "no hard links here: error " << ::GetLastError();
    }
  }
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
  EXPECT_EQ(real.engine.Note(), "");
}

TEST(WindowsDevice, DestroysTheContentUnderOtherNamesAndSaysSo) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "one", Secret(5'000));
  if (::CreateHardLinkW((scratch / "two").c_str(), (scratch / "one").c_str(), nullptr) == 0) {
    GTEST_SKIP() << "no hard links here: error " << ::GetLastError();
  }
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "one"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "one"));
  EXPECT_EQ(fs::file_size(scratch / "two"), 0u);
  EXPECT_EQ(real.engine.Note(), "1 file has other names, too. Under these it is now empty.");
}

TEST(WindowsDevice, RefusesAReadOnlyFileAndLeavesItAlone) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(100));
  ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_FALSE(real.engine.WipeFile(Utf8(path), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it is read-only"));
  EXPECT_EQ(ReadBytes(path), Secret(100));
  ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

TEST(WindowsDevice, WipesHiddenAndSystemFiles) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(100));
  ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), 0);
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

TEST(WindowsDevice, RefusesStreamsPatternsAndDevices) {
  RealEngine real;
  Scratch scratch;
  WriteBytes(scratch / "x", "keep");
  const std::string folder = Utf8(scratch.Path());
  for (const std::string& path :
       {folder + "\\x:stream", folder + "\\*", folder + "\\?", std::string("\\\\.\\C:"),
        std::string("\\\\.\\nul"), folder + "\\x::$DATA"}) {
    EXPECT_FALSE(real.engine.WipeFile(path, 3)) << path;
    EXPECT_THAT(real.engine.LastErrorText(), ::testing::StartsWith("Opening ")) << path;
  }
  EXPECT_EQ(ReadBytes(scratch / "x"), "keep");
}

TEST(WindowsDevice, KnowsTheRootsOfDrivesAndShares) {
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::string folder;
  std::string name;
  for (const std::string root : {"C:\\", "\\\\?\\C:\\", "\\\\server\\share", "\\\\server\\share\\"}) {
    ASSERT_TRUE(device->Split(root, folder, name).Ok()) << root;
    EXPECT_EQ(name, "") << root;
  }
  ASSERT_TRUE(device->Split("\\\\server\\share\\x", folder, name).Ok());
  EXPECT_EQ(name, "x");
  EXPECT_EQ(folder, "\\\\?\\UNC\\server\\share\\");
  ASSERT_TRUE(device->Split("C:\\folder\\", folder, name).Ok());
  EXPECT_EQ(name, "folder");
}

TEST(WindowsDevice, CountsNamesInTheUnitsOfTheFileSystem) {
  const std::unique_ptr<Device> device = MakeSystemDevice();
  EXPECT_EQ(device->NameLength("abc"), 3u);
  EXPECT_EQ(device->NameLength("日記"), 2u);
  EXPECT_EQ(device->NameLength("🙂"), 2u);
}

TEST(WindowsDevice, RemovesAFolderThatExplorerHasMarkedAsReadOnly) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/marked");
  ASSERT_NE(::SetFileAttributesW((scratch / "top/marked").c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

TEST(WindowsDevice, SetsOneMomentForAllDates) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  WriteBytes(scratch / "x", "x");
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Direct, file).Ok());
  ASSERT_TRUE(file->SetDates().Ok());
  file.reset();
  WIN32_FILE_ATTRIBUTE_DATA data{};
  ASSERT_NE(::GetFileAttributesExW((scratch / "x").c_str(), GetFileExInfoStandard, &data), 0);
  SYSTEMTIME time{};
  ASSERT_NE(::FileTimeToSystemTime(&data.ftLastWriteTime, &time), 0);
  EXPECT_EQ(time.wYear, 1980);
  EXPECT_EQ(time.wMonth, 1);
  EXPECT_EQ(time.wDay, 1);
  EXPECT_EQ(time.wHour, 12);
}

TEST(WindowsDevice, RenamesOverNothing) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  WriteBytes(scratch / "x", "x");
  WriteBytes(scratch / "taken", "keep");
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Direct, file).Ok());
  EXPECT_EQ(file->Rename("taken").trouble, Trouble::Exists);
  EXPECT_FALSE(file->Rename("..\\out").Ok());
  EXPECT_EQ(ReadBytes(scratch / "taken"), "keep");
  EXPECT_TRUE(file->Rename("free").Ok());
  EXPECT_TRUE(file->Remove().Ok());
  EXPECT_FALSE(fs::exists(scratch / "free"));
}

}  // namespace
}  // namespace zq::engine::test
