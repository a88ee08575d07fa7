#include "controls/RowPainter.h"

#include <utility>

#include "controls/Ellipsis.h"
#include "controls/Pictures.h"
#include "controls/RowColours.h"
#include "controls/SystemColours.h"
#include "controls/WindowDc.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// From a cell's edge to its text, and from the picture to the text, at 96 dpi.
constexpr int kCellMargin = 6;
constexpr int kLabelMargin = 3;

// Puts everything back that was chosen into a context.
class SavedContext {
 public:
  explicit SavedContext(HDC context) : context_(context), saved_(::SaveDC(context)) {}
  ~SavedContext() { ::RestoreDC(context_, saved_); }
  SavedContext(const SavedContext&) = delete;
  SavedContext& operator=(const SavedContext&) = delete;

 private:
  HDC context_;
  int saved_;
};

HFONT FontOf(HWND window) {
  return reinterpret_cast<HFONT>(::SendMessageW(window, WM_GETFONT, 0, 0));
}

int Scaled(HWND window, int pixels) {
  return ScaleForDpi(pixels, static_cast<int>(::GetDpiForWindow(window)));
}

void Fill(HDC context, const RECT& rect, COLORREF colour) {
  const UniqueBrush brush(::CreateSolidBrush(colour));
  ::FillRect(context, &rect, brush.Get());
}

Fits RoomFor(HDC context, LONG width) {
  return [context, width](const std::string& text) {
    const std::wstring wide = ToWide(text);
    SIZE size{};
    ::GetTextExtentPoint32W(context, wide.c_str(), static_cast<int>(wide.size()), &size);
    return size.cx <= width;
  };
}

RECT LabelOf(HWND list, int place) {
  RECT label{};
  ListView_GetItemRect(list, place, &label, LVIR_LABEL);
  ::InflateRect(&label, -Scaled(list, kLabelMargin), 0);
  return label;
}

bool FocusIsShown(HWND list) {
  return (::SendMessageW(list, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0;
}

void PaintPicture(HWND list, HDC context, int place, bool ghosted, COLORREF ground) {
  LVITEMW item{};
  item.mask = LVIF_IMAGE;
  item.iItem = place;
  const HIMAGELIST images = ListView_GetImageList(list, LVSIL_SMALL);
  if (!images || !::SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return;
  RECT icon{};
  ListView_GetItemRect(list, place, &icon, LVIR_ICON);
  int width = 0;
  int height = 0;
  ::ImageList_GetIconSize(images, &width, &height);
  ::ImageList_DrawEx(images, item.iImage, context, icon.left, (icon.top + icon.bottom - height) / 2, width,
                     height, CLR_NONE, ghosted ? ground : CLR_NONE,
                     ILD_TRANSPARENT | (ghosted ? static_cast<UINT>(ILD_BLEND50) : 0U));
}

void PaintText(HDC context, const std::string& text, RECT place, UINT format) {
  if (place.left >= place.right) return;
  const std::wstring wide = ToWide(text);
  ::DrawTextW(context, wide.c_str(), static_cast<int>(wide.size()), &place,
              format | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

UINT FormatOfColumn(HWND list, int column) {
  LVCOLUMNW info{};
  info.mask = LVCF_FMT;
  ::SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&info));
  return DT_END_ELLIPSIS | ((info.fmt & LVCFMT_JUSTIFYMASK) == LVCFMT_RIGHT ? DT_RIGHT : DT_LEFT);
}

}  // namespace

void PaintRow(HWND list, HDC context, const PaintedRow& row) {
  const SavedContext saved(context);
  ::SelectObject(context, FontOf(list));
  ::SetBkMode(context, TRANSPARENT);
  // Asked for here: what a notification tells of the selection isn't to be relied on in such a list.
  const UINT states = ListView_GetItemState(list, row.place, LVIS_SELECTED | LVIS_FOCUSED);
  const bool focused = ::GetFocus() == list;
  RowState state = RowState::Plain;
  if (states & LVIS_SELECTED) state = focused ? RowState::Chosen : RowState::ChosenElsewhere;
  const RowColours colours = ColoursOf(SystemPalette(), state, row.ghosted);
  ::SetTextColor(context, colours.text);

  const LONG line = (ListView_GetExtendedListViewStyle(list) & LVS_EX_GRIDLINES) != 0 ? 1 : 0;
  RECT whole{};
  ListView_GetItemRect(list, row.place, &whole, LVIR_BOUNDS);
  const int columns = Header_GetItemCount(ListView_GetHeader(list));
  for (int column = 0; column < columns; ++column) {
    RECT cell = whole;
    if (column > 0) {
      ListView_GetSubItemRect(list, row.place, column, LVIR_BOUNDS, &cell);
    } else {
      cell.right = cell.left + ListView_GetColumnWidth(list, 0);
    }
    Fill(context, {cell.left, cell.top, cell.right - line, cell.bottom - line}, colours.background);
    const std::string text = row.text(column);
    if (column == 0) {
      const RECT label = LabelOf(list, row.place);
      PaintText(context, PathEllipsis(text, RoomFor(context, label.right - label.left)), label, DT_LEFT);
    } else {
      ::InflateRect(&cell, -Scaled(list, kCellMargin), 0);
      PaintText(context, text, cell, FormatOfColumn(list, column));
    }
  }
  PaintPicture(list, context, row.place, row.ghosted, colours.background);
  if (focused && (states & LVIS_FOCUSED) && FocusIsShown(list)) ::DrawFocusRect(context, &whole);
}

bool IsShortened(HWND list, int place, const std::string& text) {
  const WindowDc context(list);
  const SelectedObject font(context.Get(), FontOf(list));
  const RECT label = LabelOf(list, place);
  return !RoomFor(context.Get(), label.right - label.left)(text);
}

void PaintEmptyText(HWND list, HDC context, const std::string& text) {
  const SavedContext saved(context);
  ::SelectObject(context, FontOf(list));
  ::SetBkMode(context, TRANSPARENT);
  ::SetTextColor(context, ::GetSysColor(COLOR_GRAYTEXT));
  RECT place{};
  ::GetClientRect(list, &place);
  RECT header{};
  if (::GetWindowRect(ListView_GetHeader(list), &header)) place.top += header.bottom - header.top;
  PaintText(context, text, place, DT_CENTER | DT_END_ELLIPSIS);
}

}  // namespace zq
