#include "platform/win32/Win32Registry.h"

#include <windows.h>

#include <cstring>

#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

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
  const HKEY root = hive == RegistryHive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(root, ToWide(key).c_str(), 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS)
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

}  // namespace zq
