#include "controls/GreyedPicture.h"

#include <utility>

namespace zq {
namespace {

std::uint32_t Channel(std::uint32_t colour, int shift) {
  return colour >> shift & 0xFF;
}

// How bright the eye takes a colour for, from 0 to 255.
std::uint32_t Brightness(std::uint32_t colour) {
  return (Channel(colour, 16) * 299 + Channel(colour, 8) * 587 + Channel(colour, 0) * 114 + 500) / 1000;
}

}  // namespace

void GreyPicture(std::span<std::uint32_t> pixels, std::uint32_t greyedText, std::uint32_t ground) {
  std::uint32_t dark = greyedText;
  std::uint32_t light = ground;
  if (Brightness(dark) > Brightness(light)) std::swap(dark, light);
  for (std::uint32_t& pixel : pixels) {
    const std::uint32_t alpha = pixel >> 24;
    // With premultiplied alpha brightness runs from 0 to alpha.
    const std::uint32_t lights = Brightness(pixel) < alpha ? Brightness(pixel) : alpha;
    std::uint32_t grey = alpha << 24;
    for (const int shift : {16, 8, 0}) {
      const std::uint32_t channel =
          (Channel(dark, shift) * (alpha - lights) + Channel(light, shift) * lights + 127) / 255;
      grey |= channel << shift;
    }
    pixel = grey;
  }
}

}  // namespace zq
