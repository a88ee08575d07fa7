#include "platform/win32/Wide.h"

#include <windows.h>

namespace zq {
namespace {

std::wstring Convert(std::string_view text, DWORD flags) {
  const int length = static_cast<int>(text.size());
  const int wideLength = ::MultiByteToWideChar(CP_UTF8, flags, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
  ::MultiByteToWideChar(CP_UTF8, flags, text.data(), length, wide.data(), wideLength);
  return wide;
}

}  // namespace

std::wstring ToWide(std::string_view text) {
  return Convert(text, 0);
}

std::wstring ToWideIfValid(std::string_view text) {
  return Convert(text, MB_ERR_INVALID_CHARS);
}

std::string FromWide(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string narrow(static_cast<std::size_t>(::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr,
                                                                    0, nullptr, nullptr)),
                     '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
  return narrow;
}

}  // namespace zq
