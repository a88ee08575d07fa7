#include "help/RegistryText.h"

#include <string_view>

#include "help/HelpMachine.h"
#include "help/HelpText.h"
#include "platform/Regional.h"

namespace zq {
namespace {

constexpr int kMaxName = 2048;
constexpr int kMaxExpanded = 2048;

struct Hive {
  std::string_view abbreviation;
  std::uint32_t number;
};

constexpr Hive kHives[] = {
    {"HKCU", kHiveCurrentUser}, {"HKLM", kHiveLocalMachine},  {"HKU", kHiveUsers},
    {"HKDD", kHiveDynData},     {"HKCC", kHiveCurrentConfig}, {"HKCR", kHiveClassesRoot},
};

}  // namespace

std::uint32_t HiveFromAbbreviation(HelpFileSearch& files, const std::string& text) {
  for (const Hive& hive : kHives) {
    if (EqualInAnyCase(text, hive.abbreviation)) return hive.number;
  }
  if (text.empty()) return 0;
  const FileSearchResult found = files.FindFirst(text);
  if (found.end != FileSearchResult::End::Found) return 0;
  files.Close(found.handle);
  return 1;
}

RegValueInfo ReadRegistryValue(HelpRegistry& registry, HelpFileSearch& files, Regional& regional,
                               const std::string& hive, const std::string& key, const std::string& valueName,
                               std::string& list) {
  const std::uint32_t root = HiveFromAbbreviation(files, hive);
  if (root == 0) return {};
  const std::optional<RegistryKey> opened = registry.Open(root, key, kKeyQueryValue);
  if (!opened) return {};

  RegValueInfo info;
  const std::string wanted = regional.UpperCase(valueName);
  std::uint32_t index = 0;
  while (const std::optional<RegistryValueHead> head = registry.EnumValue(*opened, index++, kMaxName)) {
    if (head->type != kTypeString && head->type != kTypeExpandString) continue;
    if (regional.UpperCase(head->name) != wanted) continue;

    std::optional<std::string> value = registry.QueryText(*opened, valueName, head->bytes);
    if (value && head->type == kTypeExpandString) {
      if (std::optional<std::string> expanded = registry.Expand(*value, kMaxExpanded)) value = expanded;
    }
    if (value) {
      list += valueName + "=" + *value + "\r";
      info.Text = list;
    }
    info.Name = valueName;
    break;
  }
  registry.Close(*opened);
  return info;
}

}  // namespace zq
