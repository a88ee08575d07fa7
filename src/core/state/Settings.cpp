#include "core/state/Settings.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "core/state/DataFolder.h"
#include "core/state/ManagerNames.h"
#include "platform/NumberFormat.h"
#include "platform/Registry.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr const char* kSettingsFile = "Settings.dat";
constexpr const char* kPlacementFile = "Settings2.dat";

constexpr std::string_view kManagerProgramUpper = "ZQEXMAN.EXE";

// The fields of each record in the order of its file: the one place that knows the layout.
template <typename Record, typename Visit>
requires std::is_same_v<std::remove_const_t<Record>, SettingsRecord>
void VisitFields(Record& settings, Visit&& visit) {
  visit(settings.Passes);
  visit(settings.LastFolder);
  visit(settings.LastFilesFolder);
  visit(settings.GridLines);
  visit(settings.Maximize);
  visit(settings.PromptToSave);
  visit(settings.ReportFontSize);
  visit(settings.SkipNewJobNote);
  visit(settings.IncludeSubFolders);
  visit(settings.ExplorerManager);
  visit(settings.ToolBars);
  visit(settings.ProgressBars);
}

template <typename Record, typename Visit>
requires std::is_same_v<std::remove_const_t<Record>, WindowPlacement>
void VisitFields(Record& placement, Visit&& visit) {
  visit(placement.Width);
  visit(placement.Height);
  visit(placement.Left);
  visit(placement.Top);
}

class FieldWriter {
 public:
  template <typename Integer>
  void operator()(const Integer& value) {
    const auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
    for (std::size_t i = 0; i < sizeof(Integer); ++i) bytes_ += static_cast<char>((bits >> (8 * i)) & 0xFF);
  }
  void operator()(const FixedText<kFolderTextBytes>& text) { bytes_ += text.View(); }

  std::string Take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class RecordFieldReader {
 public:
  explicit RecordFieldReader(std::string_view bytes) : rest_(bytes) {}

  template <typename Integer>
  void operator()(Integer& value) {
    std::make_unsigned_t<Integer> bits = 0;
    for (std::size_t i = sizeof(Integer); i-- > 0;) {
      bits = static_cast<decltype(bits)>((std::uint32_t{bits} << 8) | static_cast<unsigned char>(rest_[i]));
    }
    value = static_cast<Integer>(bits);
    rest_.remove_prefix(sizeof(Integer));
  }
  void operator()(FixedText<kFolderTextBytes>& text) {
    text = rest_.substr(0, kFolderTextBytes);
    rest_.remove_prefix(kFolderTextBytes);
  }

 private:
  std::string_view rest_;
};

template <typename Record>
std::string Encode(const Record& record) {
  FieldWriter writer;
  VisitFields(record, writer);
  return writer.Take();
}

template <typename Record>
Record Decode(std::string_view bytes, std::size_t recordBytes) {
  if (bytes.size() != recordBytes) throw RunTimeError(ErrorNumber::InputPastEndOfFile);
  Record record;
  VisitFields(record, RecordFieldReader(bytes));
  return record;
}

// Whether the Explorer Manager is registered to start with the system. The registry alone knows:
// what the settings file says about it is never used.
bool ManagerIsRegistered(Registry& registry) {
  std::string command = ReadRegistryString(registry, RegistryHive::LocalMachine, kRunKey, kManagerRunValue);
  // The name that is looked for is ASCII, so no other letters need folding.
  std::transform(command.begin(), command.end(), command.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return command.find(kManagerProgramUpper) != std::string::npos;
}

// A placement file that isn't there yet is made, without content, and reads as no placement saved.
WindowPlacement ReadPlacement(const DataFolder& folder) {
  if (!folder.HasFile(kPlacementFile)) folder.Write(kPlacementFile, {});
  const std::string bytes = folder.Read(kPlacementFile);
  return bytes.empty() ? WindowPlacement{} : DecodePlacement(bytes);
}

// Puts the defaults in place and writes both files. The folder of the last files isn't among the
// defaults: it stays as it is in memory.
void SetDefaults(const DataFolder& folder, std::int16_t explorerManager, LoadedSettings& loaded) {
  SettingsRecord defaults;
  defaults.LastFilesFolder = loaded.settings.LastFilesFolder;
  defaults.ExplorerManager = explorerManager;
  loaded.settings = defaults;
  loaded.placement = {};
  WriteSettings(folder, loaded.settings);
  WritePlacement(folder, loaded.placement);
}

}  // namespace

std::string EncodeSettings(const SettingsRecord& settings) {
  return Encode(settings);
}

SettingsRecord DecodeSettings(std::string_view bytes) {
  return Decode<SettingsRecord>(bytes, kSettingsBytes);
}

std::string EncodePlacement(const WindowPlacement& placement) {
  return Encode(placement);
}

WindowPlacement DecodePlacement(std::string_view bytes) {
  return Decode<WindowPlacement>(bytes, kPlacementBytes);
}

LoadedSettings LoadSettings(const DataFolder& folder, Registry& registry) {
  LoadedSettings loaded;
  const std::int16_t explorerManager = ManagerIsRegistered(registry) ? 1 : 0;
  try {
    if (!folder.HasFile(kSettingsFile)) {
      SetDefaults(folder, explorerManager, loaded);
    } else {
      loaded.settings = DecodeSettings(folder.Read(kSettingsFile));
      loaded.settings.ExplorerManager = explorerManager;
      loaded.placement = ReadPlacement(folder);
    }
    loaded.firstRun = !folder.HasFile(kFirstRunMarker);
  } catch (const RunTimeError&) {
    // `firstRun` stays false: no welcome on top of a failure.
    SetDefaults(folder, explorerManager, loaded);
  }
  return loaded;
}

void WriteSettings(const DataFolder& folder, const SettingsRecord& settings) {
  folder.WriteRecord(kSettingsFile, EncodeSettings(settings));
}

void WritePlacement(const DataFolder& folder, const WindowPlacement& placement) {
  folder.WriteRecord(kPlacementFile, EncodePlacement(placement));
}

WindowPlacement PlacementFrom(double widthTwips, double heightTwips, double leftTwips, double topTwips) {
  return {RoundToInt16(widthTwips), RoundToInt16(heightTwips), RoundToInt16(leftTwips),
          RoundToInt16(topTwips)};
}

bool OpensMaximised(const WindowPlacement& placement) {
  return placement.IsNone() || placement.Width < 0;
}

}  // namespace zq
