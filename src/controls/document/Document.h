// Document: what a VSPrinter holds between StartDocument and the three that show it, the preview, the
// printer and the RTF file. Lengths are in twips, 1/1440 inch.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zq {

using Twips = int;
inline constexpr Twips kTwipsPerPoint = 20;

// Blue in the high byte, as the system's COLORREF.
using Colour = std::uint32_t;
inline constexpr Colour kBlack = 0x000000;
inline constexpr Colour kWhite = 0xFFFFFF;

struct TextStyle {
  float points = 10;
  bool bold = false;
  Colour colour = kBlack;

  bool operator==(const TextStyle&) const = default;
};

// A style holds from `begin` to the next run's.
struct StyledRun {
  std::size_t begin = 0;
  TextStyle style;

  bool operator==(const StyledRun&) const = default;
};

struct TableCell {
  std::size_t begin = 0;  // of its text
  std::size_t end = 0;
  Colour background = kWhite;

  bool operator==(const TableCell&) const = default;
};

struct Table {
  int rows = 0;
  int columns = 0;
  bool border = false;  // lines on all sides of each cell
  std::vector<Twips> columnWidths;
  std::vector<TableCell> cells;  // row by row

  bool operator==(const Table&) const = default;
};

// A paragraph, or the table of that index.
struct Block {
  std::size_t begin = 0;
  std::size_t end = 0;  // without the line break
  int table = -1;

  bool operator==(const Block&) const = default;
};

// The pixels of a picture and the file they came from.
struct PictureData {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  // opaque, blue in the low byte, the topmost row first
  std::string png;
  Twips naturalWidth = 0;
  Twips naturalHeight = 0;
};

// Stands on the page that its block begins on, measured from the page's top left corner.
struct Picture {
  std::shared_ptr<const PictureData> data;
  Twips left = 0;
  Twips top = 0;
  Twips width = 0;
  Twips height = 0;
  std::size_t block = 0;
};

// The running line; "%d" in it stands for the page's number.
struct PageHeader {
  std::string left;
  std::string centre;
  std::string right;
  float points = 10;

  bool operator==(const PageHeader&) const = default;
};

struct Document {
  std::string fontName;
  // All text in its order, valid UTF-8 without control characters but these: a line feed behind each
  // paragraph and each row of a table, a tab between the cells of a row.
  std::string text;
  std::vector<StyledRun> runs;
  std::vector<Block> blocks;
  std::vector<Table> tables;
  std::vector<Picture> pictures;
  PageHeader header;
};

// The style at a place in the text; that of the text before it at its end.
const TextStyle& StyleAt(const Document& document, std::size_t at);

// Hands out [begin, end) in pieces of one style each, in order: visit(begin, end, style).
template <class Visit>
void ForEachRun(const Document& document, std::size_t begin, std::size_t end, Visit visit);

// `text` with each "%d" replaced by the number.
std::string WithPageNumber(std::string_view text, int number);

// The index of the run that holds `at`.
std::size_t RunAt(const Document& document, std::size_t at);

template <class Visit>
void ForEachRun(const Document& document, std::size_t begin, std::size_t end, Visit visit) {
  for (std::size_t run = RunAt(document, begin); begin < end; ++run) {
    const std::size_t next = run + 1 < document.runs.size() ? document.runs[run + 1].begin : end;
    const std::size_t stop = next < end ? next : end;
    if (stop > begin) visit(begin, stop, document.runs[run].style);
    begin = stop > begin ? stop : begin;
  }
}

}  // namespace zq
