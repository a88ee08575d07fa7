// Reading one text value of the registry the way the help class does: by walking the values of its key.
#pragma once

#include <cstdint>
#include <string>

namespace zq {

class HelpFileSearch;
class HelpRegistry;
class Regional;

// Numbers of the predefined keys.
inline constexpr std::uint32_t kHiveClassesRoot = 0x80000000;
inline constexpr std::uint32_t kHiveCurrentUser = 0x80000001;
inline constexpr std::uint32_t kHiveLocalMachine = 0x80000002;
inline constexpr std::uint32_t kHiveUsers = 0x80000003;
inline constexpr std::uint32_t kHiveCurrentConfig = 0x80000005;
inline constexpr std::uint32_t kHiveDynData = 0x80000006;

// A value that isn't there leaves both texts empty.
struct RegValueInfo {
  std::string Name;  // the wanted name
  std::string Text;  // name, "=", the value with the null that ends it in the registry, carriage return
};

// The number behind "HKLM" and its like, in any case. Any other text is tried as the name of a file: 1 if
// there is one, else 0.
std::uint32_t HiveFromAbbreviation(HelpFileSearch& files, const std::string& text);

// `valueName` "" is the key's default value. Names are compared without regard to case. What is found is
// appended to `list` too, and Text is all of `list`.
RegValueInfo ReadRegistryValue(HelpRegistry& registry, HelpFileSearch& files, Regional& regional,
                               const std::string& hive, const std::string& key, const std::string& valueName,
                               std::string& list);

}  // namespace zq
