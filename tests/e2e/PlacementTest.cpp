// What the program remembers from one run to the next: the window's place, and the settings.
#include "e2e/Zeroquill.h"

namespace zq::test {
namespace {

class Placement : public ZeroquillTest {
 protected:
  // Starts the program, lets `act` work on the main window, closes it, and gives the exit code.
  template <typename Act>
  unsigned Run(Act&& act) const {
    const Program program(exe_);
    const MainWindow main(program);
    act(main);
    main.window.Close();
    return program.WaitExit();
  }
};

// Where it is off every screen only the numbers matter.
void MoveTo(const MainWindow& main, RECT place) {
  ::SetWindowPos(main.window.Handle(), nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
  Await("the window to be moved", [&] {
    const RECT now = main.window.ScreenRect();
    return ::EqualRect(&now, &place) != 0;
  });
}

TEST_F(Placement, ComesBackExactlyAtTheNextStart) {
  Prepare();
  const RECT place{237, 141, 237 + 771, 141 + 503};
  EXPECT_EQ(Run([&](const MainWindow& main) {
              const RECT prepared = main.window.ScreenRect();
              EXPECT_EQ(PlacementFile::Of(prepared).Bytes(), ReadFileBytes(placementPath_));
              MoveTo(main, place);
            }),
            0u);
  // 15 twips a pixel at 96 dpi, 10 at 144.
  EXPECT_EQ(ReadFileBytes(placementPath_), PlacementFile::Of(place).Bytes());
  EXPECT_EQ(Run([&](const MainWindow& main) {
              const RECT now = main.window.ScreenRect();
              EXPECT_TRUE(::EqualRect(&now, &place))
                  << now.left << ' ' << now.top << ' ' << now.right << ' ' << now.bottom;
              EXPECT_FALSE(::IsZoomed(main.window.Handle()));
              TakePicture(main.window, "placement-main");
            }),
            0u);
}

// The file is in twips: what was saved at one resolution of the system comes back as large on paper at
// another.
TEST_F(Placement, SavedAtAnyResolutionIsReckonedByThatOfTheSystem) {
  Prepare();
  const PlacementFile saved{9000, 7500, 3000, 1500};
  WriteFileBytes(placementPath_, saved.Bytes());
  EXPECT_EQ(Run([&](const MainWindow& main) {
              const RECT now = main.window.ScreenRect();
              EXPECT_EQ(now.left, 3000 / TwipsPerPixel());
              EXPECT_EQ(now.top, 1500 / TwipsPerPixel());
              EXPECT_EQ(now.right - now.left, 9000 / TwipsPerPixel());
              EXPECT_EQ(now.bottom - now.top, 7500 / TwipsPerPixel());
            }),
            0u);
  EXPECT_EQ(ReadFileBytes(placementPath_), saved.Bytes());
}

TEST_F(Placement, IsFullOfZerosAfterAnExitFromAMaximisedWindow) {
  Prepare();
  Run([](const MainWindow& main) {
    main.window.Post(WM_SYSCOMMAND, SC_MAXIMIZE);
    Await("the window to be maximised", [&] { return ::IsZoomed(main.window.Handle()) != 0; });
    TakePicture(main.window, "placement-maximised");
  });
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'));
  Run([](const MainWindow& main) { EXPECT_TRUE(::IsZoomed(main.window.Handle())); });
}

TEST_F(Placement, OfAMinimisedWindowIsWhereItWouldComeBack) {
  Prepare();
  const std::string before = ReadFileBytes(placementPath_);
  Run([](const MainWindow& main) {
    main.window.Post(WM_SYSCOMMAND, SC_MINIMIZE);
    Await("the window to be minimised", [&] { return ::IsIconic(main.window.Handle()) != 0; });
  });
  EXPECT_EQ(ReadFileBytes(placementPath_), before);
}

TEST_F(Placement, StaysOnTheDiscWhereTheUserWantsAMaximisedWindow) {
  SettingsFile settings;
  settings.maximize = 1;
  Prepare(settings);
  const std::string before = ReadFileBytes(placementPath_);
  Run([](const MainWindow& main) { EXPECT_TRUE(::IsZoomed(main.window.Handle())); });
  EXPECT_EQ(ReadFileBytes(placementPath_), before);
  Run([](const MainWindow& main) {
    main.window.Post(WM_SYSCOMMAND, SC_RESTORE);
    Await("the window to be restored", [&] { return ::IsZoomed(main.window.Handle()) == 0; });
  });
  EXPECT_EQ(ReadFileBytes(placementPath_), before);
}

TEST_F(Placement, OfNegativeWidthOpensMaximised) {
  Prepare();
  WriteFileBytes(placementPath_, PlacementFile{-1, 6000, 1000, 1000}.Bytes());
  Run([](const MainWindow& main) { EXPECT_TRUE(::IsZoomed(main.window.Handle())); });
}

TEST_F(Placement, MissingIsMadeAndOpensMaximised) {
  Prepare();
  const std::string settings = ReadFileBytes(settingsPath_);
  ASSERT_TRUE(::DeleteFileA(placementPath_.c_str()));
  Run([&](const MainWindow& main) {
    EXPECT_TRUE(::IsZoomed(main.window.Handle()));
    EXPECT_TRUE(PathExists(placementPath_));
  });
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'));
  EXPECT_EQ(ReadFileBytes(settingsPath_), settings);
}

// A left edge beyond 32,767 twips: the system bounds a window's width by the screen, but not its place.
TEST_F(Placement, BeyondSixteenBitsEndsInAnOverflowBeforeAnythingIsWritten) {
  Prepare();
  const std::string placement = ReadFileBytes(placementPath_);
  const Program program(exe_);
  const MainWindow main(program);
  WriteFileBytes(settingsPath_, "not written yet");
  const int left = 32767 / TwipsPerPixel() + 1;
  MoveTo(main, {left, 100, left + 700, 600});
  main.window.Close();
  ExpectRunTimeError(program, "Run-time error '6':\r\n\r\nOverflow");
  EXPECT_EQ(ReadFileBytes(settingsPath_), "not written yet");
  EXPECT_EQ(ReadFileBytes(placementPath_), placement);
}

class Settings : public Placement {};

TEST_F(Settings, AreWrittenBackAsTheyWereRead) {
  SettingsFile settings;
  settings.passes = 12345;  // an odd number is kept
  settings.lastFolder = "C:\\Old Papers";
  settings.lastFilesFolder = "C:\\Größe\\";
  settings.gridLines = 1;
  settings.reportFontSize = 12;
  settings.skipNewJobNote = 1;
  settings.includeSubFolders = 1;
  settings.progressBars = 0;
  Prepare(settings);
  const std::string before = ReadFileBytes(settingsPath_);
  EXPECT_EQ(Run([](const MainWindow&) {}), 0u);
  EXPECT_EQ(ReadFileBytes(settingsPath_), before);
}

TEST_F(Settings, TakeTheExplorerManagerFromTheRegistryAlone) {
  constexpr char kRunKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
  constexpr char kValue[] = "Zeroquill Explorer Manager";
  constexpr char kCommand[] = "\"C:\\Program Files\\zqexman.exe\"";
  SettingsFile settings;
  settings.explorerManager = 1;
  Prepare(settings);
  ::RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kRunKey, kValue);  // of a run that was broken off
  Run([](const MainWindow&) {});
  EXPECT_EQ(ReadFileBytes(settingsPath_).substr(316, 2), std::string(2, '\0'));

  ASSERT_EQ(::RegSetKeyValueA(HKEY_LOCAL_MACHINE, kRunKey, kValue, REG_SZ, kCommand, sizeof kCommand), 0);
  Run([](const MainWindow&) {});
  EXPECT_EQ(::RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kRunKey, kValue), 0);
  EXPECT_EQ(ReadFileBytes(settingsPath_).substr(316, 2), std::string("\x01\0", 2));
}

TEST_F(Settings, ThatAreDamagedGiveWayToTheDefaultsWithoutAWelcome) {
  for (const std::string& damaged :
       {std::string(100, 'x'), std::string(), SettingsFile{}.Bytes() + "and more"}) {
    SCOPED_TRACE(damaged.size());
    Prepare();
    WriteFileBytes(settingsPath_, damaged);
    ASSERT_TRUE(::DeleteFileA(markerPath_.c_str()));
    const Program program(exe_);
    const MainWindow main(program);
    EXPECT_EQ(ReadFileBytes(settingsPath_), SettingsFile{}.Bytes());
    EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'));
    EXPECT_TRUE(::IsZoomed(main.window.Handle()));
    // A welcome would be there before this one.
    main.ChooseMenu('H', 'A');
    program.WaitWindow("About Zeroquill");
    EXPECT_FALSE(program.FindWindow("Welcome to Zeroquill"));
  }
}

TEST_F(Settings, WithADamagedPlacementGiveWayToTheDefaults) {
  SettingsFile settings;
  settings.passes = 7;
  Prepare(settings);
  WriteFileBytes(placementPath_, "five!");
  const Program program(exe_);
  const MainWindow main(program);
  EXPECT_EQ(ReadFileBytes(settingsPath_), SettingsFile{}.Bytes());
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'));
}

TEST_F(Settings, LockedAtTheStartEndTheProgramWithAReport) {
  SettingsFile settings;
  settings.passes = 7;
  Prepare(settings);
  const std::string before = ReadFileBytes(settingsPath_);
  {
    const HeldFile held(settingsPath_);
    const Program program(exe_);
    TakePicture(program.WaitBox("Zeroquill").window, "settings-locked");
    ExpectRunTimeError(program, "Run-time error '70':\r\n\r\nPermission denied");
  }
  EXPECT_EQ(ReadFileBytes(settingsPath_), before);
}

TEST_F(Settings, LockedAtTheExitEndTheProgramWithAReport) {
  Prepare();
  const std::string settings = ReadFileBytes(settingsPath_);
  const std::string placement = ReadFileBytes(placementPath_);
  const Program program(exe_);
  const MainWindow main(program);
  MoveTo(main, {50, 50, 700, 550});
  {
    const HeldFile held(settingsPath_);
    main.window.Close();
    ExpectRunTimeError(program, "Run-time error '70':\r\n\r\nPermission denied");
  }
  EXPECT_EQ(ReadFileBytes(settingsPath_), settings);
  EXPECT_EQ(ReadFileBytes(placementPath_), placement) << "the steps behind a failed one must not run";
}

// A folder of the file's name stands in for a file that may not be written: unlike a read-only mark, it
// holds for every user.
TEST_F(Settings, ThatCannotBeWrittenAtTheExitEndTheProgramWithAReport) {
  Prepare();
  const std::string placement = ReadFileBytes(placementPath_);
  const Program program(exe_);
  const MainWindow main(program);
  ASSERT_TRUE(::DeleteFileA(settingsPath_.c_str()));
  ASSERT_TRUE(::CreateDirectoryA(settingsPath_.c_str(), nullptr));
  MoveTo(main, {50, 50, 700, 550});
  main.window.Close();
  TakePicture(program.WaitBox("Zeroquill").window, "settings-path-error");
  ExpectRunTimeError(program, "Run-time error '75':\r\n\r\nPath/File access error");
  EXPECT_EQ(ReadFileBytes(placementPath_), placement) << "the steps behind a failed one must not run";
}

TEST_F(Settings, ShowGridLinesWhereTheyAreWanted) {
  SettingsFile settings;
  for (const bool wanted : {false, true}) {
    settings.gridLines = wanted ? 1 : 0;
    Prepare(settings);
    Run([&](const MainWindow& main) {
      const LRESULT style = main.list.TheWindow().Send(LVM_GETEXTENDEDLISTVIEWSTYLE);
      EXPECT_EQ((style & LVS_EX_GRIDLINES) != 0, wanted);
      if (wanted) TakePicture(main.window, "settings-grid-lines");
    });
  }
}

TEST_F(Settings, StartTheBarsWithoutVisualStyles) {
  SettingsFile settings;
  settings.toolBars = 0;
  Prepare(settings);
  EXPECT_EQ(Run([](const MainWindow& main) {
              EXPECT_FALSE(main.Tools().empty());
              TakePicture(main.window, "settings-plain-bars");
            }),
            0u);
}

}  // namespace
}  // namespace zq::test
