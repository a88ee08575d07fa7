// What the system keeps of the work that it is told of, as far as it can be asked.
#include <gtest/gtest.h>

#include "controls/MessageLoop.h"
#include "controls/SystemLongWork.h"

namespace zq::test {
namespace {

class SystemLongWorkTest : public testing::Test {
 protected:
  void SetUp() override {
    ::SetThreadExecutionState(ES_CONTINUOUS);
    window_ = ::CreateWindowExW(0, L"STATIC", L"work", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 300, 200,
                                nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window_, nullptr);
  }
  void TearDown() override {
    if (::IsWindow(window_)) ::DestroyWindow(window_);
  }

  // The state of this thread, which only setting it tells.
  static EXECUTION_STATE State() {
    const EXECUTION_STATE state = ::SetThreadExecutionState(ES_CONTINUOUS);
    ::SetThreadExecutionState(state);
    return state;
  }

  HWND window_ = nullptr;
  SystemLongWork work_{[this] { return window_; }};
};

TEST_F(SystemLongWorkTest, KeepsTheComputerAwakeUntilItsEnd) {
  EXPECT_EQ(State(), static_cast<EXECUTION_STATE>(ES_CONTINUOUS));
  {
    const LongWorkScope scope(work_, "Files are being wiped.");
    EXPECT_EQ(State(), static_cast<EXECUTION_STATE>(ES_CONTINUOUS | ES_SYSTEM_REQUIRED));
  }
  EXPECT_EQ(State(), static_cast<EXECUTION_STATE>(ES_CONTINUOUS));
}

TEST_F(SystemLongWorkTest, GoesOnWhenTheWindowThatShowsItGoes) {
  const LongWorkScope scope(work_, "Files are being wiped.");
  work_.ShowUncounted();
  work_.ShowPercent(10);
  ::DestroyWindow(window_);
  work_.ShowPercent(11);
  work_.CallUser();
  PumpMessages();
  EXPECT_EQ(State(), static_cast<EXECUTION_STATE>(ES_CONTINUOUS | ES_SYSTEM_REQUIRED));
}

// The task bar tells when a window's button has come, and when it has begun anew.
TEST_F(SystemLongWorkTest, LetsGoOfTheWindowAtItsEnd) {
  {
    const LongWorkScope scope(work_, "Files are being wiped.");
    work_.ShowPercent(10);
    ::SendMessageW(window_, ::RegisterWindowMessageW(L"TaskbarButtonCreated"), 0, 0);
  }
  ::SendMessageW(window_, ::RegisterWindowMessageW(L"TaskbarButtonCreated"), 0, 0);
  work_.CallUser();
  EXPECT_TRUE(::IsWindow(window_));
}

}  // namespace
}  // namespace zq::test
