// A window of another process: what it shows and what can be done to it, by messages alone.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/driver/Wait.h"

namespace zq::test {

// A handle that may be empty or stale: `if (window)` asks whether the window is there now. Members
// throw a DriverError when it is not, or when its process doesn't answer.
class Window {
 public:
  Window() = default;
  explicit Window(HWND handle) : handle_(handle) {}

  HWND Handle() const { return handle_; }
  explicit operator bool() const { return ::IsWindow(handle_) != 0; }
  bool operator==(const Window&) const = default;

  std::string Text() const;
  bool HasText(std::string_view text) const;  // false, too, of a window that has gone meanwhile
  std::string ClassName() const;
  DWORD ProcessId() const;
  int Id() const;
  LONG_PTR Style() const;
  LONG_PTR ExtendedStyle() const;
  bool IsVisible() const { return ::IsWindowVisible(handle_) != 0; }
  bool IsEnabled() const { return ::IsWindowEnabled(handle_) != 0; }
  bool IsTopmost() const { return (ExtendedStyle() & WS_EX_TOPMOST) != 0; }
  bool HasFocus() const;
  bool HoldsFocus() const;  // it, or something in it
  Window Owner() const { return Window(::GetWindow(handle_, GW_OWNER)); }
  RECT ScreenRect() const;
  POINT Centre() const;

  // All descendants, in their order on the screen's stack, hidden ones included.
  std::vector<Window> Children() const;
  // One descendant. By its control id; by its caption without access keys; by its class, the
  // index-th of those. Throws when there is none; WaitChild waits for one.
  Window Child(int id) const;
  Window Child(std::string_view caption) const;
  Window ChildOfClass(std::string_view className, int index = 0) const;
  bool HasChild(int id) const { return static_cast<bool>(Window(::GetDlgItem(handle_, id))); }
  Window WaitChild(int id, Limit limit = kPatience) const;

  // Posted, so that the call returns even if the window opens a dialog: press a button, choose a
  // command of a menu or a tool bar, ask it to close, press one key without modifiers, type a text.
  void Press() const;
  void Command(int id) const;
  void Close() const;
  void PostKey(WORD key) const;
  void PostText(std::string_view text) const;

  // Sent: a whole text for an edit box, with the notification that typing it brings.
  void SetText(std::string_view text) const;

  // Check boxes and option buttons.
  bool IsChecked() const;

  void WaitEnabled(Limit limit = kPatience) const;
  void WaitDisabled(Limit limit = kPatience) const;
  void WaitText(std::string_view text, Limit limit = kPatience) const;
  void WaitGone(Limit limit = kPatience) const;
  void WaitVisible(Limit limit = kPatience) const;
  void WaitHidden(Limit limit = kPatience) const;

  // Sends a message of plain numbers and gives its result. Throws after the patience is over.
  LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
  void Post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

  // Class, caption and id, for messages.
  std::string Describe() const;

 private:
  HWND handle_ = nullptr;
};

// A caption without its access key's mark: "&OK" gives "OK", "a && b" gives "a & b".
std::string WithoutAccessKey(std::string_view caption);

// Top-level windows that the condition takes, hidden ones included.
std::vector<Window> TopLevelWindows(const std::function<bool(Window)>& condition);

// Real keys and mouse, which go to the window that is in front: brings `window` there first.
// Modifiers are virtual keys such as VK_CONTROL, held down meanwhile.
void TypeKey(Window window, WORD key, const std::vector<WORD>& modifiers = {});
// The text's characters, as an input method for any language gives them.
void TypeText(Window window, std::string_view text);
// Moves the mouse by input, as a hand does, and returns at once; or when the pointer rests there. `buttons`
// go down or up (MOUSEEVENTF_LEFTDOWN and the like) at that very point, wherever the screen sees the pointer
// meanwhile.
void StepMouseTo(POINT screen, DWORD buttons = 0);
void MoveMouseTo(POINT screen);
void ClickAt(POINT screen, bool right = false, bool twice = false);

}  // namespace zq::test
