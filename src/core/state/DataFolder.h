// DataFolder: the program's own folder, in which all its files lie. They are named relative to it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Files.h"

namespace zq {

struct AppState;

inline constexpr const char* kJobsFolder = "Jobs\\";
inline constexpr const char* kReportFolder = "Report\\";
inline constexpr const char* kReportFile = "Report\\Report.dat";

// Each member does what the member of `Files` of its name does, and fails as that.
class DataFolder {
 public:
  // Where the folder is, is `AppFolder` at the time of each call.
  DataFolder(Files& files, const AppState& state) : files_(files), state_(state) {}

  std::string PathOf(const std::string& name) const;

  bool HasFile(const std::string& name) const;
  bool HasFolder(const std::string& name) const;
  std::optional<FileEntry> FindEntry(const std::string& name) const;
  auto List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) const {
    return files_.List(PathOf(pattern), visit);
  }
  std::string Read(const std::string& name) const;
  void Write(const std::string& name, const std::string& bytes) const;
  void WriteRecord(const std::string& name, const std::string& bytes) const;
  bool MakeFolder(const std::string& name) const;
  bool Remove(const std::string& name) const;

 private:
  Files& files_;
  const AppState& state_;
};

}  // namespace zq
