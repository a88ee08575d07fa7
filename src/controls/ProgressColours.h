// The colours of a progress bar that we paint ourselves.
#pragma once

#include "controls/RowColours.h"

namespace zq {

struct ProgressColours {
  Colour frame = 0;
  Colour trough = 0;
  Colour bar = 0;
  Colour textOnTrough = 0;
  Colour textOnBar = 0;

  bool operator==(const ProgressColours&) const = default;
};

// With a contrast theme all are the user's. Otherwise the bar has its own colour on white, and its text black
// or white, whichever stands out.
ProgressColours ProgressColoursOf(const Palette& palette, bool contrastTheme, Colour own);

}  // namespace zq
