// Keys with a modifier, typed into windows that have come to the front a moment before; buttons of the mouse.
#include <windows.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "support/driver/Driver.h"

namespace zq::test {
namespace {

std::atomic<int> heard{0};
std::atomic<int> pressed{0};

LRESULT CALLBACK Listen(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr LPARAM kAltIsDown = 1 << 29;
  if ((message == WM_SYSKEYDOWN || message == WM_KEYDOWN) && wParam == 'K') {
    const bool alt = (lParam & kAltIsDown) != 0;
    const bool control = ::GetKeyState(VK_CONTROL) < 0;
    if (alt || control) ++heard;
  }
  if (message == WM_LBUTTONDOWN) ++pressed;
  // Alt+K would look for a menu, which takes the keys that come meanwhile.
  if (message == WM_SYSCHAR) return 0;
  return ::DefWindowProcW(window, message, wParam, lParam);
}

// Makes windows on a thread of their own, which ends with the first of them.
class Stack {
 public:
  explicit Stack(int count) {
    WNDCLASSW type{};
    type.lpfnWndProc = Listen;
    type.hInstance = ::GetModuleHandleW(nullptr);
    type.lpszClassName = L"ZqListener";
    ::RegisterClassW(&type);
    std::promise<std::vector<HWND>> made;
    thread_ = std::thread([&made, count, instance = type.hInstance] { Own(made, count, instance); });
    windows_ = made.get_future().get();
  }
  Stack(const Stack&) = delete;
  Stack& operator=(const Stack&) = delete;
  ~Stack() {
    for (HWND window : windows_) ::PostMessageW(window, WM_CLOSE, 0, 0);
    thread_.join();
  }

  // The one in front last.
  const std::vector<HWND>& Windows() const { return windows_; }

 private:
  static void Own(std::promise<std::vector<HWND>>& made, int count, HINSTANCE instance) {
    std::vector<HWND> windows;
    for (int i = 0; i < count; ++i) {
      windows.push_back(::CreateWindowExW(0, L"ZqListener", L"listener", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                          100, 100, 300, 200, nullptr, nullptr, instance, nullptr));
    }
    const HWND first = windows.front();
    made.set_value(std::move(windows));
    MSG message;
    while (::IsWindow(first) != 0 && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
      ::TranslateMessage(&message);
      ::DispatchMessageW(&message);
    }
  }

  std::thread thread_;
  std::vector<HWND> windows_;
};

// The X server, which knows nothing of it, tells of its own keys with each change of the focus.
TEST(Typing, AModifierStaysDownWhileWindowsComeToTheFront) {
  const Stack stack(10);
  const auto control = [](DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = VK_CONTROL;
    input.ki.dwFlags = flags;
    ::SendInput(1, &input, sizeof input);
  };
  control(0);
  int windows = 0;
  for (HWND window : stack.Windows()) {
    TypeKey(Window(window), VK_F8);
    if (::GetAsyncKeyState(VK_CONTROL) < 0) ++windows;
  }
  control(KEYEVENTF_KEYUP);
  EXPECT_EQ(windows, 10);
}

// Each window that Alt+F4 closes gives its place in front to the next, which is typed into at once.
TEST(Typing, AModifierHoldsInAWindowThatHasJustComeToTheFront) {
  const Stack stack(60);
  for (auto handle = stack.Windows().rbegin(); handle != stack.Windows().rend(); ++handle) {
    const Window window(*handle);
    for (const WORD modifier : {WORD{VK_MENU}, WORD{VK_CONTROL}}) {
      heard = 0;
      TypeKey(window, 'K', {modifier});
      Await("the key with its modifier", [] { return heard > 0; });
    }
    TypeKey(window, VK_F4, {VK_MENU});
    Await("Alt+F4", [&] { return !window; });
  }
}

// The screen may report an older place of the pointer between a move and what is pressed there.
TEST(Mouse, AButtonGoesDownAtItsPlaceWhereverThePointerIs) {
  const Stack stack(1);
  const POINT place = Window(stack.Windows().front()).Centre();
  MoveMouseTo(place);
  for (int time = 1; time <= 10; ++time) {
    ::SetCursorPos(0, 0);
    StepMouseTo(place, MOUSEEVENTF_LEFTDOWN);
    Await("the button to go down in the window", [&] { return pressed == time; });
    ::SetCursorPos(0, 0);
    StepMouseTo(place, MOUSEEVENTF_LEFTUP);
    MoveMouseTo(place);
  }
}

}  // namespace
}  // namespace zq::test
