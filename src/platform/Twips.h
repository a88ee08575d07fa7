// Twips, 1/1440 inch: the unit of the window sizes that the program keeps.
#pragma once

namespace zq {

inline constexpr int kTwipsPerInch = 1440;

// To the nearest pixel at `dpi` dots per inch.
inline int TwipsToPixels(int twips, int dpi) {
  const long long scaled = 2LL * twips * dpi;
  return static_cast<int>((scaled + (scaled < 0 ? -kTwipsPerInch : kTwipsPerInch)) / (2 * kTwipsPerInch));
}

inline double PixelsToTwips(long pixels, int dpi) {
  return static_cast<double>(pixels) * kTwipsPerInch / dpi;
}

}  // namespace zq
