// Windows' side of what the help class looks at on the machine.
#pragma once

#include "help/HelpMachine.h"

namespace zq {

class Win32HelpFileSearch final : public HelpFileSearch {
 public:
  FileSearchResult FindFirst(const std::string& path) override;
  void Close(SearchHandle handle) override;
  std::optional<std::string> LongPathName(const std::string& path, int maxLength) override;
};

class Win32HelpRegistry final : public HelpRegistry {
 public:
  std::optional<RegistryKey> Open(std::uint32_t hive, const std::string& key, std::uint32_t access) override;
  std::optional<RegistryKey> Create(std::uint32_t hive, const std::string& key,
                                    std::uint32_t access) override;
  bool Close(RegistryKey key) override;
  std::optional<RegistryValueHead> EnumValue(RegistryKey key, std::uint32_t index, int maxName) override;
  std::optional<std::string> QueryText(RegistryKey key, const std::string& name,
                                       std::uint32_t bytes) override;
  bool SetText(RegistryKey key, const std::string& name, const std::string& text,
               std::size_t characters) override;
  bool DeleteValue(RegistryKey key, const std::string& name) override;
  std::optional<std::string> EnumKey(RegistryKey key, std::uint32_t index, int maxName) override;
  std::optional<std::string> DefaultText(RegistryKey key, const std::string& subKey, int maxText) override;
  std::optional<std::string> Expand(const std::string& text, int maxText) override;
};

class Win32FileVersions final : public FileVersions {
 public:
  std::uint32_t InformationSize(const std::string& file) override;
  std::optional<std::string> FixedInformation(const std::string& file, std::uint32_t bufferBytes) override;
};

class Win32SystemVersion final : public SystemVersionSource {
 public:
  SystemVersion Version() override;
};

}  // namespace zq
