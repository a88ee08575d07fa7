#include "platform/Registry.h"

namespace zq {

std::string ReadRegistryString(Registry& registry, RegistryHive hive, const std::string& key,
                               const std::string& valueName) {
  const std::optional<RegistryValue> value = registry.Query(hive, key, valueName);
  if (!value || value->type != kRegistryString) return {};
  return value->bytes.substr(0, value->bytes.find('\0'));
}

}  // namespace zq
