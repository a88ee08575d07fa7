#include <gtest/gtest.h>

#include <string>

#include "platform/win32/Win32Shell.h"

namespace zq {
namespace {

struct Called {
  HWND owner;
  std::wstring verb, file, parameters, directory;
  INT show;
};
Called called;

HINSTANCE WINAPI Record(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory,
                        INT show) {
  called = {owner, verb, file, parameters, directory, show};
  return nullptr;  // a failure, which is let go by
}

TEST(Win32Shell, HandsEachPartOfARequestToTheShell) {
  Win32Shell shell(&Record);
  shell.Execute({.verb = "open", .file = "https://a.example/漢", .parameters = "0", .directory = "C:\\"});
  EXPECT_EQ(called.owner, ::GetDesktopWindow());
  EXPECT_EQ(called.verb, L"open");
  EXPECT_EQ(called.file, L"https://a.example/漢");
  EXPECT_EQ(called.parameters, L"0");
  EXPECT_EQ(called.directory, L"C:\\");
  EXPECT_EQ(called.show, SW_SHOWNORMAL);
}

}  // namespace
}  // namespace zq
