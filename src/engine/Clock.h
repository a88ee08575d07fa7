// The time by which progress is told and the work between two looks at a cancel is measured.
#pragma once

#include <chrono>

namespace zq::engine {

class Clock {
 public:
  using Time = std::chrono::microseconds;  // since some fixed moment

  virtual ~Clock() = default;
  virtual Time Now() const = 0;
};

class SteadyClock final : public Clock {
 public:
  Time Now() const override {
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
  }
};

}  // namespace zq::engine
