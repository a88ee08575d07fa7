// What only Windows has: sharing, attributes, colons and device names.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <winioctl.h>

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
extern void* __imp_ReOpenFile;
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

TEST(WindowsDevice, WipesAReadOnlyFile) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(100));
  ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

TEST(WindowsDevice, LeavesAFileReadOnlyThatStays) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(300'000));
  ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN), 0);
  DWORD meanwhile = 0;
  real.events.onEvent = [&](const Event&) {
    meanwhile = ::GetFileAttributesW(path.c_str());
    real.engine.CancelOperation();
  };
  EXPECT_FALSE(real.engine.WipeFile(Utf8(path), 3));
  EXPECT_EQ(meanwhile & FILE_ATTRIBUTE_READONLY, 0u);
  constexpr DWORD kBoth = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
  EXPECT_EQ(::GetFileAttributesW(path.c_str()) & kBoth, kBoth);
  ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

// Half a surrogate pair has no UTF-8.
TEST(WindowsDevice, KeepsAFileWhoseNameIsNoText) {
  Scratch scratch;
  RealEngine real;
  fs::create_directory(scratch / "top");
  WriteBytes(scratch / "top/other", Secret(100));
  const std::wstring path = (scratch / "top").wstring() + L"\\a\xD800z";
  const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) GTEST_SKIP() << "no such names here: error " << ::GetLastError();
  DWORD written = 0;
  ::WriteFile(file, "keep", 4, &written, nullptr);
  ::CloseHandle(file);
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "top"), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("(2)"));
  EXPECT_FALSE(fs::exists(scratch / "top/other"));
  EXPECT_NE(::DeleteFileW(path.c_str()), 0) << "it was kept";
}

TEST(WindowsDevice, RemovesLinksInsideAFolderAndLeavesTheirTargets) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "outside");
  fs::create_directories(scratch / "top/sub");
  WriteBytes(scratch / "outside/file", "keep");
  constexpr DWORD kUnprivileged = 2;  // SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE
  const fs::path folderLink = scratch / "top/sub/folderlink";
  if (::CreateSymbolicLinkW((scratch / "top/link").c_str(), (scratch / "outside/file").c_str(),
                            kUnprivileged) == 0 ||
      ::CreateSymbolicLinkW(folderLink.c_str(), (scratch / "outside").c_str(),
                            kUnprivileged | SYMBOLIC_LINK_FLAG_DIRECTORY) == 0 ||
      (::GetFileAttributesW(folderLink.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    GTEST_SKIP() << "no symbolic links here: error " << ::GetLastError();
  }
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(folderLink), 3));
  // Wine doesn't open a link to a folder as such.
  EXPECT_THAT(real.engine.LastErrorText(), ::testing::AnyOf(HasSubstr("it is a link"), HasSubstr("(2)")));
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "top"));
  EXPECT_EQ(ReadBytes(scratch / "outside/file"), "keep");
}

TEST(WindowsDevice, RefusesFilesThatTheFileSystemCompressesOrThatAreSparse) {
  Scratch scratch;
  RealEngine real;
  int tried = 0;
  for (const bool sparse : {false, true}) {
    const fs::path path = scratch / (sparse ? "sparse" : "compressed");
    WriteBytes(path, Secret(10'000));
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    USHORT format = COMPRESSION_FORMAT_DEFAULT;
    DWORD got = 0;
    const BOOL done = sparse
                          ? ::DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &got, nullptr)
                          : ::DeviceIoControl(file, FSCTL_SET_COMPRESSION, &format, sizeof format, nullptr, 0,
                                              &got, nullptr);
    ::CloseHandle(file);
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    const DWORD wanted = sparse ? FILE_ATTRIBUTE_SPARSE_FILE : FILE_ATTRIBUTE_COMPRESSED;
    if (done == 0 || (attributes & wanted) == 0) continue;
    ++tried;
    EXPECT_FALSE(real.engine.WipeFile(Utf8(path), 3));
    EXPECT_THAT(real.engine.LastErrorText(), HasSubstr(sparse ? "sparse" : "compressed"));
    EXPECT_EQ(ReadBytes(path), Secret(10'000));
  }
  if (tried == 0) GTEST_SKIP() << "this file system neither compresses nor has sparse files";
}

TEST(WindowsDevice, WipesTheNamedStreamsOfFilesAndFolders) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/sub");
  WriteBytes(scratch / "top/file", Secret(100));
  for (const wchar_t* name : {L"top\\file:notes", L"top\\sub:notes"}) {
    const std::wstring path = scratch.Path().wstring() + L'\\' + name;
    const HANDLE stream = ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    if (stream == INVALID_HANDLE_VALUE) GTEST_SKIP() << "no named streams here: error " << ::GetLastError();
    DWORD written = 0;
    ::WriteFile(stream, "secret", 6, &written, nullptr);
    ::CloseHandle(stream);
  }
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::vector<std::string> names;
  {
    std::unique_ptr<Folder> folder;
    ASSERT_TRUE(device->OpenFolder(Utf8(scratch / "top/sub"), folder).Ok());
    ASSERT_TRUE(folder->ListStreams(names).Ok());
  }
  if (names.empty()) GTEST_SKIP() << "named streams are plain files here";
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
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
  const Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::unique_ptr<Folder> folder;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  EXPECT_EQ(folder->NameLength("abc"), 3u);
  EXPECT_EQ(folder->NameLength("日記"), 2u);
  EXPECT_EQ(folder->NameLength("🙂"), 2u);
}

TEST(WindowsDevice, LeavesTheOtherNamesOfAReadOnlyFileReadOnly) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "one", Secret(5'000));
  fs::create_hard_link(scratch / "one", scratch / "two");
  ASSERT_NE(::SetFileAttributesW((scratch / "one").c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "one"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "one"));
  EXPECT_EQ(fs::file_size(scratch / "two"), 0u);
  EXPECT_NE(::GetFileAttributesW((scratch / "two").c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
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

TEST(WindowsDevice, KnowsTheFileSystemsWhoseNamesLieInRecords) {
  Scratch scratch;
  const std::wstring root = scratch.Path().root_path().wstring();
  wchar_t name[MAX_PATH + 1] = L"";
  ASSERT_NE(::GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, name, MAX_PATH), 0);
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::unique_ptr<Folder> folder;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  EXPECT_EQ(folder->NamesLieInRecords(), std::wstring(name) == L"NTFS");
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
  std::vector<HANDLE> lookedAt{};
  std::vector<DWORD> openFlags{};
  std::vector<DWORD> shareModes{};
  std::vector<HANDLE> handles{};
  std::vector<Call> all{};
  bool anyWithoutOverlapped = false;

  void Opened(HANDLE handle, DWORD access, DWORD share, DWORD flags) {
    if (handle == INVALID_HANDLE_VALUE) return;
    if ((access & GENERIC_WRITE) == 0) {
      lookedAt.push_back(handle);
      return;
    }
    openFlags.push_back(flags);
    shareModes.push_back(share);
    handles.push_back(handle);
  }
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
Intercept* reopenFile = nullptr;
Intercept* writeFile = nullptr;
Intercept* readFile = nullptr;
Intercept* flushFile = nullptr;

HANDLE WINAPI NotedCreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                              DWORD disposition, DWORD flags, HANDLE like) {
  const HANDLE handle = reinterpret_cast<decltype(&::CreateFileW)>(createFile->Before())(
      path, access, share, security, disposition, flags, like);
  const std::wstring text = path;
  if (text.ends_with(calls->name)) calls->Opened(handle, access, share, flags);
  return handle;
}
HANDLE WINAPI NotedReopenFile(HANDLE file, DWORD access, DWORD share, DWORD flags) {
  const HANDLE handle =
      reinterpret_cast<decltype(&::ReOpenFile)>(reopenFile->Before())(file, access, share, flags);
  if (std::find(calls->lookedAt.begin(), calls->lookedAt.end(), file) != calls->lookedAt.end()) {
    calls->Opened(handle, access, share, flags);
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

BOOL WINAPI FailingFlush(HANDLE file) {
  if (!calls->Has(file)) return reinterpret_cast<decltype(&::FlushFileBuffers)>(flushFile->Before())(file);
  ::SetLastError(ERROR_NETNAME_DELETED);
  return FALSE;
}

// Where each file is flushed by itself, several are at a time.
TEST(WindowsDevice, KeepsTheFileWhoseFlushFailsAndNoOther) {
  Scratch scratch;
  RealEngine real;
  for (int i = 0; i < 40; ++i) WriteBytes(scratch / ("file" + std::to_string(i)), Secret(3'000));
  WriteBytes(scratch / "bad.dat", Secret(3'000));
  Calls noted{L"\\bad.dat"};
  {
    calls = &noted;
    Intercept create(__imp_CreateFileW, reinterpret_cast<void*>(NotedCreateFile));
    Intercept reopen(__imp_ReOpenFile, reinterpret_cast<void*>(NotedReopenFile));
    Intercept flush(__imp_FlushFileBuffers, reinterpret_cast<void*>(FailingFlush));
    createFile = &create;
    reopenFile = &reopen;
    flushFile = &flush;
    EXPECT_FALSE(real.engine.WipeFolderFiles(Utf8(scratch.Path()), "*.*", false, 3));
  }
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("bad.dat"));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("(64)"));
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.Path()), fs::directory_iterator()), 1);
  EXPECT_EQ(real.events.Of("wiped").size(), 40u);
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
    Intercept reopen(__imp_ReOpenFile, reinterpret_cast<void*>(NotedReopenFile));
    Intercept write(__imp_WriteFile, reinterpret_cast<void*>(NotedWriteFile));
    Intercept read(__imp_ReadFile, reinterpret_cast<void*>(NotedReadFile));
    Intercept flush(__imp_FlushFileBuffers, reinterpret_cast<void*>(NotedFlush));
    createFile = &create;
    reopenFile = &reopen;
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
