#include "controls/ToolTip.h"

#include <commctrl.h>

#include "controls/Pictures.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr int kWidestLine = 300;      // in pixels at 96 dpi
constexpr int kMilliseconds = 30000;  // long enough for some sentences; the system's own is 5 s

}  // namespace

void ToolTip::Create(HWND control, const std::string& text, int dpi) {
  tip_ = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, control, nullptr,
                           ::GetModuleHandleW(nullptr), nullptr);
  if (!tip_) return;
  std::wstring wide = ToWide(text);
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = control;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = wide.data();
  ::SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  ::SendMessageW(tip_, TTM_SETDELAYTIME, TTDT_AUTOPOP, kMilliseconds);
  SetDpi(dpi);
}

void ToolTip::SetDpi(int dpi) {
  if (tip_) ::SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, ScaleForDpi(kWidestLine, dpi));
}

}  // namespace zq
