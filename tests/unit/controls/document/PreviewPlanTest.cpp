#include <gtest/gtest.h>

#include "controls/document/PreviewPlan.h"

namespace zq::test {
namespace {

constexpr Twips kWidth = 12240;
constexpr Twips kHeight = 15840;

PreviewPlan Plan(int pages, ViewSize view, ZoomMode mode, double percent = 100, int dpi = 96) {
  return {kWidth, kHeight, pages, dpi, view, mode, percent};
}

TEST(PreviewPlan, AtHundredPerCentAnInchIsAnInch) {
  const PreviewPlan plan = Plan(3, {900, 600}, ZoomMode::Percent);
  EXPECT_EQ(plan.PageRect(0), (PixelRect{42, 16, 42 + 816, 16 + 1056}));
  EXPECT_EQ(plan.PageRect(1).top, 16 + 1056 + 16);
  EXPECT_EQ(plan.MaxScrollX(), 0);
  EXPECT_EQ(plan.MaxScrollY(), 3 * (1056 + 16) + 16 - 600);
  const PreviewPlan fine = Plan(3, {1300, 600}, ZoomMode::Percent, 100, 144);
  EXPECT_EQ(fine.PageRect(0).right - fine.PageRect(0).left, 1224);
}

TEST(PreviewPlan, WholePageFits) {
  for (const ViewSize view : {ViewSize{900, 600}, {300, 900}, {2000, 300}}) {
    const PreviewPlan plan = Plan(5, view, ZoomMode::WholePage);
    const PixelRect page = plan.PageRect(0);
    EXPECT_LE(page.right - page.left, view.width);
    EXPECT_LE(page.bottom - page.top, view.height);
    EXPECT_GE(page.left, 0);
    EXPECT_EQ(plan.Columns(), 1);
    if (view.height < view.width) {
      EXPECT_GE(plan.PageRect(1).top - 1, plan.ScrollYOf(0) + view.height) << "the next one's edge is seen";
    }
  }
}

TEST(PreviewPlan, PageWidthFillsTheView) {
  const PreviewPlan plan = Plan(5, {900, 600}, ZoomMode::PageWidth);
  EXPECT_EQ(plan.PageRect(0).left, 16);
  EXPECT_EQ(plan.PageRect(0).right, 900 - 16);
}

TEST(PreviewPlan, TwoPagesStandSideBySide) {
  const PreviewPlan plan = Plan(5, {900, 600}, ZoomMode::TwoPages);
  EXPECT_EQ(plan.Columns(), 2);
  EXPECT_EQ(plan.PageRect(0).top, plan.PageRect(1).top);
  EXPECT_EQ(plan.PageRect(1).left, plan.PageRect(0).right + 16);
  EXPECT_LT(plan.PageRect(1).right, 900);
  EXPECT_LE(plan.PageRect(0).bottom, 600);
  EXPECT_EQ(plan.PageRect(2).left, plan.PageRect(0).left);
  EXPECT_EQ(Plan(1, {900, 600}, ZoomMode::TwoPages).Columns(), 1);
}

TEST(PreviewPlan, ThumbnailsFillTheRows) {
  const PreviewPlan plan = Plan(100, {900, 600}, ZoomMode::Thumbnail);
  EXPECT_GE(plan.Columns(), 5);
  EXPECT_LT(plan.PageRect(plan.Columns() - 1).right, 900);
  EXPECT_EQ(plan.PageRect(plan.Columns()).left, plan.PageRect(0).left);
  for (const int width : {700, 750, 800, 830, 900})
    EXPECT_GE(Plan(100, {width, 600}, ZoomMode::Thumbnail).PageRect(0).left, 16) << width;
}

TEST(PreviewPlan, SizesFollowTheResolution) {
  const PreviewPlan plan = Plan(100, {1350, 900}, ZoomMode::Thumbnail, 100, 144);
  const PixelRect page = plan.PageRect(0);
  EXPECT_EQ(page.bottom - page.top, 230) << "1.6 inches";
  EXPECT_EQ(page.top, 24);
  EXPECT_EQ(plan.PageRect(1).left, page.right + 24);
}

TEST(PreviewPlan, OnePageStandsInTheMiddle) {
  const PreviewPlan plan = Plan(1, {900, 600}, ZoomMode::Percent, 25);
  const PixelRect page = plan.PageRect(0);
  EXPECT_EQ(page.top, 600 - page.bottom);
  EXPECT_EQ(page.left, 900 - page.right);
}

TEST(PreviewPlan, FindsThePagesThatAreSeen) {
  const PreviewPlan plan = Plan(600, {900, 600}, ZoomMode::Percent);
  int first = -1;
  int end = -1;
  plan.VisiblePages(0, first, end);
  EXPECT_EQ(first, 0);
  EXPECT_EQ(end, 1);
  plan.VisiblePages(plan.ScrollYOf(300) - 10, first, end);
  EXPECT_EQ(first, 299);
  EXPECT_EQ(end, 301);
  plan.VisiblePages(plan.MaxScrollY(), first, end);
  EXPECT_EQ(end, 600);
}

TEST(PreviewPlan, EachPageIsPresentWhereItsScrollPositionIs) {
  for (const ZoomMode mode : {ZoomMode::Percent, ZoomMode::WholePage, ZoomMode::PageWidth}) {
    const PreviewPlan plan = Plan(20, {900, 600}, mode);
    for (int page = 0; page < 20; ++page) EXPECT_EQ(plan.PageAtView(plan.ScrollYOf(page)), page);
  }
}

TEST(PreviewPlan, TopmostRowIsPresentWhereSeveralAreSeen) {
  const PreviewPlan all = Plan(30, {900, 1200}, ZoomMode::Thumbnail);
  ASSERT_EQ(all.MaxScrollY(), 0);
  ASSERT_GT(all.Columns(), 1);
  EXPECT_EQ(all.PageAtView(0), 0);
  const PreviewPlan plan = Plan(300, {900, 1200}, ZoomMode::Thumbnail);
  for (const int row : {0, 1, 7}) {
    const int page = row * plan.Columns();
    EXPECT_EQ(plan.PageAtView(plan.ScrollYOf(page)), page);
    EXPECT_EQ(plan.PageAtView(plan.ScrollYOf(page + 1)), page);
  }
}

TEST(PreviewPlan, LastPageIsPresentAtTheEnd) {
  // All of the last pages are seen at once.
  const PreviewPlan plan = Plan(9, {900, 2600}, ZoomMode::Percent);
  EXPECT_EQ(plan.PageAtView(plan.MaxScrollY()), 8);
  EXPECT_EQ(plan.PageAtView(0), 0);
}

TEST(PreviewPlan, StepsThroughTheList) {
  EXPECT_EQ(ZoomedIn(100), 125);
  EXPECT_EQ(ZoomedIn(101), 125);
  EXPECT_EQ(ZoomedIn(99), 100);
  EXPECT_EQ(ZoomedOut(101), 100);
  EXPECT_EQ(ZoomedIn(500), 500);
  EXPECT_EQ(ZoomedOut(100), 75);
  EXPECT_EQ(ZoomedOut(99), 75);
  EXPECT_EQ(ZoomedOut(10), 10);
}

TEST(PreviewPlan, IsUsableWhateverItIsGiven) {
  for (const int size : {-10, 0, 1, 33, 100000}) {
    for (const auto mode : {ZoomMode::Percent, ZoomMode::WholePage, ZoomMode::PageWidth, ZoomMode::TwoPages,
                            ZoomMode::Thumbnail}) {
      for (const double percent : {-1.0, 0.0, 1e300}) {
        const PreviewPlan plan = Plan(1000, {size, size}, mode, percent);
        EXPECT_GE(plan.Percent(), 1);
        EXPECT_LE(plan.Percent(), 500);
        EXPECT_GE(plan.MaxScrollY(), 0);
        EXPECT_GE(plan.Columns(), 1);
      }
    }
  }
}

}  // namespace
}  // namespace zq::test
