// GreyedPicture: what a picture looks like beside a greyed text.
#pragma once

#include <cstdint>
#include <span>

namespace zq {

// Colours are 0x00RRGGBB. The picture keeps its shape and takes the colours between that of the greyed text
// and that of its ground, by its own lights and darks: so it is as clearly off as the text, whatever the
// theme is. `pixels` are 0xAARRGGBB with premultiplied alpha, which stays.
void GreyPicture(std::span<std::uint32_t> pixels, std::uint32_t greyedText, std::uint32_t ground);

}  // namespace zq
