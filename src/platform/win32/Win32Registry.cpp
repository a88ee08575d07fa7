#include "platform/win32/Win32Registry.h"

#include <windows.h>

#include "platform/win32/UniqueHandle.h"

namespace zq {

std::optional<RegistryValue> Win32Registry::Query(RegistryHive hive, const std::string& key,
                                                  const std::string& valueName) {
  const HKEY root = hive == RegistryHive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  HKEY opened = nullptr;
  if (::RegOpenKeyExA(root, key.c_str(), 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) return std::nullopt;
  const UniqueRegistryKey owner(opened);

  RegistryValue value;
  DWORD type = 0;
  DWORD size = 0;
  if (::RegQueryValueExA(opened, valueName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
    return std::nullopt;
  value.bytes.resize(size);
  if (::RegQueryValueExA(opened, valueName.c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(value.bytes.data()), &size) != ERROR_SUCCESS)
    return std::nullopt;
  value.type = type;
  value.bytes.resize(size);
  return value;
}

}  // namespace zq
