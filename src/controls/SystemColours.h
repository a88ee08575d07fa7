// The colours that the user has set in the system, as they are now.
#pragma once

#include "controls/RowColours.h"

namespace zq {

Palette SystemPalette();

// Whether one of the system's contrast themes is on: then nothing has a colour but the user's.
bool IsContrastTheme();

}  // namespace zq
