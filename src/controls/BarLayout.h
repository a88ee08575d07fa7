// BarLayout: how the user has arranged the bands of the tool bar, and the file that keeps it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zq {

struct BandLayout {
  int band = 0;         // counted from 1, in the order of the design
  bool newRow = false;  // begins a row of its own
  int width = 0;        // in pixels at 96 dpi

  bool operator==(const BandLayout&) const = default;
};

// The bands in the order in which they stand, row after row.
using BarLayout = std::vector<BandLayout>;

inline constexpr int kMaxBandWidth = 32767;

// The content of the layout file. A width outside 0 to `kMaxBandWidth` is brought to the nearer end.
std::string EncodeBarLayout(const BarLayout& layout);

// The layout of exactly the bands 1 to `bandCount`, or nothing for any text that `EncodeBarLayout` would
// not have written for them: a damaged file, or one of another version.
std::optional<BarLayout> DecodeBarLayout(std::string_view bytes, int bandCount);

}  // namespace zq
