// PageLayout: a document cut into lines and pages. One layout serves the preview and the printer; the RTF
// file is given the same page, so that its reader comes to the same.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "controls/document/Document.h"
#include "controls/document/TextMeasure.h"

namespace zq {

// The room inside a table's cell, between its border and its text.
inline constexpr Twips kCellPaddingX = 108;
inline constexpr Twips kCellPaddingY = 30;

struct PageSetup {
  Twips width = 12240;
  Twips height = 15840;
  Twips left = 1440;
  Twips top = 1872;
  Twips right = 1440;
  Twips bottom = 1440;
  Twips header = 1368;  // from the page's top to the running line's

  Twips TextWidth() const { return width - left - right; }
  Twips TextBottom() const { return height - bottom; }
  bool operator==(const PageSetup&) const = default;
};

// A page of that size with the stored margins: an inch at the sides and the foot, and at the top room for the
// picture above the running line. Where that leaves less than 6.5 inches for the text, as on A4, the right
// margin gives way to half an inch. Sizes no paper has are brought to the nearest that can be laid out.
PageSetup SetupFor(Twips width, Twips height);

// All places are measured from the page's top left corner.
struct LaidLine {
  std::size_t begin = 0;  // of its text; line breaks excluded
  std::size_t end = 0;
  Twips left = 0;
  Twips top = 0;
  Twips ascent = 0;
  Twips height = 0;
};

struct LaidCell {
  Twips left = 0;
  Twips top = 0;
  Twips right = 0;
  Twips bottom = 0;
  int table = 0;
  int cell = 0;
};

struct LaidPicture {
  std::size_t page = 0;
  std::size_t picture = 0;
};

// Halves open at the end, into PageLayout's lists.
struct LaidPage {
  std::size_t firstLine = 0;
  std::size_t endLine = 0;
  std::size_t firstCell = 0;
  std::size_t endCell = 0;
};

struct PageLayout {
  PageSetup setup;
  std::vector<LaidPage> pages;  // one at least
  std::vector<LaidLine> lines;
  std::vector<LaidCell> cells;
  std::vector<LaidPicture> pictures;
};

// A row of a table is never parted; one that is higher than a page is cut off at the page's foot.
PageLayout LayOut(const Document& document, const PageSetup& setup, TextMeasure& measure);

// A piece of the running line.
struct HeaderText {
  std::string text;
  Twips left = 0;
  Twips top = 0;
  Twips ascent = 0;
};

// The running line of a page, counted from 1. A left part that would run into the next is cut, with an
// ellipsis.
std::vector<HeaderText> LayOutHeader(const Document& document, const PageSetup& setup, int pageNumber,
                                     TextMeasure& measure);

// The right edge of each byte of [begin, end), counted from the begin's left edge, over all styles in it.
void MeasureRange(const Document& document, std::size_t begin, std::size_t end, TextMeasure& measure,
                  std::vector<Twips>& edges);

// The line that holds the place `at` of the text: the last that begins at or before it. An index into lines;
// 0 where there is none.
std::size_t LineAt(const PageLayout& layout, std::size_t at);
// The page that a line is on.
std::size_t PageOfLine(const PageLayout& layout, std::size_t line);

}  // namespace zq
