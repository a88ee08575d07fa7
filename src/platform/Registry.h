// Registry: a value of the system's registry, read, written and removed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zq {

enum class RegistryHive { CurrentUser, LocalMachine };

inline constexpr std::uint32_t kRegistryString = 1;  // REG_SZ

struct RegistryValue {
  std::uint32_t type = 0;
  std::string bytes;  // as stored, a string in UTF-8: it usually ends in a null, but need not
};

class Registry {
 public:
  virtual ~Registry() = default;

  // Nothing when the key or the value is missing or can't be read.
  virtual std::optional<RegistryValue> Query(RegistryHive hive, const std::string& key,
                                             const std::string& valueName) = 0;

  // A value of the type REG_SZ. What the system refuses, as it does to a user without the right, changes
  // nothing and is not told.
  virtual void WriteString(RegistryHive hive, const std::string& key, const std::string& valueName,
                           const std::string& text) = 0;
  // The same goes for this; so it does where there is no such value.
  virtual void DeleteValue(RegistryHive hive, const std::string& key, const std::string& valueName) = 0;
};

// The text of a string value up to its first null. A value that is missing, unreadable or of another
// type than REG_SZ gives "".
std::string ReadRegistryString(Registry& registry, RegistryHive hive, const std::string& key,
                               const std::string& valueName);

}  // namespace zq
