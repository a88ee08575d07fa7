#include "controls/StatusBar.h"

#include <commctrl.h>

#include <algorithm>
#include <vector>

#include "controls/Pictures.h"
#include "platform/win32/Wide.h"

namespace zq {

void StatusBar::Create(HWND owner, std::span<const Panel> panels, int dpi) {
  owner_ = owner;
  panels_ = panels;
  const bool canBeSized = (::GetWindowLongW(owner, GWL_STYLE) & WS_THICKFRAME) != 0;
  bar_ = ::CreateWindowExW(0, STATUSCLASSNAMEW, nullptr,
                           WS_CHILD | WS_VISIBLE | (canBeSized ? SBARS_SIZEGRIP : 0U), 0, 0, 0, 0, owner,
                           nullptr, ::GetModuleHandleW(nullptr), nullptr);
  // With the owner's font it follows the owner's resolution.
  ::SendMessageW(bar_, WM_SETFONT, static_cast<WPARAM>(::SendMessageW(owner, WM_GETFONT, 0, 0)), FALSE);
  LayOut(dpi);
  for (const Panel& panel : panels) SetText(panel.name, std::string(panel.text));
}

void StatusBar::LayOut(int dpi) {
  ::SendMessageW(bar_, WM_SIZE, 0, 0);
  RECT client{};
  ::GetClientRect(owner_, &client);
  int fixed = 0;
  for (const Panel& panel : panels_) fixed += ScaleForDpi(panel.width, dpi);
  std::vector<int> rights;
  int right = 0;
  for (const Panel& panel : panels_) {
    right +=
        panel.width ? ScaleForDpi(panel.width, dpi) : std::max(0, static_cast<int>(client.right) - fixed);
    rights.push_back(right);
  }
  if (!rights.empty()) rights.back() = -1;  // to the bar's end
  ::SendMessageW(bar_, SB_SETPARTS, rights.size(), reinterpret_cast<LPARAM>(rights.data()));
}

void StatusBar::SetText(std::string_view panelName, const std::string& text) {
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    if (panels_[i].name == panelName)
      ::SendMessageW(bar_, SB_SETTEXTW, i, reinterpret_cast<LPARAM>(ToWide(text).c_str()));
  }
}

std::string StatusBar::Text(int panel) const {
  const auto part = static_cast<WPARAM>(panel);
  std::wstring text(static_cast<std::size_t>(LOWORD(::SendMessageW(bar_, SB_GETTEXTLENGTHW, part, 0))) + 1,
                    L'\0');
  text.resize(LOWORD(::SendMessageW(bar_, SB_GETTEXTW, part, reinterpret_cast<LPARAM>(text.data()))));
  return FromWide(text);
}

RECT StatusBar::PanelPlace(int panel) const {
  RECT place{};
  ::SendMessageW(bar_, SB_GETRECT, static_cast<WPARAM>(panel), reinterpret_cast<LPARAM>(&place));
  return place;
}

}  // namespace zq
