#include <gtest/gtest.h>

#include "controls/ProgressColours.h"

namespace zq {
namespace {

constexpr Colour kBlue = 0xC56A31;
constexpr Colour kGreen = 0x2BD228;
constexpr Palette kLight{0xFFFFFF, 0x000000, 0xD77800, 0xFFFFFF, 0x6D6D6D};
constexpr Palette kBlackTheme{0x000000, 0xFFFFFF, 0xFFEB1A, 0x000000, 0x3FF23F};

TEST(ProgressColours, AreItsOwnOnWhiteWithTextThatStandsOut) {
  EXPECT_EQ(ProgressColoursOf(kLight, false, kBlue),
            (ProgressColours{0xA0A0A0, 0xFFFFFF, kBlue, 0x000000, 0xFFFFFF}));
  EXPECT_EQ(ProgressColoursOf(kLight, false, kGreen),
            (ProgressColours{0xA0A0A0, 0xFFFFFF, kGreen, 0x000000, 0x000000}));
}

TEST(ProgressColours, AreTheUsersWithAContrastTheme) {
  for (const Colour own : {kBlue, kGreen}) {
    const ProgressColours colours = ProgressColoursOf(kBlackTheme, true, own);
    EXPECT_EQ(colours, (ProgressColours{0xFFFFFF, 0x000000, 0xFFEB1A, 0xFFFFFF, 0x000000}));
    EXPECT_GE(Contrast(colours.bar, colours.trough), 4.5);
    EXPECT_GE(Contrast(colours.textOnBar, colours.bar), 4.5);
    EXPECT_GE(Contrast(colours.textOnTrough, colours.trough), 4.5);
  }
}

}  // namespace
}  // namespace zq
