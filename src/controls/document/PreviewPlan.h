// PreviewPlan: where the pages lie in a preview, at which scale, and how far it scrolls.
//
// The pages lie under one another, or in rows of several, on a canvas of pixels; the view is a part of it.
#pragma once

#include <string_view>

#include "controls/document/Document.h"

namespace zq {

enum class ZoomMode { Percent, WholePage, PageWidth, TwoPages, Thumbnail };

// The preview's list of zooms, as it is stored: one entry for each mode that fits pages into the view, in the
// order of ZoomMode.
inline constexpr std::string_view kZoomList = "Whole &Page|Page &Width|&Two Pages|Thumb&nail";

// The percentages that are offered beside them, and that zooming in and out goes through.
inline constexpr int kZoomPercents[] = {10, 25, 50, 75, 100, 125, 150, 200, 300, 400, 500};
inline constexpr double kLeastZoom = 10;
inline constexpr double kMostZoom = 500;

// The next percentage of the list above or below `percent`; the last one at the list's end.
double ZoomedIn(double percent);
double ZoomedOut(double percent);

struct ViewSize {
  int width = 0;
  int height = 0;
};

struct PixelRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  bool operator==(const PixelRect&) const = default;
};

class PreviewPlan {
 public:
  PreviewPlan() = default;
  // `percent` counts for ZoomMode::Percent alone.
  PreviewPlan(Twips pageWidth, Twips pageHeight, int pages, int dpi, ViewSize view, ZoomMode mode,
              double percent);

  double PixelsPerTwip() const { return pixelsPerTwip_; }
  double Percent() const { return percent_; }
  ViewSize Canvas() const { return canvas_; }
  int Columns() const { return columns_; }

  // On the canvas. Pages count from 0.
  PixelRect PageRect(int page) const;
  // How far the view can scroll; 0 where all is seen.
  int MaxScrollX() const;
  int MaxScrollY() const;
  // The scroll position that puts a page at the view's top, with its margin.
  int ScrollYOf(int page) const;
  // The page that a reader takes for the present one: the first of the row at a third of the view's height,
  // or of the topmost row where several are seen.
  int PageAtView(int scrollY) const;
  // The pages that the view shows a part of: [first, end).
  void VisiblePages(int scrollY, int& first, int& end) const;

 private:
  int Rows() const { return (pages_ + columns_ - 1) / columns_; }
  int RowAt(int canvasY) const;

  ViewSize view_;
  ViewSize canvas_;
  int pages_ = 1;
  int columns_ = 1;
  int gap_ = 0;
  int pageWidth_ = 1;
  int pageHeight_ = 1;
  int marginX_ = 0;
  int marginY_ = 0;
  double percent_ = 100;
  double pixelsPerTwip_ = 1;
};

}  // namespace zq
