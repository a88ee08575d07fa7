// Where the engine's random generator gets its keys from.
#pragma once

#include <cstddef>
#include <span>

#include "engine/Device.h"

namespace zq::engine {

class SeedSource {
 public:
  virtual ~SeedSource() = default;
  // Fills `seed` with bytes that nobody can foretell.
  virtual Status Fill(std::span<std::byte> seed) = 0;
};

// The system's own generator: BCryptGenRandom or getrandom.
class SystemSeed final : public SeedSource {
 public:
  Status Fill(std::span<std::byte> seed) override;
};

}  // namespace zq::engine
