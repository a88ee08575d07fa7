// What is left of names when the files are gone: in the room of folders, and in the logs of file systems.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/Failure.h"

namespace zq::engine {

class Operation;

// Keeps the folders that have lost entries until the end of the whole operation, which may be many calls of
// the engine: each folder is then covered, and each log cleared, once.
class Traces {
 public:
  explicit Traces(Device& device) : device_(device) {}
  Traces(const Traces&) = delete;
  Traces& operator=(const Traces&) = delete;

  // `folder` has lost entries and stays. It is closed if nothing has to be done for it later. `isUnflushed`:
  // their removal isn't durable yet.
  void Add(std::unique_ptr<Folder> folder, std::string path, bool isUnflushed) noexcept;

  // Covers the folders that came first while more are kept than may be open for long.
  void KeepFew(Operation& operation);

  // Makes the removals durable, then covers and clears all, for at most `longest`. Throws Failure if a
  // removal may be lost, or content left in a log; all that can be done has been done then.
  void Clear(Operation& operation, Clock::Time longest);

  bool IsEmpty() const { return kept_.empty(); }

 private:
  struct Kept {
    std::unique_ptr<Folder> folder;
    std::string path;
    std::uint64_t log = 0;
    bool isUnflushed = false;
  };

  void Flush(std::span<Kept> some);

  Device& device_;
  std::vector<Kept> kept_;
  std::optional<Failure> failure_;  // the first
};

}  // namespace zq::engine
