// DocumentBuilder: the members of VSPrinter that make a document, one after the other.
//
// Members called out of their order (text before StartDocument, a cell outside a table) raise
// InvalidProcedureCall.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "controls/document/Document.h"

namespace zq {

enum class TableSetting : int {
  Rows = 1,
  Columns = 2,
  ColumnWidth = 13,  // of a column: a length as text
  Text = 18,         // of a cell, as the next three
  TextColour = 20,
  BackColour = 21,
  Bold = 25,
};

// TableBorder's values.
inline constexpr std::int32_t kTableBorderNone = 0;
inline constexpr std::int32_t kTableBorderAll = 7;  // lines on all sides of each cell

// ExportFormat's one value.
inline constexpr std::int32_t kExportRichText = 4;

using TableValue = std::variant<std::int32_t, bool, std::string>;

class DocumentBuilder {
 public:
  DocumentBuilder();
  DocumentBuilder(const DocumentBuilder&) = delete;
  DocumentBuilder& operator=(const DocumentBuilder&) = delete;
  virtual ~DocumentBuilder() = default;

  // Body size in points. What no page could show is brought to the nearest size that can be read: the
  // setting comes from a file.
  void SetFontSize(float points);
  void SetFontBold(bool bold) { style_.bold = bold; }
  float FontSize() const { return style_.points; }

  // "left|centre|right" with "%d" for the page's number, and its size, whatever FontSize says.
  void SetPageHeader(std::string_view header);
  void SetPageHeaderFontSize(float points);

  // Where EndDocument writes the document to, and as what.
  void SetExportFile(std::string path) { exportFile_ = std::move(path); }
  void SetExportFormat(std::int32_t format);
  const std::string& ExportFile() const { return exportFile_; }

  void StartDocument();
  void EndDocument();

  // At the end of the text. CR LF, CR and LF each break the line; a pair counts as one, also across two
  // calls. Other control characters have no picture, and become the replacement character; a tab becomes a
  // blank.
  void AppendText(std::string_view text);

  // On the present page. Lengths as LengthFrom reads them; width and height may be a part of the natural
  // size.
  void DrawPicture(std::shared_ptr<const PictureData> picture, std::string_view left, std::string_view top,
                   std::string_view width, std::string_view height);

  void StartTable();
  void EndTable();
  void SetTableBorder(std::int32_t border);
  // Rows and columns count from 1; 0 where the setting has no such index. Raises TypeMismatch for a value of
  // another kind than the setting's, SubscriptOutOfRange for a cell that isn't there.
  void TableCell(TableSetting setting, const TableValue& value) { SetTableCell(setting, 0, 0, value); }
  void TableCell(TableSetting setting, int column, const TableValue& value) {
    SetTableCell(setting, 0, column, value);
  }
  void TableCell(TableSetting setting, int row, int column, const TableValue& value) {
    SetTableCell(setting, row, column, value);
  }

  const Document& Content() const { return document_; }

 protected:
  // EndDocument has been called and the document is whole.
  virtual void DocumentEnded() {}

 private:
  struct CellInWork {
    std::string text;
    bool bold = false;
    Colour colour = kBlack;
    Colour background = kWhite;
  };
  struct TableInWork {
    int rows = 0;
    int columns = 0;
    std::int32_t border = kTableBorderNone;
    std::vector<Twips> columnWidths;
    std::vector<CellInWork> cells;
  };

  void SetTableCell(TableSetting setting, int row, int column, const TableValue& value);
  CellInWork& CellAt(int row, int column);
  void ResizeTable(int rows, int columns);
  void UseStyle(const TextStyle& style);
  void BreakLine();
  void RequireOpen() const;

  Document document_;
  TextStyle style_;
  std::string exportFile_;
  bool open_ = false;
  bool inParagraph_ = false;  // the last block is a paragraph that has not ended yet
  bool afterReturn_ = false;  // the last character was a CR
  bool inTable_ = false;
  TableInWork table_;
};

}  // namespace zq
