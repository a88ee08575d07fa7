#include "platform/win32/LongPath.h"

#include <windows.h>

#include <string_view>

#include "platform/Text.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// From here on a path is too long for one call or another: a folder has to leave room for a name of 8.3
// characters in it.
constexpr std::size_t kShortestLongPath = MAX_PATH - 12;

// "" if the system makes nothing of it.
std::wstring FullPathW(const std::wstring& path) {
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) return full;
  }
}

bool IsInANameSpace(std::wstring_view path) {
  return path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
}

}  // namespace

std::wstring SystemPath(const std::string& path) {
  std::wstring wide = ToWide(TrimAtNull(path));
  const std::wstring full = FullPathW(wide);
  if (full.size() < kShortestLongPath || IsInANameSpace(full)) return wide;
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

std::string FullPath(const std::string& path) {
  return FromWide(FullPathW(ToWide(TrimAtNull(path))));
}

}  // namespace zq
