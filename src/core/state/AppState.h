// AppState: the state that more than one window touches. There is one, and one thread uses it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/state/Settings.h"
#include "platform/FixedPoint.h"

namespace zq {

// Values of a window's state.
inline constexpr std::int16_t kWindowNormal = 0;
inline constexpr std::int16_t kWindowMinimised = 1;
inline constexpr std::int16_t kWindowMaximised = 2;

// A list of the report: counted from 1 by a 16-bit counter.
class ReportList {
 public:
  // Raises Overflow when the list would grow beyond 32767, before it grows.
  void Add(std::string item);
  void Clear() { items_.clear(); }
  std::int16_t Count() const { return static_cast<std::int16_t>(items_.size()); }
  const std::vector<std::string>& Items() const { return items_; }
  const std::string& Last() const { return items_.back(); }

 private:
  std::vector<std::string> items_;
};

struct AppState {
  std::string AppFolder;       // always ends in a backslash
  std::string CurrentJobName;  // "" for an untitled job
  std::string LastWiping = "N/A";
  bool JobSaved = true;
  bool CancelRequested = false;
  bool SecondInstance = false;
  bool JobActionCancelled = false;
  std::string SelectedJobName;
  bool QuickBinOpen = false;
  std::int16_t SavedWindowState = kWindowNormal;
  bool QuickBinBusy = false;
  FixedPoint TotalWipeItems;  // files that the running wipe will touch
  std::string FreeSpaceDrive;
  std::int32_t FreeSpacePasses = 0;
  std::string FreeSpaceError;
  bool FreeSpaceActive = false;
  ReportList ReportFiles;
  ReportList ReportFolders;
  ReportList ReportErrors;
  SettingsRecord Settings;
  WindowPlacement Placement;
  bool ManagerRunning = false;
};

}  // namespace zq
