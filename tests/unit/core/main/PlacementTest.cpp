#include <gtest/gtest.h>

#include "core/main/Placement.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

using test::ExpectRaises;

TEST(Placement, ComesBackAsThePlaceThatWasSavedOnWhicheverMonitor) {
  for (const int dpi : {96, 120, 144, 192}) {
    // The second monitor lies right of one of 1,920 pixels; -8 is a window's edge beyond the screen.
    for (const ScreenPlace place :
         {ScreenPlace{2000, 100, 1000, 700}, ScreenPlace{-8, -8, 640, 480}, ScreenPlace{0, 0, 1, 1}}) {
      EXPECT_EQ(PlaceOf(PlacementOf(place, dpi), dpi), place) << dpi;
    }
  }
  EXPECT_EQ(PlacementOf({2000, 100, 1000, 700}, 96), (WindowPlacement{15000, 10500, 30000, 1500}));
}

TEST(Placement, OutsideSixteenBitsIsAnOverflow) {
  ExpectRaises(ErrorNumber::Overflow, [] { PlacementOf({2185, 0, 100, 100}, 96); });
  EXPECT_EQ(PlacementOf({2184, 0, 100, 100}, 96).Left, 32760);
}

TEST(Placement, OfAMinimisedWindowCountsFromTheScreensCornerAgain) {
  const ScreenPlace told{100, 200, 640, 480};
  const ScreenPlace monitor{0, 0, 1920, 1080};
  EXPECT_EQ(FromWorkArea(told, monitor, {0, 0, 1920, 1040}), told) << "a task bar at the foot";
  EXPECT_EQ(FromWorkArea(told, monitor, {0, 40, 1920, 1040}), (ScreenPlace{100, 240, 640, 480}));
  EXPECT_EQ(FromWorkArea(told, {1920, 0, 1920, 1080}, {1982, 0, 1858, 1080}),
            (ScreenPlace{162, 200, 640, 480}));
}

}  // namespace
}  // namespace zq
