#include "wipe/FillerRecord.h"

#include <algorithm>

#include "platform/Drives.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr std::size_t kRootLength = 3;
constexpr std::size_t kMostDrives = 26;

bool IsRoot(const std::string& text) {
  return text.size() == kRootLength && text[0] >= 'A' && text[0] <= 'Z' && text[1] == ':' && text[2] == '\\';
}

}  // namespace

std::vector<std::string> FillerRecord::Drives() const {
  std::vector<std::string> drives;
  try {
    if (!folder_.HasFile(kFillerRecordFile)) return {};
    const std::string bytes = folder_.Read(kFillerRecordFile);
    if (bytes.size() > kMostDrives * kRootLength) return {};
    for (std::size_t start = 0; start < bytes.size(); start += kRootLength) {
      const std::string drive = bytes.substr(start, kRootLength);
      if (!IsRoot(drive)) return {};
      if (std::ranges::count(drives, drive) == 0) drives.push_back(drive);
    }
  } catch (const RunTimeError&) {
    return {};
  }
  return drives;
}

void FillerRecord::Add(const std::string& drive) const {
  std::vector<std::string> drives = Drives();
  if (!IsRoot(drive) || std::ranges::count(drives, drive) > 0) return;
  drives.push_back(drive);
  Write(drives);
}

void FillerRecord::Drop(const std::string& drive) const {
  std::vector<std::string> drives = Drives();
  if (std::erase(drives, drive) > 0) Write(drives);
}

void FillerRecord::Write(const std::vector<std::string>& drives) const {
  try {
    if (drives.empty()) {
      static_cast<void>(folder_.Remove(kFillerRecordFile));
      return;
    }
    std::string bytes;
    for (const std::string& drive : drives) bytes += drive;
    folder_.WriteRecord(kFillerRecordFile, bytes);
  } catch (const RunTimeError&) {
    // As it was, then.
  }
}

void RemoveLeftFillers(const FillerRecord& record, Drives& drives,
                       const std::function<bool(const std::string& drive)>& remove) {
  const std::vector<std::string> recorded = record.Drives();
  if (recorded.empty()) return;
  const std::string names = drives.LogicalDriveStrings();
  for (const std::string& drive : recorded) {
    // A stick that is out comes back; a share that doesn't answer would keep the program from starting.
    if (names.find(drive) == std::string::npos) continue;
    const std::uint32_t type = drives.DriveType(drive);
    if (type != kDriveFixed && type != kDriveRemovable) continue;
    if (remove(drive)) record.Drop(drive);
  }
}

}  // namespace zq
