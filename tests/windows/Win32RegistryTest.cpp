#include <windows.h>
#include <gtest/gtest.h>

#include "platform/win32/Win32Registry.h"

namespace zq {
namespace {

constexpr const char* kKey = "Software\\Zeroquill test ไทย";
constexpr const wchar_t* kWideKey = L"Software\\Zeroquill test ไทย";

class Win32RegistryTest : public testing::Test {
 protected:
  ~Win32RegistryTest() override { ::RegDeleteTreeW(HKEY_CURRENT_USER, kWideKey); }

  static void Set(const wchar_t* name, DWORD type, const void* data, DWORD bytes) {
    ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, kWideKey, name, type, data, bytes), ERROR_SUCCESS);
  }
  std::optional<RegistryValue> Query(const std::string& name) {
    return registry_.Query(RegistryHive::CurrentUser, kKey, name);
  }
  Win32Registry registry_;
};

TEST_F(Win32RegistryTest, TextComesInUtf8) {
  const std::wstring text = L"C:\\漢字\\ZQExMan.exe";
  Set(L"ชื่อ", REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  const std::optional<RegistryValue> value = Query("ชื่อ");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->type, kRegistryString);
  EXPECT_EQ(value->bytes, std::string("C:\\漢字\\ZQExMan.exe") + '\0');
  EXPECT_EQ(ReadRegistryString(registry_, RegistryHive::CurrentUser, kKey, "ชื่อ"), "C:\\漢字\\ZQExMan.exe");
}

TEST_F(Win32RegistryTest, AnythingElseComesAsItIsStored) {
  const DWORD number = 0x41424344;
  Set(L"number", REG_DWORD, &number, sizeof number);
  const std::optional<RegistryValue> value = Query("number");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->type, std::uint32_t{REG_DWORD});
  EXPECT_EQ(value->bytes, "DCBA");
}

// The length is told without the terminating null; a reader of the system's finds a proper text all the same.
TEST_F(Win32RegistryTest, WritesTextAndReadsItBack) {
  for (const char* text : {"C:\\漢字\\ZQExMan.exe", "shorter", ""}) {
    registry_.WriteString(RegistryHive::CurrentUser, kKey, "ชื่อ", text);
    EXPECT_EQ(ReadRegistryString(registry_, RegistryHive::CurrentUser, kKey, "ชื่อ"), text);
    EXPECT_EQ(Query("ชื่อ")->type, kRegistryString);
    wchar_t read[100] = L"";
    DWORD bytes = sizeof read;
    EXPECT_EQ(::RegGetValueW(HKEY_CURRENT_USER, kWideKey, L"ชื่อ", RRF_RT_REG_SZ, nullptr, read, &bytes),
              ERROR_SUCCESS);
  }
}

TEST_F(Win32RegistryTest, DeletesAValueAloneAndQuietlyWhatIsMissing) {
  const DWORD number = 1;
  Set(L"one", REG_DWORD, &number, sizeof number);
  Set(L"two", REG_DWORD, &number, sizeof number);
  for (int time = 0; time < 2; ++time) {
    registry_.DeleteValue(RegistryHive::CurrentUser, kKey, "one");
    EXPECT_FALSE(Query("one"));
    EXPECT_TRUE(Query("two"));
  }
}

// A key that is missing is made on the way, of the class "0".
TEST_F(Win32RegistryTest, DeletingMakesTheKeyWithItsClass) {
  registry_.DeleteValue(RegistryHive::CurrentUser, kKey, "one");
  HKEY key = nullptr;
  ASSERT_EQ(::RegOpenKeyExW(HKEY_CURRENT_USER, kWideKey, 0, KEY_READ, &key), ERROR_SUCCESS);
  wchar_t name[10] = L"";
  DWORD length = 10;
  EXPECT_EQ(::RegQueryInfoKeyW(key, name, &length, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_STREQ(name, L"0");
  ::RegCloseKey(key);
}

TEST_F(Win32RegistryTest, WhatIsMissingGivesNothing) {
  EXPECT_FALSE(Query("missing"));
  EXPECT_FALSE(registry_.Query(RegistryHive::CurrentUser, "Software\\Zeroquill test none", "value"));
}

}  // namespace
}  // namespace zq
