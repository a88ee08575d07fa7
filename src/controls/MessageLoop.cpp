#include "controls/MessageLoop.h"

#include "controls/Form.h"
#include "platform/win32/HeldKey.h"

namespace zq {
namespace {

// One that is held down would run through the default buttons of all that comes up.
bool IsHeldEnter(const MSG& message) {
  return message.wParam == VK_RETURN && IsRepeatOfAHeldKey(message);
}

bool HandledByForm(Form& form, MSG& message) {
  return form.TranslateShortcut(message) || IsHeldEnter(message) ||
         ::IsDialogMessageW(form.Handle(), &message);
}

}  // namespace

void DispatchToForms(MSG& message) {
  const HWND root = message.hwnd ? ::GetAncestor(message.hwnd, GA_ROOT) : nullptr;
  Form* form = root ? Form::FromHandle(root) : nullptr;
  if (!form || !HandledByForm(*form, message)) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  Form::DestroyClosed();
}

void PumpMessages() {
  MSG message{};
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // For the loop below this one on the stack.
      ::PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    DispatchToForms(message);
  }
}

void RunMessageLoop() {
  MSG message{};
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) DispatchToForms(message);
}

}  // namespace zq
