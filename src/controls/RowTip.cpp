#include "controls/RowTip.h"

#include <commctrl.h>
#include <windowsx.h>

#include "controls/Ellipsis.h"
#include "controls/RowPainter.h"
#include "controls/WindowDc.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

TTTOOLINFOW ToolOf(HWND list) {
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.hwnd = list;
  return tool;
}

// The widest line of a tip on the list's monitor.
int WidestLine(HWND list) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  ::GetMonitorInfoW(::MonitorFromWindow(list, MONITOR_DEFAULTTONEAREST), &monitor);
  return static_cast<int>(monitor.rcWork.right - monitor.rcWork.left) * 3 / 4;
}

// The path in lines that a tip has room for.
std::wstring InLines(HWND list, HWND tip, const std::string& path) {
  const WindowDc context(tip);
  const SelectedObject font(context.Get(), reinterpret_cast<HFONT>(::SendMessageW(tip, WM_GETFONT, 0, 0)));
  const int widest = WidestLine(list);
  return ToWide(FoldedPath(path, [&](const std::string& text) {
    const std::wstring wide = ToWide(text);
    SIZE size{};
    ::GetTextExtentPoint32W(context.Get(), wide.c_str(), static_cast<int>(wide.size()), &size);
    return size.cx <= widest;
  }));
}

}  // namespace

void RowTip::Create(HWND list, std::function<std::string(int row)> text) {
  list_ = list;
  text_ = std::move(text);
  tip_ = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, list, nullptr,
                           ::GetModuleHandleW(nullptr), nullptr);
  if (!tip_) return;  // a list without tips is still a list
  TTTOOLINFOW tool = ToolOf(list);
  tool.lpszText = LPSTR_TEXTCALLBACKW;
  ::SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  // A tip without a greatest width has one line.
  ::SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, WidestLine(list));
}

void RowTip::Mouse(const MSG& message) {
  if (!tip_) return;
  if (message.message == WM_MOUSEMOVE) Follow({GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)});
  ::SendMessageW(tip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
}

void RowTip::Follow(POINT mouse) {
  LVHITTESTINFO hit{};
  hit.pt = mouse;
  const int row = ListView_SubItemHitTest(list_, &hit) >= 0 && hit.iSubItem == 0 ? hit.iItem + 1 : 0;
  if (row == row_) return;
  Forget();
  row_ = row;
  if (row == 0) return;
  const std::string text = text_(row);
  if (!IsShortened(list_, row - 1, text)) return;
  shown_ = InLines(list_, tip_, text);
  TTTOOLINFOW tool = ToolOf(list_);
  ListView_GetItemRect(list_, row - 1, &tool.rect, LVIR_LABEL);
  ::SendMessageW(tip_, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&tool));
}

void RowTip::Forget() {
  row_ = 0;
  if (!tip_) return;
  ::SendMessageW(tip_, TTM_POP, 0, 0);
  TTTOOLINFOW nowhere = ToolOf(list_);
  ::SendMessageW(tip_, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&nowhere));
}

bool RowTip::OnNotify(const NMHDR& header) {
  if (!tip_ || header.hwndFrom != tip_ || header.code != static_cast<UINT>(TTN_GETDISPINFOW)) return false;
  auto& info = reinterpret_cast<NMTTDISPINFOW&>(const_cast<NMHDR&>(header));
  info.lpszText = shown_.data();
  return true;
}

}  // namespace zq
