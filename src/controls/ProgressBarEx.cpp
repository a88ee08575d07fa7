#include "controls/ProgressBarEx.h"

#include <algorithm>
#include <string>

#include "platform/win32/UniqueHandle.h"

namespace zq {
namespace {

constexpr COLORREF kFrame = RGB(160, 160, 160);
constexpr COLORREF kTrough = RGB(255, 255, 255);
constexpr COLORREF kTextOnTrough = RGB(0, 0, 0);
constexpr COLORREF kTextOnBar = RGB(255, 255, 255);

void Fill(HDC context, const RECT& rect, COLORREF colour) {
  const UniqueBrush brush(::CreateSolidBrush(colour));
  ::FillRect(context, &rect, brush.Get());
}

// `part` of 256 of the way from `from` to `to`.
COLORREF Mix(COLORREF from, COLORREF to, int part) {
  const auto mix = [part](int a, int b) { return static_cast<BYTE>(a + (b - a) * part / 256); };
  return RGB(mix(GetRValue(from), GetRValue(to)), mix(GetGValue(from), GetGValue(to)),
             mix(GetBValue(from), GetBValue(to)));
}

// Black or white, whichever stands out from `background`.
COLORREF ReadableOn(COLORREF background) {
  const int brightness =
      (GetRValue(background) * 299 + GetGValue(background) * 587 + GetBValue(background) * 114) / 1000;
  return brightness > 140 ? kTextOnTrough : kTextOnBar;
}

}  // namespace

void ProgressBarEx::SetValue(int value) {
  if (value == value_) return;
  value_ = value;
  ::SendMessageW(Handle(), PBM_SETPOS, static_cast<WPARAM>(std::clamp(value, 0, 100)), 0);
  ::InvalidateRect(Handle(), nullptr, FALSE);
}

void ProgressBarEx::SetStyle(int style) {
  style_ = style;
  ::InvalidateRect(Handle(), nullptr, FALSE);
}

void ProgressBarEx::SetColour(COLORREF colour) {
  colour_ = colour;
  ::InvalidateRect(Handle(), nullptr, FALSE);
}

void ProgressBarEx::Attached() {
  ::SendMessageW(Handle(), PBM_SETRANGE32, 0, 100);
  ::SetWindowSubclass(Handle(), &ProgressBarEx::SubclassProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK ProgressBarEx::SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                                  UINT_PTR id, DWORD_PTR self) {
  const auto* bar = reinterpret_cast<const ProgressBarEx*>(self);
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint{};
      const HDC context = ::BeginPaint(hwnd, &paint);
      bar->Paint(context);
      ::EndPaint(hwnd, &paint);
      return 0;
    }
    case WM_PRINTCLIENT:
      bar->Paint(reinterpret_cast<HDC>(wParam));
      return 0;
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
  const HDC context = ::CreateCompatibleDC(target);
  const UniqueBitmap bitmap(::CreateCompatibleBitmap(target, client.right, client.bottom));
  const HGDIOBJ bitmapBefore = ::SelectObject(context, bitmap.Get());
  const auto font = reinterpret_cast<HFONT>(::SendMessageW(form().Handle(), WM_GETFONT, 0, 0));
  const HGDIOBJ fontBefore = ::SelectObject(context, font);
  ::SetBkMode(context, TRANSPARENT);

  Fill(context, client, kFrame);
  RECT inner = client;
  ::InflateRect(&inner, -1, -1);
  Fill(context, inner, kTrough);
  RECT done = inner;
  done.right = inner.left + ::MulDiv(inner.right - inner.left, std::clamp(value_, 0, 100), 100);
  RECT rest = inner;
  rest.left = done.right;
  DrawBar(context, done);

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
  drawText(rest, kTextOnTrough);
  drawText(done, ReadableOn(colour_));

  ::BitBlt(target, 0, 0, client.right, client.bottom, context, 0, 0, SRCCOPY);
  ::SelectObject(context, fontBefore);
  ::SelectObject(context, bitmapBefore);
  ::DeleteDC(context);
}

void ProgressBarEx::DrawBar(HDC context, const RECT& bar) const {
  if (style_ == kProgressStylePlain) {
    Fill(context, bar, colour_);
    return;
  }
  // A soft light from above: lighter at the top, the colour itself from the middle down.
  const LONG height = bar.bottom - bar.top;
  for (LONG y = 0; y < height; ++y) {
    const int light = static_cast<int>(std::max<LONG>(0, 96 - 192 * y / std::max<LONG>(1, height)));
    const RECT line{bar.left, bar.top + y, bar.right, bar.top + y + 1};
    Fill(context, line, Mix(colour_, RGB(255, 255, 255), light));
  }
}

}  // namespace zq
