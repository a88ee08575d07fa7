#include "platform/win32/Win32MessageBoxes.h"

#include <windows.h>

namespace zq {
namespace {

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

}  // namespace

MessageAnswer Win32MessageBoxes::Show(const Message& message) {
  const UINT flags = IconFlag(message.icon) | ButtonsFlag(message.buttons) | MB_DEFBUTTON1;
  // Without an active window of ours, task-modal keeps the other windows from being used meanwhile.
  const HWND owner = ::GetActiveWindow();
  switch (::MessageBoxA(owner, message.text.c_str(), message.title.c_str(),
                        flags | (owner ? MB_APPLMODAL : MB_TASKMODAL | MB_SETFOREGROUND))) {
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

}  // namespace zq
