#include "controls/Control.h"

#include <utility>

#include "controls/Ellipsis.h"
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

// Lost on a window that isn't seen; but the system has that painted when it is seen again.
void Control::DrawLater() {
  if (!std::exchange(drawPending_, true)) ::InvalidateRect(hwnd_, nullptr, FALSE);
}

UniqueFont BoldFontOf(const Form& form) {
  LOGFONTW font{};
  ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(form.Handle(), WM_GETFONT, 0, 0)), sizeof font, &font);
  font.lfWeight = FW_BOLD;
  return UniqueFont(::CreateFontIndirectW(&font));
}

void Label::SetBold() {
  UniqueFont bold = BoldFontOf(form());
  ::SendMessageW(Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(bold.Get()), TRUE);
  font_ = std::move(bold);  // the one before is in use until here
}

// The control's own procedure would draw it at once; the text is kept by the system.
void LongLabel::SetText(const std::string& text) {
  ::DefWindowProcW(Handle(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(ToWide(text).c_str()));
  DrawLater();
}

void LongLabel::OnDraw(const DRAWITEMSTRUCT& draw) {
  Drawn();
  constexpr UINT kFormat = DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;
  const int saved = ::SaveDC(draw.hDC);
  ::SelectObject(draw.hDC, reinterpret_cast<HFONT>(::SendMessageW(Handle(), WM_GETFONT, 0, 0)));
  const LRESULT brush = ::SendMessageW(form().Handle(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(draw.hDC),
                                       reinterpret_cast<LPARAM>(Handle()));
  ::FillRect(draw.hDC, &draw.rcItem,
             brush ? reinterpret_cast<HBRUSH>(brush) : ::GetSysColorBrush(COLOR_BTNFACE));
  ::SetBkMode(draw.hDC, TRANSPARENT);
  RECT place = draw.rcItem;
  const auto fits = [&](const std::string& text) {
    RECT needed = place;
    return ::DrawTextW(draw.hDC, ToWide(text).c_str(), -1, &needed, kFormat | DT_CALCRECT) <=
           place.bottom - place.top;
  };
  ::DrawTextW(draw.hDC, ToWide(MiddleEllipsis(Text(), fits)).c_str(), -1, &place, kFormat);
  ::RestoreDC(draw.hDC, saved);
}

void Image::LoadSized() {
  RECT rect{};
  ::GetClientRect(Handle(), &rect);
  UniqueIcon icon = LoadPicture(pictureName_, static_cast<int>(rect.bottom));
  ::SendMessageW(Handle(), STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon.Get()));
  icon_ = std::move(icon);  // the one before is shown until here
}

}  // namespace zq
