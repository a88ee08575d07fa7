// The settings records, their files and their loading.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Text.h"

namespace zq {

class DataFolder;
class Registry;

inline constexpr std::size_t kFolderTextBytes = 150;
inline constexpr std::size_t kSettingsBytes = 322;
inline constexpr std::size_t kPlacementBytes = 8;

// An empty file in the program's folder: the welcome window has been seen.
inline constexpr const char* kFirstRunMarker = "sfrun.dat";

// In memory the defaults below hold from the start; LastFilesFolder stays all nulls until it is set.
struct SettingsRecord {
  std::int32_t Passes = 3;  // the security level 3, 5 or 7, not a count of writes
  FixedText<kFolderTextBytes> LastFolder{""};
  FixedText<kFolderTextBytes> LastFilesFolder;
  std::int16_t GridLines = 0;
  std::int16_t Maximize = 0;
  std::int16_t PromptToSave = 1;
  std::int16_t ReportFontSize = 8;
  std::int16_t SkipNewJobNote = 0;
  std::int16_t IncludeSubFolders = 0;
  std::int16_t ExplorerManager = 0;
  std::int16_t ToolBars = 1;
  std::int16_t ProgressBars = 1;

  bool operator==(const SettingsRecord&) const = default;
};

// Size and place of the main window, in twips. All zero: none saved.
struct WindowPlacement {
  std::int16_t Width = 0;
  std::int16_t Height = 0;
  std::int16_t Left = 0;
  std::int16_t Top = 0;

  bool operator==(const WindowPlacement&) const = default;
  bool IsNone() const { return *this == WindowPlacement{}; }
};

// The records as they stand in `Settings.dat` (322 bytes) and `Settings2.dat` (8 bytes), integers
// little-endian. Decoding raises InputPastEndOfFile for bytes of another length.
std::string EncodeSettings(const SettingsRecord& settings);
SettingsRecord DecodeSettings(std::string_view bytes);
std::string EncodePlacement(const WindowPlacement& placement);
WindowPlacement DecodePlacement(std::string_view bytes);

// What `LoadSettings` fills.
struct LoadedSettings {
  SettingsRecord settings;
  WindowPlacement placement;
  bool firstRun = false;  // the marker of the welcome window is absent
};

// Reads both files, creating them with defaults on a first run. A failure puts the defaults in their
// place and writes both files again; a failure of that is raised.
LoadedSettings LoadSettings(const DataFolder& folder, Registry& registry);

void WriteSettings(const DataFolder& folder, const SettingsRecord& settings);
void WritePlacement(const DataFolder& folder, const WindowPlacement& placement);

// The window's extents in twips as a record, rounded. Raises Overflow outside 16 bits.
WindowPlacement PlacementFrom(double widthTwips, double heightTwips, double leftTwips, double topTwips);

// True if the window is to open maximised instead of at `placement`.
bool OpensMaximised(const WindowPlacement& placement);

}  // namespace zq
