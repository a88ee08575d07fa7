// The companion's window and its icon, with a task bar that writes down what it is told.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "controls/MessageLoop.h"
#include "manager/ManagerWindow_win32.h"
#include "platform/win32/Wide.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> told;
std::vector<NOTIFYICONDATAW> added;
bool taskBarIsThere = true;

BOOL WINAPI Record(DWORD message, NOTIFYICONDATAW* data) {
  switch (message) {
    case NIM_ADD:
      told.emplace_back("add");
      added.push_back(*data);
      return taskBarIsThere;
    case NIM_SETVERSION:
      told.push_back("version " + std::to_string(data->uVersion));
      return TRUE;
    case NIM_DELETE:
      told.emplace_back("delete");
      return TRUE;
    default:
      told.push_back("message " + std::to_string(message));
      return FALSE;
  }
}

class ManagerWindowTest : public ::testing::Test {
 protected:
  ManagerWindowTest() {
    told.clear();
    added.clear();
    taskBarIsThere = true;
    window.OpenProgram = [this] { done.emplace_back("open"); };
    window.WipeBin = [this] { done.emplace_back("wipe"); };
    window.CloseAsked = [this] { done.emplace_back("close"); };
    window.Destroyed = [this] { done.emplace_back("destroyed"); };
    window.IsBusy = [this] { return busy; };
    window.WorkWaits = [this] { done.emplace_back("work"); };
  }
  void Tell(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    ::SendMessageW(window.Handle(), message, wParam, lParam);
  }

  std::vector<std::string> done;
  bool busy = false;
  ManagerWindow window{&Record};
};

TEST_F(ManagerWindowTest, PutsItsIconBackWhenATaskBarHasCome) {
  ASSERT_TRUE(window.Create());
  EXPECT_THAT(told, ElementsAre("add", "version 4"));
  told.clear();
  Tell(::RegisterWindowMessageW(L"TaskbarCreated"));
  EXPECT_THAT(told, ElementsAre("delete", "add", "version 4"));
  for (const NOTIFYICONDATAW& icon : added) {
    EXPECT_EQ(icon.hWnd, window.Handle());
    EXPECT_EQ(icon.uCallbackMessage, kTrayMessage);
    EXPECT_NE(icon.hIcon, nullptr);
    EXPECT_EQ(FromWide(icon.szTip), "Zeroquill Explorer Manager");
  }
  told.clear();
  window.Destroy();
  EXPECT_THAT(told, ElementsAre("delete"));
  EXPECT_THAT(done, ElementsAre("destroyed"));
}

TEST_F(ManagerWindowTest, GetsItsIconFromATaskBarThatComesLate) {
  taskBarIsThere = false;
  ASSERT_TRUE(window.Create());
  EXPECT_THAT(told, ElementsAre("add"));
  taskBarIsThere = true;
  Tell(::RegisterWindowMessageW(L"TaskbarCreated"));
  EXPECT_EQ(told.back(), "version 4");
}

TEST_F(ManagerWindowTest, OpensTheProgramByADoubleClickOrEnterOnItsIcon) {
  ASSERT_TRUE(window.Create());
  Tell(kTrayMessage, 0, MAKELPARAM(WM_LBUTTONDOWN, 1));
  Tell(kTrayMessage, 0, MAKELPARAM(WM_LBUTTONUP, 1));
  EXPECT_THAT(done, IsEmpty());
  Tell(kTrayMessage, 0, MAKELPARAM(WM_LBUTTONDBLCLK, 1));
  Tell(kTrayMessage, 0, MAKELPARAM(NIN_KEYSELECT, 1));
  EXPECT_THAT(done, ElementsAre("open", "open"));
}

TEST_F(ManagerWindowTest, WipesNothingMoreWhileItIsAtWork) {
  ASSERT_TRUE(window.Create());
  busy = true;
  Tell(WM_COMMAND, kManagerWipeBin);
  EXPECT_THAT(done, IsEmpty());
  busy = false;
  Tell(WM_COMMAND, kManagerWipeBin);
  Tell(WM_COMMAND, kManagerOpenProgram);
  Tell(WM_COMMAND, kManagerExit);
  Tell(WM_CLOSE, 0, 12345);
  EXPECT_THAT(done, ElementsAre("wipe", "open", "close", "close"));
}

TEST_F(ManagerWindowTest, CallsForWaitingWorkOnceWhatRunsHasEnded) {
  ASSERT_TRUE(window.Create());
  window.PostWork();
  EXPECT_THAT(done, IsEmpty());
  PumpMessages();
  EXPECT_THAT(done, ElementsAre("work"));
}

TEST_F(ManagerWindowTest, TakesItsIconAwayWhenTheSessionEnds) {
  ASSERT_TRUE(window.Create());
  Tell(WM_ENDSESSION, FALSE);
  EXPECT_THAT(done, IsEmpty());
  told.clear();
  Tell(WM_ENDSESSION, TRUE);
  EXPECT_THAT(told, ElementsAre("delete"));
  EXPECT_THAT(done, ElementsAre("destroyed"));
}

}  // namespace
}  // namespace zq::test
