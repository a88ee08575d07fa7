#include "platform/win32/Win32Registry.h"

#include <windows.h>

#include <cstring>

#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

HKEY RootOf(RegistryHive hive) {
  return hive == RegistryHive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

// The key, made where it is missing; empty when the system refuses.
UniqueRegistryKey MakeKey(RegistryHive hive, const std::string& key, const wchar_t* className) {
  HKEY made = nullptr;
  std::wstring givenClass = className ? className : L"";
  if (::RegCreateKeyExW(RootOf(hive), ToWide(key).c_str(), 0, className ? givenClass.data() : nullptr, 0,
                        KEY_WRITE, nullptr, &made, nullptr) != ERROR_SUCCESS)
    return {};
  return UniqueRegistryKey(made);
}

bool IsText(DWORD type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// A stored text as the system gives it; half a unit at its end is dropped.
std::string NarrowText(const std::string& bytes) {
  std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
  std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(wchar_t));
  return FromWide(wide);
}

}  // namespace

std::optional<RegistryValue> Win32Registry::Query(RegistryHive hive, const std::string& key,
                                                  const std::string& valueName) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(RootOf(hive), ToWide(key).c_str(), 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS)
    return std::nullopt;
  const UniqueRegistryKey owner(opened);

  RegistryValue value;
  const std::wstring name = ToWide(valueName);
  DWORD type = 0;
  DWORD size = 0;
  if (::RegQueryValueExW(opened, name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
    return std::nullopt;
  value.bytes.resize(size);
  if (::RegQueryValueExW(opened, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(value.bytes.data()),
                         &size) != ERROR_SUCCESS)
    return std::nullopt;
  value.type = type;
  value.bytes.resize(size);
  if (IsText(type)) value.bytes = NarrowText(value.bytes);
  return value;
}

// The length is that of the characters alone; the system puts the null behind them itself.
void Win32Registry::WriteString(RegistryHive hive, const std::string& key, const std::string& valueName,
                                const std::string& text) {
  const UniqueRegistryKey opened = MakeKey(hive, key, nullptr);
  if (!opened) return;
  const std::wstring wide = ToWide(text);
  ::RegSetValueExW(opened.Get(), ToWide(valueName).c_str(), 0, REG_SZ,
                   reinterpret_cast<const BYTE*>(wide.c_str()),
                   static_cast<DWORD>(wide.size() * sizeof(wchar_t)));
}

void Win32Registry::DeleteValue(RegistryHive hive, const std::string& key, const std::string& valueName) {
  // A key that is made on the way is of the class "0": this text, not none.
  const UniqueRegistryKey opened = MakeKey(hive, key, L"0");
  if (opened) ::RegDeleteValueW(opened.Get(), ToWide(valueName).c_str());
}

}  // namespace zq
