// The program's help file in the system's own viewer.
#include <windows.h>
#include <commctrl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Driving.h"
#include "core/state/Help.h"
#include "help/HelpViewer_win32.h"
#include "platform/win32/Wide.h"
#include "platform/win32/Win32Process.h"
#include "support/driver/Picture.h"
#include "support/driver/Wait.h"

namespace zq::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

// The viewer's windows that this process shows.
std::vector<HWND> ViewerWindows() {
  std::vector<HWND> found;
  ::EnumWindows(
      [](HWND window, LPARAM param) -> BOOL {
        DWORD process = 0;
        ::GetWindowThreadProcessId(window, &process);
        wchar_t name[64] = L"";
        ::GetClassNameW(window, name, static_cast<int>(std::size(name)));
        if (process == ::GetCurrentProcessId() && std::wstring_view(name) == L"HH Parent" &&
            ::IsWindowVisible(window))
          reinterpret_cast<std::vector<HWND>*>(param)->push_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

HWND TreeOf(HWND window) {
  HWND tree = nullptr;
  ::EnumChildWindows(
      window,
      [](HWND child, LPARAM param) -> BOOL {
        wchar_t name[64] = L"";
        ::GetClassNameW(child, name, static_cast<int>(std::size(name)));
        if (std::wstring_view(name) != WC_TREEVIEWW) return TRUE;
        *reinterpret_cast<HWND*>(param) = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&tree));
  return tree;
}

class HelpFileTest : public testing::Test {
 protected:
  void TearDown() override { CloseViewers(); }

  static void CloseViewers() {
    for (const HWND window : ViewerWindows()) ::SendMessageW(window, WM_CLOSE, 0, 0);
    WaitFor([] {
      PumpMessages();
      return ViewerWindows().empty();
    });
  }

  const std::string target_ = Win32Process(&PumpMessagesOnce).ApplicationPath() + "\\Zeroquill.chm>main";
  Win32HelpViewer viewer_;

 private:
  static void PumpMessagesOnce() {}
};

TEST_F(HelpFileTest, OpensAtItsContents) {
  viewer_.DisplayContents(0, target_);
  PumpMessages();
  ASSERT_THAT(ViewerWindows(), SizeIs(1));
  const HWND window = ViewerWindows().front();
  wchar_t title[64] = L"";
  ::GetWindowTextW(window, title, static_cast<int>(std::size(title)));
  EXPECT_EQ(FromWide(title), "Zeroquill Help");
  const HWND tree = TreeOf(window);
  ASSERT_TRUE(tree);
  constexpr int kTopics = 22;
  constexpr int kGroups = 5;
  EXPECT_EQ(::SendMessageW(tree, TVM_GETCOUNT, 0, 0), kTopics + kGroups);
  TakePicture(Window(window), "help-contents");
}

TEST_F(HelpFileTest, OpensAtEachTopicThatAButtonAsksFor) {
  for (const int topic : {kHelpOnFolder, kHelpOnOpenJob, kHelpOnDriveWipe, kHelpOnPreferences}) {
    viewer_.DisplayContext(0, target_, topic);
    PumpMessages();
    EXPECT_THAT(ViewerWindows(), SizeIs(1)) << topic;
    CloseViewers();
    EXPECT_THAT(ViewerWindows(), IsEmpty()) << topic;
  }
}

TEST_F(HelpFileTest, HasNoOtherTopicNumbers) {
  for (const int topic : {7, 7777}) {
    viewer_.DisplayContext(0, target_, topic);
    PumpMessages();
    EXPECT_THAT(ViewerWindows(), IsEmpty()) << topic;
  }
}

}  // namespace
}  // namespace zq::test
