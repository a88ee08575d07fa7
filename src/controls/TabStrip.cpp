#include "controls/TabStrip.h"

#include <utility>

#include "controls/Pictures.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

bool IsDown(int key) {
  return ::GetKeyState(key) < 0;
}

// How many tabs the key goes on, 0 if it is none of these keys.
int StepOf(WPARAM key) {
  switch (key) {
    case VK_TAB:
      return IsDown(VK_SHIFT) ? -1 : 1;
    case VK_NEXT:
      return 1;
    case VK_PRIOR:
      return -1;
    default:
      return 0;
  }
}

}  // namespace

void TabStrip::Add(const std::string& caption) {
  std::wstring text = ToWide(caption);
  TCITEMW item{};
  item.mask = TCIF_TEXT;
  item.pszText = text.data();
  ::SendMessageW(Handle(), TCM_INSERTITEMW, static_cast<WPARAM>(Count()), reinterpret_cast<LPARAM>(&item));
}

bool TabStrip::TranslateShortcut(const MSG& message) {
  if (message.message != WM_KEYDOWN || !IsDown(VK_CONTROL) || IsDown(VK_MENU)) return false;
  const int step = StepOf(message.wParam);
  if (step == 0 || Count() == 0) return false;
  const int next = (Selected() - 1 + step + Count()) % Count();
  ::SendMessageW(Handle(), TCM_SETCURSEL, static_cast<WPARAM>(next), 0);
  if (Click) Click();  // the system tells of the user's own selections alone
  return true;
}

bool TabStrip::OnNotify(const NMHDR& header, LRESULT&) {
  if (header.code != TCN_SELCHANGE) return false;
  if (Click) Click();
  return true;
}

// The font, and the room about a caption, which the system doesn't scale with it.
void TabStrip::FitResolution() {
  constexpr int kBeside = 6;
  constexpr int kAbove = 3;
  const int dpi = form().Dpi();
  ::SendMessageW(Handle(), TCM_SETPADDING, 0,
                 MAKELPARAM(ScaleForDpi(kBeside, dpi), ScaleForDpi(kAbove, dpi)));
  UniqueFont bold = BoldFontOf(form());
  ::SendMessageW(Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(bold.Get()), TRUE);
  font_ = std::move(bold);  // the one before is in use until here
}

}  // namespace zq
