// Whether a program that the tests run can get at the files of the machine that runs the tests. It
// asks for nothing that it would harm: each call opens what exists, or makes a new empty file.
#include <windows.h>
#include <gtest/gtest.h>
#include <shlobj.h>

#include <cstdlib>
#include <string>

namespace zq {
namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The path's attributes can be had, so the program sees it.
bool IsSeen(const std::string& path) {
  return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool Opens(const std::string& path, DWORD access, DWORD disposition = OPEN_EXISTING) {
  HANDLE file = ::CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, disposition, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  ::CloseHandle(file);
  return true;
}

// A path of the machine with the slashes of this system.
std::string Backslashed(std::string path) {
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return path;
}

TEST(Cage, HasOneDriveAndNoPathToAnother) {
  EXPECT_EQ(::GetLogicalDrives(), 1u << ('C' - 'A'));
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (letter == 'C') continue;
    const std::string drive = std::string(1, letter) + ":";
    for (const std::string& path : {drive + "\\", "\\\\?\\" + drive + "\\", "\\\\.\\" + drive + "\\",
                                    "\\\\?\\GLOBALROOT\\??\\" + drive + "\\"}) {
      EXPECT_FALSE(IsSeen(path)) << path;
      EXPECT_FALSE(Opens(path, GENERIC_READ)) << path;
    }
    EXPECT_FALSE(Opens("\\\\.\\" + drive, GENERIC_READ)) << drive;
  }
}

TEST(Cage, SeesNoFileOfTheMachineThatRunsTheTests) {
  const std::string hostFile = Variable("ZQ_CAGE_HOST_FILE");
  ASSERT_FALSE(hostFile.empty()) << "started past scripts/wine-run.sh";
  ASSERT_EQ(hostFile.front(), '/');
  const std::string path = Backslashed(hostFile);

  for (const char* start : {"C:", "C:\\..", "C:\\..\\..\\..\\..\\..\\..\\..\\..", "\\\\localhost\\C$"}) {
    EXPECT_FALSE(IsSeen(start + path)) << start + path;
  }
  if (Variable("ZQ_CAGE") != "namespaces") {
    std::printf("This system allows no name spaces: \\\\?\\unix\\ is open, and its check left out.\n");
    return;
  }
  for (const char* start : {"\\\\?\\unix", "\\\\.\\unix", "\\\\?\\GLOBALROOT\\??\\unix", "\\\\?\\UNIX"}) {
    EXPECT_FALSE(IsSeen(start + path)) << start + path;
    EXPECT_FALSE(Opens(start + path, GENERIC_READ)) << start + path;
  }
  // Where this program itself lies is to be seen that way, or the line above would prove nothing.
  EXPECT_TRUE(IsSeen("\\\\?\\unix\\usr"));
}

TEST(Cage, WritesNowhereButOnItsDrive) {
  if (Variable("ZQ_CAGE") != "namespaces") return;
  for (const char* path : {"\\\\?\\unix\\etc\\passwd", "\\\\?\\unix\\etc\\hostname"}) {
    EXPECT_FALSE(Opens(path, GENERIC_WRITE)) << path;
  }
  for (const char* folder : {"", "etc\\", "usr\\", "usr\\bin\\", "var\\tmp\\", "var\\lib\\"}) {
    const std::string path = std::string("\\\\?\\unix\\") + folder + "zq-cage-test";
    EXPECT_FALSE(Opens(path, GENERIC_WRITE, CREATE_NEW)) << path;
  }
  EXPECT_TRUE(Opens("cage-test", GENERIC_WRITE, CREATE_NEW));
}

// There begins a wipe of the free space, and C: lies on the disk of the machine.
TEST(Cage, TakesNothingNewInTheRootOfItsDrive) {
  if (Variable("ZQ_CAGE") != "namespaces") return;
  EXPECT_FALSE(Opens("C:\\cage-test", GENERIC_WRITE, CREATE_NEW));
  EXPECT_FALSE(::CreateDirectoryA("C:\\cage-test", nullptr));
  EXPECT_FALSE(IsSeen("C:\\cage-test"));
  EXPECT_TRUE(Opens("C:\\windows\\temp\\cage-test", GENERIC_WRITE, CREATE_ALWAYS)) << "in a folder it does";
  EXPECT_TRUE(::DeleteFileA("C:\\windows\\temp\\cage-test"));
}

TEST(Cage, ReadsNoDisk) {
  for (const char* device : {"PhysicalDrive0", "PhysicalDrive1", "C:", "HarddiskVolume1", "CdRom0"}) {
    const std::string path = std::string("\\\\.\\") + device;
    HANDLE disk = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, 0, nullptr);
    if (disk == INVALID_HANDLE_VALUE) continue;
    char sector[512];
    DWORD bytes = 0;
    EXPECT_FALSE(::ReadFile(disk, sector, sizeof sector, &bytes, nullptr) != 0 && bytes != 0) << path;
    ::CloseHandle(disk);
  }
}

TEST(Cage, KeepsTheUsersFoldersOnItsDrive) {
  int folders = 0;
  for (int id = 0; id < 0x40; ++id) {
    char path[MAX_PATH];
    if (::SHGetFolderPathA(nullptr, id, nullptr, SHGFP_TYPE_CURRENT, path) != S_OK) continue;
    ++folders;
    EXPECT_EQ(std::string(path).rfind("C:\\", 0), 0u) << path;
  }
  EXPECT_GT(folders, 20);
  for (const char* name : {"USERPROFILE", "APPDATA", "LOCALAPPDATA", "TEMP", "TMP", "ProgramData"}) {
    EXPECT_EQ(Variable(name).rfind("C:\\", 0), 0u) << name;
  }
}

}  // namespace
}  // namespace zq
