// The window list as the system has it, with windows of our own: hidden, owned, with long titles.
#include <windows.h>
#include <gtest/gtest.h>

#include <string>

#include "core/state/AppState.h"
#include "platform/win32/Win32WindowList.h"
#include "preferences/MFindPartLoop.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

// A hidden window.
class TitledWindow {
 public:
  explicit TitledWindow(const wchar_t* title, HWND owner = nullptr)
      : window_(::CreateWindowExW(0, L"STATIC", title, WS_OVERLAPPED, 0, 0, 10, 10, owner, nullptr, nullptr,
                                  nullptr)) {}
  ~TitledWindow() { ::DestroyWindow(window_); }
  TitledWindow(const TitledWindow&) = delete;
  TitledWindow& operator=(const TitledWindow&) = delete;

  HWND Get() const { return window_; }
  WindowHandle Handle() const { return reinterpret_cast<WindowHandle>(window_); }

 private:
  HWND window_;
};

class Win32WindowListTest : public testing::Test {
 protected:
  WindowHandle Find(const std::string& part, std::int16_t mode = kTitleBeginsWith) {
    return FindWindowByTitlePart(part, mode, state_, platform_);
  }

  AppState state_;
  FakePlatform fake_;
  Win32WindowList windows_;
  Platform platform_{fake_.files,    fake_.boxes,    fake_.process,
                     fake_.regional, fake_.registry, UntoldWork::Instance(),
                     windows_};
};

TEST_F(Win32WindowListTest, HiddenWindowIsFoundWhileItIsThere) {
  EXPECT_EQ(Find("zq listed one"), 0U);
  {
    const TitledWindow window(L"ZQ Listed One");
    EXPECT_EQ(Find("zq listed one"), window.Handle());
    EXPECT_EQ(Find("listed", kTitleContains), window.Handle());
    EXPECT_EQ(windows_.FindByTitle("ZQ Listed One"), window.Handle());
    EXPECT_EQ(windows_.FindByTitle("ZQ Listed"), 0U) << "the whole title";
  }
  EXPECT_EQ(Find("zq listed one"), 0U);
}

TEST_F(Win32WindowListTest, ChildOfAnotherIsNotSeen) {
  const TitledWindow other(L"other");
  const HWND child = ::CreateWindowExW(0, L"STATIC", L"ZQ Listed Child", WS_CHILD, 0, 0, 10, 10, other.Get(),
                                       nullptr, nullptr, nullptr);
  EXPECT_EQ(windows_.ParentOf(reinterpret_cast<WindowHandle>(child)), other.Handle());
  EXPECT_EQ(Find("ZQ Listed Child"), 0U);
  const HWND owned = ::CreateWindowExW(0, L"STATIC", L"ZQ Listed Child", WS_POPUP, 0, 0, 10, 10, other.Get(),
                                       nullptr, nullptr, nullptr);
  EXPECT_EQ(Find("ZQ Listed Child"), 0U) << "nor is a window that it owns";
  ::DestroyWindow(owned);
}

TEST_F(Win32WindowListTest, TitleIsCutAt255Characters) {
  const std::wstring title = L"ZQ Listed " + std::wstring(300, L'x');
  const TitledWindow window(title.c_str());
  EXPECT_EQ(windows_.TitleOf(window.Handle()), "ZQ Listed " + std::string(245, 'x'));
  EXPECT_EQ(Find("ZQ Listed " + std::string(245, 'x')), window.Handle());
  EXPECT_EQ(Find("ZQ Listed " + std::string(246, 'x')), 0U);
}

TEST_F(Win32WindowListTest, ClosingIsPostedAndRefusedOfAWindowThatIsGone) {
  WindowHandle handle = 0;
  {
    const TitledWindow window(L"ZQ Listed Two");
    handle = window.Handle();
    EXPECT_TRUE(windows_.PostClose(handle));
    MSG message{};
    ASSERT_TRUE(::PeekMessageW(&message, window.Get(), WM_CLOSE, WM_CLOSE, PM_REMOVE));
    EXPECT_EQ(message.wParam, 0U);
  }
  EXPECT_FALSE(windows_.PostClose(handle));
}

}  // namespace
}  // namespace zq::test
