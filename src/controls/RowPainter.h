// RowPainter: draws a row of a report list: its picture, the path in the first column so that the name can be
// read, and colours that tell chosen and ghosted rows in every state.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <string>

namespace zq {

struct PaintedRow {
  int place = 0;  // counted from 0, as the control does
  bool ghosted = false;
  std::function<std::string(int column)> text;
};

// Draws all of it but grid lines, which are the control's.
void PaintRow(HWND list, HDC context, const PaintedRow& row);

// Whether the first column has no room for all of `text` in the row at `place`.
bool IsShortened(HWND list, int place, const std::string& text);

// In the middle of a list without rows, in grey.
void PaintEmptyText(HWND list, HDC context, const std::string& text);

}  // namespace zq
