// What a record of an erasure has beside what was erased (as NIST SP 800-88 asks for it): on what device,
// when, how, and whether it was verified.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/Json.h"
#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/Storage.h"

namespace zq::cli {

struct StoredOn {
  std::string path;  // of a folder that was named, or of the files that were: what lies on the device
  engine::StorageInfo storage;
};

struct Record {
  std::string started;  // of the world's time; empty: it never was
  std::uint64_t seconds = 0;
  bool verified = false;          // something was wiped, and all that was has been read back
  std::vector<StoredOn> devices;  // each once
};

// Looks what `path`, a folder, lies on, and adds that unless the record has it. What can't be opened is of an
// unknown kind.
void AddDevice(Record& record, engine::Device& device, const std::string& path);

// The members started, seconds, passes, verified, method, device and devices of an object that is begun.
// `device` is the one that overwriting reaches least of. Nothing but passes and method where nothing was
// begun.
void WriteRecord(JsonWriter& json, const Record& record, std::int32_t level);

// For the user: one line of each device that chooses places by itself, or may.
std::vector<std::string> DeviceWarnings(const Record& record);

// Takes the time.
class Stopwatch {
 public:
  explicit Stopwatch(engine::Clock& clock) : clock_(clock), start_(clock.Now()) {}
  // Rounded up.
  std::uint64_t Seconds() const {
    return static_cast<std::uint64_t>((clock_.Now() - start_).count() + 999'999) / 1'000'000;
  }

 private:
  engine::Clock& clock_;
  engine::Clock::Time start_;
};

}  // namespace zq::cli
