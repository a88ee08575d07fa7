// TextMeasure: how wide and high text is in a font, without a device's pixels.
#pragma once

#include <string_view>
#include <vector>

#include "controls/document/Document.h"

namespace zq {

struct FontChoice {
  std::string_view name;
  float points = 10;
  bool bold = false;
};

struct LineMetrics {
  Twips ascent = 0;
  Twips height = 0;  // from one line to the next
};

class TextMeasure {
 public:
  virtual ~TextMeasure() = default;

  virtual LineMetrics Metrics(const FontChoice& font) = 0;

  // Appends for each byte of `text` (valid UTF-8) the right edge of the character that it belongs to, counted
  // from the text's left edge. Edges never go back.
  virtual void Edges(const FontChoice& font, std::string_view text, std::vector<Twips>& edges) = 0;
};

// True if the text holds characters whose look or place depends on their neighbours (marks, right-to-left and
// joining scripts): the system draws these as a whole, and they can't be placed one by one.
bool NeedsShaping(std::string_view text);

}  // namespace zq
