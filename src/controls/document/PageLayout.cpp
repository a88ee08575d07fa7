#include "controls/document/PageLayout.h"

#include <algorithm>

#include "controls/document/Characters.h"
#include "controls/document/LineBreaker.h"
#include "platform/Twips.h"

namespace zq {
namespace {

constexpr Twips kHeadingWidth = 9360;  // 6.5 inches
constexpr Twips kLeastRightMargin = kTwipsPerInch / 2;
constexpr Twips kSmallestPage = 4 * kTwipsPerInch;
constexpr Twips kLargestPage = 100 * kTwipsPerInch;
constexpr const char* kEllipsis = "\xE2\x80\xA6";

FontChoice FontOf(const Document& document, const TextStyle& style) {
  return {document.fontName, style.points, style.bold};
}

class LayoutInWork {
 public:
  LayoutInWork(const Document& document, const PageSetup& setup, TextMeasure& measure)
      : document_(document), measure_(measure), top_(setup.top) {
    layout_.setup = setup;
    layout_.pages.emplace_back();
  }

  PageLayout Finish() && {
    for (std::size_t i = 0; i < document_.blocks.size(); ++i) {
      const Block& block = document_.blocks[i];
      firstOfBlock_ = true;
      if (block.table >= 0) {
        PlaceTable(i, block.table);
      } else {
        PlaceParagraph(i, block);
      }
    }
    PlacePictures(document_.blocks.size());
    ClosePage();
    return std::move(layout_);
  }

 private:
  void ClosePage() {
    layout_.pages.back().endLine = layout_.lines.size();
    layout_.pages.back().endCell = layout_.cells.size();
  }

  // Room for something of that height: on the next page if this one has no more, and isn't empty.
  void MakeRoom(Twips height) {
    const LaidPage& page = layout_.pages.back();
    const bool empty = page.firstLine == layout_.lines.size() && page.firstCell == layout_.cells.size();
    if (empty || top_ + height <= layout_.setup.TextBottom()) return;
    ClosePage();
    layout_.pages.push_back({layout_.lines.size(), 0, layout_.cells.size(), 0});
    top_ = layout_.setup.top;
  }

  // Pictures of the blocks up to this one, which is about to be placed.
  void PlacePictures(std::size_t block) {
    while (nextPicture_ < document_.pictures.size() && document_.pictures[nextPicture_].block <= block) {
      layout_.pictures.push_back({layout_.pages.size() - 1, nextPicture_});
      ++nextPicture_;
    }
  }

  void FirstOf(std::size_t block) {
    if (!firstOfBlock_) return;
    firstOfBlock_ = false;
    PlacePictures(block);
  }

  LineMetrics MetricsOf(std::size_t begin, std::size_t end) {
    if (begin == end) return measure_.Metrics(FontOf(document_, StyleAt(document_, begin)));
    LineMetrics metrics;
    Twips descent = 0;
    ForEachRun(document_, begin, end, [&](std::size_t, std::size_t, const TextStyle& style) {
      const LineMetrics run = measure_.Metrics(FontOf(document_, style));
      metrics.ascent = std::max(metrics.ascent, run.ascent);
      descent = std::max(descent, run.height - run.ascent);
    });
    metrics.height = metrics.ascent + descent;
    return metrics;
  }

  // The lines of [begin, end) into lines_, with places counted from 0.
  Twips BreakRange(std::size_t begin, std::size_t end, Twips left, Twips width) {
    edges_.clear();
    MeasureRange(document_, begin, end, measure_, edges_);
    BreakLines(std::string_view(document_.text).substr(begin, end - begin), edges_, width, ends_);
    lines_.clear();
    Twips height = 0;
    std::size_t lineBegin = begin;
    for (const std::size_t lineEnd : ends_) {
      const LineMetrics metrics = MetricsOf(lineBegin, begin + lineEnd);
      lines_.push_back({lineBegin, begin + lineEnd, left, height, metrics.ascent, metrics.height});
      height += metrics.height;
      lineBegin = begin + lineEnd;
    }
    return height;
  }

  void PlaceParagraph(std::size_t index, const Block& block) {
    BreakRange(block.begin, block.end, layout_.setup.left, layout_.setup.TextWidth());
    for (LaidLine line : lines_) {
      MakeRoom(line.height);
      FirstOf(index);
      line.top = top_;
      top_ += line.height;
      layout_.lines.push_back(line);
    }
  }

  void PlaceTable(std::size_t index, int tableIndex) {
    const Table& table = document_.tables[static_cast<std::size_t>(tableIndex)];
    for (int row = 0; row < table.rows; ++row) {
      PlaceRow(index, tableIndex, row);
    }
  }

  void PlaceRow(std::size_t index, int tableIndex, int row) {
    const Table& table = document_.tables[static_cast<std::size_t>(tableIndex)];
    const int firstCell = row * table.columns;
    rowLines_.clear();
    Twips height = 0;
    Twips left = layout_.setup.left;
    for (int column = 0; column < table.columns; ++column) {
      const TableCell& cell = table.cells[static_cast<std::size_t>(firstCell + column)];
      const Twips width = table.columnWidths[static_cast<std::size_t>(column)];
      height =
          std::max(height, BreakRange(cell.begin, cell.end, left + kCellPaddingX, width - 2 * kCellPaddingX));
      rowLines_.insert(rowLines_.end(), lines_.begin(), lines_.end());
      left += width;
    }
    height += 2 * kCellPaddingY;
    height = std::min(height, layout_.setup.TextBottom() - layout_.setup.top);
    MakeRoom(height);
    FirstOf(index);

    const Twips bottom = top_ + height;
    left = layout_.setup.left;
    for (int column = 0; column < table.columns; ++column) {
      const Twips width = table.columnWidths[static_cast<std::size_t>(column)];
      layout_.cells.push_back({left, top_, left + width, bottom, tableIndex, firstCell + column});
      left += width;
    }
    for (LaidLine line : rowLines_) {
      line.top += top_ + kCellPaddingY;
      if (line.top + line.height <= bottom) layout_.lines.push_back(line);
    }
    top_ = bottom;
  }

  const Document& document_;
  TextMeasure& measure_;
  PageLayout layout_;
  Twips top_ = 0;
  std::size_t nextPicture_ = 0;
  bool firstOfBlock_ = true;
  // Kept between paragraphs, so that each doesn't ask for memory again.
  std::vector<Twips> edges_;
  std::vector<std::size_t> ends_;
  std::vector<LaidLine> lines_;
  std::vector<LaidLine> rowLines_;
};

}  // namespace

PageSetup SetupFor(Twips width, Twips height) {
  PageSetup setup;
  setup.width = std::clamp(width, kSmallestPage, kLargestPage);
  setup.height = std::clamp(height, kSmallestPage, kLargestPage);
  setup.right = std::clamp(setup.width - setup.left - kHeadingWidth, kLeastRightMargin,
                           static_cast<Twips>(kTwipsPerInch));
  return setup;
}

void MeasureRange(const Document& document, std::size_t begin, std::size_t end, TextMeasure& measure,
                  std::vector<Twips>& edges) {
  const std::size_t first = edges.size();
  ForEachRun(document, begin, end, [&](std::size_t from, std::size_t to, const TextStyle& style) {
    const Twips offset = edges.size() == first ? 0 : edges.back();
    const std::size_t firstOfRun = edges.size();
    measure.Edges(FontOf(document, style), std::string_view(document.text).substr(from, to - from), edges);
    if (offset == 0) return;
    for (std::size_t i = firstOfRun; i < edges.size(); ++i) edges[i] += offset;
  });
}

PageLayout LayOut(const Document& document, const PageSetup& setup, TextMeasure& measure) {
  return LayoutInWork(document, setup, measure).Finish();
}

std::vector<HeaderText> LayOutHeader(const Document& document, const PageSetup& setup, int pageNumber,
                                     TextMeasure& measure) {
  const FontChoice font{document.fontName, document.header.points, false};
  const LineMetrics metrics = measure.Metrics(font);
  std::vector<Twips> edges;
  const auto widthOf = [&](std::string_view text) {
    edges.clear();
    measure.Edges(font, text, edges);
    return edges.empty() ? 0 : edges.back();
  };

  const Twips gap = metrics.height;
  const std::string centre = WithPageNumber(document.header.centre, pageNumber);
  const std::string right = WithPageNumber(document.header.right, pageNumber);
  const Twips centreLeft = setup.left + (setup.TextWidth() - widthOf(centre)) / 2;
  const Twips rightLeft = setup.left + setup.TextWidth() - widthOf(right);
  Twips limit = setup.left + setup.TextWidth();
  if (!right.empty()) limit = rightLeft - gap;
  if (!centre.empty()) limit = std::min(limit, centreLeft - gap);

  std::string left = WithPageNumber(document.header.left, pageNumber);
  if (setup.left + widthOf(left) > limit) {
    const Twips ellipsisWidth = widthOf(kEllipsis);
    widthOf(left);
    std::size_t end = left.size();
    while (end > 0 && setup.left + edges[end - 1] + ellipsisWidth > limit) end = PreviousCharacter(left, end);
    left.replace(end, std::string::npos, kEllipsis);
  }

  std::vector<HeaderText> texts;
  const auto add = [&](const std::string& text, Twips place) {
    if (!text.empty()) texts.push_back({text, place, setup.header, metrics.ascent});
  };
  add(left, setup.left);
  add(centre, centreLeft);
  add(right, rightLeft);
  return texts;
}

std::size_t LineAt(const PageLayout& layout, std::size_t at) {
  const auto behind =
      std::upper_bound(layout.lines.begin(), layout.lines.end(), at,
                       [](std::size_t place, const LaidLine& line) { return place < line.begin; });
  if (behind == layout.lines.begin()) return 0;
  return static_cast<std::size_t>(behind - layout.lines.begin()) - 1;
}

std::size_t PageOfLine(const PageLayout& layout, std::size_t line) {
  const auto behind =
      std::upper_bound(layout.pages.begin(), layout.pages.end(), line,
                       [](std::size_t index, const LaidPage& page) { return index < page.firstLine; });
  if (behind == layout.pages.begin()) return 0;
  return static_cast<std::size_t>(behind - layout.pages.begin()) - 1;
}

}  // namespace zq
