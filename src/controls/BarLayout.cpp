#include "controls/BarLayout.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace zq {
namespace {

constexpr std::string_view kHead = "Zeroquill bars 1\r\n";
constexpr std::string_view kBand = "band ";
constexpr std::string_view kSameRow = " same row ";
constexpr std::string_view kNewRow = " new row ";
constexpr std::string_view kLineEnd = "\r\n";

// Takes `text` off the front of `rest`; false if it doesn't stand there.
bool Take(std::string_view& rest, std::string_view text) {
  if (!rest.starts_with(text)) return false;
  rest.remove_prefix(text.size());
  return true;
}

bool TakeNumber(std::string_view& rest, int& number) {
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (error != std::errc()) return false;
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return true;
}

bool TakeBand(std::string_view& rest, BandLayout& band) {
  if (!Take(rest, kBand) || !TakeNumber(rest, band.band)) return false;
  band.newRow = rest.starts_with(kNewRow);
  return Take(rest, band.newRow ? kNewRow : kSameRow) && TakeNumber(rest, band.width) && Take(rest, kLineEnd);
}

bool HoldsEachBandOnce(const BarLayout& layout, int bandCount) {
  std::vector<bool> seen(static_cast<std::size_t>(bandCount), false);
  for (const BandLayout& band : layout) {
    if (band.band < 1 || band.band > bandCount || seen[static_cast<std::size_t>(band.band - 1)]) return false;
    seen[static_cast<std::size_t>(band.band - 1)] = true;
  }
  return layout.size() == seen.size();
}

}  // namespace

std::string EncodeBarLayout(const BarLayout& layout) {
  std::string bytes(kHead);
  for (const BandLayout& band : layout) {
    bytes += kBand;
    bytes += std::to_string(band.band);
    bytes += band.newRow ? kNewRow : kSameRow;
    bytes += std::to_string(std::clamp(band.width, 0, kMaxBandWidth));
    bytes += kLineEnd;
  }
  return bytes;
}

std::optional<BarLayout> DecodeBarLayout(std::string_view bytes, int bandCount) {
  std::string_view rest = bytes;
  if (!Take(rest, kHead)) return std::nullopt;
  BarLayout layout;
  while (!rest.empty()) {
    BandLayout band;
    if (static_cast<int>(layout.size()) == bandCount || !TakeBand(rest, band)) return std::nullopt;
    layout.push_back(band);
  }
  // What would be written otherwise, such as a number out of its range or with zeros before it, isn't ours.
  if (!HoldsEachBandOnce(layout, bandCount) || EncodeBarLayout(layout) != bytes) return std::nullopt;
  return layout;
}

}  // namespace zq
