#include "controls/PagePainter.h"

#include <algorithm>
#include <cmath>

#include "controls/document/Characters.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// Text below this height in pixels can't be read, and is shown as a bar.
constexpr int kLeastFontPixels = 3;
constexpr COLORREF kBarColour = RGB(192, 192, 192);
constexpr int kLeastCellPixels = 6;  // a cell's height
constexpr std::size_t kMostFonts = 32;

void Fill(HDC context, const RECT& rect, COLORREF colour) {
  const UniqueBrush brush(::CreateSolidBrush(colour));
  ::FillRect(context, &rect, brush.Get());
}

}  // namespace

int PagePainter::X(double twips) const {
  return canvas_->left + static_cast<int>(std::lround(twips * canvas_->pixelsPerTwipX));
}

int PagePainter::Y(double twips) const {
  return canvas_->top + static_cast<int>(std::lround(twips * canvas_->pixelsPerTwipY));
}

void PagePainter::Draw(int page, const PageCanvas& canvas) {
  canvas_ = &canvas;
  const LaidPage& laid = layout_.pages[static_cast<std::size_t>(page)];
  const int saved = ::SaveDC(canvas.context);
  ::SetBkMode(canvas.context, TRANSPARENT);
  ::SetTextAlign(canvas.context, TA_LEFT | TA_BASELINE);

  DrawPictures(page);
  const TextStyle headerStyle{document_.header.points, false, kBlack};
  for (const HeaderText& text : LayOutHeader(document_, layout_.setup, page + 1, measure_)) {
    edges_.clear();
    measure_.Edges({document_.fontName, headerStyle.points, false}, text.text, edges_);
    DrawTextRun(text.text, headerStyle, text.left, Y(text.top + text.ascent), edges_, 0, 0);
  }
  for (std::size_t i = laid.firstCell; i < laid.endCell; ++i) DrawCell(layout_.cells[i]);
  for (std::size_t i = laid.firstLine; i < laid.endLine; ++i) {
    const LaidLine& line = layout_.lines[i];
    // A line more on either side: letters may reach out of theirs.
    if (Y(line.top + 2 * line.height) < canvas.clip.top || Y(line.top - line.height) > canvas.clip.bottom)
      continue;
    DrawLine(line);
    DrawSelection(line);
  }
  ::RestoreDC(canvas.context, saved);
  canvas_ = nullptr;
}

void PagePainter::DrawPictures(int page) {
  for (const LaidPicture& laid : layout_.pictures) {
    if (laid.page != static_cast<std::size_t>(page)) continue;
    const Picture& picture = document_.pictures[laid.picture];
    const PictureData& data = *picture.data;
    if (data.pixels.empty()) continue;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = data.width;
    info.bmiHeader.biHeight = -data.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    ::SetStretchBltMode(canvas_->context, HALFTONE);
    ::SetBrushOrgEx(canvas_->context, 0, 0, nullptr);
    const int left = X(picture.left);
    const int top = Y(picture.top);
    ::StretchDIBits(canvas_->context, left, top, X(picture.left + picture.width) - left,
                    Y(picture.top + picture.height) - top, 0, 0, data.width, data.height, data.pixels.data(),
                    &info, DIB_RGB_COLORS, SRCCOPY);
  }
}

void PagePainter::DrawCell(const LaidCell& cell) {
  const Table& table = document_.tables[static_cast<std::size_t>(cell.table)];
  const RECT rect{X(cell.left), Y(cell.top), X(cell.right), Y(cell.bottom)};
  const Colour background = table.cells[static_cast<std::size_t>(cell.cell)].background;
  if (canvas_->colours && background != kWhite) Fill(canvas_->context, rect, background);
  if (!table.border) return;
  // Three quarters of a point, and a pixel at least.
  const int thick = std::max(1, static_cast<int>(std::lround(15 * canvas_->pixelsPerTwipX)));
  // So low that there is hardly room between the lines, it would be a black beam.
  const COLORREF colour = rect.bottom - rect.top < kLeastCellPixels ? kBarColour : kBlack;
  Fill(canvas_->context, {rect.left, rect.top, rect.right, rect.top + thick}, colour);
  Fill(canvas_->context, {rect.left, rect.bottom - thick, rect.right, rect.bottom}, colour);
  Fill(canvas_->context, {rect.left, rect.top, rect.left + thick, rect.bottom}, colour);
  Fill(canvas_->context, {rect.right - thick, rect.top, rect.right, rect.bottom}, colour);
}

void PagePainter::DrawLine(const LaidLine& line) {
  edges_.clear();
  MeasureRange(document_, line.begin, line.end, measure_, edges_);
  ForEachRun(document_, line.begin, line.end,
             [&](std::size_t begin, std::size_t end, const TextStyle& style) {
               const std::size_t first = begin - line.begin;
               const Twips offset = first == 0 ? 0 : edges_[first - 1];
               DrawTextRun(std::string_view(document_.text).substr(begin, end - begin), style,
                           line.left + offset, Y(line.top + line.ascent), edges_, first, offset);
             });
}

// The selected part of a line once more, in the system's colours for selected text.
void PagePainter::DrawSelection(const LaidLine& line) {
  const std::size_t begin = std::max(line.begin, canvas_->selection.begin);
  const std::size_t end = std::min(line.end, canvas_->selection.end);
  if (begin >= end || highlighted_) return;
  const auto edge = [&](std::size_t at) { return at == line.begin ? 0 : edges_[at - line.begin - 1]; };
  const RECT rect{X(line.left + edge(begin)), Y(line.top), X(line.left + edge(end)),
                  Y(line.top + line.height)};
  Fill(canvas_->context, rect, ::GetSysColor(COLOR_HIGHLIGHT));
  const int saved = ::SaveDC(canvas_->context);
  ::IntersectClipRect(canvas_->context, rect.left, rect.top, rect.right, rect.bottom);
  highlighted_ = true;
  DrawLine(line);
  highlighted_ = false;
  ::RestoreDC(canvas_->context, saved);
}

// Each character stands where the layout has it, whatever its width at this size: lines end alike at every
// scale. Text that the system has to shape is drawn as a whole.
void PagePainter::DrawTextRun(std::string_view text, const TextStyle& style, double x, int baseline,
                              const std::vector<Twips>& edges, std::size_t firstEdge, Twips offset) {
  if (text.empty()) return;
  const HFONT font = FontFor(style);
  if (!font) {
    const double width = edges[firstEdge + text.size() - 1] - offset;
    const int height =
        std::max(1, static_cast<int>(style.points * kTwipsPerPoint * canvas_->pixelsPerTwipY / 2));
    if (text.find_first_not_of(' ') != std::string_view::npos)
      Fill(canvas_->context, {X(x), baseline - height, X(x + width), baseline}, kBarColour);
    return;
  }
  ::SelectObject(canvas_->context, font);
  COLORREF colour = canvas_->colours ? style.colour : kBlack;
  if (highlighted_) colour = ::GetSysColor(COLOR_HIGHLIGHTTEXT);
  ::SetTextColor(canvas_->context, colour);

  const std::wstring wide = ToWide(text);
  const int left = X(x);
  if (NeedsShaping(text)) {
    ::ExtTextOutW(canvas_->context, left, baseline, 0, nullptr, wide.data(), static_cast<UINT>(wide.size()),
                  nullptr);
    return;
  }
  advances_.clear();
  int before = left;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCodePoint(text, at);
    const int edge = X(x + edges[firstEdge + at - 1] - offset);
    advances_.push_back(edge - before);
    if (c >= 0x10000) advances_.push_back(0);
    before = edge;
  }
  ::ExtTextOutW(canvas_->context, left, baseline, 0, nullptr, wide.data(), static_cast<UINT>(wide.size()),
                advances_.data());
}

// Null where the text would be too small to read.
HFONT PagePainter::FontFor(const TextStyle& style) {
  const int pixels = static_cast<int>(std::lround(style.points * kTwipsPerPoint * canvas_->pixelsPerTwipY));
  if (pixels < kLeastFontPixels) return nullptr;
  for (const ScaledFont& scaled : fonts_) {
    if (scaled.pixels == pixels && scaled.bold == style.bold && scaled.points == style.points)
      return scaled.font.Get();
  }
  if (fonts_.size() >= kMostFonts) {
    // Many scales have been gone through. The latest font may still be selected.
    ::SelectObject(canvas_->context, ::GetStockObject(SYSTEM_FONT));
    fonts_.clear();
  }
  UniqueFont font(::CreateFontW(-pixels, 0, 0, 0, style.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                DEFAULT_PITCH | FF_SWISS, ToWide(document_.fontName).c_str()));
  fonts_.push_back({style.points, style.bold, pixels, std::move(font)});
  return fonts_.back().font.Get();
}

}  // namespace zq
