// LeftFillers: has the engine remove what a wipe of free space left that was ended from outside.
#pragma once

#include <string>

#include "engine/Clock.h"
#include "engine/Device.h"
#include "wipe/FillerRecord.h"

namespace zq {

// For all drives of one start of the program together: what takes longer waits for the next one.
inline constexpr engine::Clock::Time kLongestAtStart{1'500'000};

class LeftFillers {
 public:
  // Both have to outlive it.
  LeftFillers(engine::Device& device, engine::Clock& clock)
      : device_(device), clock_(clock), end_(clock.Now() + kLongestAtStart) {}

  // True if the whole drive was looked through; false if the time ran out, or its root can't be opened.
  bool RemoveFrom(const std::string& drive);

 private:
  engine::Device& device_;
  engine::Clock& clock_;
  engine::Clock::Time end_;
};

// For the program's start: the same for the drives of the record, on the system's own device.
void RemoveLeftFillers(const FillerRecord& record, Drives& drives);

}  // namespace zq
