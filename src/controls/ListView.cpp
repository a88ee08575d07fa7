#include "controls/ListView.h"

#include <exception>

#include "controls/HeaderPainter.h"
#include "controls/RowPainter.h"
#include "controls/WindowDc.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

bool IsEnter(const MSG* message) {
  return message && message->message == WM_KEYDOWN && message->wParam == VK_RETURN;
}

}  // namespace

void ListView::Attached() {
  // Notifications with UTF-16 texts, whatever the parent is taken for.
  ListView_SetUnicodeFormat(Handle(), TRUE);
  ListView_SetExtendedListViewStyle(Handle(), LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  // The state that we are asked for row by row; the rest is the control's.
  ListView_SetCallbackMask(Handle(), LVIS_CUT);
  tip_.Create(Handle(), [this](int row) { return CellText ? CellText(row, 0) : std::string(); });
  ::SetWindowSubclass(Handle(), &ListView::SubclassProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK ListView::SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                             UINT_PTR id, DWORD_PTR self) {
  if (message == WM_NCDESTROY) {
    ::RemoveWindowSubclass(hwnd, &ListView::SubclassProcedure, id);
    return ::DefSubclassProc(hwnd, message, wParam, lParam);
  }
  try {
    return reinterpret_cast<ListView*>(self)->Receive(message, wParam, lParam);
  } catch (...) {
    ReportAndEnd(std::current_exception());
  }
}

LRESULT ListView::Receive(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_NOTIFY: {
      const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
      if (tip_.OnNotify(header)) return 0;
      if (header.code == static_cast<UINT>(NM_CUSTOMDRAW) && header.hwndFrom == ListView_GetHeader(Handle()))
        return PaintHeader(reinterpret_cast<const NMCUSTOMDRAW&>(header));
      break;
    }
    case WM_GETDLGCODE:
      if (Return && IsEnter(reinterpret_cast<const MSG*>(lParam)))
        return ::DefSubclassProc(Handle(), message, wParam, lParam) | DLGC_WANTMESSAGE;
      break;
    case WM_PAINT: {
      const LRESULT result = ::DefSubclassProc(Handle(), message, wParam, lParam);
      if (!EmptyText.empty() && RowCount() == 0) {
        PaintEmptyText(Handle(), WindowDc(Handle()).Get(), EmptyText);
      }
      return result;
    }
    case WM_SIZE:
      // The text in the middle moves.
      if (!EmptyText.empty() && RowCount() == 0) ::InvalidateRect(Handle(), nullptr, TRUE);
      break;
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
      tip_.Mouse(
          {.hwnd = Handle(), .message = message, .wParam = wParam, .lParam = lParam, .time = 0, .pt = {}});
      break;
    case WM_MOUSELEAVE:
    case WM_VSCROLL:
    case WM_HSCROLL:
    case WM_MOUSEWHEEL:
      tip_.Forget();
      break;
    default:
      break;
  }
  return ::DefSubclassProc(Handle(), message, wParam, lParam);
}

void ListView::SetColumns(std::span<const ListColumn> columns) {
  int index = 0;
  for (const ListColumn& column : columns) {
    LVCOLUMNW item{};
    item.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH | LVCF_SUBITEM;
    item.fmt = column.alignment;
    item.cx = 100;
    item.iSubItem = index;
    std::wstring caption = ToWide(column.caption);
    item.pszText = caption.data();
    ::SendMessageW(Handle(), LVM_INSERTCOLUMNW, static_cast<WPARAM>(index++),
                   reinterpret_cast<LPARAM>(&item));
  }
}

void ListView::SetGridLines(bool shown) {
  ListView_SetExtendedListViewStyleEx(Handle(), LVS_EX_GRIDLINES, shown ? LVS_EX_GRIDLINES : 0);
}

void ListView::SetRowCount(int count) {
  tip_.Forget();
  // The grey text of an empty list goes, or comes.
  if (!EmptyText.empty() && (count == 0) != (RowCount() == 0)) ::InvalidateRect(Handle(), nullptr, TRUE);
  ListView_SetItemCountEx(Handle(), count, LVSICF_NOSCROLL);
}

void ListView::SelectRow(int row) {
  selecting_ = true;
  const int place = row > 0 ? row - 1 : -1;
  ListView_SetItemState(Handle(), place, row > 0 ? LVIS_SELECTED | LVIS_FOCUSED : 0,
                        LVIS_SELECTED | LVIS_FOCUSED);
  if (row > 0) ListView_EnsureVisible(Handle(), place, FALSE);
  selecting_ = false;
}

void ListView::RevealRows(int first) {
  ListView_EnsureVisible(Handle(), RowCount() - 1, FALSE);
  ListView_EnsureVisible(Handle(), first - 1, FALSE);
}

POINT ListView::MenuPlace() const {
  RECT rect{};
  POINT place{0, 0};
  const int selected = SelectedRow();
  if (selected > 0 && ListView_GetItemRect(Handle(), selected - 1, &rect, LVIR_LABEL))
    place = {rect.left, rect.bottom};
  ::ClientToScreen(Handle(), &place);
  return place;
}

bool ListView::OnNotify(const NMHDR& header, LRESULT& result) {
  auto& mutableHeader = const_cast<NMHDR&>(header);
  switch (header.code) {
    case LVN_GETDISPINFOW:
      GetDisplayInfo(reinterpret_cast<NMLVDISPINFOW&>(mutableHeader));
      return true;
    case LVN_ITEMCHANGED: {
      const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
      const bool selection =
          (change.uChanged & LVIF_STATE) && ((change.uNewState ^ change.uOldState) & LVIS_SELECTED);
      if (selection && !selecting_ && SelectionChange) SelectionChange(SelectedRow());
      return true;
    }
    case LVN_ODFINDITEMW: {
      const auto& find = reinterpret_cast<const NMLVFINDITEMW&>(header);
      const bool byText = (find.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0;
      result = byText && FindRow ? FindRow(FromWide(find.lvfi.psz), find.iStart + 1) - 1 : -1;
      return true;
    }
    case NM_DBLCLK:
      if (DblClick) DblClick();
      return true;
    case NM_RETURN:
      if (Return) Return();
      return true;
    case NM_CUSTOMDRAW:
      result = CustomDraw(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
      return true;
    default:
      return false;
  }
}

void ListView::GetDisplayInfo(NMLVDISPINFOW& info) {
  LVITEMW& item = info.item;
  const int row = item.iItem + 1;
  if (item.mask & LVIF_TEXT) {
    cellText_ = CellText ? ToWide(CellText(row, item.iSubItem)) : std::wstring();
    item.pszText = cellText_.data();
  }
  if ((item.mask & LVIF_IMAGE) && item.iSubItem == 0) item.iImage = RowPicture ? RowPicture(row) - 1 : -1;
  if ((item.mask & LVIF_STATE) && (item.stateMask & LVIS_CUT))
    item.state = RowGhosted && RowGhosted(row) ? LVIS_CUT : 0;
}

LRESULT ListView::CustomDraw(const NMLVCUSTOMDRAW& draw) const {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      return CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT: {
      const int place = static_cast<int>(draw.nmcd.dwItemSpec);
      PaintRow(Handle(), draw.nmcd.hdc,
               {.place = place, .ghosted = RowGhosted && RowGhosted(place + 1), .text = [&](int column) {
                  return CellText ? CellText(place + 1, column) : std::string();
                }});
      return CDRF_SKIPDEFAULT;
    }
    default:
      return CDRF_DODEFAULT;
  }
}

}  // namespace zq
