// The versions of Windows, help control and browser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "help/HelpVersions.h"
#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using test::HelpRig;
using testing::ElementsAre;

constexpr const char* kControl = "C:\\Windows\\System32\\hhctrl.ocx";
constexpr const char* kBrowser = "C:\\Windows\\System32\\shdocvw.dll";
constexpr const char* kOpensControl =
    "open HKCR CLSID\\{4662DAB0-D393-11D0-9A56-00C04FB68B66}\\InprocServer32 1";

struct VersionRig : HelpRig {
  VersionRig() {
    Install(test::kControlKey, kControl);
    Install(test::kBrowserKey, kBrowser);
    versions.Set(kControl, 4, 73, 8252, 0);
    versions.Set(kBrowser, 5, 0, 2314, 1000);
  }
};

TEST(HelpVersions, KnowsTheWindowsOfItsTime) {
  const auto of = [](std::uint32_t platform, std::uint32_t major, std::uint32_t minor) {
    return WindowsVersionOf({platform, major, minor});
  };
  EXPECT_EQ(of(1, 4, 0), 2);
  EXPECT_EQ(of(1, 4, 10), 4);
  EXPECT_EQ(of(1, 4, 90), 0);
  EXPECT_EQ(of(2, 3, 51), 1);
  EXPECT_EQ(of(2, 4, 0), 3);
  EXPECT_EQ(of(2, 5, 0), 5);
  EXPECT_EQ(of(2, 5, 2), 5);
  EXPECT_EQ(of(0, 4, 0), 0);
  EXPECT_EQ(of(3, 5, 0), 0);
}

// A system that came later counts as an old one.
TEST(HelpVersions, KnowsNoYoungerWindows) {
  HelpRig rig;
  for (const std::uint32_t major : {6u, 10u}) {
    rig.system.version = {2, major, 0};
    EXPECT_EQ(rig.help.GetWindowsVersion(), 0);
  }
  rig.system.version = {2, 5, 1};
  EXPECT_EQ(rig.help.GetWindowsVersion(), 5);
}

TEST(HelpVersions, WritesAFilesVersionAsText) {
  HelpRig rig;
  const auto text = [&](std::uint32_t major, std::uint32_t minor, std::uint32_t high, std::uint32_t low) {
    rig.versions.Set("a", major, minor, high, low);
    return GetFileVersionText(rig.versions, "a");
  };
  EXPECT_EQ(text(4, 72, 7290, 0), "4.72.7290.00");
  EXPECT_EQ(text(5, 0, 2314, 1000), "5.00.2314.1000");
  EXPECT_EQ(text(10, 0, 1, 5), "10.00.01.05");
  EXPECT_EQ(text(4, 7, 0, 12), "4.07.0012");  // no high word: one number for both
  EXPECT_EQ(text(4, 7, 0, 65535), "4.07.65535");
  EXPECT_EQ(text(65535, 65535, 65535, 65535), "65535.65535.65535.65535");
}

TEST(HelpVersions, BoundsTheBufferForAFilesVersion) {
  HelpRig rig;
  rig.versions.Set("a", 1, 2, 3, 4);
  rig.versions.size = 900;
  GetFileVersionText(rig.versions, "a");
  EXPECT_EQ(rig.versions.bufferSize, 916u);
  rig.versions.size = 64001;
  GetFileVersionText(rig.versions, "a");
  EXPECT_EQ(rig.versions.bufferSize, 64016u);
  EXPECT_EQ(GetFileVersionText(rig.versions, "none"), std::nullopt);
}

TEST(HelpVersions, HasALeastTextForEachNumber) {
  const std::vector<std::string_view> control{"4.72.7290", "4.72.7323", "4.72.7325", "4.72.8164.0",
                                              "4.73.8252", "4.73.8412", "4.73.8474", "4.73.8561"};
  for (std::int32_t i = 0; i < 8; ++i)
    EXPECT_EQ(LeastHelpVersion(16 + i), control.at(static_cast<std::size_t>(i)));
  EXPECT_EQ(LeastHelpVersion(15), std::nullopt);
  EXPECT_EQ(LeastHelpVersion(24), std::nullopt);  // though a ninth version has a name

  const std::vector<std::string_view> browser{
      "4.70.1155",      "4.70.1158",     "4.70.1215",      "4.70.1300",      "4.71.1008.3",
      "4.71.1712.5",    "4.72.2106.7",   "4.72.3110.03",   "4.72.3612.1707", "5.00.0518.5",
      "5.00.0910.1308", "5.00.2014.213", "5.00.2314.1000", "5.00.2614.3500", "5.0.2717.2000"};
  for (std::int32_t i = 0; i < 15; ++i)
    EXPECT_EQ(LeastBrowserVersion(256 + i), browser.at(static_cast<std::size_t>(i)));
  EXPECT_EQ(LeastBrowserVersion(255), std::nullopt);
  EXPECT_EQ(LeastBrowserVersion(271), std::nullopt);
}

TEST(HelpVersions, HasNames) {
  const std::pair<const char*, const char*> control[] = {
      {"4.72.7290.00", "1.0"},    {"4.72.7323.00", "1.1"},  {"4.72.7325.00", "1.1a"},
      {"4.72.8164.00", "1.1b"},   {"4.73.8252.00", "1.2"},  {"4.73.8412.00", "1.21"},
      {"4.73.8474.00", "1.21a"},  {"4.73.8561.00", "1.22"}, {"4.74.8566.00", "1.3"},
      {"4.74.8566.0", "unknown"}, {"", "unknown"},          {"unknown", "unknown"}};
  for (const auto& [version, name] : control) EXPECT_EQ(HelpFriendlyName(version), name) << version;
  const std::pair<const char*, const char*> browser[] = {
      {"4.70.1155.0000", "3.0"},
      {"4.70.1158.0000", "3.0 OSR2"},
      {"4.70.1215.0000", "3.02"},
      {"4.70.1300.0000", "3.02"},
      {"4.71.1008.3000", "4.0 PP2"},
      {"4.71.1712.5000", "4.0"},
      {"4.72.2106.7000", "4.01"},
      {"4.72.3110.0300", "4.0 SP1"},
      {"4.72.3612.1707", "4.0 SP2"},
      {"5.00.0518.5000", "5.0 beta 1"},
      {"5.00.0910.1308", "5.0 beta 2"},
      {"5.00.2014.2130", "5.0"},
      {"5.00.2314.1000", "5.0a (Office 2000)"},
      {"5.00.2614.3500", "5.0b (Windows 98 SE)"},
      {"5.00.2717.2000", "5.0c (Icon Security Issue Update)"},
      {"6.00.2800.1106", "unknown"}};
  for (const auto& [version, name] : browser) EXPECT_EQ(BrowserFriendlyName(version), name) << version;
}

// Four digits stand in the table where the text made of a file has two.
TEST(HelpVersions, DoesNotReconcileTheNamesWithTheTexts) {
  HelpRig rig;
  rig.versions.Set("a", 4, 70, 1155, 0);
  const std::string text = GetFileVersionText(rig.versions, "a").value();
  EXPECT_EQ(text, "4.70.1155.00");
  EXPECT_EQ(BrowserFriendlyName(text), "unknown");
}

TEST(HelpVersions, ReadsRegistryAndFileAtEachReading) {
  VersionRig rig;
  const std::string once[] = {kOpensControl, std::string("long ") + kControl, std::string("find ") + kControl,
                              std::string("version of ") + kControl};
  EXPECT_EQ(rig.help.HHVersion(), "4.73.8252.00");
  EXPECT_THAT(rig.log, testing::ElementsAreArray(once));
  rig.log.clear();
  EXPECT_EQ(rig.help.HHVersion(), "4.73.8252.00");
  EXPECT_THAT(rig.log, testing::ElementsAreArray(once));
  EXPECT_EQ(rig.help.IEVersion(), "5.00.2314.1000");
  EXPECT_EQ(rig.registry.open, 0);
  EXPECT_EQ(rig.files.open, 3);  // the searches stay open
}

TEST(HelpVersions, NamesWhatIsInstalled) {
  VersionRig rig;
  EXPECT_EQ(rig.help.HHFriendlyName(), "1.2");
  EXPECT_EQ(rig.help.IEFriendlyName(), "5.0a (Office 2000)");
  rig.log.clear();
  EXPECT_EQ(rig.help.HHFriendlyName(), "1.2");
  EXPECT_THAT(rig.log, testing::IsEmpty());  // the version is known

  VersionRig later;
  later.versions.Set(kControl, 10, 0, 19041, 1);
  EXPECT_EQ(later.help.HHFriendlyName(), "unknown");
}

TEST(HelpVersions, SaysWhatIsNotRegistered) {
  HelpRig rig;
  EXPECT_EQ(rig.help.HHVersion(), "");
  EXPECT_EQ(rig.log.back(), "error Hhctrl.ocx is not registered.  Please install HTML Help.");
  EXPECT_EQ(rig.help.IEVersion(), "");
  EXPECT_EQ(rig.log.back(), "error Shdocvw.dll is not registered.  Please install Internet Explorer.");
}

TEST(HelpVersions, SaysWhatIsNotInItsPlace) {
  VersionRig rig;
  rig.files.found.clear();
  EXPECT_EQ(rig.help.HHVersion(), "");
  EXPECT_EQ(rig.log.back(),
            "error Hhctrl.ocx is not in its registered location.  Please reinstall HTML Help.");
  EXPECT_EQ(rig.help.IEVersion(), "");
  EXPECT_EQ(
      rig.log.back(),
      "error Internet Explorer is not in its registered location.  Please reinstall Internet Explorer.");
}

TEST(HelpVersions, HasNoVersionForAFileThatTellsNone) {
  VersionRig rig;
  EXPECT_EQ(rig.help.HHVersion(), "4.73.8252.00");
  rig.versions.fixed.clear();
  EXPECT_EQ(rig.help.HHVersion(), "");
}

TEST(HelpVersions, MeetsAMinimumByText) {
  VersionRig rig;
  EXPECT_TRUE(rig.help.HHVerifyMinConfig(16, 256));
  EXPECT_TRUE(rig.help.HHVerifyMinConfig(20, 268));
  EXPECT_FALSE(rig.help.HHVerifyMinConfig(21, 268));
  EXPECT_FALSE(rig.help.HHVerifyMinConfig(20, 269));
  EXPECT_FALSE(rig.help.HHVerifyMinConfig(16, 269));
}

// A "1" stands before a "4", whatever follows it.
TEST(HelpVersions, TakesAMuchYoungerControlForAnOlderOne) {
  VersionRig rig;
  rig.versions.Set(kControl, 10, 0, 19041, 1);
  EXPECT_FALSE(rig.help.HHVerifyMinConfig(16, 256));
}

// The number that isn't in the table takes the version away, until it is read again.
TEST(HelpVersions, PutsUnknownForANumberOutsideItsTable) {
  VersionRig rig;
  EXPECT_FALSE(rig.help.HHVerifyMinConfig(24, 256));
  EXPECT_EQ(rig.help.HHFriendlyName(), "unknown");
  EXPECT_EQ(rig.help.IEFriendlyName(), "5.0a (Office 2000)");
  EXPECT_FALSE(rig.help.HHVerifyMinConfig(16, 271));
  EXPECT_EQ(rig.help.HHFriendlyName(), "1.2");
  EXPECT_EQ(rig.help.IEFriendlyName(), "unknown");
  EXPECT_EQ(rig.help.IEVersion(), "5.00.2314.1000");
}

constexpr const char* kTypeLibrary = "SOFTWARE\\Classes\\TypeLib\\{ADB880A2-D8FF-11CF-9377-00AA003B7A11}";

TEST(HelpVersions, AsksTheTypeLibraryWhetherHelpIsInstalled) {
  HelpRig rig;
  EXPECT_FALSE(rig.help.HHInstalled());
  EXPECT_THAT(rig.log, ElementsAre(std::string("open HKLM ") + kTypeLibrary + " 983103"));
  rig.registry.keys[{kHiveLocalMachine, kTypeLibrary}];
  EXPECT_TRUE(rig.help.HHInstalled());
  EXPECT_EQ(rig.registry.open, 0);
}

TEST(HelpVersions, WalksTheKeysUnderAKey) {
  HelpRig rig;
  auto& key = rig.registry.keys[{kHiveLocalMachine, "Software\\Some"}];
  key.subKeys = {{std::string("first\0rest", 10), std::string("text\0", 5)}, {"second", std::nullopt}};
  for (const int indent : {0, 4}) {
    rig.log.clear();
    EXPECT_TRUE(rig.help.GetKeyInfo("Software\\Some", static_cast<std::int16_t>(indent)));
    EXPECT_THAT(rig.log,
                ElementsAre("open HKLM Software\\Some 983103", "default of first", "default of second"));
  }
  rig.registry.refuseClose = true;
  EXPECT_FALSE(rig.help.GetKeyInfo("Software\\Some", 0));
}

}  // namespace
}  // namespace zq
