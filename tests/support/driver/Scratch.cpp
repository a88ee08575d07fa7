#include "support/driver/Scratch.h"

#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/driver/Text.h"
#include "support/driver/Wait.h"

namespace zq::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kSmallDriveBytes = 64u << 20;

// A full path; one that is long gets the prefix without which the system doesn't take it.
fs::path ToPath(std::string_view utf8) {
  constexpr std::size_t kLong = 240;
  const std::wstring wide = ToWide(utf8);
  return wide.size() < kLong ? fs::path(wide) : fs::path(L"\\\\?\\" + wide);
}

// A drive that a test may fill up.
bool IsSmall(const std::wstring& root) {
  ULARGE_INTEGER total{};
  return ::GetDiskFreeSpaceExW(root.c_str(), nullptr, &total, nullptr) != 0 &&
         total.QuadPart < kSmallDriveBytes;
}

void RemoveReadOnly(const fs::path& path) {
  ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

}  // namespace

void RequireCage() {
  if (std::getenv("ZQ_CAGE") == nullptr) {
    throw DriverError("This test destroys files and runs in the cage alone: start it by scripts/wine-run.sh");
  }
  const DWORD drives = ::GetLogicalDrives();
  for (int i = 0; i < 26; ++i) {
    if ((drives & (1u << i)) == 0 || i == 'C' - 'A') continue;
    const std::wstring root = std::wstring(1, static_cast<wchar_t>(L'A' + i)) + L":\\";
    if (!IsSmall(root)) throw DriverError("The cage is open: there is a drive " + ToUtf8(root));
  }
}

std::string ProgramFolder() {
  wchar_t path[MAX_PATH];
  const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
  return ToUtf8(fs::path(std::wstring(path, length)).parent_path().wstring());
}

std::string ReadFileBytes(const std::string& path) {
  std::ifstream file(ToPath(path), std::ios::binary);
  if (!file) throw DriverError("can't open " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFileBytes(const std::string& path, std::string_view bytes) {
  std::ofstream file(ToPath(path), std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw DriverError("can't write " + path);
}

bool PathExists(const std::string& path) {
  return ::GetFileAttributesW(ToPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool FolderHolds(const std::string& folder, std::string_view bytes) {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(ToPath(folder))) {
    const std::string path = ToUtf8(entry.path().wstring());
    if (path.find(bytes, folder.size()) != std::string::npos) return true;
    if (entry.is_regular_file() && ReadFileBytes(path).find(bytes) != std::string::npos) return true;
  }
  return false;
}

ScratchFolder::ScratchFolder() {
  RequireCage();
  static int count = 0;
  path_ = ProgramFolder() + "\\scratch" + std::to_string(++count);
  if (!fs::create_directory(ToPath(path_))) throw DriverError(path_ + " is there already");
}

ScratchFolder::~ScratchFolder() {
  // A program that a failed test left behind may still hold a file: the run's folder goes with the run.
  std::error_code ignored;
  const fs::path folder(L"\\\\?\\" + ToWide(path_));
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder, ignored)) {
    RemoveReadOnly(entry.path());
  }
  fs::remove_all(folder, ignored);
}

std::string ScratchFolder::operator/(std::string_view name) const {
  return path_ + "\\" + std::string(name);
}

std::string ScratchFolder::Make(std::string_view name, std::string_view bytes,
                                std::uint32_t attributes) const {
  const std::string path = *this / name;
  fs::create_directories(ToPath(path).parent_path());
  WriteFileBytes(path, bytes);
  if (attributes != 0) ::SetFileAttributesW(ToPath(path).c_str(), attributes);
  return path;
}

std::string ScratchFolder::CopyIn(std::string_view name) const {
  const std::string path = *this / name;
  fs::copy(ToPath(ProgramFolder() + "\\" + std::string(name)), ToPath(path), fs::copy_options::recursive);
  return path;
}

}  // namespace zq::test
