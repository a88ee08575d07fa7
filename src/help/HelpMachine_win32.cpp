#include "help/HelpMachine_win32.h"

#include <windows.h>

#include <cstring>
#include <vector>

#include "platform/Text.h"
#include "platform/win32/LongPath.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

HKEY KeyOf(RegistryKey key) {
  return reinterpret_cast<HKEY>(key);
}

// A predefined key has its number's sign in the upper half of the handle too.
HKEY HiveOf(std::uint32_t hive) {
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(hive)));
}

DWORD BytesOf(std::size_t characters) {
  return static_cast<DWORD>(characters * sizeof(wchar_t));
}

}  // namespace

FileSearchResult Win32HelpFileSearch::FindFirst(const std::string& path) {
  WIN32_FIND_DATAW data{};
  UniqueFind search(::FindFirstFileW(SystemPath(path).c_str(), &data));
  if (!search) {
    const DWORD error = ::GetLastError();
    const bool isBad = error == ERROR_INVALID_NAME || error == ERROR_BAD_PATHNAME;
    return {isBad ? FileSearchResult::End::BadName : FileSearchResult::End::NotFound, 0, {}};
  }
  return {FileSearchResult::End::Found, reinterpret_cast<SearchHandle>(search.Release()),
          FromWide(data.cFileName)};
}

void Win32HelpFileSearch::Close(SearchHandle handle) {
  ::FindClose(reinterpret_cast<HANDLE>(handle));
}

std::optional<std::string> Win32HelpFileSearch::LongPathName(const std::string& path, int maxLength) {
  std::wstring longPath(static_cast<std::size_t>(maxLength), L'\0');
  const DWORD length =
      ::GetLongPathNameW(ToWide(path).c_str(), longPath.data(), static_cast<DWORD>(maxLength));
  if (length == 0 || length >= longPath.size()) return std::nullopt;
  longPath.resize(length);
  return FromWide(longPath);
}

std::optional<RegistryKey> Win32HelpRegistry::Open(std::uint32_t hive, const std::string& key,
                                                   std::uint32_t access) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(HiveOf(hive), ToWide(key).c_str(), 0, access, &opened) != ERROR_SUCCESS)
    return std::nullopt;
  return reinterpret_cast<RegistryKey>(opened);
}

std::optional<RegistryKey> Win32HelpRegistry::Create(std::uint32_t hive, const std::string& key,
                                                     std::uint32_t access) {
  std::wstring noClass;
  SECURITY_ATTRIBUTES attributes{};
  attributes.nLength = sizeof attributes;
  HKEY opened = nullptr;
  if (::RegCreateKeyExW(HiveOf(hive), ToWide(key).c_str(), 0, noClass.data(), REG_OPTION_NON_VOLATILE, access,
                        &attributes, &opened, nullptr) != ERROR_SUCCESS)
    return std::nullopt;
  return reinterpret_cast<RegistryKey>(opened);
}

bool Win32HelpRegistry::Close(RegistryKey key) {
  return ::RegCloseKey(KeyOf(key)) == ERROR_SUCCESS;
}

std::optional<RegistryValueHead> Win32HelpRegistry::EnumValue(RegistryKey key, std::uint32_t index,
                                                              int maxName) {
  std::wstring name(static_cast<std::size_t>(maxName), L'\0');
  DWORD length = static_cast<DWORD>(name.size());
  DWORD type = 0;
  DWORD bytes = 0;
  if (::RegEnumValueW(KeyOf(key), index, name.data(), &length, nullptr, &type, nullptr, &bytes) !=
      ERROR_SUCCESS)
    return std::nullopt;
  name.resize(length);
  return RegistryValueHead{FromWide(name), type, bytes};
}

std::optional<std::string> Win32HelpRegistry::QueryText(RegistryKey key, const std::string& name,
                                                        std::uint32_t bytes) {
  std::vector<BYTE> data(bytes);
  DWORD size = bytes;
  if (::RegQueryValueExW(KeyOf(key), ToWide(name).c_str(), nullptr, nullptr, data.data(), &size) !=
      ERROR_SUCCESS)
    return std::nullopt;
  std::wstring text(size / sizeof(wchar_t), L'\0');
  if (!text.empty()) std::memcpy(text.data(), data.data(), BytesOf(text.size()));
  return FromWide(text);
}

bool Win32HelpRegistry::SetText(RegistryKey key, const std::string& name, const std::string& text,
                                std::size_t characters) {
  // All of the text with its null, or what of it was asked for: the system counts in units of its own.
  const std::wstring wide = ToWide(text);
  const std::size_t units = characters > CharacterCount(text) ? wide.size() + 1 : characters;
  return ::RegSetValueExW(KeyOf(key), ToWide(name).c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(wide.c_str()), BytesOf(units)) == ERROR_SUCCESS;
}

bool Win32HelpRegistry::DeleteValue(RegistryKey key, const std::string& name) {
  return ::RegDeleteValueW(KeyOf(key), ToWide(name).c_str()) == ERROR_SUCCESS;
}

std::optional<std::string> Win32HelpRegistry::EnumKey(RegistryKey key, std::uint32_t index, int maxName) {
  std::wstring name(static_cast<std::size_t>(maxName), L'\0');
  if (::RegEnumKeyW(KeyOf(key), index, name.data(), static_cast<DWORD>(name.size())) != ERROR_SUCCESS)
    return std::nullopt;
  name.resize(name.find(L'\0'));
  return FromWide(name);
}

std::optional<std::string> Win32HelpRegistry::DefaultText(RegistryKey key, const std::string& subKey,
                                                          int maxText) {
  std::wstring text(static_cast<std::size_t>(maxText), L'\0');
  LONG bytes = static_cast<LONG>(BytesOf(text.size()));
  if (::RegQueryValueW(KeyOf(key), ToWide(subKey).c_str(), text.data(), &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  text.resize(static_cast<std::size_t>(bytes) / sizeof(wchar_t));
  return FromWide(text);
}

std::optional<std::string> Win32HelpRegistry::Expand(const std::string& text, int maxText) {
  std::wstring expanded(static_cast<std::size_t>(maxText), L'\0');
  const DWORD length =
      ::ExpandEnvironmentStringsW(ToWide(text).c_str(), expanded.data(), static_cast<DWORD>(maxText));
  if (length == 0 || length > expanded.size()) return std::nullopt;
  expanded.resize(length);  // its null counts
  return FromWide(expanded);
}

std::uint32_t Win32FileVersions::InformationSize(const std::string& file) {
  DWORD unused = 0;
  return ::GetFileVersionInfoSizeW(ToWide(file).c_str(), &unused);
}

std::optional<std::string> Win32FileVersions::FixedInformation(const std::string& file,
                                                               std::uint32_t bufferBytes) {
  static_assert(sizeof(VS_FIXEDFILEINFO) == kFixedVersionBytes);
  std::vector<BYTE> information(bufferBytes);
  if (!::GetFileVersionInfoW(ToWide(file).c_str(), 0, bufferBytes, information.data())) return std::nullopt;
  void* fixed = nullptr;
  UINT size = 0;
  if (!::VerQueryValueW(information.data(), L"\\", &fixed, &size) || size < kFixedVersionBytes)
    return std::nullopt;
  return std::string(static_cast<const char*>(fixed), kFixedVersionBytes);
}

SystemVersion Win32SystemVersion::Version() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (!::GetVersionExW(&version)) return {};
  return {version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion};
}

}  // namespace zq
