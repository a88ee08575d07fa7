#include "platform/win32/Win32Files.h"

#include <windows.h>

#include <algorithm>

#include "platform/RunTimeError.h"
#include "platform/win32/UniqueHandle.h"

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

FileEntry EntryFrom(const WIN32_FIND_DATAA& data) {
  return {data.cFileName, data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow};
}

}  // namespace

std::optional<FileEntry> Win32Files::FindEntry(const std::string& pattern) {
  WIN32_FIND_DATAA data{};
  const UniqueFind find(::FindFirstFileA(pattern.c_str(), &data));
  if (!find) return std::nullopt;
  return EntryFrom(data);
}

bool Win32Files::List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) {
  WIN32_FIND_DATAA data{};
  const UniqueFind find(::FindFirstFileA(pattern.c_str(), &data));
  if (!find) return false;
  do {
    visit(EntryFrom(data));
  } while (::FindNextFileA(find.Get(), &data));
  return true;
}

std::optional<std::uint32_t> Win32Files::Attributes(const std::string& path) {
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return attributes;
}

bool Win32Files::SetAttributes(const std::string& path, std::uint32_t attributes) {
  return ::SetFileAttributesA(path.c_str(), attributes) != FALSE;
}

bool Win32Files::MakeFolder(const std::string& path) {
  return ::CreateDirectoryA(path.c_str(), nullptr) != FALSE;
}

bool Win32Files::Remove(const std::string& path) {
  return ::DeleteFileA(path.c_str()) != FALSE;
}

std::string Win32Files::Read(const std::string& path) {
  const UniqueFile file(::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
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
  const UniqueFile file(
      ::CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw ErrorFrom(::GetLastError());
  std::size_t done = 0;
  while (done < bytes.size()) {
    constexpr std::size_t kLargestWrite = 1U << 30;
    const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kLargestWrite));
    DWORD written = 0;
    if (!::WriteFile(file.Get(), bytes.data() + done, wanted, &written, nullptr))
      throw ErrorFrom(::GetLastError());
    if (written == 0) throw RunTimeError(ErrorNumber::DeviceIoError);
    done += written;
  }
}

std::string Win32Files::CurrentFolder() {
  std::string folder(::GetCurrentDirectoryA(0, nullptr), '\0');
  folder.resize(::GetCurrentDirectoryA(static_cast<DWORD>(folder.size()), folder.data()));
  return folder;
}

}  // namespace zq
