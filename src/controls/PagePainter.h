// PagePainter: draws a page of a document on the screen or on a printer. There is one for both, so that they
// show the same.
#pragma once

#include <windows.h>

#include <vector>

#include "controls/document/PageLayout.h"
#include "controls/document/TextSearch.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

// Where a page is drawn, and how.
struct PageCanvas {
  HDC context = nullptr;
  double pixelsPerTwipX = 1;
  double pixelsPerTwipY = 1;
  int left = 0;  // the page's corner, in pixels of the context
  int top = 0;
  RECT clip{};          // what lies outside needn't be drawn
  bool colours = true;  // false: a device that knows black alone
  TextRange selection;
};

class PagePainter {
 public:
  PagePainter(const Document& document, const PageLayout& layout, TextMeasure& measure)
      : document_(document), layout_(layout), measure_(measure) {}

  // `page` from 0. The paper itself isn't drawn.
  void Draw(int page, const PageCanvas& canvas);

 private:
  struct ScaledFont {
    float points;
    bool bold;
    int pixels;
    UniqueFont font;
  };

  void DrawPictures(int page);
  void DrawCell(const LaidCell& cell);
  void DrawLine(const LaidLine& line);
  void DrawSelection(const LaidLine& line);
  void DrawTextRun(std::string_view text, const TextStyle& style, double x, int baseline,
                   const std::vector<Twips>& edges, std::size_t firstEdge, Twips offset);
  HFONT FontFor(const TextStyle& style);
  int X(double twips) const;
  int Y(double twips) const;

  const Document& document_;
  const PageLayout& layout_;
  TextMeasure& measure_;
  const PageCanvas* canvas_ = nullptr;
  bool highlighted_ = false;  // text is being drawn as selected text
  std::vector<ScaledFont> fonts_;
  std::vector<Twips> edges_;
  std::vector<int> advances_;
};

}  // namespace zq
