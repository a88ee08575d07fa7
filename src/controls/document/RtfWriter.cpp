#include "controls/document/RtfWriter.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>
#include <utility>

#include "controls/document/Characters.h"

namespace zq {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kHexBytesPerLine = 64;
constexpr int kBorderWidth = 15;  // three quarters of a point

std::string Word(std::string_view name, long value) {
  std::string word = "\\";
  word += name;
  return word + std::to_string(value);
}

// One UTF-16 unit: a signed number, and a question mark for readers that know nothing of Unicode. It is
// escaped, too: a plain one takes the text behind it along in readers that pass over whole words.
void AppendUnit(std::string& rtf, unsigned unit) {
  rtf += Word("u", unit >= 0x8000 ? static_cast<long>(unit) - 0x10000 : static_cast<long>(unit)) + "\\'3f";
}

void AppendEscaped(std::string& rtf, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCodePoint(text, at);
    if (c == '\\' || c == '{' || c == '}') {
      rtf += '\\';
      rtf += static_cast<char>(c);
    } else if (c >= 0x20 && c < 0x7F) {
      rtf += static_cast<char>(c);
    } else if (c < 0x10000) {
      AppendUnit(rtf, c);
    } else {
      AppendUnit(rtf, 0xD800 + ((c - 0x10000) >> 10));
      AppendUnit(rtf, 0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
}

int HalfPoints(float points) {
  return static_cast<int>(std::lround(points * 2));
}

class RtfInWork {
 public:
  RtfInWork(const Document& document, const PageSetup& setup) : document_(document), setup_(setup) {
    // The first entry is the reader's own colour, which nobody uses.
    NumberOf(kBlack);
    for (const StyledRun& run : document.runs) NumberOf(run.style.colour);
    for (const Table& table : document.tables) {
      for (const TableCell& cell : table.cells) NumberOf(cell.background);
    }
  }

  std::string Finish() && {
    // What isn't ASCII is escaped, so that the code page is for form's sake.
    rtf_ = "{\\rtf1\\ansi\\ansicpg1252\\uc1\\deff0";
    AppendFonts();
    AppendColours();
    rtf_ += kLineEnd;
    AppendPage();
    AppendHeader();
    std::size_t nextPicture = 0;
    for (std::size_t i = 0; i < document_.blocks.size(); ++i) {
      AppendPictures(nextPicture, i);
      const Block& block = document_.blocks[i];
      if (block.table >= 0) {
        AppendTable(document_.tables[static_cast<std::size_t>(block.table)]);
      } else {
        AppendParagraph(block);
      }
    }
    AppendPictures(nextPicture, document_.blocks.size());
    // A file that ends in a table's row, or holds nothing, wants a paragraph behind it.
    if (document_.blocks.empty() || document_.blocks.back().table >= 0) rtf_ += "\\pard\\plain\\f0\\par";
    rtf_ += kLineEnd;
    rtf_ += "}";
    rtf_ += kLineEnd;
    return std::move(rtf_);
  }

 private:
  int NumberOf(Colour colour) {
    return colours_.try_emplace(colour, static_cast<int>(colours_.size()) + 1).first->second;
  }

  void AppendFonts() {
    rtf_ += "{\\fonttbl{\\f0\\fswiss\\fcharset0 ";
    AppendEscaped(rtf_, document_.fontName);
    rtf_ += ";}}";
  }

  void AppendColours() {
    std::vector<Colour> inOrder(colours_.size());
    for (const auto& [colour, number] : colours_) inOrder[static_cast<std::size_t>(number - 1)] = colour;
    rtf_ += "{\\colortbl ;";
    for (const Colour colour : inOrder) {
      rtf_ += Word("red", static_cast<long>(colour & 0xFF)) +
              Word("green", static_cast<long>(colour >> 8 & 0xFF)) +
              Word("blue", static_cast<long>(colour >> 16 & 0xFF)) + ';';
    }
    rtf_ += '}';
  }

  void AppendPage() {
    rtf_ += Word("paperw", setup_.width) + Word("paperh", setup_.height) + Word("margl", setup_.left) +
            Word("margr", setup_.right) + Word("margt", setup_.top) + Word("margb", setup_.bottom) +
            Word("headery", setup_.header);
    if (setup_.width > setup_.height) rtf_ += "\\landscape";
    rtf_ += "\\nowidctlpar";
    rtf_ += kLineEnd;
  }

  void AppendHeader() {
    const PageHeader& header = document_.header;
    const std::string centre = Word("tqc\\tx", setup_.TextWidth() / 2);
    const std::string right = Word("tqr\\tx", setup_.TextWidth());
    rtf_ += "{\\header\\pard\\plain" + centre + right + "\\f0" + Word("fs", HalfPoints(header.points)) +
            Word("cf", NumberOf(kBlack)) + ' ';
    AppendHeaderPart(header.left);
    rtf_ += "\\tab ";
    AppendHeaderPart(header.centre);
    rtf_ += "\\tab ";
    AppendHeaderPart(header.right);
    rtf_ += "\\par}";
    rtf_ += kLineEnd;
  }

  void AppendHeaderPart(std::string_view part) {
    for (;;) {
      const std::size_t mark = part.find("%d");
      AppendEscaped(rtf_, part.substr(0, mark));
      if (mark == std::string_view::npos) return;
      rtf_ += "{\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}";
      part.remove_prefix(mark + 2);
    }
  }

  void AppendStyle(const TextStyle& style) {
    rtf_ += Word("f", 0) + Word("fs", HalfPoints(style.points)) + (style.bold ? "\\b" : "\\b0") +
            Word("cf", NumberOf(style.colour)) + ' ';
  }

  void AppendRange(std::size_t begin, std::size_t end) {
    if (begin == end) AppendStyle(StyleAt(document_, begin));
    ForEachRun(document_, begin, end, [this](std::size_t from, std::size_t to, const TextStyle& style) {
      AppendStyle(style);
      AppendEscaped(rtf_, std::string_view(document_.text).substr(from, to - from));
    });
  }

  void AppendParagraph(const Block& block) {
    rtf_ += "\\pard\\plain";
    AppendRange(block.begin, block.end);
    rtf_ += "\\par";
    rtf_ += kLineEnd;
  }

  void AppendTable(const Table& table) {
    // The border stands inside the room around the text here, and beside it in a reader of rich text.
    const Twips paddingY = kCellPaddingY - (table.border ? kBorderWidth : 0);
    for (int row = 0; row < table.rows; ++row) {
      rtf_ += Word("trowd\\trgaph", kCellPaddingX) + "\\trleft0" + Word("trpaddl", kCellPaddingX) +
              "\\trpaddfl3" + Word("trpaddr", kCellPaddingX) + "\\trpaddfr3" + Word("trpaddt", paddingY) +
              "\\trpaddft3" + Word("trpaddb", paddingY) + "\\trpaddfb3\\trkeep";
      Twips right = 0;
      for (int column = 0; column < table.columns; ++column) {
        const TableCell& cell = CellOf(table, row, column);
        right += table.columnWidths[static_cast<std::size_t>(column)];
        if (table.border) {
          for (const char* side : {"t", "l", "b", "r"})
            rtf_ += std::string("\\clbrdr") + side + "\\brdrs" + Word("brdrw", kBorderWidth) +
                    Word("brdrcf", NumberOf(kBlack));
        }
        rtf_ += Word("clcbpat", NumberOf(cell.background)) + Word("cellx", right);
      }
      rtf_ += kLineEnd;
      for (int column = 0; column < table.columns; ++column) {
        const TableCell& cell = CellOf(table, row, column);
        rtf_ += "\\pard\\plain\\intbl";
        AppendRange(cell.begin, cell.end);
        rtf_ += "\\cell";
      }
      rtf_ += "\\row";
      rtf_ += kLineEnd;
    }
  }

  static const TableCell& CellOf(const Table& table, int row, int column) {
    return table.cells[static_cast<std::size_t>(row * table.columns + column)];
  }

  // A frame of its own, measured from the page's corner, in front of the block that it belongs to.
  void AppendPictures(std::size_t& next, std::size_t block) {
    for (; next < document_.pictures.size() && document_.pictures[next].block <= block; ++next) {
      const Picture& picture = document_.pictures[next];
      const PictureData& data = *picture.data;
      if (data.png.empty() || data.naturalWidth <= 0 || data.naturalHeight <= 0) continue;
      rtf_ += "{\\pard\\plain\\phpg\\pvpg" + Word("posx", picture.left) + Word("posy", picture.top) +
              Word("absw", picture.width) + Word("absh", picture.height) +
              "\\dxfrtext0\\dfrmtxtx0\\dfrmtxty0" + kLineEnd.data() + "{\\pict\\pngblip" +
              Word("picw", data.width) + Word("pich", data.height) + Word("picwgoal", picture.width) +
              Word("pichgoal", picture.height);
      AppendHex(data.png);
      rtf_ += "}\\par}";
      rtf_ += kLineEnd;
    }
  }

  void AppendHex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (i % kHexBytesPerLine == 0) rtf_ += kLineEnd;
      const auto byte = static_cast<unsigned char>(bytes[i]);
      rtf_ += kDigits[byte >> 4];
      rtf_ += kDigits[byte & 0xF];
    }
  }

  const Document& document_;
  const PageSetup& setup_;
  std::map<Colour, int> colours_;
  std::string rtf_;
};

}  // namespace

std::string ToRtf(const Document& document, const PageSetup& setup) {
  return RtfInWork(document, setup).Finish();
}

}  // namespace zq
