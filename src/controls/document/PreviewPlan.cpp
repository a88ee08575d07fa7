#include "controls/document/PreviewPlan.h"

#include <algorithm>
#include <cmath>

#include "platform/Twips.h"

namespace zq {
namespace {

// Between pages and around them, at 96 dpi.
constexpr int kGap = 16;
// The line around a page, in pixels. A page that is shown whole is so much higher, and the next one's line
// lies outside the view.
constexpr int kEdge = 1;
// A thumbnail's height, in inches on the screen.
constexpr double kThumbnailHeight = 1.6;

}  // namespace

double ZoomedIn(double percent) {
  for (const int step : kZoomPercents) {
    if (step > percent + 0.5) return step;
  }
  return kMostZoom;
}

double ZoomedOut(double percent) {
  double below = kLeastZoom;
  for (const int step : kZoomPercents) {
    if (step < percent - 0.5) below = step;
  }
  return below;
}

PreviewPlan::PreviewPlan(Twips pageWidth, Twips pageHeight, int pages, int dpi, ViewSize view, ZoomMode mode,
                         double percent)
    : view_{std::max(view.width, 1), std::max(view.height, 1)}, pages_(std::max(pages, 1)) {
  gap_ = kGap * dpi / 96;
  const double pixelsAtFull = static_cast<double>(dpi) / kTwipsPerInch;
  const double fullWidth = pageWidth * pixelsAtFull;
  const double fullHeight = pageHeight * pixelsAtFull;
  const double roomX = std::max(view_.width - 2 * gap_, 1);
  const double roomY = std::max(view_.height - 2 * gap_ + kEdge, 1);

  switch (mode) {
    case ZoomMode::Percent:
      percent_ = percent;
      break;
    case ZoomMode::WholePage:
      percent_ = 100 * std::min(roomX / fullWidth, roomY / fullHeight);
      break;
    case ZoomMode::PageWidth:
      percent_ = 100 * roomX / fullWidth;
      break;
    case ZoomMode::TwoPages:
      columns_ = 2;
      percent_ = 100 * std::min(std::max(roomX - gap_, 1.0) / 2 / fullWidth, roomY / fullHeight);
      break;
    case ZoomMode::Thumbnail:
      percent_ = 100 * kThumbnailHeight * dpi / fullHeight;
      break;
  }
  percent_ = std::clamp(std::isfinite(percent_) ? percent_ : 100,
                        mode == ZoomMode::Percent ? kLeastZoom : 1.0, kMostZoom);

  pixelsPerTwip_ = pixelsAtFull * percent_ / 100;
  pageWidth_ = std::max(static_cast<int>(std::lround(pageWidth * pixelsPerTwip_)), 1);
  pageHeight_ = std::max(static_cast<int>(std::lround(pageHeight * pixelsPerTwip_)), 1);
  if (mode == ZoomMode::Thumbnail) columns_ = std::max((view_.width - gap_) / (pageWidth_ + gap_), 1);
  columns_ = std::min(columns_, pages_);

  const int width = columns_ * pageWidth_ + (columns_ - 1) * gap_;
  const int height = Rows() * pageHeight_ + (Rows() - 1) * gap_;
  canvas_.width = std::max(width + 2 * gap_, view_.width);
  canvas_.height = std::max(height + 2 * gap_, view_.height);
  marginX_ = (canvas_.width - width) / 2;
  // A page that is shown whole stands in the middle; a long canvas begins at its top.
  marginY_ = Rows() == 1 ? (canvas_.height - height) / 2 : gap_;
}

PixelRect PreviewPlan::PageRect(int page) const {
  const int left = marginX_ + page % columns_ * (pageWidth_ + gap_);
  const int top = marginY_ + page / columns_ * (pageHeight_ + gap_);
  return {left, top, left + pageWidth_, top + pageHeight_};
}

int PreviewPlan::MaxScrollX() const {
  return std::max(canvas_.width - view_.width, 0);
}

int PreviewPlan::MaxScrollY() const {
  return std::max(canvas_.height - view_.height, 0);
}

int PreviewPlan::ScrollYOf(int page) const {
  return std::clamp(PageRect(page).top - gap_, 0, MaxScrollY());
}

int PreviewPlan::RowAt(int canvasY) const {
  return std::clamp((canvasY - marginY_) / (pageHeight_ + gap_), 0, Rows() - 1);
}

int PreviewPlan::PageAtView(int scrollY) const {
  // At the end the last row may stand too low to come to that height.
  if (scrollY >= MaxScrollY() && MaxScrollY() > 0) return (Rows() - 1) * columns_;
  // Of rows that are lower than the view, the topmost that is half seen.
  return RowAt(scrollY + std::min(view_.height / 3, (pageHeight_ + gap_) / 2)) * columns_;
}

void PreviewPlan::VisiblePages(int scrollY, int& first, int& end) const {
  first = RowAt(scrollY) * columns_;
  end = std::min((RowAt(scrollY + view_.height) + 1) * columns_, pages_);
}

}  // namespace zq
