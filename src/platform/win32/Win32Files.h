// Files on Windows, by the W calls, whose records hold every name: the narrow ones fail where a name that
// isn't ASCII doesn't fit into theirs.
#pragma once

#include <windows.h>

#include "platform/Files.h"

namespace zq {

// Those calls of the system whose failures a test has to make.
struct FileCalls {
  decltype(&::FindFirstFileExW) findFirst = &::FindFirstFileExW;
  decltype(&::FindNextFileW) findNext = &::FindNextFileW;
  decltype(&::WriteFile) write = &::WriteFile;
};

class Win32Files final : public Files {
 public:
  Win32Files() = default;
  explicit Win32Files(const FileCalls& calls) : calls_(calls) {}

  std::optional<FileEntry> FindEntry(const std::string& pattern) override;
  ListEnd List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) override;
  std::optional<std::uint32_t> Attributes(const std::string& path) override;
  bool SetAttributes(const std::string& path, std::uint32_t attributes) override;
  bool MakeFolder(const std::string& path) override;
  bool Remove(const std::string& path) override;
  std::string Read(const std::string& path) override;
  void Write(const std::string& path, const std::string& bytes) override;
  void WriteRecord(const std::string& path, const std::string& bytes) override;
  std::string CurrentFolder() override;

 private:
  HANDLE FindFirst(const std::string& pattern, WIN32_FIND_DATAW& data) const;
  void WriteBytes(HANDLE file, const std::string& bytes) const;

  FileCalls calls_;
};

}  // namespace zq
