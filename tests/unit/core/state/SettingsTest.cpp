#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/Settings.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeRegistry.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FakeFiles;
using test::FakeRegistry;
using testing::IsEmpty;
using namespace std::string_literals;

const std::string kAppFolder = "C:\\Zeroquill\\";
const std::string kSettingsPath = kAppFolder + "Settings.dat";
const std::string kPlacementPath = kAppFolder + "Settings2.dat";
const std::string kMarkerPath = kAppFolder + "sfrun.dat";

SettingsRecord EachFieldDifferent() {
  SettingsRecord settings;
  settings.Passes = 0x04030201;
  settings.LastFolder = "C:\\Papers\\Old";
  settings.LastFilesFolder = "D:\\";
  settings.GridLines = 0x1101;
  settings.Maximize = 0x1202;
  settings.PromptToSave = 0x1303;
  settings.ReportFontSize = 0x1404;
  settings.SkipNewJobNote = -1;
  settings.IncludeSubFolders = 0x1606;
  settings.ExplorerManager = 0x1707;
  settings.ToolBars = -32768;
  settings.ProgressBars = 0x1909;
  return settings;
}

class LoadSettingsTest : public testing::Test {
 protected:
  LoadSettingsTest() {
    files.AddFolder("C:\\Zeroquill");
    state.AppFolder = kAppFolder;
  }

  void Register(const std::string& command, std::uint32_t type = kRegistryString) {
    registry.Set(RegistryHive::LocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion\\Run",
                 "Zeroquill Explorer Manager", {type, command});
  }

  LoadedSettings Load() { return LoadSettings(folder, registry); }

  const std::string& Content(const std::string& path) { return files.Find(path)->content; }

  void ExpectDefaultsOnDisc() {
    EXPECT_EQ(Content(kSettingsPath), EncodeSettings(SettingsRecord{}));
    EXPECT_EQ(Content(kPlacementPath), std::string(8, '\0'));
  }

  FakeFiles files;
  FakeRegistry registry;
  AppState state;
  DataFolder folder{files, state};
};

TEST(SettingsRecord, StandsInTheFileByteForByte) {
  const std::string bytes = EncodeSettings(EachFieldDifferent());
  ASSERT_EQ(bytes.size(), 322U);
  EXPECT_EQ(bytes.substr(0, 4), "\x01\x02\x03\x04");
  EXPECT_EQ(bytes.substr(4, 150), "C:\\Papers\\Old" + std::string(137, ' '));
  EXPECT_EQ(bytes.substr(154, 150), "D:\\" + std::string(147, ' '));
  EXPECT_EQ(bytes.substr(304, 2), "\x01\x11");
  EXPECT_EQ(bytes.substr(306, 2), "\x02\x12");
  EXPECT_EQ(bytes.substr(308, 2), "\x03\x13");
  EXPECT_EQ(bytes.substr(310, 2), "\x04\x14");
  EXPECT_EQ(bytes.substr(312, 2), "\xFF\xFF");
  EXPECT_EQ(bytes.substr(314, 2), "\x06\x16");
  EXPECT_EQ(bytes.substr(316, 2), "\x07\x17");
  EXPECT_EQ(bytes.substr(318, 2), "\x00\x80"s);
  EXPECT_EQ(bytes.substr(320, 2), "\x09\x19");
  EXPECT_EQ(DecodeSettings(bytes), EachFieldDifferent());
}

TEST(SettingsRecord, HasTheseBytesByDefault) {
  EXPECT_EQ(EncodeSettings(SettingsRecord{}), "\x03\0\0\0"s + std::string(150, ' ') + std::string(150, '\0') +
                                                  "\0\0"s      // GridLines
                                                  "\0\0"s      // Maximize
                                                  "\x01\0"s    // PromptToSave
                                                  "\x08\0"s    // ReportFontSize
                                                  "\0\0"s      // SkipNewJobNote
                                                  "\0\0"s      // IncludeSubFolders
                                                  "\0\0"s      // ExplorerManager
                                                  "\x01\0"s    // ToolBars
                                                  "\x01\0"s);  // ProgressBars
}

TEST(SettingsRecord, KeepsAnyBytesItReads) {
  std::string bytes(kSettingsBytes, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 37 + 200);
  EXPECT_EQ(EncodeSettings(DecodeSettings(bytes)), bytes);
  EXPECT_EQ(EncodeSettings(DecodeSettings(std::string(kSettingsBytes, '\xFF'))),
            std::string(kSettingsBytes, '\xFF'));
}

TEST(SettingsRecord, CutsAFolderAt150Bytes) {
  SettingsRecord settings;
  settings.LastFolder = "C:\\" + std::string(200, 'x');
  EXPECT_EQ(EncodeSettings(settings).substr(4, 150), "C:\\" + std::string(147, 'x'));
  settings.LastFolder = std::string(149, 'x') + "é";
  EXPECT_EQ(EncodeSettings(settings).substr(4, 150), std::string(149, 'x') + " ");
}

TEST(SettingsRecord, IsRefusedAtAnyOtherLength) {
  for (std::size_t length = 0; length <= 700; ++length) {
    if (length == kSettingsBytes) continue;
    SCOPED_TRACE(length);
    ExpectRaises(ErrorNumber::InputPastEndOfFile, [&] { DecodeSettings(std::string(length, ' ')); });
  }
}

TEST(WindowPlacement, StandsInTheFileByteForByte) {
  const WindowPlacement placement{0x0201, 0x0403, -2, -32768};
  EXPECT_EQ(EncodePlacement(placement), "\x01\x02\x03\x04\xFE\xFF\x00\x80"s);
  EXPECT_EQ(DecodePlacement(EncodePlacement(placement)), placement);
}

TEST(WindowPlacement, IsRefusedAtAnyOtherLength) {
  for (std::size_t length = 0; length <= 20; ++length) {
    if (length == kPlacementBytes) continue;
    SCOPED_TRACE(length);
    ExpectRaises(ErrorNumber::InputPastEndOfFile, [&] { DecodePlacement(std::string(length, ' ')); });
  }
}

TEST(WindowPlacement, TakesTheWindowsExtentsRounded) {
  EXPECT_EQ(PlacementFrom(8000.5, 6001.5, -120.4, 0), (WindowPlacement{8000, 6002, -120, 0}));
}

TEST(WindowPlacement, RaisesOverflowForAnExtentOutside16Bits) {
  ExpectRaises(ErrorNumber::Overflow, [] { PlacementFrom(32768, 0, 0, 0); });
  ExpectRaises(ErrorNumber::Overflow, [] { PlacementFrom(0, 40000, 0, 0); });
  ExpectRaises(ErrorNumber::Overflow, [] { PlacementFrom(0, 0, -32769, 0); });
  ExpectRaises(ErrorNumber::Overflow, [] { PlacementFrom(0, 0, 0, 1e9); });
}

TEST(WindowPlacement, OpensMaximisedWithNoneSavedOrANegativeWidth) {
  EXPECT_TRUE(OpensMaximised({}));
  EXPECT_TRUE(OpensMaximised({-1, 100, 100, 100}));
  EXPECT_TRUE(OpensMaximised({-32768, 0, 0, 0}));
  EXPECT_FALSE(OpensMaximised({1, 0, 0, 0}));
  EXPECT_FALSE(OpensMaximised({0, 1, 0, 0}));
  EXPECT_FALSE(OpensMaximised({0, 0, 1, 0}));
  EXPECT_FALSE(OpensMaximised({0, 0, 0, 1}));
  EXPECT_FALSE(OpensMaximised({8000, -6000, -100, -100}));
}

TEST_F(LoadSettingsTest, WritesDefaultsOnAFirstRun) {
  const LoadedSettings loaded = Load();
  EXPECT_EQ(loaded.settings, SettingsRecord{});
  EXPECT_TRUE(loaded.placement.IsNone());
  EXPECT_TRUE(loaded.firstRun);
  ExpectDefaultsOnDisc();
  EXPECT_FALSE(files.Exists(kMarkerPath));
}

TEST_F(LoadSettingsTest, ReadsBothFilesAndWritesNone) {
  SettingsRecord settings = EachFieldDifferent();
  settings.Passes = 4;  // isn't a level, and is kept as it is
  files.AddFile(kSettingsPath, EncodeSettings(settings));
  files.AddFile(kPlacementPath, EncodePlacement({8000, 6000, 100, 200}));
  files.AddFile(kMarkerPath);
  const LoadedSettings loaded = Load();
  settings.ExplorerManager = 0;
  EXPECT_EQ(loaded.settings, settings);
  EXPECT_EQ(loaded.placement, (WindowPlacement{8000, 6000, 100, 200}));
  EXPECT_FALSE(loaded.firstRun);
  EXPECT_THAT(files.log, IsEmpty());
}

TEST_F(LoadSettingsTest, OwesTheWelcomeUntilTheMarkerIsThere) {
  files.AddFile(kSettingsPath, EncodeSettings({}));
  files.AddFile(kPlacementPath, EncodePlacement({}));
  EXPECT_TRUE(Load().firstRun);
  files.AddFile(kMarkerPath);
  EXPECT_FALSE(Load().firstRun);
}

TEST_F(LoadSettingsTest, ReadsReadOnlyFiles) {
  files.AddFile(kSettingsPath, EncodeSettings(EachFieldDifferent()), kAttributeReadOnly | kAttributeHidden);
  files.AddFile(kPlacementPath, EncodePlacement({1, 2, 3, 4}), kAttributeReadOnly);
  EXPECT_EQ(Load().placement, (WindowPlacement{1, 2, 3, 4}));
  EXPECT_THAT(files.log, IsEmpty());
}

TEST_F(LoadSettingsTest, LeavesAnEmptyPlacementFileWhereThereWasNone) {
  files.AddFile(kSettingsPath, EncodeSettings(EachFieldDifferent()));
  const LoadedSettings loaded = Load();
  EXPECT_EQ(loaded.settings.Passes, EachFieldDifferent().Passes);
  EXPECT_TRUE(OpensMaximised(loaded.placement));
  ASSERT_TRUE(files.Exists(kPlacementPath));
  EXPECT_EQ(Content(kPlacementPath), "");
  EXPECT_EQ(files.log, std::vector<std::string>{"write " + kPlacementPath});

  // The next start takes the empty file as it is.
  files.log.clear();
  EXPECT_TRUE(Load().placement.IsNone());
  EXPECT_THAT(files.log, IsEmpty());
}

TEST_F(LoadSettingsTest, TakesTheExplorerManagerFromTheRegistryAlone) {
  struct Case {
    const char* command;
    std::int16_t value;
  };
  constexpr Case kCases[] = {
      {"C:\\Zeroquill\\ZQExMan.exe", 1}, {"\"c:\\x\\zqexman.EXE\" /tray", 1}, {"ZQEXMAN.EXE", 1}, {"", 0},
      {"C:\\Other\\notepad.exe", 0},     {"C:\\Zeroquill\\ZQExMan.ex", 0},
  };
  for (const Case& c : kCases) {
    Register(c.command + "\0"s);
    for (std::int16_t inFile : {std::int16_t{0}, std::int16_t{1}}) {
      SettingsRecord settings;
      settings.ExplorerManager = inFile;
      files.AddFile(kSettingsPath, EncodeSettings(settings));
      EXPECT_EQ(Load().settings.ExplorerManager, c.value) << c.command;
    }
    files.Delete(kSettingsPath);
    EXPECT_EQ(Load().settings.ExplorerManager, c.value) << c.command << " on a first run";
    EXPECT_EQ(DecodeSettings(Content(kSettingsPath)).ExplorerManager, c.value);
  }
  Register("ZQExMan.exe\0"s, 2);
  EXPECT_EQ(Load().settings.ExplorerManager, 0) << "not a plain string";
  Register("x\0ZQExMan.exe\0"s);
  EXPECT_EQ(Load().settings.ExplorerManager, 0) << "behind the text's end";
}

TEST_F(LoadSettingsTest, PutsDefaultsInPlaceOfDamagedSettings) {
  Register("ZQExMan.exe");
  for (std::size_t length :
       {std::size_t{0}, std::size_t{1}, std::size_t{321}, std::size_t{323}, std::size_t{644}}) {
    files.AddFile(kSettingsPath, std::string(length, '\x01'));
    files.AddFile(kPlacementPath, EncodePlacement({1, 2, 3, 4}));
    const LoadedSettings loaded = Load();
    SettingsRecord expected;
    expected.ExplorerManager = 1;
    EXPECT_EQ(loaded.settings, expected) << length;
    EXPECT_TRUE(loaded.placement.IsNone()) << length;
    EXPECT_FALSE(loaded.firstRun) << "the marker is absent, but this was a failure";
    EXPECT_EQ(Content(kSettingsPath), EncodeSettings(expected)) << length;
    EXPECT_EQ(Content(kPlacementPath), std::string(8, '\0')) << length;
  }
}

TEST_F(LoadSettingsTest, PutsDefaultsInPlaceOfADamagedPlacement) {
  for (std::size_t length : {std::size_t{1}, std::size_t{7}, std::size_t{9}, std::size_t{16}}) {
    files.AddFile(kSettingsPath, EncodeSettings(EachFieldDifferent()));
    files.AddFile(kPlacementPath, std::string(length, '\x01'));
    const LoadedSettings loaded = Load();
    SettingsRecord expected;
    // No default belongs to this field: it keeps what had been read before the failure.
    expected.LastFilesFolder = EachFieldDifferent().LastFilesFolder;
    EXPECT_EQ(loaded.settings, expected) << length;
    EXPECT_TRUE(loaded.placement.IsNone()) << length;
    EXPECT_FALSE(loaded.firstRun) << length;
    EXPECT_EQ(Content(kSettingsPath), EncodeSettings(expected)) << length;
    EXPECT_EQ(Content(kPlacementPath), std::string(8, '\0')) << length;
  }
}

TEST_F(LoadSettingsTest, PutsDefaultsInPlaceOfALockedFile) {
  for (const std::string& locked : {kSettingsPath, kPlacementPath}) {
    files.AddFile(kSettingsPath, EncodeSettings({}));
    files.AddFile(kPlacementPath, EncodePlacement({1, 2, 3, 4}));
    files.unreadable = {locked};
    EXPECT_TRUE(Load().placement.IsNone());
    ExpectDefaultsOnDisc();
  }
}

TEST_F(LoadSettingsTest, RaisesAFailureOfTheSecondWriting) {
  // Nothing can be written on a first run.
  for (const std::string& path : {kSettingsPath, kPlacementPath}) {
    files.unwritable = {path};
    SCOPED_TRACE(path);
    ExpectRaises(ErrorNumber::PathFileAccessError, [&] { Load(); });
    files.Delete(kSettingsPath);
  }
  // The placement can't be created, and not be written either.
  files.AddFile(kSettingsPath, EncodeSettings({}));
  files.unwritable = {kPlacementPath};
  ExpectRaises(ErrorNumber::PathFileAccessError, [&] { Load(); });
  // The settings are damaged, and the file is read-only.
  files.unwritable.clear();
  files.AddFile(kSettingsPath, "damaged", kAttributeReadOnly);
  ExpectRaises(ErrorNumber::PathFileAccessError, [&] { Load(); });
}

TEST_F(LoadSettingsTest, ReadsBackWhatWasWritten) {
  SettingsRecord settings = EachFieldDifferent();
  settings.ExplorerManager = 0;
  WriteSettings(folder, settings);
  WritePlacement(folder, {1, -2, 3, -4});
  const LoadedSettings loaded = Load();
  EXPECT_EQ(loaded.settings, settings);
  EXPECT_EQ(loaded.placement, (WindowPlacement{1, -2, 3, -4}));
}

// A file that was emptied first would be a damaged one after a crash, and put the defaults in place.
TEST_F(LoadSettingsTest, WritesOverTheOldRecordsWithoutEmptyingThem) {
  WriteSettings(folder, EachFieldDifferent());
  WritePlacement(folder, {1, 2, 3, 4});
  EXPECT_EQ(files.log, (std::vector<std::string>{"record " + kSettingsPath, "record " + kPlacementPath}));
}

TEST_F(LoadSettingsTest, RaisesWhatStopsAWriting) {
  files.unwritable = {kSettingsPath, kPlacementPath};
  ExpectRaises(ErrorNumber::PathFileAccessError, [&] { WriteSettings(folder, {}); });
  ExpectRaises(ErrorNumber::PathFileAccessError, [&] { WritePlacement(folder, {}); });
}

}  // namespace
}  // namespace zq
