#include "controls/document/DocumentBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "controls/document/Characters.h"
#include "controls/document/Length.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr float kSmallestPoints = 4;
constexpr float kLargestPoints = 72;
constexpr const char* kStoredFontName = "Verdana";
// Far more than a report needs, and no memory can be asked for that isn't there.
constexpr int kMostRowsOrColumns = 1000;

float ReadableSize(float points) {
  return std::isfinite(points) ? std::clamp(points, kSmallestPoints, kLargestPoints) : kSmallestPoints;
}

// One line of text without control characters.
std::string OneLine(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCodePoint(text, at);
    if (c == '\t' || c == '\n' || c == '\r') {
      line += ' ';
    } else {
      AppendUtf8(line, c < 0x20 || c == 0x7F ? kReplacementCharacter : c);
    }
  }
  return line;
}

template <class Kind>
Kind ValueOf(const TableValue& value) {
  if (!std::holds_alternative<Kind>(value)) throw RunTimeError(ErrorNumber::TypeMismatch);
  return std::get<Kind>(value);
}

}  // namespace

DocumentBuilder::DocumentBuilder() {
  document_.fontName = kStoredFontName;
}

void DocumentBuilder::SetFontSize(float points) {
  style_.points = ReadableSize(points);
}

void DocumentBuilder::SetPageHeader(std::string_view header) {
  std::array<std::string*, 3> parts{&document_.header.left, &document_.header.centre,
                                    &document_.header.right};
  for (std::string* part : parts) {
    const std::size_t bar = header.find('|');
    *part = OneLine(header.substr(0, bar));
    header.remove_prefix(bar == std::string_view::npos ? header.size() : bar + 1);
  }
}

void DocumentBuilder::SetPageHeaderFontSize(float points) {
  document_.header.points = ReadableSize(points);
}

void DocumentBuilder::SetExportFormat(std::int32_t format) {
  if (format != kExportRichText) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
}

void DocumentBuilder::StartDocument() {
  Document fresh;
  fresh.fontName = document_.fontName;
  fresh.header = std::move(document_.header);
  document_ = std::move(fresh);
  open_ = true;
  inParagraph_ = afterReturn_ = inTable_ = false;
  style_.bold = false;
}

void DocumentBuilder::EndDocument() {
  RequireOpen();
  if (inTable_) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  open_ = false;
  DocumentEnded();
}

void DocumentBuilder::RequireOpen() const {
  if (!open_) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
}

void DocumentBuilder::UseStyle(const TextStyle& style) {
  std::vector<StyledRun>& runs = document_.runs;
  if (!runs.empty() && runs.back().begin == document_.text.size()) runs.pop_back();
  if (runs.empty() || !(runs.back().style == style)) runs.push_back({document_.text.size(), style});
}

void DocumentBuilder::AppendText(std::string_view text) {
  RequireOpen();
  if (inTable_) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  if (text.empty()) return;
  UseStyle(style_);
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCodePoint(text, at);
    const bool afterReturn = std::exchange(afterReturn_, c == '\r');
    if (c == '\n' && afterReturn) continue;
    if (!inParagraph_) {
      document_.blocks.push_back({document_.text.size(), document_.text.size()});
      inParagraph_ = true;
    }
    if (c == '\r' || c == '\n') {
      BreakLine();
    } else if (c == '\t') {
      document_.text += ' ';
    } else {
      AppendUtf8(document_.text, c < 0x20 || c == 0x7F ? kReplacementCharacter : c);
    }
  }
  if (inParagraph_) document_.blocks.back().end = document_.text.size();
}

void DocumentBuilder::BreakLine() {
  document_.blocks.back().end = document_.text.size();
  document_.text += '\n';
  inParagraph_ = false;
}

void DocumentBuilder::DrawPicture(std::shared_ptr<const PictureData> picture, std::string_view left,
                                  std::string_view top, std::string_view width, std::string_view height) {
  RequireOpen();
  if (!picture) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);
  Picture placed;
  placed.left = LengthFrom(left);
  placed.top = LengthFrom(top);
  placed.width = LengthFrom(width, picture->naturalWidth);
  placed.height = LengthFrom(height, picture->naturalHeight);
  placed.block = inParagraph_ ? document_.blocks.size() - 1 : document_.blocks.size();
  placed.data = std::move(picture);
  document_.pictures.push_back(std::move(placed));
}

void DocumentBuilder::StartTable() {
  RequireOpen();
  if (inTable_) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  inTable_ = true;
  table_ = {};
}

void DocumentBuilder::SetTableBorder(std::int32_t border) {
  if (!inTable_ || (border != kTableBorderNone && border != kTableBorderAll))
    throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  table_.border = border;
}

void DocumentBuilder::ResizeTable(int rows, int columns) {
  if (rows < 0 || columns < 0 || rows > kMostRowsOrColumns || columns > kMostRowsOrColumns)
    throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  std::vector<CellInWork> cells(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
  for (int row = 0; row < std::min(rows, table_.rows); ++row) {
    for (int column = 0; column < std::min(columns, table_.columns); ++column) {
      cells[static_cast<std::size_t>(row * columns + column)] =
          std::move(table_.cells[static_cast<std::size_t>(row * table_.columns + column)]);
    }
  }
  table_.rows = rows;
  table_.columns = columns;
  table_.columnWidths.resize(static_cast<std::size_t>(columns));
  table_.cells = std::move(cells);
}

DocumentBuilder::CellInWork& DocumentBuilder::CellAt(int row, int column) {
  if (row < 1 || row > table_.rows || column < 1 || column > table_.columns)
    throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
  return table_.cells[static_cast<std::size_t>((row - 1) * table_.columns + column - 1)];
}

void DocumentBuilder::SetTableCell(TableSetting setting, int row, int column, const TableValue& value) {
  if (!inTable_) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  switch (setting) {
    case TableSetting::Rows:
      ResizeTable(ValueOf<std::int32_t>(value), table_.columns);
      return;
    case TableSetting::Columns:
      ResizeTable(table_.rows, ValueOf<std::int32_t>(value));
      return;
    case TableSetting::ColumnWidth:
      if (column < 1 || column > table_.columns) throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
      table_.columnWidths[static_cast<std::size_t>(column - 1)] = LengthFrom(ValueOf<std::string>(value));
      return;
    case TableSetting::Text:
      CellAt(row, column).text = OneLine(ValueOf<std::string>(value));
      return;
    case TableSetting::TextColour:
      CellAt(row, column).colour = static_cast<Colour>(ValueOf<std::int32_t>(value)) & kWhite;
      return;
    case TableSetting::BackColour:
      CellAt(row, column).background = static_cast<Colour>(ValueOf<std::int32_t>(value)) & kWhite;
      return;
    case TableSetting::Bold:
      CellAt(row, column).bold = ValueOf<bool>(value);
      return;
  }
  throw RunTimeError(ErrorNumber::InvalidProcedureCall);
}

void DocumentBuilder::EndTable() {
  RequireOpen();
  if (!inTable_ || table_.cells.empty()) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  inTable_ = false;
  if (inParagraph_) BreakLine();
  afterReturn_ = false;

  Block block;
  block.begin = document_.text.size();
  block.table = static_cast<int>(document_.tables.size());
  Table table{table_.rows, table_.columns, table_.border == kTableBorderAll, table_.columnWidths, {}};
  for (std::size_t i = 0; i < table_.cells.size(); ++i) {
    const CellInWork& cell = table_.cells[i];
    UseStyle({style_.points, cell.bold, cell.colour});
    const std::size_t begin = document_.text.size();
    document_.text += cell.text;
    table.cells.push_back({begin, document_.text.size(), cell.background});
    const bool lastOfRow = (i + 1) % static_cast<std::size_t>(table_.columns) == 0;
    document_.text += lastOfRow ? '\n' : '\t';
  }
  block.end = document_.text.size() - 1;
  document_.tables.push_back(std::move(table));
  document_.blocks.push_back(block);
}

}  // namespace zq
