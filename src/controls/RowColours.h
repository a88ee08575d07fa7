// The colours of rows in lists and trees, which have to be told apart in every state.
#pragma once

#include <cstdint>

namespace zq {

// A colour as Windows has it: 0x00BBGGRR.
using Colour = std::uint32_t;

// What the user has set in the system.
struct Palette {
  Colour window = 0;
  Colour windowText = 0;
  Colour highlight = 0;
  Colour highlightText = 0;
  Colour greyText = 0;
};

struct RowColours {
  Colour background = 0;
  Colour text = 0;

  bool operator==(const RowColours&) const = default;
};

enum class RowState { Plain, Chosen, ChosenElsewhere };  // Elsewhere: the focus is in another control

// Colours of a row. Chosen rows stand out from the window by a contrast of 3:1 at least while the focus is
// elsewhere, and their text from them by 4.5:1 wherever the palette's own text does that. A ghosted row's
// text is paler than a live one's in each state.
RowColours ColoursOf(const Palette& palette, RowState state, bool ghosted);

// The contrast of two colours by their luminance, from 1 to 21 (WCAG 2).
double Contrast(Colour a, Colour b);

// `part` of 256 of the way from `from` to `to`.
Colour Mix(Colour from, Colour to, int part);

}  // namespace zq
