#include "controls/SystemColours.h"

#include <windows.h>

namespace zq {

Palette SystemPalette() {
  return {.window = ::GetSysColor(COLOR_WINDOW),
          .windowText = ::GetSysColor(COLOR_WINDOWTEXT),
          .highlight = ::GetSysColor(COLOR_HIGHLIGHT),
          .highlightText = ::GetSysColor(COLOR_HIGHLIGHTTEXT),
          .greyText = ::GetSysColor(COLOR_GRAYTEXT)};
}

bool IsContrastTheme() {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof contrast;
  if (!::SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0)) return false;
  return (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

}  // namespace zq
