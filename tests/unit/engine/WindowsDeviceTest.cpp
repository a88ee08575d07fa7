// What only Windows has: sharing, attributes, colons and device names.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "unit/engine/RealEngine.h"
#include "unit/engine/Scratch.h"

// The program's own pointers to these calls, by which all of it makes them.
extern "C" {
extern void* __imp_CreateFileW;
extern void* __imp_FlushFileBuffers;
extern void* __imp_ReadFile;
extern void* __imp_WriteFile;
}

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
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("(32)"));
  ::CloseHandle(other);
  EXPECT_EQ(ReadBytes(path), Secret(100));
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
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

// Stands in the way of a call of the system for as long as it lives.
class Intercept {
 public:
  Intercept(void*& pointer, void* stand) : pointer_(pointer), before_(pointer) { Set(stand); }
  ~Intercept() { Set(before_); }
  Intercept(const Intercept&) = delete;
  Intercept& operator=(const Intercept&) = delete;
  void* Before() const { return before_; }

 private:
  void Set(void* value) {
    DWORD protection = 0;
    ::VirtualProtect(&pointer_, sizeof pointer_, PAGE_READWRITE, &protection);
    pointer_ = value;
    ::VirtualProtect(&pointer_, sizeof pointer_, protection, &protection);
  }

  void*& pointer_;
  void* before_;
};

// What is asked of the system about the file whose name ends so.
struct Call {
  char kind;  // 'w'rite, 'r'ead, 'f'lush
  std::uint64_t offsetBytes = 0;
  std::uint64_t sizeBytes = 0;
  bool aligned = false;
};
struct Calls {
  std::wstring name;
  std::vector<DWORD> openFlags{};
  std::vector<DWORD> shareModes{};
  std::vector<HANDLE> handles{};
  std::vector<Call> all{};
  bool anyWithoutOverlapped = false;

  bool Has(HANDLE handle) const { return std::find(handles.begin(), handles.end(), handle) != handles.end(); }
  void Transfer(char kind, const void* memory, DWORD sizeBytes, const OVERLAPPED* at) {
    if (at == nullptr) {
      anyWithoutOverlapped = true;
      return;
    }
    const std::uint64_t offset = std::uint64_t{at->OffsetHigh} << 32 | at->Offset;
    const bool aligned =
        offset % 512 == 0 && sizeBytes % 512 == 0 && reinterpret_cast<std::uintptr_t>(memory) % 512 == 0;
    all.push_back({kind, offset, sizeBytes, aligned});
  }
};
Calls* calls = nullptr;
Intercept* createFile = nullptr;
Intercept* writeFile = nullptr;
Intercept* readFile = nullptr;
Intercept* flushFile = nullptr;

HANDLE WINAPI NotedCreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                              DWORD disposition, DWORD flags, HANDLE like) {
  const HANDLE handle = reinterpret_cast<decltype(&::CreateFileW)>(createFile->Before())(
      path, access, share, security, disposition, flags, like);
  const std::wstring text = path;
  if (handle != INVALID_HANDLE_VALUE && (access & GENERIC_WRITE) != 0 && text.ends_with(calls->name)) {
    calls->openFlags.push_back(flags);
    calls->shareModes.push_back(share);
    calls->handles.push_back(handle);
  }
  return handle;
}
BOOL WINAPI NotedWriteFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED at) {
  if (calls->Has(file)) calls->Transfer('w', data, size, at);
  return reinterpret_cast<decltype(&::WriteFile)>(writeFile->Before())(file, data, size, written, at);
}
BOOL WINAPI NotedReadFile(HANDLE file, LPVOID data, DWORD size, LPDWORD got, LPOVERLAPPED at) {
  if (calls->Has(file)) calls->Transfer('r', data, size, at);
  return reinterpret_cast<decltype(&::ReadFile)>(readFile->Before())(file, data, size, got, at);
}
BOOL WINAPI NotedFlush(HANDLE file) {
  if (calls->Has(file)) calls->all.push_back({'f'});
  return reinterpret_cast<decltype(&::FlushFileBuffers)>(flushFile->Before())(file);
}

TEST(WindowsDevice, WritesThroughUnbufferedOverlappedAndFlushesEachPass) {
  Scratch scratch;
  RealEngine real;
  constexpr std::size_t kSize = 300'001;
  WriteBytes(scratch / "passes.dat", Secret(kSize));
  Calls noted{L"\\passes.dat"};
  {
    calls = &noted;
    Intercept create(__imp_CreateFileW, reinterpret_cast<void*>(NotedCreateFile));
    Intercept write(__imp_WriteFile, reinterpret_cast<void*>(NotedWriteFile));
    Intercept read(__imp_ReadFile, reinterpret_cast<void*>(NotedReadFile));
    Intercept flush(__imp_FlushFileBuffers, reinterpret_cast<void*>(NotedFlush));
    createFile = &create;
    writeFile = &write;
    readFile = &read;
    flushFile = &flush;
    EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "passes.dat"), 3)) << real.engine.LastErrorText();
  }
  ASSERT_EQ(noted.openFlags.size(), 1u);
  constexpr DWORD kPastTheCaches = FILE_FLAG_WRITE_THROUGH | FILE_FLAG_NO_BUFFERING | FILE_FLAG_OVERLAPPED;
  EXPECT_EQ(noted.openFlags[0] & kPastTheCaches, kPastTheCaches);
  EXPECT_EQ(noted.openFlags[0] & FILE_FLAG_OPEN_REPARSE_POINT, DWORD{FILE_FLAG_OPEN_REPARSE_POINT});
  EXPECT_EQ(noted.shareModes[0] & FILE_SHARE_WRITE, 0u);
  EXPECT_FALSE(noted.anyWithoutOverlapped);

  // Nine passes, each over all of it and followed by a flush, then the read-back, and nothing written after.
  std::uint64_t written = 0;
  std::uint64_t read = 0;
  std::size_t passes = 0;
  for (const Call& call : noted.all) {
    if (call.kind == 'f') {
      if (written == 0) continue;  // of the entry, or once more
      EXPECT_GE(written, kSize);
      EXPECT_LT(written, kSize + 70'000) << "two passes were not kept apart by a flush";
      written = 0;
      ++passes;
      continue;
    }
    EXPECT_TRUE(call.aligned) << call.kind << ' ' << call.offsetBytes << ' ' << call.sizeBytes;
    if (call.kind == 'w') {
      EXPECT_EQ(read, 0u) << "written after the read-back";
      written += call.sizeBytes;
    } else {
      EXPECT_EQ(passes, 9u) << "read before the last pass was flushed";
      read += call.sizeBytes;
    }
  }
  EXPECT_EQ(written, 0u) << "not flushed";
  EXPECT_EQ(passes, 9u);
  EXPECT_GE(read, kSize);
}

}  // namespace
}  // namespace zq::engine::test
