// The arrangement of the main window's bars, and the list that fills what they leave.
#include <gtest/gtest.h>

#include <algorithm>

#include "controls/BarLayout.h"
#include "controls/MessageLoop.h"
#include "core/main/frmMain.h"
#include "core/state/Settings.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

constexpr int kBands = 3;
const char* const kLayoutFile = "C:\\Zeroquill\\Zeroquill.dsl";

class DockStudioTest : public testing::Test {
 protected:
  void SetUp() override {
    fake_.files.AddFolder("C:\\Zeroquill");
    fake_.files.AddFile("C:\\Zeroquill\\Settings.dat", EncodeSettings({}));
    fake_.files.AddFile("C:\\Zeroquill\\Settings2.dat",
                        EncodePlacement({.Width = 12000, .Height = 6000, .Left = 0, .Top = 0}));
    fake_.files.AddFile("C:\\Zeroquill\\sfrun.dat");
    Default<frmMain>::SetFactory([this] { return std::make_unique<frmMain>(state_, fake_.platform); });
  }
  void TearDown() override {
    if (Default<frmMain>::IsLoaded()) Default<frmMain>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmMain& Open() {
    frmMain& main = Default<frmMain>::Touch();
    main.Show();
    PumpMessages();
    return main;
  }
  // What the bars are saved as, now.
  BarLayout Saved(frmMain& main) {
    main.DockStudio1.SaveLayout(fake_.files, kLayoutFile);
    return DecodeBarLayout(fake_.files.Read(kLayoutFile), kBands).value();
  }
  static std::int16_t Twips(int pixels) {
    return static_cast<std::int16_t>(::MulDiv(pixels, 1440, static_cast<int>(::GetDpiForSystem())));
  }
  static RECT PlaceOf(HWND window) {
    RECT rect{};
    ::GetWindowRect(window, &rect);
    return rect;
  }
  // The windows of a class below the main window, hidden ones too.
  static std::vector<HWND> Below(frmMain& main, const std::string& className) {
    std::pair<std::string, std::vector<HWND>> search{className, {}};
    ::EnumChildWindows(
        static_cast<Form&>(main).Handle(),
        [](HWND window, LPARAM param) -> BOOL {
          auto& wanted = *reinterpret_cast<std::pair<std::string, std::vector<HWND>>*>(param);
          char name[64] = "";
          ::GetClassNameA(window, name, sizeof name);
          if (wanted.first == name) wanted.second.push_back(window);
          return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.second;
  }

  FakePlatform fake_;
  AppState state_;
};

TEST_F(DockStudioTest, ShowsTheToolsInThreeBandsOnOneRowEachOfThemWhole) {
  frmMain& main = Open();
  const BarLayout layout = Saved(main);
  for (int i = 0; i < kBands; ++i) {
    EXPECT_EQ(layout[static_cast<std::size_t>(i)].band, i + 1);
    EXPECT_FALSE(layout[static_cast<std::size_t>(i)].newRow);
  }
  for (const HWND toolBar : Below(main, TOOLBARCLASSNAMEA)) {
    const auto count = static_cast<int>(::SendMessageA(toolBar, TB_BUTTONCOUNT, 0, 0));
    RECT last{};
    ::SendMessageA(toolBar, TB_GETITEMRECT, static_cast<WPARAM>(count - 1), reinterpret_cast<LPARAM>(&last));
    RECT bar{};
    ::GetClientRect(toolBar, &bar);
    EXPECT_LE(last.right, bar.right);
    EXPECT_LE(last.bottom, bar.bottom);
  }
}

TEST_F(DockStudioTest, SavedArrangementComesBackAtTheNextStart) {
  const BarLayout arranged{{3, false, 300}, {1, true, 140}, {2, false, 200}};
  fake_.files.AddFile(kLayoutFile, EncodeBarLayout(arranged));
  BarLayout layout = Saved(Open());
  // The last band of a row takes what is left of it.
  for (const std::size_t last : {0U, 2U}) {
    EXPECT_GE(layout[last].width, arranged[last].width);
    layout[last].width = arranged[last].width;
  }
  EXPECT_EQ(layout, arranged);
}

TEST_F(DockStudioTest, DamagedLayoutFileIsPassedOverInSilence) {
  const BarLayout design = Saved(Open());
  Default<frmMain>::Touch().Unload();
  const std::string_view damagedFiles[] = {"", "Zeroquill bars 1\r\nband 3 same row 10\r\n",
                                           std::string_view("\0\xFF\0 else", 8)};
  for (const std::string_view damaged : damagedFiles) {
    fake_.files.Write(kLayoutFile, std::string(damaged));
    EXPECT_EQ(Saved(Open()), design);
    Default<frmMain>::Touch().Unload();
  }
}

TEST_F(DockStudioTest, UnreadableLayoutFileIsPassedOverInSilence) {
  fake_.files.AddFile(kLayoutFile, EncodeBarLayout({{3, false, 300}, {1, true, 140}, {2, false, 200}}));
  fake_.files.unreadable.insert(kLayoutFile);
  Open().Unload();
  EXPECT_TRUE(fake_.boxes.shown.empty());
  EXPECT_EQ(fake_.files.log.back(), "end");
}

TEST_F(DockStudioTest, LayoutIsWrittenBehindTheSettingsFiles) {
  Open();
  fake_.files.log.clear();
  Default<frmMain>::Touch().Unload();
  EXPECT_EQ(fake_.files.log, (std::vector<std::string>{"record C:\\Zeroquill\\Settings.dat",
                                                       "record C:\\Zeroquill\\Settings2.dat",
                                                       std::string("write ") + kLayoutFile, "end"}));
}

TEST_F(DockStudioTest, LayoutThatCannotBeWrittenDoesNotHoldUpTheExit) {
  Open();
  fake_.files.unwritable.insert(kLayoutFile);
  Default<frmMain>::Touch().Unload();
  EXPECT_EQ(fake_.files.log.back(), "end");
}

TEST_F(DockStudioTest, ListFillsExactlyWhatTheBarsLeave) {
  for (const int width : {900, 500, 260, 140}) {
    // The user can't make it as narrow as the last ones; a saved place can.
    if (Default<frmMain>::IsLoaded()) Default<frmMain>::Touch().Unload();
    fake_.files.AddFile("C:\\Zeroquill\\Settings2.dat",
                        EncodePlacement({.Width = Twips(width), .Height = Twips(500), .Left = 0, .Top = 0}));
    frmMain& main = Open();
    EXPECT_EQ(PlaceOf(static_cast<Form&>(main).Handle()).right, width);
    RECT client{};
    ::GetClientRect(static_cast<Form&>(main).Handle(), &client);
    ::MapWindowPoints(static_cast<Form&>(main).Handle(), HWND_DESKTOP, reinterpret_cast<POINT*>(&client), 2);
    const RECT list = PlaceOf(main.ListView1.Handle());
    EXPECT_EQ(list.left, client.left) << width;
    EXPECT_EQ(list.right, client.right) << width;
    EXPECT_EQ(list.top, PlaceOf(Below(main, REBARCLASSNAMEA).at(0)).bottom) << width;
    EXPECT_EQ(list.bottom, PlaceOf(Below(main, STATUSCLASSNAMEA).at(0)).top) << width;
    EXPECT_EQ(main.ListView1.ColumnWidth(0), (list.right - list.left) / 2) << width;
    EXPECT_EQ(main.ListView1.ColumnWidth(1), (list.right - list.left) / 7) << width;
  }
}

TEST_F(DockStudioTest, ListGivesWayWhenABandBeginsARow) {
  frmMain& main = Open();
  const LONG before = PlaceOf(main.ListView1.Handle()).top;
  fake_.files.Write(kLayoutFile, EncodeBarLayout({{1, false, 200}, {2, true, 200}, {3, true, 300}}));
  main.DockStudio1.LoadLayout(fake_.files, kLayoutFile);
  PumpMessages();
  const LONG after = PlaceOf(main.ListView1.Handle()).top;
  EXPECT_GT(after, before + 60);
  EXPECT_EQ(after, PlaceOf(Below(main, REBARCLASSNAMEA).at(0)).bottom);
}

TEST_F(DockStudioTest, ToolsAreFoundByNameInWhateverBandTheyStand) {
  frmMain& main = Open();
  for (const char* tool : {"NewJob", "OpenJob", "AddFiles", "AddFolder", "WipeFreeSpace", "mnuFileNew"})
    EXPECT_TRUE(main.DockStudio1.IsEnabled(tool)) << tool;
  for (const char* tool : {"SaveJob", "WipeNow", "mnuFileSave", "none"})
    EXPECT_FALSE(main.DockStudio1.IsEnabled(tool)) << tool;
  main.DockStudio1.SetEnabled("WipeNow", true);
  EXPECT_TRUE(main.DockStudio1.IsEnabled("WipeNow"));
}

}  // namespace
}  // namespace zq::test
