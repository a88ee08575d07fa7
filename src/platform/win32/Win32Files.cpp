#include "platform/win32/Win32Files.h"

#include <windows.h>

#include <algorithm>

#include "platform/RunTimeError.h"
#include "platform/win32/LongPath.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

struct ErrorRow {
  DWORD systemError;
  ErrorNumber number;
};

constexpr ErrorRow kErrors[] = {
    {ERROR_FILE_NOT_FOUND, ErrorNumber::FileNotFound},
    {ERROR_PATH_NOT_FOUND, ErrorNumber::PathNotFound},
    {ERROR_INVALID_NAME, ErrorNumber::BadFileNameOrNumber},
    {ERROR_SHARING_VIOLATION, ErrorNumber::PermissionDenied},
    {ERROR_LOCK_VIOLATION, ErrorNumber::PermissionDenied},
    {ERROR_ACCESS_DENIED, ErrorNumber::PathFileAccessError},
    {ERROR_WRITE_PROTECT, ErrorNumber::PermissionDenied},
    {ERROR_DISK_FULL, ErrorNumber::DiskFull},
    {ERROR_HANDLE_DISK_FULL, ErrorNumber::DiskFull},
    {ERROR_NOT_READY, ErrorNumber::DiskNotReady},
};

RunTimeError ErrorFrom(DWORD systemError) {
  for (const ErrorRow& row : kErrors) {
    if (row.systemError == systemError) return RunTimeError(row.number);
  }
  return RunTimeError(ErrorNumber::DeviceIoError);
}

FileEntry EntryFrom(const WIN32_FIND_DATAW& data) {
  return {FromWide(data.cFileName), data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow};
}

// Opens what is there, whatever its attributes, or creates it. To be created anew, a hidden file would have
// to be asked for as a hidden one.
UniqueFile OpenForWriting(const std::string& path) {
  UniqueFile file(::CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw ErrorFrom(::GetLastError());
  return file;
}

// The file ends where it has been written to.
void CutHere(HANDLE file) {
  if (!::SetEndOfFile(file)) throw ErrorFrom(::GetLastError());
}

}  // namespace

// Without the 8.3 name, which nobody asks for.
HANDLE Win32Files::FindFirst(const std::string& pattern, WIN32_FIND_DATAW& data) const {
  return calls_.findFirst(SystemPath(pattern).c_str(), FindExInfoBasic, &data, FindExSearchNameMatch, nullptr,
                          0);
}

std::optional<FileEntry> Win32Files::FindEntry(const std::string& pattern) {
  WIN32_FIND_DATAW data{};
  const UniqueFind find(FindFirst(pattern, data));
  if (!find) return std::nullopt;
  return EntryFrom(data);
}

ListEnd Win32Files::List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) {
  WIN32_FIND_DATAW data{};
  const UniqueFind find(FindFirst(pattern, data));
  if (!find) {
    const DWORD error = ::GetLastError();
    const bool nothing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return nothing ? ListEnd::NothingFound : ListEnd::BrokenOff;
  }
  do {
    visit(EntryFrom(data));
  } while (calls_.findNext(find.Get(), &data));
  return ::GetLastError() == ERROR_NO_MORE_FILES ? ListEnd::Complete : ListEnd::BrokenOff;
}

std::optional<std::uint32_t> Win32Files::Attributes(const std::string& path) {
  const DWORD attributes = ::GetFileAttributesW(SystemPath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return attributes;
}

bool Win32Files::SetAttributes(const std::string& path, std::uint32_t attributes) {
  return ::SetFileAttributesW(SystemPath(path).c_str(), attributes) != FALSE;
}

bool Win32Files::MakeFolder(const std::string& path) {
  return ::CreateDirectoryW(SystemPath(path).c_str(), nullptr) != FALSE;
}

bool Win32Files::Remove(const std::string& path) {
  return ::DeleteFileW(SystemPath(path).c_str()) != FALSE;
}

std::string Win32Files::Read(const std::string& path) {
  const UniqueFile file(::CreateFileW(SystemPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw ErrorFrom(::GetLastError());
  std::string bytes;
  char block[64 * 1024];
  for (;;) {
    DWORD count = 0;
    if (!::ReadFile(file.Get(), block, sizeof block, &count, nullptr)) throw ErrorFrom(::GetLastError());
    if (count == 0) return bytes;
    bytes.append(block, count);
  }
}

void Win32Files::Write(const std::string& path, const std::string& bytes) {
  const UniqueFile file = OpenForWriting(path);
  CutHere(file.Get());
  WriteBytes(file.Get(), bytes);
}

void Win32Files::WriteRecord(const std::string& path, const std::string& bytes) {
  const UniqueFile file = OpenForWriting(path);
  WriteBytes(file.Get(), bytes);
  CutHere(file.Get());
}

void Win32Files::WriteBytes(HANDLE file, const std::string& bytes) const {
  std::size_t done = 0;
  while (done < bytes.size()) {
    constexpr std::size_t kLargestWrite = 1U << 30;
    const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kLargestWrite));
    DWORD written = 0;
    if (!calls_.write(file, bytes.data() + done, wanted, &written, nullptr))
      throw ErrorFrom(::GetLastError());
    if (written == 0) throw RunTimeError(ErrorNumber::DeviceIoError);
    done += written;
  }
}

std::string Win32Files::CurrentFolder() {
  std::wstring folder(::GetCurrentDirectoryW(0, nullptr), L'\0');
  folder.resize(::GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
  return FromWide(folder);
}

}  // namespace zq
