#include <windows.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/win32/SafeLibraries.h"

namespace zq {
namespace {

std::wstring OwnPath() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// A copy of this program, which is as good as a library to him who loads it.
TEST(SafeLibraries, OnesBesideTheProgramAreNotTaken) {
  const std::wstring program = OwnPath();
  const std::wstring planted = program.substr(0, program.rfind(L'\\') + 1) + L"zqplanted.dll";
  ASSERT_TRUE(::CopyFileW(program.c_str(), planted.c_str(), TRUE));

  LookForLibrariesInWindowsAlone();

  EXPECT_EQ(::LoadLibraryW(L"zqplanted.dll"), nullptr);
  EXPECT_EQ(::GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  // It could have been loaded, and Windows' own are still found.
  const HMODULE byPath = ::LoadLibraryW(planted.c_str());
  EXPECT_NE(byPath, nullptr);
  if (byPath) ::FreeLibrary(byPath);
  const HMODULE own = ::LoadLibraryW(L"wsock32.dll");
  EXPECT_NE(own, nullptr);
  if (own) ::FreeLibrary(own);
  ::DeleteFileW(planted.c_str());
}

}  // namespace
}  // namespace zq
