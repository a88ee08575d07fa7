// What icons, bitmaps and picture lists look like, pixel by pixel, to hold against what a window shows.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <functional>

#include "platform/win32/UniqueHandle.h"
#include "support/driver/Picture.h"

namespace zq::test {

// What `draw` leaves on a ground of one colour, `pixels` square.
inline Picture DrawOn(COLORREF ground, int pixels, const std::function<void(HDC)>& draw) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = pixels;
  info.bmiHeader.biHeight = -pixels;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  const UniqueBitmap bitmap(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  const HDC memory = ::CreateCompatibleDC(nullptr);
  const HGDIOBJ before = ::SelectObject(memory, bitmap.Get());
  const HBRUSH brush = ::CreateSolidBrush(ground);
  const RECT whole{0, 0, pixels, pixels};
  ::FillRect(memory, &whole, brush);
  draw(memory);
  ::GdiFlush();
  Picture picture{.width = pixels, .height = pixels, .pixels = {}};
  const auto* first = static_cast<const std::uint32_t*>(bits);
  picture.pixels.assign(first, first + pixels * pixels);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0x00FFFFFF;
  ::DeleteObject(brush);
  ::SelectObject(memory, before);
  ::DeleteDC(memory);
  return picture;
}

inline Picture DrawIcon(HICON icon, COLORREF ground, int pixels) {
  return DrawOn(ground, pixels,
                [&](HDC to) { ::DrawIconEx(to, 0, 0, icon, pixels, pixels, 0, nullptr, DI_NORMAL); });
}

// The named picture of the resources.
inline UniqueIcon LoadResourceIcon(const char* name, int pixels) {
  return UniqueIcon(static_cast<HICON>(
      ::LoadImageA(::GetModuleHandleA(nullptr), name, IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
}

inline Picture DrawOfList(HIMAGELIST images, int index, COLORREF ground, int pixels) {
  return DrawOn(ground, pixels, [&](HDC to) { ::ImageList_Draw(images, index, to, 0, 0, ILD_TRANSPARENT); });
}

// An icon as a picture list draws it, which blends by another rounding than the system's own drawing.
inline Picture DrawListed(HICON icon, COLORREF ground, int pixels) {
  const HIMAGELIST images = ::ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, 1, 1);
  const int index = ::ImageList_ReplaceIcon(images, -1, icon);
  const Picture picture = DrawOfList(images, index, ground, pixels);
  ::ImageList_Destroy(images);
  return picture;
}

inline Picture DrawBitmap(HBITMAP bitmap, int pixels) {
  return DrawOn(0, pixels, [&](HDC to) {
    const HDC from = ::CreateCompatibleDC(nullptr);
    const HGDIOBJ before = ::SelectObject(from, bitmap);
    ::BitBlt(to, 0, 0, pixels, pixels, from, 0, 0, SRCCOPY);
    ::SelectObject(from, before);
    ::DeleteDC(from);
  });
}

// Whether there is more to see than one colour.
inline bool ShowsSomething(const Picture& picture) {
  return std::any_of(picture.pixels.begin(), picture.pixels.end(),
                     [&](std::uint32_t pixel) { return pixel != picture.pixels.front(); });
}

}  // namespace zq::test
