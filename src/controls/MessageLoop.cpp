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

namespace {

void Pump(UINT how) {
  MSG message{};
  while (::PeekMessageW(&message, nullptr, 0, 0, how)) {
    if (message.message == WM_QUIT) {
      // For the loop below this one on the stack.
      ::PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    DispatchToForms(message);
  }
}

}  // namespace

void PumpMessages() {
  Pump(PM_REMOVE);
}

void PumpBetweenSteps() {
  constexpr ULONGLONG kBetweenPaintings = 30;  // milliseconds
  static ULONGLONG painted = 0;
  const ULONGLONG now = ::GetTickCount64();
  if (now - painted >= kBetweenPaintings) {
    painted = now;
    Pump(PM_REMOVE);
  } else {
    Pump(PM_REMOVE | PM_QS_INPUT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE);
  }
}

void RunMessageLoop() {
  MSG message{};
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) DispatchToForms(message);
}

}  // namespace zq
