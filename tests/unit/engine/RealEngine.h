// An engine on the system's own device, random generator and clock, as the program has it.
#pragma once

#include <memory>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {

struct RealEngine {
  SteadyClock clock;
  std::unique_ptr<Device> device = MakeSystemDevice();
  SystemSeed seeds;
  RecordedEvents events{clock};
  SecureDelete engine{*device, seeds, clock, events, [](const std::string& name, const std::string& mask) {
                        return MatchesMask(name.c_str(), mask.c_str());
                      }};
};

}  // namespace zq::engine::test
