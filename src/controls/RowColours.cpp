#include "controls/RowColours.h"

#include <algorithm>
#include <cmath>

namespace zq {
namespace {

// Of a chosen row's ground to the window's while the focus is elsewhere. Text in the window's colour on it
// can then be read as well.
constexpr double kElsewhereContrast = 4.5;

// How far a ghosted row's text goes towards the row's ground, of 256.
constexpr int kGhosting = 128;

int Channel(Colour colour, int shift) {
  return static_cast<int>(colour >> shift & 0xFF);
}

double Linear(int channel) {
  const double share = channel / 255.0;
  return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double Luminance(Colour colour) {
  return 0.2126 * Linear(Channel(colour, 0)) + 0.7152 * Linear(Channel(colour, 8)) +
         0.0722 * Linear(Channel(colour, 16));
}

// The colour nearest to the window's, on the way to its text's, that stands out from it.
Colour ElsewhereGround(const Palette& palette) {
  for (int part = 1; part < 256; ++part) {
    const Colour ground = Mix(palette.window, palette.windowText, part);
    if (Contrast(ground, palette.window) >= kElsewhereContrast) return ground;
  }
  return palette.windowText;
}

RowColours LiveColours(const Palette& palette, RowState state) {
  switch (state) {
    case RowState::Chosen:
      return {palette.highlight, palette.highlightText};
    case RowState::ChosenElsewhere:
      return {ElsewhereGround(palette), palette.window};
    case RowState::Plain:
      break;
  }
  return {palette.window, palette.windowText};
}

}  // namespace

double Contrast(Colour a, Colour b) {
  const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

Colour Mix(Colour from, Colour to, int part) {
  Colour mixed = 0;
  for (const int shift : {0, 8, 16}) {
    const int start = Channel(from, shift);
    mixed |= static_cast<Colour>(start + (Channel(to, shift) - start) * part / 256) << shift;
  }
  return mixed;
}

RowColours ColoursOf(const Palette& palette, RowState state, bool ghosted) {
  RowColours colours = LiveColours(palette, state);
  if (!ghosted) return colours;
  colours.text =
      state == RowState::Plain ? palette.greyText : Mix(colours.text, colours.background, kGhosting);
  return colours;
}

}  // namespace zq
