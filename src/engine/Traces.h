// What is left of names when the files are gone: in the room of folders, and in the logs of file systems.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/Clock.h"
#include "engine/Device.h"

namespace zq::engine {

class Operation;

// Keeps the folders that have lost entries until the end of the whole operation, which may be many calls of
// the engine: each folder is then covered, and each log cleared, once.
class Traces {
 public:
  Traces() = default;
  Traces(const Traces&) = delete;
  Traces& operator=(const Traces&) = delete;

  // `folder` has lost entries and stays. It is closed if nothing has to be done for it later.
  void Add(std::unique_ptr<Folder> folder, std::string path) noexcept;

  // Covers the folders that came first while more are kept than may be open for long.
  void KeepFew(Operation& operation);

  // Covers and clears all, for at most `longest`. Throws Failure if content may be left in a log; all that
  // can be done has been done then.
  void Clear(Operation& operation, Clock::Time longest);

  bool IsEmpty() const { return kept_.empty(); }

 private:
  struct Kept {
    std::unique_ptr<Folder> folder;
    std::string path;
    std::uint64_t log = 0;
  };

  std::vector<Kept> kept_;
};

}  // namespace zq::engine
