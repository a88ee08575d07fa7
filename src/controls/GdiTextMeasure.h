// GdiTextMeasure: measures text with the system's fonts, at a size so large that no rounding to pixels shows.
#pragma once

#include <windows.h>

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "controls/document/TextMeasure.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

class GdiTextMeasure final : public TextMeasure {
 public:
  GdiTextMeasure();

  LineMetrics Metrics(const FontChoice& font) override;
  void Edges(const FontChoice& font, std::string_view text, std::vector<Twips>& edges) override;

 private:
  struct Face {
    std::string name;
    bool bold = false;
    UniqueFont font;
    int ascent = 0;
    int height = 0;
    std::vector<std::int32_t> widths;  // by UTF-16 unit; -1 where not measured yet
  };
  Face& Select(const FontChoice& font);
  int WidthOf(Face& face, char32_t c);
  void ShapedEdges(double scale, std::string_view text, std::vector<Twips>& edges);

  UniqueDc context_;
  std::list<Face> faces_;
  Face* selected_ = nullptr;
};

}  // namespace zq
