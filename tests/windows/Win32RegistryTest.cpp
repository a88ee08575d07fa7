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

TEST_F(Win32RegistryTest, WhatIsMissingGivesNothing) {
  EXPECT_FALSE(Query("missing"));
  EXPECT_FALSE(registry_.Query(RegistryHive::CurrentUser, "Software\\Zeroquill test none", "value"));
}

}  // namespace
}  // namespace zq
