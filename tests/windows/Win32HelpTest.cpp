// Windows' side of the help class: what reaches the viewer, field by field, and what the machine's calls
// give.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <htmlhelp.h>

#include <string>

#include "help/HelpMachine_win32.h"
#include "help/HelpViewer_win32.h"
#include "help/RegistryText.h"
#include "platform/win32/Wide.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

// What the viewer was last called with.
struct ViewerCall {
  HWND owner;
  std::wstring file;
  bool hasFile;
  UINT command;
  DWORD_PTR data;
};
ViewerCall lastCall;
void (*look)(DWORD_PTR data) = nullptr;  // at a structure, while it is there

HWND WINAPI RecordCall(HWND owner, LPCWSTR file, UINT command, DWORD_PTR data) {
  lastCall = {owner, file ? file : L"", file != nullptr, command, data};
  if (look) look(data);
  return nullptr;
}

LPCWSTR WideOf(LPCTSTR text) {
  return reinterpret_cast<LPCWSTR>(text);
}

class Win32HelpViewerTest : public testing::Test {
 protected:
  ~Win32HelpViewerTest() override { look = nullptr; }
  Win32HelpViewer viewer_{&RecordCall};
};

TEST_F(Win32HelpViewerTest, CallsEachCommandWithItsData) {
  const auto called = [](UINT command, DWORD_PTR data) {
    EXPECT_EQ(lastCall.owner, reinterpret_cast<HWND>(7));
    EXPECT_EQ(lastCall.file, L"C:\\漢字.chm>main");
    EXPECT_EQ(lastCall.command, command);
    EXPECT_EQ(lastCall.data, data);
  };
  const std::string target = "C:\\漢字.chm>main";
  viewer_.DisplayContext(7, target, 10);
  called(HH_HELP_CONTEXT, 10);
  viewer_.DisplayContext(7, target, -1);
  called(HH_HELP_CONTEXT, 0xFFFFFFFF);
  viewer_.DisplayContents(7, target);
  called(HH_DISPLAY_TOC, 0);
  viewer_.DisplayIndex(7, target);
  called(HH_DISPLAY_INDEX, 0);
  viewer_.DisplayTopic(7, target, std::nullopt);
  called(HH_DISPLAY_TOPIC, 0);
  look = [](DWORD_PTR data) { EXPECT_STREQ(reinterpret_cast<LPCWSTR>(data), L"/seite.html"); };
  viewer_.DisplayTopic(7, target, "/seite.html");
  look = nullptr;
  viewer_.CloseAll("C:\\a.chm");
  EXPECT_EQ(lastCall.owner, nullptr);
  EXPECT_EQ(lastCall.file, L"C:\\a.chm");
  EXPECT_EQ(lastCall.command, UINT{HH_CLOSE_ALL});
  EXPECT_EQ(lastCall.data, 0u);
}

TEST_F(Win32HelpViewerTest, FillsTheSearchQuery) {
  look = [](DWORD_PTR data) {
    const auto& query = *reinterpret_cast<const HH_FTS_QUERY*>(data);
    EXPECT_EQ(query.cbStruct, 32);
    EXPECT_FALSE(query.fUniCodeStrings);
    EXPECT_STREQ(WideOf(query.pszSearchQuery), L"spüren");
    EXPECT_EQ(query.iProximity, 3);
    EXPECT_FALSE(query.fStemmedSearch);
    EXPECT_TRUE(query.fTitleOnly);
    EXPECT_TRUE(query.fExecute);
    EXPECT_STREQ(WideOf(query.pszWindow), L"main");
  };
  viewer_.DisplaySearch(0, "a.chm", {32, false, "spüren", 3, false, true, true, "main"});
  EXPECT_EQ(lastCall.command, UINT{HH_DISPLAY_SEARCH});
}

TEST_F(Win32HelpViewerTest, FillsTheLookups) {
  look = [](DWORD_PTR data) {
    const auto& link = *reinterpret_cast<const HH_AKLINK*>(data);
    EXPECT_EQ(link.cbStruct, 28);
    EXPECT_FALSE(link.fReserved);
    EXPECT_STREQ(WideOf(link.pszKeywords), L"keys");
    EXPECT_STREQ(WideOf(link.pszUrl), L"url");
    EXPECT_STREQ(WideOf(link.pszMsgText), L"text");
    EXPECT_STREQ(WideOf(link.pszMsgTitle), L"title");
    EXPECT_STREQ(WideOf(link.pszWindow), L"main");
    EXPECT_TRUE(link.fIndexOnFail);
  };
  const HelpLink link{28, false, "keys", "url", "text", "title", "main", true};
  viewer_.LookUpKeyword(0, "a.chm", link);
  EXPECT_EQ(lastCall.command, UINT{HH_KEYWORD_LOOKUP});
  viewer_.LookUpALink(0, "a.chm", link);
  EXPECT_EQ(lastCall.command, UINT{HH_ALINK_LOOKUP});

  look = [](DWORD_PTR data) {
    const auto& empty = *reinterpret_cast<const HH_AKLINK*>(data);
    EXPECT_EQ(empty.pszUrl, nullptr);
    EXPECT_EQ(empty.pszMsgText, nullptr);
    EXPECT_EQ(empty.pszMsgTitle, nullptr);
    EXPECT_EQ(empty.pszWindow, nullptr);
  };
  viewer_.LookUpKeyword(0, "a.chm", {});
}

TEST_F(Win32HelpViewerTest, FillsThePopup) {
  look = [](DWORD_PTR data) {
    const auto& popup = *reinterpret_cast<const HH_POPUP*>(data);
    EXPECT_EQ(popup.cbStruct, 50);
    EXPECT_EQ(popup.hinst, nullptr);
    EXPECT_EQ(popup.idString, 9u);
    EXPECT_STREQ(WideOf(popup.pszText), L"text");
    EXPECT_EQ(popup.pt.x, 11);
    EXPECT_EQ(popup.pt.y, 12);
    EXPECT_EQ(popup.clrForeground, 0x010203u);
    EXPECT_EQ(popup.clrBackground, 0xFFFFFFFFu);
    EXPECT_EQ(popup.rcMargins.left, 1);
    EXPECT_EQ(popup.rcMargins.top, 2);
    EXPECT_EQ(popup.rcMargins.right, 3);
    EXPECT_EQ(popup.rcMargins.bottom, 4);
    EXPECT_STREQ(WideOf(popup.pszFont), L"Arial");
  };
  viewer_.DisplayPopup(5, std::nullopt, {50, 0, 9, "text", {11, 12}, 0x010203, -1, {1, 2, 3, 4}, "Arial"});
  EXPECT_EQ(lastCall.command, UINT{HH_DISPLAY_TEXT_POPUP});
  EXPECT_FALSE(lastCall.hasFile);
}

TEST(Win32HelpDesktop, RaisesAnErrorForAMissingString) {
  Win32HelpDesktop desktop;
  test::ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { desktop.StringResource(65000); });
}

class Win32HelpRegistryTest : public testing::Test {
 protected:
  static constexpr const char* kKey = "Software\\Zeroquill help test ไทย";
  ~Win32HelpRegistryTest() override { ::RegDeleteTreeW(HKEY_CURRENT_USER, ToWide(kKey).c_str()); }
  Win32HelpRegistry registry_;
};

TEST_F(Win32HelpRegistryTest, KeepsATextWithItsNull) {
  const auto key = registry_.Create(kHiveCurrentUser, kKey, KEY_SET_VALUE | KEY_QUERY_VALUE);
  ASSERT_TRUE(key);
  EXPECT_TRUE(registry_.SetText(*key, "漢字.chm", "C:\\ไทย\\", 8));
  const auto head = registry_.EnumValue(*key, 0, 2048);
  ASSERT_TRUE(head);
  EXPECT_EQ(head->name, "漢字.chm");
  EXPECT_EQ(head->type, kTypeString);
  EXPECT_EQ(registry_.QueryText(*key, "漢字.chm", head->bytes), std::string("C:\\ไทย\\") + '\0');
  EXPECT_EQ(registry_.EnumValue(*key, 1, 2048), std::nullopt);
  EXPECT_TRUE(registry_.DeleteValue(*key, "漢字.chm"));
  EXPECT_FALSE(registry_.DeleteValue(*key, "漢字.chm"));
  EXPECT_TRUE(registry_.Close(*key));
}

TEST_F(Win32HelpRegistryTest, WalksTheKeysUnderAKey) {
  const auto sub = registry_.Create(kHiveCurrentUser, std::string(kKey) + "\\first", KEY_SET_VALUE);
  ASSERT_TRUE(sub);
  EXPECT_TRUE(registry_.SetText(*sub, "", "default", 8));
  EXPECT_TRUE(registry_.Close(*sub));
  const auto key = registry_.Open(kHiveCurrentUser, kKey, KEY_READ);
  ASSERT_TRUE(key);
  EXPECT_EQ(registry_.EnumKey(*key, 0, 256), "first");
  EXPECT_EQ(registry_.EnumKey(*key, 1, 256), std::nullopt);
  EXPECT_EQ(registry_.DefaultText(*key, "first", 256), std::string("default") + '\0');
  EXPECT_EQ(registry_.DefaultText(*key, "gone", 256), std::nullopt);
  EXPECT_TRUE(registry_.Close(*key));
  EXPECT_EQ(registry_.Open(kHiveCurrentUser, std::string(kKey) + "\\gone", KEY_READ), std::nullopt);
}

TEST(Win32HelpMachine, ExpandsVariablesWithTheNull) {
  ASSERT_TRUE(::SetEnvironmentVariableW(L"ZQ_HELP_TEST", L"値"));
  Win32HelpRegistry registry;
  EXPECT_EQ(registry.Expand(std::string("%ZQ_HELP_TEST%\\a") + '\0', 2048), std::string("値\\a") + '\0');
  EXPECT_EQ(registry.Expand("%ZQ_HELP_TEST%\\a", 3), std::nullopt);
  ::SetEnvironmentVariableW(L"ZQ_HELP_TEST", nullptr);
}

TEST(Win32HelpMachine, FindsFilesAndTheirVersions) {
  Win32HelpFileSearch files;
  const std::string kernel = "C:\\windows\\system32\\kernel32.dll";
  const FileSearchResult found = files.FindFirst(kernel);
  ASSERT_EQ(found.end, FileSearchResult::End::Found);
  EXPECT_EQ(found.name, "kernel32.dll");
  files.Close(found.handle);
  EXPECT_EQ(files.FindFirst("C:\\windows\\gone.dll").end, FileSearchResult::End::NotFound);
  EXPECT_TRUE(files.LongPathName(kernel, 256));
  EXPECT_EQ(files.LongPathName(kernel, 10), std::nullopt);
  EXPECT_EQ(files.LongPathName("C:\\gone", 256), std::nullopt);

  Win32FileVersions versions;
  const std::uint32_t size = versions.InformationSize(kernel);
  EXPECT_GT(size, kFixedVersionBytes);
  const auto fixed = versions.FixedInformation(kernel, size);
  ASSERT_TRUE(fixed);
  EXPECT_EQ(fixed->substr(0, 4), "\xBD\x04\xEF\xFE");  // the signature of the fixed part
  EXPECT_EQ(versions.InformationSize("C:\\windows\\gone.dll"), 0u);
  EXPECT_EQ(versions.FixedInformation("C:\\windows\\gone.dll", 100), std::nullopt);
}

TEST(Win32HelpMachine, TellsAPlatformOfNt) {
  const SystemVersion version = Win32SystemVersion().Version();
  EXPECT_EQ(version.platformId, 2u);
  EXPECT_GE(version.majorVersion, 6u);
}

}  // namespace
}  // namespace zq
