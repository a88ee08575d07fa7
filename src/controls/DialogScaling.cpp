#include "controls/DialogScaling.h"

#include <string_view>

#include "controls/WindowDc.h"

namespace zq {
namespace {

// As the control lies in its parent's client area.
RECT PlaceOf(HWND child, HWND parent) {
  RECT rect{};
  ::GetWindowRect(child, &rect);
  ::MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

HFONT FontOf(HWND window) {
  return reinterpret_cast<HFONT>(::SendMessageW(window, WM_GETFONT, 0, 0));
}

// SetDialogDpiChangeBehavior, which came with the systems that scale dialogs: where it is missing, there is
// nothing to be switched off.
void SwitchOffSystemScaling(HWND dialog) {
  constexpr int kDisableAll = 1;  // DDC_DISABLE_ALL
  using SetBehavior = BOOL(WINAPI*)(HWND, int mask, int values);
  const HMODULE user = ::GetModuleHandleW(L"user32.dll");
  const FARPROC found = user ? ::GetProcAddress(user, "SetDialogDpiChangeBehavior") : nullptr;
  const auto setBehavior = reinterpret_cast<SetBehavior>(reinterpret_cast<void*>(found));
  if (setBehavior) setBehavior(dialog, kDisableAll, kDisableAll);
}

}  // namespace

void DialogScaling::Attach(HWND dialog) {
  dialog_ = dialog;
  dpi_ = static_cast<int>(::GetDpiForWindow(dialog));
  designFont_ = FontOf(dialog);
  RECT client{};
  ::GetClientRect(dialog, &client);
  designClient_ = {client.right, client.bottom};
  SwitchOffSystemScaling(dialog);
}

bool DialogScaling::CanBeSized() const {
  return (::GetWindowLongW(dialog_, GWL_STYLE) & WS_THICKFRAME) != 0;
}

// At the first change: until then the form places its controls as it likes.
void DialogScaling::RememberDesign() {
  if (designDpi_ != 0) return;
  designDpi_ = dpi_;
  if (::IsIconic(dialog_)) return;
  RECT client{};
  ::GetClientRect(dialog_, &client);
  designClient_ = {client.right, client.bottom};
}

UniqueFont DialogScaling::FontAt(int dpi) const {
  LOGFONTW font{};
  if (!::GetObjectW(designFont_, sizeof font, &font)) return {};
  font.lfHeight = ::MulDiv(font.lfHeight, dpi, designDpi_);
  font.lfWidth = 0;
  return UniqueFont(::CreateFontIndirectW(&font));
}

// The base units of a dialog in this font, by which templates are measured.
DialogScaling::Units DialogScaling::UnitsOf(HFONT font) const {
  constexpr std::wstring_view kLetters = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  constexpr int kLettersInAlphabet = 26;
  const WindowDc context(dialog_);
  const SelectedObject selected(context.Get(), font);
  TEXTMETRICW metrics{};
  ::GetTextMetricsW(context.Get(), &metrics);
  SIZE size{};
  ::GetTextExtentPoint32W(context.Get(), kLetters.data(), static_cast<int>(kLetters.size()), &size);
  return {(static_cast<int>(size.cx) / kLettersInAlphabet + 1) / 2, static_cast<int>(metrics.tmHeight)};
}

// What caption, menu and edges add to the client area.
SIZE DialogScaling::FrameAt(int dpi) const {
  RECT frame{};
  ::AdjustWindowRectExForDpi(
      &frame, static_cast<DWORD>(::GetWindowLongW(dialog_, GWL_STYLE)), ::GetMenu(dialog_) != nullptr,
      static_cast<DWORD>(::GetWindowLongW(dialog_, GWL_EXSTYLE)), static_cast<UINT>(dpi));
  return {frame.right - frame.left, frame.bottom - frame.top};
}

SIZE DialogScaling::WindowSizeAt(int dpi) {
  RememberDesign();
  const SIZE frame = FrameAt(dpi);
  if (CanBeSized()) {
    RECT window{};
    ::GetWindowRect(dialog_, &window);
    const SIZE frameNow = FrameAt(dpi_);
    return {::MulDiv(window.right - window.left - frameNow.cx, dpi, dpi_) + frame.cx,
            ::MulDiv(window.bottom - window.top - frameNow.cy, dpi, dpi_) + frame.cy};
  }
  const UniqueFont font = FontAt(dpi);
  const Units from = UnitsOf(designFont_);
  const Units to = UnitsOf(font.Get());
  return {::MulDiv(designClient_.cx, to.x, from.x) + frame.cx,
          ::MulDiv(designClient_.cy, to.y, from.y) + frame.cy};
}

void DialogScaling::ChangeTo(int dpi) {
  RememberDesign();
  UniqueFont font = FontAt(dpi);
  if (!font) return;
  const HFONT former = Font();
  const Units design = UnitsOf(designFont_);
  const Units before = UnitsOf(former);
  const Units after = UnitsOf(font.Get());
  const auto scaled = [](const RECT& rect, const Units& from, const Units& to) {
    return RECT{::MulDiv(rect.left, to.x, from.x), ::MulDiv(rect.top, to.y, from.y),
                ::MulDiv(rect.right, to.x, from.x), ::MulDiv(rect.bottom, to.y, from.y)};
  };

  std::vector<Child> children;
  for (HWND window = ::GetWindow(dialog_, GW_CHILD); window; window = ::GetWindow(window, GW_HWNDNEXT)) {
    const RECT place = PlaceOf(window, dialog_);
    Child child{window, scaled(place, before, design), {}};
    // What stands where it was put has its own design; what the form has moved since begins here.
    for (const Child& known : children_) {
      if (known.window == window && ::EqualRect(&known.placed, &place)) child.design = known.design;
    }
    const RECT target = scaled(child.design, design, after);
    if (FontOf(window) == former)
      ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
    ::SetWindowPos(window, nullptr, target.left, target.top, target.right - target.left,
                   target.bottom - target.top, SWP_NOZORDER | SWP_NOACTIVATE);
    child.placed = PlaceOf(window, dialog_);
    children.push_back(child);
  }
  children_ = std::move(children);
  font_ = std::move(font);
  dpi_ = dpi;
}

}  // namespace zq
