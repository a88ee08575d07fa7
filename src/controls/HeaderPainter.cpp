#include "controls/HeaderPainter.h"

#include <uxtheme.h>
#include <vssym32.h>

#include <cwchar>

#include "controls/Pictures.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {
namespace {

constexpr int kCaptionUnits = 100;

// From the item's edge to its caption at 96 dpi.
constexpr int kMargin = 6;

struct ThemeTraits {
  using Type = HTHEME;
  static constexpr debug::Kind kKind = debug::Kind::Theme;
  static Type Invalid() { return nullptr; }
  static void Close(Type theme) { ::CloseThemeData(theme); }
};

void PaintGround(HWND header, HDC context, const RECT& rect) {
  const UniqueHandle<ThemeTraits> theme(::OpenThemeData(header, L"HEADER"));
  if (theme) {
    ::DrawThemeBackground(theme.Get(), context, HP_HEADERITEM, HIS_NORMAL, &rect, nullptr);
    return;
  }
  RECT edge = rect;
  ::FillRect(context, &edge, ::GetSysColorBrush(COLOR_BTNFACE));
  ::DrawEdge(context, &edge, EDGE_RAISED, BF_RECT | BF_SOFT);
}

}  // namespace

LRESULT PaintHeader(const NMCUSTOMDRAW& draw) {
  if (draw.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  if (draw.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
  const HWND header = draw.hdr.hwndFrom;
  wchar_t caption[kCaptionUnits] = L"";
  HDITEMW item{};
  item.mask = HDI_TEXT | HDI_FORMAT;
  item.pszText = caption;
  item.cchTextMax = kCaptionUnits;
  if (!::SendMessageW(header, HDM_GETITEMW, draw.dwItemSpec, reinterpret_cast<LPARAM>(&item)) ||
      !std::wcschr(caption, L'&')) {
    return CDRF_DODEFAULT;
  }
  const int saved = ::SaveDC(draw.hdc);
  PaintGround(header, draw.hdc, draw.rc);
  ::SetBkMode(draw.hdc, TRANSPARENT);
  ::SetTextColor(draw.hdc, ::GetSysColor(COLOR_BTNTEXT));
  RECT place = draw.rc;
  ::InflateRect(&place, -ScaleForDpi(kMargin, static_cast<int>(::GetDpiForWindow(header))), 0);
  ::DrawTextW(draw.hdc, caption, -1, &place,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS |
                  ((item.fmt & HDF_JUSTIFYMASK) == HDF_RIGHT ? DT_RIGHT : DT_LEFT));
  ::RestoreDC(draw.hdc, saved);
  return CDRF_SKIPDEFAULT;
}

}  // namespace zq
