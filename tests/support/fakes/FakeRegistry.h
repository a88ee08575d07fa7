// FakeRegistry: a registry that holds what a test puts in.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "platform/Registry.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeRegistry final : public Registry {
 public:
  void Set(RegistryHive hive, const std::string& key, const std::string& valueName, RegistryValue value) {
    values_[{hive, key, valueName}] = std::move(value);
  }

  std::optional<RegistryValue> Query(RegistryHive hive, const std::string& key,
                                     const std::string& valueName) override {
    const auto found = values_.find({hive, key, valueName});
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }

  bool refuses = false;  // as to a user without the right
  EventLog* log =
      nullptr;  // where what is asked for is written down: "registry: NAME = TEXT", "registry: -NAME"

  void WriteString(RegistryHive hive, const std::string& key, const std::string& valueName,
                   const std::string& text) override {
    if (log) log->push_back("registry: " + valueName + " = " + text);
    if (!refuses) Set(hive, key, valueName, {kRegistryString, text});
  }
  void DeleteValue(RegistryHive hive, const std::string& key, const std::string& valueName) override {
    if (log) log->push_back("registry: -" + valueName);
    if (!refuses) values_.erase({hive, key, valueName});
  }

 private:
  std::map<std::tuple<RegistryHive, std::string, std::string>, RegistryValue> values_;
};

}  // namespace zq::test
