#include "controls/GdiTextMeasure.h"

#include <cmath>

#include "controls/document/Characters.h"
#include "platform/RunTimeError.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// The height of the letters' square in the units that are measured in.
constexpr int kEm = 2048;
constexpr std::size_t kUnits = 0x10000;

double TwipsPerUnit(float points) {
  return static_cast<double>(points) * kTwipsPerPoint / kEm;
}

}  // namespace

GdiTextMeasure::GdiTextMeasure() : context_(::CreateCompatibleDC(nullptr)) {
  if (!context_) throw RunTimeError(ErrorNumber::OutOfMemory);
}

GdiTextMeasure::Face& GdiTextMeasure::Select(const FontChoice& font) {
  const auto isWanted = [&font](const Face& face) {
    return face.bold == font.bold && face.name == font.name;
  };
  if (selected_ && isWanted(*selected_)) return *selected_;
  for (Face& face : faces_) {
    if (!isWanted(face)) continue;
    ::SelectObject(context_.Get(), face.font.Get());
    selected_ = &face;
    return face;
  }

  Face face;
  face.name = std::string(font.name);
  face.bold = font.bold;
  face.font.Reset(::CreateFontW(-kEm, 0, 0, 0, font.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                DEFAULT_PITCH | FF_SWISS, ToWide(font.name).c_str()));
  TEXTMETRICW metrics{};
  if (!face.font || !::SelectObject(context_.Get(), face.font.Get()) ||
      !::GetTextMetricsW(context_.Get(), &metrics)) {
    throw RunTimeError(ErrorNumber::OutOfMemory);
  }
  face.ascent = metrics.tmAscent;
  face.height = metrics.tmHeight + metrics.tmExternalLeading;
  face.widths.assign(kUnits, -1);
  faces_.push_back(std::move(face));
  selected_ = &faces_.back();
  return *selected_;
}

LineMetrics GdiTextMeasure::Metrics(const FontChoice& font) {
  const Face& face = Select(font);
  const double scale = TwipsPerUnit(font.points);
  return {static_cast<Twips>(std::lround(face.ascent * scale)),
          static_cast<Twips>(std::lround(face.height * scale))};
}

int GdiTextMeasure::WidthOf(Face& face, char32_t c) {
  wchar_t units[2] = {static_cast<wchar_t>(c), 0};
  int count = 1;
  if (c >= kUnits) {
    units[0] = static_cast<wchar_t>(0xD800 + ((c - kUnits) >> 10));
    units[1] = static_cast<wchar_t>(0xDC00 + ((c - kUnits) & 0x3FF));
    count = 2;
  } else if (face.widths[c] >= 0) {
    return face.widths[c];
  }
  SIZE size{};
  ::GetTextExtentPoint32W(context_.Get(), units, count, &size);
  if (count == 1) face.widths[c] = size.cx;
  return size.cx;
}

void GdiTextMeasure::Edges(const FontChoice& font, std::string_view text, std::vector<Twips>& edges) {
  Face& face = Select(font);
  const double scale = TwipsPerUnit(font.points);
  if (NeedsShaping(text)) {
    ShapedEdges(scale, text, edges);
    return;
  }
  long long units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    units += WidthOf(face, NextCodePoint(text, at));
    const auto edge = static_cast<Twips>(static_cast<double>(units) * scale + 0.5);
    for (std::size_t byte = start; byte < at; ++byte) edges.push_back(edge);
  }
}

// Text whose characters depend on each other is measured as a whole.
void GdiTextMeasure::ShapedEdges(double scale, std::string_view text, std::vector<Twips>& edges) {
  const std::wstring wide = ToWide(text);
  std::vector<int> extents(wide.size());
  SIZE size{};
  int fits = 0;
  if (!::GetTextExtentExPointW(context_.Get(), wide.data(), static_cast<int>(wide.size()), 0x7FFFFFFF, &fits,
                               extents.data(), &size)) {
    throw RunTimeError(ErrorNumber::OutOfMemory);
  }
  std::size_t unit = 0;
  Twips before = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    unit += NextCodePoint(text, at) >= kUnits ? 2 : 1;
    // A mark may be said to end before the letter that it stands on.
    const auto edge = static_cast<Twips>(std::lround(extents[unit - 1] * scale));
    before = edge > before ? edge : before;
    edges.insert(edges.end(), at - start, before);
  }
}

}  // namespace zq
