#include "engine/system_win32.h"

#include <algorithm>
#include <iterator>

namespace zq::engine::win32 {

std::wstring Wide(const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int length = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
  if (length > 0) {
    ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), length);
  }
  return wide;
}

std::string Narrow(const wchar_t* text, std::size_t count) {
  const int size = static_cast<int>(count);
  const int length = ::WideCharToMultiByte(CP_UTF8, 0, text, size, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(std::max(length, 0)), '\0');
  if (length > 0) ::WideCharToMultiByte(CP_UTF8, 0, text, size, narrow.data(), length, nullptr, nullptr);
  return narrow;
}

std::string Narrow(const std::wstring& text) {
  return Narrow(text.data(), text.size());
}

Status FromCode(DWORD code) {
  Trouble trouble = Trouble::Other;
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      trouble = Trouble::NotFound;
      break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      trouble = Trouble::Exists;
      break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      trouble = Trouble::NoSpace;
      break;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      // What the system says of it, in whatever language, helps nobody to find the culprit.
      return {trouble, static_cast<std::int32_t>(code), "another program has it open"};
    default:
      break;
  }
  wchar_t text[512];
  const DWORD length = ::FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
      code, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
  return {trouble, static_cast<std::int32_t>(code), Narrow(text, length)};
}

Status LastError() {
  return FromCode(::GetLastError());
}

}  // namespace zq::engine::win32
