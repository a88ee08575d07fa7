// Preferences: what the dialog of the preferences shows of the settings, and what its OK makes of it.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Platform.h"
#include "preferences/ExplorerManager.h"

namespace zq {

struct AppState;
struct SettingsRecord;
class MainWindow;

inline constexpr const char* kReportFontSizes[] = {"8", "10", "12"};

// The dialog's controls. A box is 1 ticked, 0 clear.
struct PreferencesFields {
  std::int32_t level = 3;      // 3, 5 or 7
  std::string reportFontSize;  // one of kReportFontSizes
  std::int16_t gridLines = 0;
  std::int16_t maximize = 0;
  std::int16_t promptToSave = 0;
  std::int16_t explorerManager = 0;
  std::int16_t progressBars = 0;
  std::int16_t toolBars = 0;

  bool operator==(const PreferencesFields&) const = default;
};

// A level and a font size that aren't offered are shown as the last one that is.
PreferencesFields FieldsOf(const SettingsRecord& settings);

class Preferences {
 public:
  Preferences(AppState& state, Platform& platform, MainWindow& mainWindow)
      : state_(state), platform_(platform), mainWindow_(mainWindow), manager_(state, platform) {}

  // What the dialog opens with.
  PreferencesFields Load();

  // The user has clicked the manager's box, which is `value` now: what it is to be.
  std::int16_t chkManager_Click(std::int16_t value);

  // OK. Raises what the writing of the settings file raises; they hold in memory then, and nothing is done to
  // the manager.
  void Store(const PreferencesFields& fields);

 private:
  AppState& state_;
  Platform& platform_;
  MainWindow& mainWindow_;
  ExplorerManager manager_;
  bool ManagerWasRegistered = false;  // when the dialog opened
};

}  // namespace zq
