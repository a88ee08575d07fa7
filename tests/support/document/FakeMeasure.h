// FakeMeasure: a font whose characters are all half as wide as the font is high, bold ones a little wider,
// and marks without any width.
#pragma once

#include "controls/document/Characters.h"
#include "controls/document/TextMeasure.h"

namespace zq::test {

class FakeMeasure final : public TextMeasure {
 public:
  static Twips CharacterWidth(float points, bool bold = false) {
    return static_cast<Twips>(points * kTwipsPerPoint / 2) + (bold ? kTwipsPerPoint : 0);
  }

  LineMetrics Metrics(const FontChoice& font) override {
    const auto size = static_cast<Twips>(font.points * kTwipsPerPoint);
    return {size, size * 6 / 5};
  }

  void Edges(const FontChoice& font, std::string_view text, std::vector<Twips>& edges) override {
    Twips edge = 0;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t start = at;
      const char32_t c = NextCodePoint(text, at);
      if (c < 0x300 || c > 0x36F) edge += CharacterWidth(font.points, font.bold);
      edges.insert(edges.end(), at - start, edge);
    }
  }
};

}  // namespace zq::test
