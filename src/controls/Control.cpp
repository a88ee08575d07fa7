#include "controls/Control.h"

#include "controls/Pictures.h"
#include "platform/win32/Wide.h"

namespace zq {

Control::Control(Form& form, int id) : form_(form), id_(id) {
  form.controls_.push_back(this);
}

void Control::Attach() {
  hwnd_ = ::GetDlgItem(form_.Handle(), id_);
  Attached();
}

std::string WindowText(HWND hwnd) {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(hwnd)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(::GetWindowTextW(hwnd, text.data(), static_cast<int>(text.size()))));
  return FromWide(text);
}

std::string Control::Text() const {
  return WindowText(hwnd_);
}

void Control::SetText(const std::string& text) {
  ::SetWindowTextW(hwnd_, ToWide(text).c_str());
}

RECT Control::Place() const {
  RECT rect{};
  ::GetWindowRect(hwnd_, &rect);
  ::MapWindowPoints(HWND_DESKTOP, form_.Handle(), reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

void Control::Move(const RECT& rect) {
  ::MoveWindow(hwnd_, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
}

void Label::SetBold() {
  LOGFONTW font{};
  ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(Handle(), WM_GETFONT, 0, 0)), sizeof font, &font);
  font.lfWeight = FW_BOLD;
  font_.Reset(::CreateFontIndirectW(&font));
  ::SendMessageW(Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), TRUE);
}

void Image::Attached() {
  RECT rect{};
  ::GetClientRect(Handle(), &rect);
  icon_ = LoadPicture(pictureName_, static_cast<int>(rect.bottom));
  ::SendMessageW(Handle(), STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon_.Get()));
}

}  // namespace zq
