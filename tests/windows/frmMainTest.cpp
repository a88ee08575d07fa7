// The main window's start and shutdown, step by step, against fakes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ole2.h>

#include <algorithm>

#include "controls/MessageLoop.h"
#include "core/main/frmMain.h"
#include "core/state/Settings.h"
#include "platform/RunTimeError.h"
#include "reports/frmPrintReport.h"
#include "support/driver/Drop.h"
#include "support/fakes/FakePlatform.h"
#include "wipe/frmStatus.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

class frmMainTest : public testing::Test {
 protected:
  void SetUp() override {
    fake_.files.AddFolder("C:\\Zeroquill");
    Default<frmMain>::SetFactory([this] { return std::make_unique<frmMain>(state_, fake_.platform); });
  }
  void TearDown() override {
    state_.QuickBinBusy = false;
    state_.Settings.PromptToSave = 0;
    if (Default<frmPrintReport>::IsLoaded()) Default<frmPrintReport>::Touch().Unload();
    if (Default<frmMain>::IsLoaded()) Default<frmMain>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmMain& Load() { return Default<frmMain>::Touch(); }
  bool Ended() const {
    return std::find(fake_.files.log.begin(), fake_.files.log.end(), "end") != fake_.files.log.end();
  }
  std::string Content(const std::string& name) { return fake_.files.Read("C:\\Zeroquill\\" + name); }
  void PutSettings(const SettingsRecord& settings, const WindowPlacement& placement) {
    fake_.files.AddFile("C:\\Zeroquill\\Settings.dat", EncodeSettings(settings));
    fake_.files.AddFile("C:\\Zeroquill\\Settings2.dat", EncodePlacement(placement));
    fake_.files.AddFile("C:\\Zeroquill\\sfrun.dat");
  }

  FakePlatform fake_;
  AppState state_;
};

TEST_F(frmMainTest, FirstStartWritesTheSettingsAndMakesTheFolders) {
  Load();
  EXPECT_EQ(Content("Settings.dat").size(), kSettingsBytes);
  EXPECT_EQ(Content("Settings2.dat"), std::string(kPlacementBytes, '\0'));
  EXPECT_TRUE(fake_.files.Exists("C:\\Zeroquill\\Jobs"));
  EXPECT_TRUE(fake_.files.Exists("C:\\Zeroquill\\Report"));
  EXPECT_EQ(state_.AppFolder, "C:\\Zeroquill\\");
  EXPECT_FALSE(Ended());
}

TEST_F(frmMainTest, SecondInstanceEndsWithoutSavingAnything) {
  fake_.process.earlierInstanceRuns = true;
  EXPECT_THROW(Load(), RunTimeError) << "the process would have ended by now";
  EXPECT_TRUE(state_.SecondInstance);
  EXPECT_EQ(fake_.files.log, std::vector<std::string>{"end"});
}

TEST_F(frmMainTest, CommandLineBecomesRowsOfTheJob) {
  fake_.files.AddFileOfLength("C:\\a b.txt", 1500);
  fake_.process.commandLine = "\"C:\\a b.txt\" C:\\none.doc";
  frmMain& main = Load();
  ASSERT_EQ(main.Jobs().Count(), 2U);
  EXPECT_EQ(main.Jobs().Row(1).NameAndLocation, "C:\\a b.txt");
  EXPECT_EQ(main.Jobs().Row(1).Size, "1.46 KB");
  EXPECT_EQ(main.Jobs().Row(2).Size, "0 Bytes");
  EXPECT_EQ(main.Jobs().SelectedRow(), 1);
  EXPECT_FALSE(state_.JobSaved);
  // At once, since the status bar tells the number of items by now.
  EXPECT_EQ(main.ListView1.RowCount(), 2);
  EXPECT_EQ(main.ListView1.SelectedRow(), 1);
}

TEST_F(frmMainTest, ListIsADropTargetWhereTheShellReachesIt) {
  frmMain& main = Load();
  EXPECT_THAT(fake_.log, Not(Contains(StartsWith("allow"))));
  EXPECT_THAT(fake_.log, Not(Contains("accept files")));
  EXPECT_EQ(::RevokeDragDrop(main.ListView1.Handle()), S_OK) << "it was registered";
}

TEST_F(frmMainTest, ListTakesDropsAsMessagesWhereTheShellIsHeldBack) {
  fake_.shellDrops.heldBack = true;
  PutSettings({}, {.Width = 12000, .Height = 6000, .Left = 0, .Top = 0});
  frmMain& main = Load();
  main.Show();
  const HWND list = main.ListView1.Handle();
  EXPECT_THAT(fake_.log, IsSupersetOf({"allow 233", "allow 4a", "allow 49", "accept files"}));
  EXPECT_EQ(fake_.shellDrops.window, reinterpret_cast<WindowHandle>(list));
  EXPECT_EQ(::RevokeDragDrop(list), DRAGDROP_E_NOTREGISTERED);

  fake_.files.AddFileOfLength("C:\\dropped.txt", 1500);
  const std::vector<char> bytes = DropFilesBytes({"C:\\dropped.txt"});
  const HGLOBAL memory = ::GlobalAlloc(GMEM_FIXED, bytes.size());
  std::copy(bytes.begin(), bytes.end(), static_cast<char*>(memory));
  ::PostMessageW(list, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
  PumpMessages();
  ::GlobalFree(memory);
  ASSERT_EQ(main.Jobs().Count(), 1U);
  EXPECT_EQ(main.Jobs().Row(1).NameAndLocation, "C:\\dropped.txt");
  EXPECT_TRUE(main.DockStudio1.IsEnabled("WipeNow"));
}

TEST_F(frmMainTest, ListStaysADropTargetWhereItCannotBeOpened) {
  fake_.shellDrops.heldBack = true;
  fake_.shellDrops.refused = WM_DROPFILES;
  frmMain& main = Load();
  EXPECT_THAT(fake_.log, Not(Contains("accept files")));
  EXPECT_EQ(::RevokeDragDrop(main.ListView1.Handle()), S_OK);
}

TEST_F(frmMainTest, CloseIsRefusedWhileTheBinWipesButTheJobIsGone) {
  fake_.process.commandLine = "C:\\some.txt";
  frmMain& main = Load();
  state_.Settings.PromptToSave = 0;
  state_.QuickBinBusy = true;
  fake_.files.log.clear();
  ::SendMessageA(static_cast<Form&>(main).Handle(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(Default<frmMain>::IsLoaded());
  EXPECT_EQ(main.Jobs().Count(), 0U);
  EXPECT_TRUE(state_.JobSaved);
  EXPECT_FALSE(Ended());
  EXPECT_EQ(std::count(fake_.files.log.begin(), fake_.files.log.end(), "record C:\\Zeroquill\\Settings.dat"),
            0);
}

TEST_F(frmMainTest, ShutdownWritesSettingsThenPlacementThenEnds) {
  SettingsRecord settings;
  settings.Passes = 7;
  PutSettings(settings, {.Width = 9000, .Height = 6000, .Left = 600, .Top = 450});
  frmMain& main = Load();
  fake_.files.log.clear();
  main.Unload();
  const auto at = [&](const std::string& line) {
    return std::find(fake_.files.log.begin(), fake_.files.log.end(), line) - fake_.files.log.begin();
  };
  EXPECT_LT(at("record C:\\Zeroquill\\Settings.dat"), at("record C:\\Zeroquill\\Settings2.dat"));
  EXPECT_LT(at("record C:\\Zeroquill\\Settings2.dat"), at("end"));
  EXPECT_TRUE(Ended());
  EXPECT_EQ(Content("Settings.dat"), EncodeSettings(settings));
}

TEST_F(frmMainTest, SessionEndThatIsCalledOffKeepsTheJob) {
  fake_.process.commandLine = "C:\\some.txt";
  frmMain& main = Load();
  state_.Settings.PromptToSave = 0;
  fake_.files.log.clear();
  const HWND window = static_cast<Form&>(main).Handle();
  EXPECT_EQ(::SendMessageW(window, WM_QUERYENDSESSION, 0, 0), TRUE);
  EXPECT_EQ(main.Jobs().Count(), 1U);
  ::SendMessageW(window, WM_ENDSESSION, FALSE, 0);
  EXPECT_EQ(main.Jobs().Count(), 1U);
  EXPECT_FALSE(state_.JobSaved);
  EXPECT_FALSE(Ended());
  EXPECT_TRUE(fake_.files.log.empty());
}

TEST_F(frmMainTest, SessionEndSavesAsAnyExitDoes) {
  fake_.process.commandLine = "C:\\some.txt";
  frmMain& main = Load();
  fake_.files.log.clear();
  const HWND window = static_cast<Form&>(main).Handle();
  fake_.boxes.answers = {MessageAnswer::Cancel};
  EXPECT_EQ(::SendMessageW(window, WM_QUERYENDSESSION, 0, 0), FALSE);
  EXPECT_EQ(main.Jobs().Count(), 1U);
  fake_.boxes.answers = {MessageAnswer::No};
  EXPECT_EQ(::SendMessageW(window, WM_QUERYENDSESSION, 0, 0), TRUE);
  ::SendMessageW(window, WM_ENDSESSION, TRUE, 0);
  EXPECT_EQ(fake_.files.log,
            (std::vector<std::string>{"box Save", "box Save", "record C:\\Zeroquill\\Settings.dat",
                                      "record C:\\Zeroquill\\Settings2.dat",
                                      "write C:\\Zeroquill\\Zeroquill.dsl", "end"}));
  EXPECT_EQ(main.Jobs().Count(), 0U);
}

TEST_F(frmMainTest, SessionEndIsRefusedWhileAWipeRunsAndWhenForcedLeavesItsRowsAlone) {
  // The file is there for the driver alone: the engine finds none at this path.
  fake_.files.AddFile("C:\\none of this machine.txt", "x");
  fake_.process.commandLine = "\"C:\\none of this machine.txt\"";
  frmMain& main = Load();
  Default<frmStatus>::SetFactory(
      [&] { return std::make_unique<frmStatus>(state_, fake_.platform, main.Driver()); });
  Default<frmPrintReport>::SetFactory(
      [this] { return std::make_unique<frmPrintReport>(state_, fake_.platform); });
  state_.Settings.PromptToSave = 0;
  const HWND window = static_cast<Form&>(main).Handle();
  int asked = 0;
  fake_.process.onPump = [&] {
    if (asked++ > 0) return;
    EXPECT_EQ(::SendMessageW(window, WM_QUERYENDSESSION, 0, 0), FALSE);
    EXPECT_EQ(main.Jobs().Count(), 1U);
    EXPECT_FALSE(Ended());
    // With the power failing, say, the system doesn't mind the refusal.
    ::SendMessageW(window, WM_ENDSESSION, TRUE, static_cast<LPARAM>(ENDSESSION_CRITICAL));
    EXPECT_EQ(main.Jobs().Count(), 1U) << "the wipe still walks them";
    EXPECT_TRUE(Ended());
  };
  fake_.boxes.answers = {MessageAnswer::Ok, MessageAnswer::No};
  main.DockStudio1.ToolClick("WipeNow");
  EXPECT_GT(asked, 0);
  fake_.process.onPump = nullptr;
}

TEST_F(frmMainTest, PlacementComesBackAsItWasSaved) {
  const WindowPlacement placement{.Width = 9000, .Height = 6000, .Left = 600, .Top = 450};
  PutSettings({}, placement);
  frmMain& main = Load();
  main.Show();
  EXPECT_FALSE(::IsZoomed(static_cast<Form&>(main).Handle()));
  main.Unload();
  EXPECT_EQ(DecodePlacement(Content("Settings2.dat")), placement);
}

TEST_F(frmMainTest, NoPlacementOpensMaximisedAndSavesNone) {
  PutSettings({}, {});
  frmMain& main = Load();
  main.Show();
  EXPECT_TRUE(::IsZoomed(static_cast<Form&>(main).Handle()));
  main.Unload();
  EXPECT_EQ(Content("Settings2.dat"), std::string(kPlacementBytes, '\0'));
}

TEST_F(frmMainTest, NegativeWidthOpensMaximised) {
  PutSettings({}, {.Width = -1, .Height = 6000, .Left = 600, .Top = 450});
  frmMain& main = Load();
  main.Show();
  EXPECT_TRUE(::IsZoomed(static_cast<Form&>(main).Handle()));
}

TEST_F(frmMainTest, MaximiseSettingKeepsTheOldPlacementOnDisc) {
  SettingsRecord settings;
  settings.Maximize = 1;
  const WindowPlacement placement{.Width = 9000, .Height = 6000, .Left = 600, .Top = 450};
  PutSettings(settings, placement);
  frmMain& main = Load();
  main.Show();
  EXPECT_TRUE(::IsZoomed(static_cast<Form&>(main).Handle()));
  main.Unload();
  EXPECT_EQ(DecodePlacement(Content("Settings2.dat")), placement);
}

TEST_F(frmMainTest, MinimisedWindowSavesThePlaceItComesBackTo) {
  const WindowPlacement placement{.Width = 9000, .Height = 6000, .Left = 600, .Top = 450};
  PutSettings({}, placement);
  frmMain& main = Load();
  main.Show();
  ::ShowWindow(static_cast<Form&>(main).Handle(), SW_MINIMIZE);
  main.Unload();
  EXPECT_EQ(DecodePlacement(Content("Settings2.dat")), placement);
}

TEST_F(frmMainTest, GridLinesFollowTheSetting) {
  SettingsRecord settings;
  settings.GridLines = 1;
  PutSettings(settings, {});
  frmMain& main = Load();
  EXPECT_TRUE(ListView_GetExtendedListViewStyle(main.ListView1.Handle()) & LVS_EX_GRIDLINES);
}

TEST_F(frmMainTest, ColumnsTakeTheirWholeNumberShareOfTheList) {
  PutSettings({}, {.Width = 9000, .Height = 6000, .Left = 0, .Top = 0});
  frmMain& main = Load();
  main.Show();
  RECT rect{};
  ::GetWindowRect(main.ListView1.Handle(), &rect);
  const int width = rect.right - rect.left;
  EXPECT_EQ(main.ListView1.ColumnWidth(0), width / 2);
  EXPECT_EQ(main.ListView1.ColumnWidth(1), width / 7);
  EXPECT_EQ(main.ListView1.ColumnWidth(2), width / 6);
  EXPECT_EQ(main.ListView1.ColumnWidth(3), width / 6);
}

TEST_F(frmMainTest, UnreadableSettingsThatCannotBeWrittenAnewEndTheStart) {
  PutSettings({}, {});
  fake_.files.unreadable.insert("C:\\Zeroquill\\Settings.dat");
  fake_.files.unwritable.insert("C:\\Zeroquill\\Settings.dat");
  EXPECT_THROW(Load(), RunTimeError);
}

TEST_F(frmMainTest, AllRowsOfAFullListAreShown) {
  frmMain& main = Load();
  for (int i = 0; i < 32767; ++i) {
    JobRow row;
    row.NameAndLocation = "C:\\file" + std::to_string(i);
    main.Jobs().Add(row);
  }
  PumpMessages();
  EXPECT_EQ(main.ListView1.RowCount(), 32767);
  main.Jobs().Clear();
  EXPECT_EQ(main.ListView1.RowCount(), 0) << "told at once, or it would ask for rows that are gone";
}

}  // namespace
}  // namespace zq::test
