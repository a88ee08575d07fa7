// The way from a report's data file, and from documents of any kind, to pages and rich text: all of the text
// is laid out once and in order, no line is wider than its column and no page fuller than it may be, and a
// reader of the rich text, a search and a copy get the same text.
#include <algorithm>
#include <string>
#include <vector>

#include "controls/document/LineBreaker.h"
#include "controls/document/PreviewPlan.h"
#include "controls/document/RtfWriter.h"
#include "controls/document/TextSearch.h"
#include "fuzz/Fuzz.h"
#include "platform/RunTimeError.h"
#include "reports/ReportDocument.h"
#include "support/document/FakeMeasure.h"
#include "support/document/RtfText.h"

namespace zq::test {
namespace {

std::string Without(std::string text, char c) {
  std::erase(text, c);
  return text;
}

std::shared_ptr<PictureData> Logo() {
  auto logo = std::make_shared<PictureData>();
  logo->naturalWidth = logo->naturalHeight = 900;
  logo->png = "x";
  return logo;
}

// Follows a layout line by line, beside the document that it was made of.
class LayoutCheck {
 public:
  LayoutCheck(const Document& document, const PageSetup& setup)
      : document_(document), setup_(setup), layout_(LayOut(document, setup, measure_)) {}

  void Check() {
    CheckPages();
    for (const Block& block : document_.blocks) {
      if (block.table < 0) {
        const std::size_t first = nextLine_;
        Require(FollowLines(block.begin, block.end, setup_.TextWidth()) == block.end);
        for (std::size_t i = first; i < nextLine_; ++i) {
          const LaidLine& line = layout_.lines[i];
          Require(line.left == setup_.left);
          Place(line.top, line.top + line.height, layout_.pages[PageOfLine(layout_, i)].firstLine == i);
        }
      } else {
        FollowTable(block.table);
      }
    }
    Require(nextLine_ == layout_.lines.size() && nextCell_ == layout_.cells.size());
    Require(layout_.pictures.size() == document_.pictures.size());
    for (const LaidPicture& picture : layout_.pictures) Require(picture.page < layout_.pages.size());
    for (int page = 1; page <= 3; ++page) CheckHeader(page);
  }

 private:
  // Below what was placed before it, or at the top of the next page.
  void Place(Twips top, Twips bottom, bool startsPage) {
    Require(startsPage ? top == setup_.top : top >= bottom_);
    bottom_ = bottom;
  }

  // What stands first and last on a page, lines and cells together.
  struct Extent {
    Twips top = 0;
    Twips bottom = 0;
    Twips firstHeight = 0;
  };

  Extent ExtentOf(const LaidPage& page) const {
    Extent extent{setup_.height, setup_.top, 0};
    const auto add = [&extent](Twips top, Twips bottom) {
      if (top < extent.top) extent.firstHeight = bottom - top;
      extent.top = std::min(extent.top, top);
      extent.bottom = std::max(extent.bottom, bottom);
    };
    for (std::size_t i = page.firstCell; i < page.endCell; ++i)
      add(layout_.cells[i].top, layout_.cells[i].bottom);
    for (std::size_t i = page.firstLine; i < page.endLine; ++i)
      add(layout_.lines[i].top, layout_.lines[i].top + layout_.lines[i].height);
    return extent;
  }

  // Pages take up lines and cells in their order; none has more than fits, or less than would have.
  void CheckPages() const {
    Require(!layout_.pages.empty());
    std::size_t line = 0;
    std::size_t cell = 0;
    Twips before = 0;
    for (std::size_t i = 0; i < layout_.pages.size(); ++i) {
      const LaidPage& page = layout_.pages[i];
      Require(page.firstLine == line && page.endLine >= line && page.firstCell == cell &&
              page.endCell >= cell);
      const bool isEmpty = page.endLine == line && page.endCell == cell;
      Require(!isEmpty || layout_.pages.size() == 1);
      line = page.endLine;
      cell = page.endCell;
      if (isEmpty) continue;
      const Extent extent = ExtentOf(page);
      Require(extent.top == setup_.top);
      // But one line alone, on a page that is lower than it.
      Require(extent.bottom <= setup_.TextBottom() || page.endLine - page.firstLine == 1);
      if (i > 0) Require(before + extent.firstHeight > setup_.TextBottom());
      before = extent.bottom;
    }
    Require(line == layout_.lines.size() && cell == layout_.cells.size());
  }

  // Lines from the next one on hold the text [begin, end), each going on where the one before it ended, side
  // to side in a column of that width. Gives the place up to which they do.
  std::size_t FollowLines(std::size_t begin, std::size_t end, Twips width) {
    std::size_t at = begin;
    for (bool first = true; nextLine_ < layout_.lines.size(); first = false) {
      const LaidLine& line = layout_.lines[nextLine_];
      if (line.begin != at || line.end > end || (!first && line.end == at)) break;
      Require(line.height > 0 && line.ascent > 0 && line.ascent <= line.height);
      CheckWidth(line, width);
      at = line.end;
      ++nextLine_;
    }
    return at;
  }

  // Blanks at the end may hang over; and so may a character that fits nowhere.
  void CheckWidth(const LaidLine& line, Twips width) {
    std::size_t end = line.end;
    while (end > line.begin && document_.text[end - 1] == ' ') --end;
    if (end == line.begin) return;
    std::vector<Twips> edges;
    MeasureRange(document_, line.begin, end, measure_, edges);
    Require(edges.size() == end - line.begin && std::is_sorted(edges.begin(), edges.end()));
    if (edges.back() <= width) return;
    std::vector<std::size_t> ends;
    BreakLines(std::string_view(document_.text).substr(line.begin, end - line.begin), edges, 0, ends);
    Require(ends.size() == 1);
  }

  // A row that is higher than a page is cut at the page's foot; of any other, all text is there.
  void FollowTable(int index) {
    const Table& table = document_.tables[static_cast<std::size_t>(index)];
    for (std::size_t i = 0; i < table.cells.size(); ++i) {
      Require(nextCell_ < layout_.cells.size());
      const LaidCell& laid = layout_.cells[nextCell_];
      if (i % table.columnWidths.size() == 0) Place(laid.top, laid.bottom, StartsPage(nextCell_));
      ++nextCell_;
      const Twips width = table.columnWidths[i % table.columnWidths.size()];
      Require(laid.table == index && laid.cell == static_cast<int>(i) && laid.right - laid.left == width);
      const std::size_t first = nextLine_;
      const bool fillsPage = laid.bottom - laid.top == setup_.TextBottom() - setup_.top;
      const std::size_t end =
          FollowLines(table.cells[i].begin, table.cells[i].end, width - 2 * kCellPaddingX);
      Require((end == table.cells[i].end && nextLine_ > first) || fillsPage);
      for (std::size_t at = first; at < nextLine_; ++at) {
        const LaidLine& line = layout_.lines[at];
        Require(line.left == laid.left + kCellPaddingX && line.top >= laid.top &&
                line.top + line.height <= laid.bottom);
      }
    }
  }

  void CheckHeader(int page) {
    for (const HeaderText& text : LayOutHeader(document_, setup_, page, measure_)) {
      Require(!text.text.empty() && text.top == setup_.header);
      for (std::size_t at = 0; at < text.text.size();) NextCodePoint(text.text, at);
    }
  }

  bool StartsPage(std::size_t cell) const {
    return layout_.cells[cell].top == setup_.top &&
           std::any_of(layout_.pages.begin(), layout_.pages.end(), [cell](const LaidPage& page) {
             return page.firstCell == cell && page.endCell > cell;
           });
  }

  FakeMeasure measure_;
  const Document& document_;
  const PageSetup setup_;
  const PageLayout layout_;
  std::size_t nextLine_ = 0;
  std::size_t nextCell_ = 0;
  Twips bottom_ = 0;
};

// A paragraph for each block and for each picture, and one behind a table that is last.
std::string TextOfBlocks(const Document& document) {
  std::string text;
  std::size_t picture = 0;
  const auto addPictures = [&](std::size_t block) {
    for (; picture < document.pictures.size() && document.pictures[picture].block <= block; ++picture)
      text += '\n';
  };
  for (std::size_t i = 0; i < document.blocks.size(); ++i) {
    addPictures(i);
    const Block& block = document.blocks[i];
    text += document.text.substr(block.begin, block.end - block.begin) + '\n';
  }
  addPictures(document.blocks.size());
  if (document.blocks.empty() || document.blocks.back().table >= 0) text += '\n';
  return text;
}

// RtfText refuses what no reader may be given: braces that don't match, bytes of eight bits, half a pair.
void CheckRichText(const Document& document, const PageSetup& setup) {
  const RtfText read(ToRtf(document, setup));
  Require(Without(read.Text(), '\t') == Without(TextOfBlocks(document), '\t'));
  Require(read.Pictures() == document.pictures.size());
}

std::string AsItIs(std::string_view text) {
  return std::string(text);
}

// With the replacement character for what is none.
std::string Valid(std::string_view text) {
  std::string valid;
  for (std::size_t at = 0; at < text.size();) AppendUtf8(valid, NextCodePoint(text, at));
  return valid;
}

void CheckSearch(const Document& document, std::string_view needle) {
  for (const bool backwards : {false, true}) {
    const auto found = FindText(document, needle, document.text.size() / 2, backwards, AsItIs);
    if (!found) continue;
    Require(document.text.substr(found->begin, found->end - found->begin) == Valid(needle));
  }
  // What stands in a paragraph is found.
  for (const Block& block : document.blocks) {
    if (block.table >= 0 || block.begin == block.end) continue;
    const std::string_view text =
        std::string_view(document.text).substr(block.begin, block.end - block.begin);
    Require(FindText(document, text, 0, false, AsItIs).has_value());
    break;
  }
  Require(Without(TextToCopy(document, {0, document.text.size() + 1}), '\r') == document.text);
}

void CheckDocument(const Document& document, Twips size) {
  const PageSetup letter = SetupFor(12240, 15840);
  for (const PageSetup& setup :
       {letter, SetupFor(6000 + size % 500 * 12, 31680), SetupFor(size % 5000 * 31, 5000)})
    LayoutCheck(document, setup).Check();
  CheckRichText(document, letter);
}

void CheckReport(std::string_view bytes, std::int16_t fontSize) {
  ReportData report;
  try {
    report = DecodeReport(bytes);
  } catch (const RunTimeError&) {
    return;
  }
  DocumentBuilder VS1;
  BuildReportDocument(VS1, report, fontSize, "C:\\", Logo());
  CheckDocument(VS1.Content(), static_cast<Twips>(bytes.size()));
  CheckSearch(VS1.Content(), report.stamp);
}

// A document of what the bytes say: each gives a step, and those behind it its measures.
class AnyDocument {
 public:
  explicit AnyDocument(std::string_view bytes) : bytes_(bytes) {
    builder.SetPageHeader(TakeText());
    builder.StartDocument();
    while (!bytes_.empty()) Step();
    builder.EndDocument();
  }
  DocumentBuilder builder;

 private:
  int Take(int below) {
    if (bytes_.empty()) return 0;
    const int value = static_cast<unsigned char>(bytes_.front()) % below;
    bytes_.remove_prefix(1);
    return value;
  }
  std::string_view TakeText() {
    const auto [line, rest] = FirstLineAndRest(bytes_);
    bytes_ = rest;
    return line;
  }
  void Step() {
    switch (Take(8)) {
      case 0:
        builder.SetFontSize(static_cast<float>(Take(256)) / 3);
        break;
      case 1:
        builder.SetFontBold(Take(2) == 1);
        break;
      case 2:
        builder.DrawPicture(Logo(), "1in", ".3in", "100%", "50%");
        break;
      case 3:
        MakeTable();
        break;
      case 4:
        builder.AppendText(std::string(static_cast<std::size_t>(Take(256)), static_cast<char>(Take(128))));
        break;
      default:
        builder.AppendText(TakeText());
        builder.AppendText(Take(2) == 1 ? "\r\n" : "");
        break;
    }
  }
  void MakeTable() {
    const int rows = Take(3) + 1;
    const int columns = Take(4) + 1;
    builder.StartTable();
    builder.TableCell(TableSetting::Rows, rows);
    builder.TableCell(TableSetting::Columns, columns);
    for (int column = 1; column <= columns; ++column) {
      builder.TableCell(TableSetting::ColumnWidth, column, std::to_string(Take(256) * 20));
      for (int row = 1; row <= rows; ++row) {
        builder.TableCell(TableSetting::Text, row, column, std::string(TakeText()));
        builder.TableCell(TableSetting::BackColour, row, column, std::int32_t{Take(256)} << 8);
      }
    }
    builder.SetTableBorder(Take(2) == 1 ? kTableBorderAll : kTableBorderNone);
    builder.EndTable();
  }

  std::string_view bytes_;
};

}  // namespace
}  // namespace zq::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq::test;
  const std::int16_t fontSize = size == 0 ? 8 : static_cast<std::int16_t>(data[0] * 131 - 5000);
  const std::string_view bytes = TextOf(data, size);
  CheckReport(bytes, fontSize);
  const AnyDocument any(bytes);
  CheckDocument(any.builder.Content(), static_cast<zq::Twips>(size));
  CheckSearch(any.builder.Content(), bytes.substr(size / 2));
  return 0;
}
