#include "engine/paths_win32.h"

#include <cwchar>
#include <string_view>
#include <utility>

namespace zq::engine::win32 {
namespace {

constexpr wchar_t kLongPrefix[] = L"\\\\?\\";
constexpr wchar_t kLongNetworkPrefix[] = L"\\\\?\\UNC\\";

}  // namespace

bool StartsWith(const std::wstring& text, const wchar_t* start) {
  return text.compare(0, std::wcslen(start), start) == 0;
}

Status LongPath(const std::string& path, std::wstring& longPath) {
  if (path.empty()) return Status::Refusal("the path is empty");
  if (path.find('\0') != std::string::npos) return Status::Refusal("it is not a path");
  const std::wstring wide = Wide(path);
  if (wide.empty()) return Status::Refusal("it is not a path");
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0) return LastError();
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) break;
  }
  if (StartsWith(full, L"\\\\.\\")) return Status::Refusal("it is a device");
  if (!StartsWith(full, kLongPrefix)) {
    full = StartsWith(full, L"\\\\") ? kLongNetworkPrefix + full.substr(2) : kLongPrefix + full;
  }
  longPath = std::move(full);
  return {};
}

std::size_t RootLength(const std::wstring& longPath) {
  std::size_t backslashes = 1;
  std::size_t at = std::wcslen(kLongPrefix);
  if (StartsWith(longPath, kLongNetworkPrefix)) {
    at = std::wcslen(kLongNetworkPrefix);
    backslashes = 2;
  }
  while (at < longPath.size() && backslashes > 0) {
    if (longPath[at++] == L'\\') --backslashes;
  }
  return at;
}

std::wstring JoinWide(const std::wstring& folderPath, const std::wstring& name) {
  return folderPath.back() == L'\\' ? folderPath + name : folderPath + L'\\' + name;
}

Status WideName(const std::string& name, std::wstring& wide) {
  wide = Wide(name);
  if (wide.empty() || wide == L"." || wide == L".." ||
      wide.find_first_of(std::wstring_view(L"\\/:*?\"<>|\0", 10)) != std::wstring::npos) {
    return Status::Refusal("it is not the name of a file");
  }
  return {};
}

}  // namespace zq::engine::win32
