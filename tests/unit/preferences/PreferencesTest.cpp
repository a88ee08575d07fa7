// What the preferences show, and what OK does, in its order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "core/state/Settings.h"
#include "platform/Platform.h"
#include "preferences/Preferences.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Zeroquill\\Settings.dat";
constexpr const char* kWritten = "record C:\\Zeroquill\\Settings.dat";
constexpr const char* kRemoved = "registry: -Zeroquill Explorer Manager";
constexpr const char* kRegistered = "registry: Zeroquill Explorer Manager = C:\\Zeroquill\\ZQExMan.exe";

const Message kWarning{
    "Shutting down the Zeroquill Explorer Manager will remove the right click menu integration with Windows "
    "as "
    "well as the Recycle Bin Wiping option.\r\n\r\nAre you sure you wish to remove the Manager from system "
    "startup?",
    "Explorer Manager", MessageIcon::Question, MessageButtons::OkCancel};

SettingsRecord NothingTicked() {
  SettingsRecord settings;
  settings.PromptToSave = settings.ToolBars = settings.ProgressBars = 0;
  return settings;
}

class PreferencesTest : public testing::Test, protected test::FakePlatform {
 protected:
  PreferencesTest() {
    state.AppFolder = "C:\\Zeroquill\\";
    files.AddFolder("C:\\Zeroquill");
    registry.log = &log;
  }
  PreferencesFields LoadWith(std::int16_t explorerManager) {
    state.Settings.ExplorerManager = explorerManager;
    return preferences.Load();
  }
  SettingsRecord OnDisc() { return DecodeSettings(files.Find(kFile)->content); }

  AppState state;
  test::FakeMainWindow mainWindow{log};
  Preferences preferences{state, platform, mainWindow};
};

TEST_F(PreferencesTest, ShowEachSettingInItsOwnField) {
  EXPECT_EQ(FieldsOf(NothingTicked()), (PreferencesFields{.level = 3, .reportFontSize = "8"}));
  const std::pair<std::int16_t SettingsRecord::*, std::int16_t PreferencesFields::*> kBoxes[] = {
      {&SettingsRecord::GridLines, &PreferencesFields::gridLines},
      {&SettingsRecord::Maximize, &PreferencesFields::maximize},
      {&SettingsRecord::PromptToSave, &PreferencesFields::promptToSave},
      {&SettingsRecord::ExplorerManager, &PreferencesFields::explorerManager},
      {&SettingsRecord::ProgressBars, &PreferencesFields::progressBars},
      {&SettingsRecord::ToolBars, &PreferencesFields::toolBars}};
  for (const auto& [setting, field] : kBoxes) {
    SettingsRecord settings = NothingTicked();
    PreferencesFields fields{.level = 3, .reportFontSize = "8"};
    settings.*setting = 1;
    fields.*field = 1;
    EXPECT_EQ(FieldsOf(settings), fields);
    settings.*setting = -1;
    fields.*field = 0;
    EXPECT_EQ(FieldsOf(settings), fields) << "ticked is 1 alone";
  }
}

TEST_F(PreferencesTest, ShowALevelThatIsNotOfferedAsSeven) {
  for (const auto& [passes, level] : {std::pair{3, 3}, {5, 5}, {7, 7}, {0, 7}, {4, 7}, {-1, 7}, {9, 7}}) {
    state.Settings.Passes = passes;
    EXPECT_EQ(FieldsOf(state.Settings).level, level) << passes;
  }
}

TEST_F(PreferencesTest, ShowAFontSizeThatIsNotOfferedAsTwelve) {
  const std::pair<std::int16_t, const char*> kSizes[] = {{8, "8"},  {10, "10"}, {12, "12"},
                                                         {9, "12"}, {0, "12"},  {-8, "12"}};
  for (const auto& [size, text] : kSizes) {
    state.Settings.ReportFontSize = size;
    EXPECT_EQ(FieldsOf(state.Settings).reportFontSize, text) << size;
  }
}

TEST_F(PreferencesTest, OkTakesEachFieldIntoItsOwnSetting) {
  state.Settings.LastFolder = "C:\\Papers";
  state.Settings.SkipNewJobNote = 1;
  SettingsRecord wanted = state.Settings;
  preferences.Load();
  preferences.Store({.level = 5, .reportFontSize = "10"});
  wanted.Passes = 5;
  wanted.ReportFontSize = 10;
  wanted.PromptToSave = wanted.ToolBars = wanted.ProgressBars = 0;
  EXPECT_EQ(state.Settings, wanted) << "the others stay";

  const std::pair<std::int16_t SettingsRecord::*, std::int16_t PreferencesFields::*> kBoxes[] = {
      {&SettingsRecord::GridLines, &PreferencesFields::gridLines},
      {&SettingsRecord::Maximize, &PreferencesFields::maximize},
      {&SettingsRecord::PromptToSave, &PreferencesFields::promptToSave},
      {&SettingsRecord::ProgressBars, &PreferencesFields::progressBars},
      {&SettingsRecord::ToolBars, &PreferencesFields::toolBars}};
  for (const auto& [setting, field] : kBoxes) {
    PreferencesFields fields{.level = 5, .reportFontSize = "10"};
    fields.*field = 1;
    preferences.Store(fields);
    SettingsRecord one = wanted;
    one.*setting = 1;
    EXPECT_EQ(state.Settings, one);
    EXPECT_EQ(OnDisc(), one);
  }
}

TEST_F(PreferencesTest, OkStoresWhatIsShownForWhatIsNotOffered) {
  state.Settings.Passes = 4;
  state.Settings.ReportFontSize = 9;
  preferences.Store(preferences.Load());
  EXPECT_EQ(state.Settings.Passes, 7);
  EXPECT_EQ(state.Settings.ReportFontSize, 12);
}

TEST_F(PreferencesTest, OkWithoutAChangeSetsLinesAndLookAndWritesTheFile) {
  preferences.Store(preferences.Load());
  EXPECT_THAT(log, ElementsAre("main: no grid lines", "main: visual style 1", kWritten));
  EXPECT_EQ(files.Find(kFile)->content.size(), kSettingsBytes);
  log.clear();
  state.Settings.GridLines = 1;
  state.Settings.ToolBars = 0;
  preferences.Store(preferences.Load());
  EXPECT_THAT(log, ElementsAre("main: grid lines", "main: visual style 0", kWritten));
}

TEST_F(PreferencesTest, FileThatCannotBeWrittenRaisesAndTheSettingsHoldInMemory) {
  files.unwritable = {kFile};
  PreferencesFields fields = LoadWith(1);
  fields.level = 5;
  fields.explorerManager = 0;
  test::ExpectRaises(ErrorNumber::PathFileAccessError, [&] { preferences.Store(fields); });
  EXPECT_EQ(state.Settings.Passes, 5);
  EXPECT_EQ(state.Settings.ExplorerManager, 0);
  EXPECT_THAT(log, ElementsAre("main: no grid lines", "main: visual style 1", kWritten))
      << "nothing is done to the manager";
}

TEST_F(PreferencesTest, TickedBoxRegistersAndOffersToLaunch) {
  PreferencesFields fields = LoadWith(0);
  fields.explorerManager = 1;
  boxes.answers = {MessageAnswer::No};
  preferences.Store(fields);
  EXPECT_THAT(log, ElementsAre("main: no grid lines", "main: visual style 1", kWritten, kRegistered,
                               "box Explorer Manager"));
  EXPECT_EQ(OnDisc().ExplorerManager, 1);
}

TEST_F(PreferencesTest, TickedBoxRegistersAManagerThatRunsAndOffersNothing) {
  systemWindows.windows = {{"ZQ Explorer Manager"}};
  PreferencesFields fields = LoadWith(0);
  fields.explorerManager = 1;
  preferences.Store(fields);
  EXPECT_EQ(log.back(), kRegistered);
}

TEST_F(PreferencesTest, ClearedBoxRemovesAndShutsDown) {
  systemWindows.windows = {{"ZQ Explorer Manager"}};
  PreferencesFields fields = LoadWith(1);
  fields.explorerManager = 0;
  preferences.Store(fields);
  EXPECT_THAT(
      log, ElementsAre("main: no grid lines", "main: visual style 1", kWritten, kRemoved, "close window 1"));
  EXPECT_EQ(OnDisc().ExplorerManager, 0);
}

TEST_F(PreferencesTest, BoxAsItWasTouchesNeitherRegistryNorManager) {
  systemWindows.windows = {{"ZQ Explorer Manager"}};
  for (const std::int16_t registered : {std::int16_t{0}, std::int16_t{1}}) {
    log.clear();
    preferences.Store(LoadWith(registered));
    EXPECT_EQ(log.back(), kWritten) << registered;
  }
}

TEST_F(PreferencesTest, EachOpeningComparesWithItsOwnStart) {
  boxes.answers = {MessageAnswer::No};
  PreferencesFields fields = LoadWith(0);
  fields.explorerManager = 1;
  preferences.Store(fields);
  log.clear();
  preferences.Store(preferences.Load());
  EXPECT_EQ(log.back(), kWritten) << "it is registered by now";
}

TEST_F(PreferencesTest, LoadingAsksNothing) {
  LoadWith(1);
  LoadWith(0);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(PreferencesTest, UntickingARegisteredManagerAsks) {
  LoadWith(1);
  boxes.answers = {MessageAnswer::Cancel};
  EXPECT_EQ(preferences.chkManager_Click(0), 1) << "ticked again";
  boxes.answers = {MessageAnswer::Ok};
  EXPECT_EQ(preferences.chkManager_Click(0), 0);
  EXPECT_THAT(boxes.shown, ElementsAre(kWarning, kWarning));
  EXPECT_THAT(log, ElementsAre("box Explorer Manager", "box Explorer Manager")) << "nothing is removed yet";
}

TEST_F(PreferencesTest, TickingNeverAsksNorDoesUntickingWhatWasClear) {
  LoadWith(1);
  EXPECT_EQ(preferences.chkManager_Click(1), 1);
  LoadWith(0);
  EXPECT_EQ(preferences.chkManager_Click(1), 1);
  EXPECT_EQ(preferences.chkManager_Click(0), 0);
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(PreferencesTest, UntickedAndTickedAgainNothingHappens) {
  PreferencesFields fields = LoadWith(1);
  boxes.answers = {MessageAnswer::Ok};
  EXPECT_EQ(preferences.chkManager_Click(0), 0);
  fields.explorerManager = preferences.chkManager_Click(1);
  log.clear();
  preferences.Store(fields);
  EXPECT_EQ(log.back(), kWritten);
}

}  // namespace
}  // namespace zq
