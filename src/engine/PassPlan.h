// What is written over a file: the passes that a security level stands for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zq::engine {

struct Pass {
  bool random = false;
  std::uint8_t pattern = 0;  // the byte that is written throughout, unless random
};

// The passes of `level` (3, 5 or 7) in order: `level` rounds of a pattern, its complement and random data.
// Empty for any other level. The last pass is a random one, so what stays on the device shows no pattern.
std::vector<Pass> PassesOfLevel(std::int32_t level);

}  // namespace zq::engine
