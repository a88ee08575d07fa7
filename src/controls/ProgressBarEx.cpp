#include "controls/ProgressBarEx.h"

#include <algorithm>
#include <string>

#include "controls/ProgressColours.h"
#include "controls/SystemColours.h"
#include "controls/WindowDc.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {
namespace {

void Fill(HDC context, const RECT& rect, COLORREF colour) {
  const UniqueBrush brush(::CreateSolidBrush(colour));
  ::FillRect(context, &rect, brush.Get());
}

// A soft light from above: lighter at the top, the colour itself from the middle down.
void DrawLitBar(HDC context, const RECT& bar, Colour colour) {
  constexpr Colour kWhite = 0xFFFFFF;
  const LONG height = bar.bottom - bar.top;
  for (LONG y = 0; y < height; ++y) {
    const int light = static_cast<int>(std::max<LONG>(0, 96 - 192 * y / std::max<LONG>(1, height)));
    Fill(context, {bar.left, bar.top + y, bar.right, bar.top + y + 1}, Mix(colour, kWhite, light));
  }
}

}  // namespace

void ProgressBarEx::SetValue(int value) {
  if (value == value_) return;
  value_ = value;
  DrawLater();
  ::NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, Handle(), OBJID_CLIENT, CHILDID_SELF);
}

void ProgressBarEx::SetStyle(int style) {
  style_ = style;
  DrawLater();
}

void ProgressBarEx::SetColour(COLORREF colour) {
  colour_ = colour;
  DrawLater();
}

void ProgressBarEx::Attached() {
  ::SendMessageW(Handle(), PBM_SETRANGE32, 0, 100);
  ::SetWindowSubclass(Handle(), &ProgressBarEx::SubclassProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK ProgressBarEx::SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                                  UINT_PTR id, DWORD_PTR self) {
  auto* bar = reinterpret_cast<ProgressBarEx*>(self);
  switch (message) {
    case WM_PAINT:
      bar->Drawn();
      bar->Paint(PaintDc(hwnd).Get());
      return 0;
    case WM_PRINTCLIENT:
      bar->Paint(reinterpret_cast<HDC>(wParam));
      return 0;
    // The control, told of each value, would be painted at once.
    case PBM_GETPOS:
      return std::clamp(bar->value_, 0, 100);
    case WM_ERASEBKGND:
      return 1;  // all of it is painted anyway
    case WM_NCDESTROY:
      ::RemoveWindowSubclass(hwnd, &ProgressBarEx::SubclassProcedure, id);
      break;
    default:
      break;
  }
  return ::DefSubclassProc(hwnd, message, wParam, lParam);
}

void ProgressBarEx::Paint(HDC target) const {
  RECT client{};
  ::GetClientRect(Handle(), &client);
  const UniqueBitmap bitmap(::CreateCompatibleBitmap(target, client.right, client.bottom));
  const UniqueDc memory(::CreateCompatibleDC(target));
  const HDC context = memory.Get();
  const SelectedObject canvas(context, bitmap.Get());
  const SelectedObject font(context,
                            reinterpret_cast<HFONT>(::SendMessageW(form().Handle(), WM_GETFONT, 0, 0)));
  ::SetBkMode(context, TRANSPARENT);

  const bool contrastTheme = ContrastTheme();
  const ProgressColours colours = ProgressColoursOf(SystemPalette(), contrastTheme, colour_);
  Fill(context, client, colours.frame);
  RECT inner = client;
  ::InflateRect(&inner, -1, -1);
  Fill(context, inner, colours.trough);
  RECT done = inner;
  done.right = inner.left + ::MulDiv(inner.right - inner.left, std::clamp(value_, 0, 100), 100);
  RECT rest = inner;
  rest.left = done.right;
  if (style_ == kProgressStylePlain || contrastTheme) {
    Fill(context, done, colours.bar);
  } else {
    DrawLitBar(context, done, colours.bar);
  }

  // The text is drawn twice, each time clipped to one side of the bar's end: readable on both.
  const std::wstring text = std::to_wstring(value_) + L"%";
  const auto drawText = [&](const RECT& clip, COLORREF colour) {
    if (clip.left >= clip.right) return;
    const int saved = ::SaveDC(context);
    ::IntersectClipRect(context, clip.left, clip.top, clip.right, clip.bottom);
    ::SetTextColor(context, colour);
    RECT place = inner;
    ::DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &place,
                DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    ::RestoreDC(context, saved);
  };
  drawText(rest, colours.textOnTrough);
  drawText(done, colours.textOnBar);

  ::BitBlt(target, 0, 0, client.right, client.bottom, context, 0, 0, SRCCOPY);
}

}  // namespace zq
