// What can be read in a picture: its ground, and how much what is drawn stands out from it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>

#include "controls/RowColours.h"
#include "support/driver/Picture.h"

namespace zq::test {

// A pixel as a colour of Windows.
inline Colour ColourOf(std::uint32_t pixel) {
  return (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF);
}

// The colour that most of the picture has.
inline Colour GroundOf(const Picture& picture) {
  std::map<std::uint32_t, int> counts;
  for (const std::uint32_t pixel : picture.pixels) ++counts[pixel];
  return ColourOf(std::max_element(counts.begin(), counts.end(), [](const auto& a, const auto& b) {
                    return a.second < b.second;
                  })->first);
}

// The greatest contrast of any pixel to the ground.
inline double InkContrast(const Picture& picture) {
  const Colour ground = GroundOf(picture);
  double most = 1;
  for (const std::uint32_t pixel : std::set<std::uint32_t>(picture.pixels.begin(), picture.pixels.end()))
    most = std::max(most, Contrast(ColourOf(pixel), ground));
  return most;
}

}  // namespace zq::test
