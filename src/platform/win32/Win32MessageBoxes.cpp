#include "platform/win32/Win32MessageBoxes.h"

#include <windows.h>

#include "platform/win32/HeldKey.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// While this lives, a key that is held down does nothing in this thread's boxes: one hold of Enter, be it
// only a little too long, would answer the question whether to wipe, and each one behind it.
class HeldKeysAnswerNothing {
 public:
  HeldKeysAnswerNothing()
      : hook_(::SetWindowsHookExW(WH_MSGFILTER, &Filter, nullptr, ::GetCurrentThreadId())) {}
  ~HeldKeysAnswerNothing() {
    if (hook_) ::UnhookWindowsHookEx(hook_);
  }
  HeldKeysAnswerNothing(const HeldKeysAnswerNothing&) = delete;
  HeldKeysAnswerNothing& operator=(const HeldKeysAnswerNothing&) = delete;

 private:
  static LRESULT CALLBACK Filter(int code, WPARAM wParam, LPARAM lParam) {
    if (code == MSGF_DIALOGBOX && IsRepeatOfAHeldKey(*reinterpret_cast<const MSG*>(lParam))) return TRUE;
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
  }

  HHOOK hook_;  // none if the system refuses it: the box is shown all the same
};

UINT IconFlag(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Information:
      return MB_ICONINFORMATION;
    case MessageIcon::Question:
      return MB_ICONQUESTION;
    case MessageIcon::Exclamation:
      return MB_ICONEXCLAMATION;
    case MessageIcon::Critical:
      return MB_ICONERROR;
  }
  return 0;
}

UINT ButtonsFlag(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::Ok:
      return MB_OK;
    case MessageButtons::OkCancel:
      return MB_OKCANCEL;
    case MessageButtons::YesNo:
      return MB_YESNO;
    case MessageButtons::YesNoCancel:
      return MB_YESNOCANCEL;
  }
  return 0;
}

MessageAnswer AnswerOf(int button) {
  switch (button) {
    case IDYES:
      return MessageAnswer::Yes;
    case IDNO:
      return MessageAnswer::No;
    case IDOK:
      return MessageAnswer::Ok;
    default:
      return MessageAnswer::Cancel;
  }
}

// What stands for an answer where the system can't show the box: whatever does nothing.
MessageAnswer AnswerWithoutABox(MessageButtons buttons) {
  return buttons == MessageButtons::YesNo ? MessageAnswer::No : MessageAnswer::Cancel;
}

}  // namespace

MessageAnswer Win32MessageBoxes::Show(const Message& message) {
  const UINT flags = IconFlag(message.icon) | ButtonsFlag(message.buttons) | MB_DEFBUTTON1;
  const std::wstring text = ToWide(message.text);
  const std::wstring title = ToWide(message.title);
  const HeldKeysAnswerNothing heldKeys;
  for (;;) {
    // Without an active window of ours, task-modal keeps the other windows from being used meanwhile.
    const HWND owner = ::GetActiveWindow();
    const int button = ::MessageBoxW(owner, text.c_str(), title.c_str(),
                                     flags | (owner ? MB_APPLMODAL : MB_TASKMODAL | MB_SETFOREGROUND));
    if (button == 0) return AnswerWithoutABox(message.buttons);
    // A box of Yes and No knows neither Esc nor a close box, but not every system keeps to that: what was
    // no answer is asked for again.
    if (message.buttons == MessageButtons::YesNo && button != IDYES && button != IDNO) continue;
    return AnswerOf(button);
  }
}

}  // namespace zq
