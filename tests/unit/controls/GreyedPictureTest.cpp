#include <gtest/gtest.h>

#include <array>

#include "controls/GreyedPicture.h"

namespace zq {
namespace {

constexpr std::uint32_t kGreyText = 0x6D6D6D;
constexpr std::uint32_t kMenu = 0xF0F0F0;

std::uint32_t Grey(std::uint32_t pixel, std::uint32_t text = kGreyText, std::uint32_t ground = kMenu) {
  std::array<std::uint32_t, 1> pixels{pixel};
  GreyPicture(pixels, text, ground);
  return pixels[0];
}

TEST(GreyedPicture, RunsFromTheColourOfTheTextToThatOfTheGround) {
  EXPECT_EQ(Grey(0xFF000000), 0xFF6D6D6D);
  EXPECT_EQ(Grey(0xFFFFFFFF), 0xFFF0F0F0);
  const std::uint32_t red = Grey(0xFFFF0000);
  EXPECT_GT(red, 0xFF6D6D6DU);
  EXPECT_LT(red, 0xFFF0F0F0U);
}

TEST(GreyedPicture, HasNoColourOfItsOwn) {
  for (const std::uint32_t pixel : {0xFFFF0000U, 0xFF00FF00U, 0xFF3050E0U, 0x80403000U}) {
    const std::uint32_t grey = Grey(pixel);
    EXPECT_EQ(grey >> 16 & 0xFF, grey >> 8 & 0xFF);
    EXPECT_EQ(grey >> 8 & 0xFF, grey & 0xFF);
  }
}

TEST(GreyedPicture, IsLightWhereThePictureIsOnADarkGround) {
  // A theme of high contrast: green text that is greyed, on black.
  EXPECT_EQ(Grey(0xFF000000, 0x3FF23F, 0x000000), 0xFF000000);
  EXPECT_EQ(Grey(0xFFFFFFFF, 0x3FF23F, 0x000000), 0xFF3FF23F);
}

TEST(GreyedPicture, KeepsItsShape) {
  EXPECT_EQ(Grey(0x00000000), 0x00000000U);
  EXPECT_EQ(Grey(0x80000000), 0x80373737U);
  EXPECT_EQ(Grey(0x80808080), 0x80787878U);
  // Whatever comes in, no channel is above alpha.
  EXPECT_EQ(Grey(0x10FFFFFF), 0x100F0F0FU);
}

}  // namespace
}  // namespace zq
