#include <gtest/gtest.h>

#include "controls/RowColours.h"

namespace zq {
namespace {

constexpr Palette kLight{0xFFFFFF, 0x000000, 0xD77800, 0xFFFFFF, 0x6D6D6D};
constexpr Palette kClassic{0xFFFFFF, 0x000000, 0x6A240A, 0xFFFFFF, 0x808080};
constexpr Palette kBlack{0x000000, 0xFFFFFF, 0xFFEB1A, 0x000000, 0x3FF23F};
constexpr Palette kPalettes[] = {kLight, kClassic, kBlack};

TEST(RowColours, ContrastIsThatOfTheirLuminance) {
  EXPECT_DOUBLE_EQ(Contrast(0x000000, 0xFFFFFF), 21.0);
  EXPECT_DOUBLE_EQ(Contrast(0x123456, 0x123456), 1.0);
  EXPECT_NEAR(Contrast(0xFFFFFF, 0x777777), 4.48, 0.01);
  EXPECT_NEAR(Contrast(0x0000FF, 0xFFFFFF), 4.00, 0.01) << "red, which is in the low byte";
}

TEST(RowColours, AMixGoesAllTheWayInEachChannel) {
  EXPECT_EQ(Mix(0x102030, 0xF0E0D0, 0), 0x102030U);
  EXPECT_EQ(Mix(0x102030, 0xF0E0D0, 256), 0xF0E0D0U);
  EXPECT_EQ(Mix(0x0000FF, 0xFF0000, 128), 0x7F0080U);
}

TEST(RowColours, AChosenRowStandsOutWhileTheFocusIsElsewhereAndCanBeRead) {
  for (const Palette& palette : kPalettes) {
    const RowColours chosen = ColoursOf(palette, RowState::ChosenElsewhere, false);
    EXPECT_GE(Contrast(chosen.background, palette.window), 3.0);
    EXPECT_GE(Contrast(chosen.text, chosen.background), 4.5);
    EXPECT_NE(chosen.background, palette.highlight) << "the focus isn't here";
  }
}

TEST(RowColours, WithTheFocusAndUnchosenARowHasTheSystemsColours) {
  EXPECT_EQ(ColoursOf(kLight, RowState::Chosen, false), (RowColours{0xD77800, 0xFFFFFF}));
  EXPECT_EQ(ColoursOf(kLight, RowState::Plain, false), (RowColours{0xFFFFFF, 0x000000}));
  EXPECT_EQ(ColoursOf(kLight, RowState::Plain, true), (RowColours{0xFFFFFF, 0x6D6D6D}));
}

TEST(RowColours, AGhostedRowIsPalerThanALiveOneInEachState) {
  for (const Palette& palette : kPalettes) {
    for (const RowState state : {RowState::Plain, RowState::Chosen, RowState::ChosenElsewhere}) {
      const RowColours live = ColoursOf(palette, state, false);
      const RowColours ghosted = ColoursOf(palette, state, true);
      EXPECT_EQ(ghosted.background, live.background);
      EXPECT_LT(Contrast(ghosted.text, ghosted.background), 0.75 * Contrast(live.text, live.background));
      EXPECT_GT(Contrast(ghosted.text, ghosted.background), 1.7);
    }
  }
}

TEST(RowColours, AWindowWithoutContrastOfItsOwnGetsWhatThereIs) {
  const Palette faint{0xFFFFFF, 0xC0C0C0, 0x800000, 0xFFFFFF, 0xE0E0E0};
  EXPECT_EQ(ColoursOf(faint, RowState::ChosenElsewhere, false).background, 0xC0C0C0U);
}

}  // namespace
}  // namespace zq
