#include "controls/ListView.h"

#include <uxtheme.h>

#include "platform/win32/Wide.h"

namespace zq {

void ListView::Attached() {
  // Notifications with UTF-16 texts, whatever the parent is taken for.
  ListView_SetUnicodeFormat(Handle(), TRUE);
  ListView_SetExtendedListViewStyle(Handle(), LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
  // The state that we are asked for row by row; the rest is the control's.
  ListView_SetCallbackMask(Handle(), LVIS_CUT);
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
    case NM_CUSTOMDRAW:
      result = CustomDraw(reinterpret_cast<NMLVCUSTOMDRAW&>(mutableHeader));
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

LRESULT ListView::CustomDraw(NMLVCUSTOMDRAW& draw) {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      return CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT: {
      const int row = static_cast<int>(draw.nmcd.dwItemSpec) + 1;
      if (RowGhosted && RowGhosted(row)) draw.clrText = ::GetSysColor(COLOR_GRAYTEXT);
      return CDRF_DODEFAULT;
    }
    default:
      return CDRF_DODEFAULT;
  }
}

}  // namespace zq
