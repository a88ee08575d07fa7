// FakeRegistry: a registry that holds what a test puts in.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "platform/Registry.h"

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

 private:
  std::map<std::tuple<RegistryHive, std::string, std::string>, RegistryValue> values_;
};

}  // namespace zq::test
