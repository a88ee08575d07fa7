// ListView: a report list that asks for its rows when it shows them, so that its length costs nothing.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "controls/Control.h"
#include "controls/RowTip.h"

namespace zq {

struct ListColumn {
  const char* caption;
  int alignment;  // LVCFMT_LEFT or LVCFMT_RIGHT
};

// Rows are counted from 1, columns from 0.
class ListView : public Control {
 public:
  using Control::Control;

  // The rows, asked for whenever one is drawn.
  std::function<std::string(int row, int column)> CellText;
  std::function<int(int row)> RowPicture;  // counted from 1
  std::function<bool(int row)> RowGhosted;

  std::function<void(int row)> SelectionChange;  // by the user; 0 for none
  std::function<void()> DblClick;
  std::function<void()> Return;  // Enter, which goes to the form's default button where nothing is set
  // The first row from `startRow` on, once round, whose text begins with `prefix`; 0 for none. For
  // finding a row by typing.
  std::function<int(const std::string& prefix, int startRow)> FindRow;

  // What a list without rows shows, in grey.
  std::string EmptyText;

  void SetColumns(std::span<const ListColumn> columns);
  void SetColumnWidth(int column, int pixels) { ListView_SetColumnWidth(Handle(), column, pixels); }
  int ColumnWidth(int column) const { return ListView_GetColumnWidth(Handle(), column); }
  void SetSmallIcons(HIMAGELIST images) { ListView_SetImageList(Handle(), images, LVSIL_SMALL); }
  void SetGridLines(bool shown);
  void SetRowCount(int count);
  int RowCount() const { return ListView_GetItemCount(Handle()); }
  // What isn't seen, as the rows of a running job, is drawn anyway when it is shown again.
  void RedrawRow(int row) {
    if (::IsWindowVisible(Handle())) ListView_RedrawItems(Handle(), row - 1, row - 1);
  }
  void SelectRow(int row);  // 0 takes the selection away
  // Scrolls so that the rows from `first` on are to be seen, as many as there is room for.
  void RevealRows(int first);
  int SelectedRow() const { return ListView_GetNextItem(Handle(), -1, LVNI_SELECTED) + 1; }
  // Where a menu for the selected row opens by keyboard, on the screen.
  POINT MenuPlace() const;

 protected:
  void Attached() override;
  bool OnNotify(const NMHDR& header, LRESULT& result) override;

 private:
  void GetDisplayInfo(NMLVDISPINFOW& info);
  LRESULT CustomDraw(const NMLVCUSTOMDRAW& draw) const;
  static LRESULT CALLBACK SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR self);
  LRESULT Receive(UINT message, WPARAM wParam, LPARAM lParam);

  RowTip tip_;
  std::wstring cellText_;   // keeps the text that the control was given until it asks for the next
  bool selecting_ = false;  // the selection is being set by code
};

}  // namespace zq
