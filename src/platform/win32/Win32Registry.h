// The registry on Windows.
#pragma once

#include "platform/Registry.h"

namespace zq {

class Win32Registry final : public Registry {
 public:
  std::optional<RegistryValue> Query(RegistryHive hive, const std::string& key,
                                     const std::string& valueName) override;
  void WriteString(RegistryHive hive, const std::string& key, const std::string& valueName,
                   const std::string& text) override;
  void DeleteValue(RegistryHive hive, const std::string& key, const std::string& valueName) override;
};

}  // namespace zq
