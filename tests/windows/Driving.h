// Works the controls of a form in this process, as a user would.
#pragma once

#include <windows.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "controls/Form.h"
#include "controls/MessageLoop.h"

namespace zq::test {

inline HWND Item(Form& form, int id) {
  return ::GetDlgItem(form.Handle(), id);
}

inline std::string CaptionOf(Form& form) {
  char text[200] = "";
  ::GetWindowTextA(form.Handle(), text, sizeof text);
  return text;
}

inline std::string TextOf(Form& form, int id) {
  char text[600] = "";
  ::GetDlgItemTextA(form.Handle(), id, text, sizeof text);
  return text;
}

inline bool IsEnabled(Form& form, int id) {
  return ::IsWindowEnabled(Item(form, id)) != FALSE;
}

inline bool IsTicked(Form& form, int id) {
  return ::IsDlgButtonChecked(form.Handle(), id) == BST_CHECKED;
}

// A click; nothing on a disabled button.
inline void Press(Form& form, int id) {
  if (IsEnabled(form, id)) ::SendMessageA(Item(form, id), BM_CLICK, 0, 0);
}

inline void Close(Form& form) {
  ::SendMessageA(form.Handle(), WM_CLOSE, 0, 0);
}

// Types over the whole text.
inline void Type(Form& form, int id, const std::string& text) {
  ::SendMessageA(Item(form, id), EM_SETSEL, 0, -1);
  ::SendMessageA(Item(form, id), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

// The selected part of a text box.
inline std::pair<DWORD, DWORD> SelectionOf(Form& form, int id) {
  DWORD start = 0;
  DWORD end = 0;
  ::SendMessageA(Item(form, id), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  return {start, end};
}

inline int DefaultButtonOf(Form& form) {
  return LOWORD(::SendMessageA(form.Handle(), DM_GETDEFID, 0, 0));
}

// The ids of the controls that Tab goes to, in its order.
inline std::vector<int> TabOrder(Form& form) {
  std::vector<int> ids;
  HWND first = ::GetNextDlgTabItem(form.Handle(), nullptr, FALSE);
  HWND item = first;
  do {
    ids.push_back(::GetDlgCtrlID(item));
    item = ::GetNextDlgTabItem(form.Handle(), item, FALSE);
  } while (item != first && ids.size() < 20);
  return ids;
}

// A key that the program looks up in the keyboard's state, held down for a scope.
class HeldKey {
 public:
  explicit HeldKey(BYTE key) {
    ::GetKeyboardState(before_);
    BYTE now[256];
    std::copy(std::begin(before_), std::end(before_), now);
    now[key] = 0x80;
    ::SetKeyboardState(now);
  }
  ~HeldKey() { ::SetKeyboardState(before_); }
  HeldKey(const HeldKey&) = delete;
  HeldKey& operator=(const HeldKey&) = delete;

 private:
  BYTE before_[256];
};

// A key that goes through the message loop, to whichever window of the form has the focus.
inline void PostKey(Form& form, WPARAM key) {
  const HWND focus = ::GetFocus();
  ::PostMessageW(::IsChild(form.Handle(), focus) ? focus : form.Handle(), WM_KEYDOWN, key, 0);
  PumpMessages();
}

// Lets `user` act once messages are handled again: inside the loop of the modal form that is shown next.
inline void Later(std::function<void()> user) {
  static std::function<void()> waiting;
  waiting = std::move(user);
  ::SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR id, DWORD) {
    ::KillTimer(nullptr, id);
    std::exchange(waiting, nullptr)();
  });
}

}  // namespace zq::test
