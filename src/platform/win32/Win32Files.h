// Files on Windows, by the narrow calls.
#pragma once

#include "platform/Files.h"

namespace zq {

class Win32Files final : public Files {
 public:
  std::optional<FileEntry> FindEntry(const std::string& pattern) override;
  bool List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) override;
  std::optional<std::uint32_t> Attributes(const std::string& path) override;
  bool SetAttributes(const std::string& path, std::uint32_t attributes) override;
  bool MakeFolder(const std::string& path) override;
  bool Remove(const std::string& path) override;
  std::string Read(const std::string& path) override;
  void Write(const std::string& path, const std::string& bytes) override;
  std::string CurrentFolder() override;
};

}  // namespace zq
