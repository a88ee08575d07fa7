#include "controls/ProgressColours.h"

namespace zq {
namespace {

constexpr Colour kFrame = 0xA0A0A0;
constexpr Colour kWhite = 0xFFFFFF;
constexpr Colour kBlack = 0x000000;

Colour ReadableOn(Colour ground) {
  return Contrast(kBlack, ground) > Contrast(kWhite, ground) ? kBlack : kWhite;
}

}  // namespace

ProgressColours ProgressColoursOf(const Palette& palette, bool contrastTheme, Colour own) {
  if (contrastTheme)
    return {palette.windowText, palette.window, palette.highlight, palette.windowText, palette.highlightText};
  return {kFrame, kWhite, own, kBlack, ReadableOn(own)};
}

}  // namespace zq
