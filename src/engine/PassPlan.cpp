#include "engine/PassPlan.h"

namespace zq::engine {
namespace {

// One byte for each round; with the complements fourteen different ones. After the checkerboard and the
// constant bytes come runs of two and four equal bits, then the three phases of the 100100... sequence:
// each bit cell is driven both ways in every neighbourhood of up to three cells, which is what the codes
// of magnetic media distinguish.
constexpr std::uint8_t kRoundPatterns[] = {0x55, 0x00, 0x33, 0x0F, 0x92, 0x49, 0x24};

}  // namespace

std::vector<Pass> PassesOfLevel(std::int32_t level) {
  std::vector<Pass> passes;
  if (level != 3 && level != 5 && level != 7) return passes;
  for (std::int32_t round = 0; round < level; ++round) {
    const std::uint8_t pattern = kRoundPatterns[round];
    passes.push_back({false, pattern});
    passes.push_back({false, static_cast<std::uint8_t>(~pattern)});
    passes.push_back({true, 0});
  }
  return passes;
}

}  // namespace zq::engine
