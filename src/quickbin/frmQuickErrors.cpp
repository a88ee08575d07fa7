#include "quickbin/frmQuickErrors.h"

#include <algorithm>

#include "controls/Pictures.h"
#include "controls/WindowDc.h"
#include "platform/win32/Wide.h"

namespace zq {

frmQuickErrors::frmQuickErrors() : Form(IDD_frmQuickErrors) {
  cmdOK.Click = [this] { Unload(); };
}

void frmQuickErrors::AddLines(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    ::SendMessageW(List1.Handle(), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(line).c_str()));
    lines_.push_back(line);
  }
  FitWidth();
}

// The longest line can be read to its end, by scrolling.
void frmQuickErrors::FitWidth() {
  const WindowDc context(List1.Handle());
  const SelectedObject font(context.Get(),
                            reinterpret_cast<HFONT>(::SendMessageW(List1.Handle(), WM_GETFONT, 0, 0)));
  LONG widest = 0;
  for (const std::string& line : lines_) {
    const std::wstring text = ToWide(line);
    SIZE size{};
    ::GetTextExtentPoint32W(context.Get(), text.c_str(), static_cast<int>(text.size()), &size);
    widest = std::max(widest, size.cx);
  }
  constexpr int kEdge = 8;
  ::SendMessageW(List1.Handle(), LB_SETHORIZONTALEXTENT,
                 static_cast<WPARAM>(widest + ScaleForDpi(kEdge, Dpi())), 0);
}

}  // namespace zq
