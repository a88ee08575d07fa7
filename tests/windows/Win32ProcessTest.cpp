#include <gtest/gtest.h>

#include <thread>

#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Win32Process.h"

namespace zq {
namespace {

void NoPump() {
}

// A window of this thread that counts what comes to it.
class CountingWindow {
 public:
  CountingWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &CountingWindow::Procedure;
    windowClass.hInstance = ::GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"ZeroquillTestCounter";
    ::RegisterClassW(&windowClass);
    window_ = ::CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                windowClass.hInstance, nullptr);
    received = 0;
  }
  ~CountingWindow() { ::DestroyWindow(window_); }
  CountingWindow(const CountingWindow&) = delete;
  CountingWindow& operator=(const CountingWindow&) = delete;

  HWND Handle() const { return window_; }
  static inline int received = 0;

 private:
  static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_APP) return ++received;
    return ::DefWindowProcW(hwnd, message, wParam, lParam);
  }
  HWND window_;
};

TEST(Win32Process, ALookLeavesWhatWaitsInTheQueue) {
  Win32Process process(&NoPump);
  const CountingWindow window;
  ASSERT_TRUE(::PostMessageW(window.Handle(), WM_APP, 0, 0));
  process.LookAtMessages();
  EXPECT_EQ(CountingWindow::received, 0);
  MSG message{};
  ASSERT_TRUE(::PeekMessageW(&message, window.Handle(), WM_APP, WM_APP, PM_REMOVE));
  EXPECT_EQ(message.message, UINT{WM_APP});
}

// Whoever sends a message to all windows would stand still for as long as the program counts.
TEST(Win32Process, ALookAnswersWhatOtherThreadsSend) {
  Win32Process process(&NoPump);
  const CountingWindow window;
  LRESULT answer = 0;
  std::thread sender([&] { answer = ::SendMessageW(window.Handle(), WM_APP, 0, 0); });
  const ULONGLONG end = ::GetTickCount64() + 20000;
  while (CountingWindow::received == 0 && ::GetTickCount64() < end) process.LookAtMessages();
  EXPECT_EQ(CountingWindow::received, 1);
  if (CountingWindow::received == 0) {
    MSG message{};
    ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // or the thread would never end
  }
  sender.join();
  EXPECT_EQ(answer, 1);
}

}  // namespace
}  // namespace zq
