#include "preferences/Preferences.h"

#include <charconv>

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/MainWindow.h"
#include "core/state/Settings.h"
#include "platform/MessageBoxes.h"

namespace zq {
namespace {

constexpr const char* kRemoveWarning =
    "Shutting down the Zeroquill Explorer Manager will remove the right click menu integration with Windows "
    "as "
    "well as the Recycle Bin Wiping option.";
constexpr const char* kRemoveQuestion = "Are you sure you wish to remove the Manager from system startup?";

std::int16_t Box(std::int16_t setting) {
  return setting == 1 ? 1 : 0;
}

std::int16_t NumberIn(const std::string& text) {
  std::int16_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

PreferencesFields FieldsOf(const SettingsRecord& settings) {
  return {.level = settings.Passes == 3 || settings.Passes == 5 ? settings.Passes : 7,
          .reportFontSize = settings.ReportFontSize == 8    ? kReportFontSizes[0]
                            : settings.ReportFontSize == 10 ? kReportFontSizes[1]
                                                            : kReportFontSizes[2],
          .gridLines = Box(settings.GridLines),
          .maximize = Box(settings.Maximize),
          .promptToSave = Box(settings.PromptToSave),
          .explorerManager = Box(settings.ExplorerManager),
          .progressBars = Box(settings.ProgressBars),
          .toolBars = Box(settings.ToolBars)};
}

PreferencesFields Preferences::Load() {
  PreferencesFields fields = FieldsOf(state_.Settings);
  ManagerWasRegistered = fields.explorerManager == 1;
  return fields;
}

// A warning alone: what it warns of happens at OK.
std::int16_t Preferences::chkManager_Click(std::int16_t value) {
  if (value != 0 || !ManagerWasRegistered) return value;
  const MessageAnswer answer =
      platform_.messageBoxes.Show({.text = std::string(kRemoveWarning) + kTwoLineBreaks + kRemoveQuestion,
                                   .title = "Explorer Manager",
                                   .icon = MessageIcon::Question,
                                   .buttons = MessageButtons::OkCancel});
  return answer == MessageAnswer::Ok ? 0 : 1;
}

void Preferences::Store(const PreferencesFields& fields) {
  SettingsRecord& settings = state_.Settings;
  settings.GridLines = fields.gridLines;
  mainWindow_.SetGridLines(fields.gridLines == 1);
  settings.Maximize = fields.maximize;
  settings.PromptToSave = fields.promptToSave;
  settings.ExplorerManager = fields.explorerManager;
  settings.ReportFontSize = NumberIn(fields.reportFontSize);
  settings.ProgressBars = fields.progressBars;
  settings.ToolBars = fields.toolBars;
  mainWindow_.SetVisualStyle(fields.toolBars == 1 ? 1 : 0);
  settings.Passes = fields.level;
  // Before the manager: whatever becomes of that, the settings are saved.
  WriteSettings(DataFolder(platform_.files, state_), settings);

  const bool registered = fields.explorerManager == 1;
  if (ManagerWasRegistered && !registered) {
    manager_.DeleteManagerRunValue();
    manager_.ShutDownManager();
  } else if (!ManagerWasRegistered && registered) {
    manager_.WriteManagerRunValue();
    manager_.OfferManagerLaunch();
  }
}

}  // namespace zq
