#include "controls/ExportFile.h"

#include <windows.h>

#include <algorithm>

#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

bool WriteAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    constexpr std::size_t kLargestWrite = 1U << 24;
    DWORD written = 0;
    if (!::WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kLargestWrite)), &written,
                     nullptr) ||
        written == 0) {
      return false;
    }
    bytes.remove_prefix(written);
  }
  // Renaming it first and losing the power then would leave an empty file in the place of the older one.
  return ::FlushFileBuffers(file) != FALSE;
}

}  // namespace

bool WriteExportFile(const std::string& path, std::string_view bytes) {
  const std::wstring target = ToWide(path);
  const DWORD attributes = ::GetFileAttributesW(target.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES &&
      (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
    return false;

  const std::wstring temporary = target + L"." + std::to_wstring(::GetCurrentProcessId()) + L".tmp";
  UniqueFile file(::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  const bool written = WriteAll(file.Get(), bytes);
  file.Reset();
  if (written && ::MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  ::DeleteFileW(temporary.c_str());
  return false;
}

}  // namespace zq
