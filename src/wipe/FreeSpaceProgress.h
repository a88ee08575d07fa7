// Free-space progress: what the window of a free-space wipe shows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zq {

class Regional;

// The window as the driver and the handler see it. A closed window isn't an error: touching it brings up a
// fresh, hidden one.
class FreeSpaceStatusWindow {
 public:
  virtual ~FreeSpaceStatusWindow() = default;
  virtual void Show() = 0;    // without a modal state, repainted
  virtual void Unload() = 0;  // by the program: raises no question
  virtual void SetStatus(const std::string& text) = 0;
  virtual void SetCurrent(int percent) = 0;
  virtual void SetCaption(const std::string& text) = 0;
};

// What a handler of the engine's FreeSpaceProgress event shows.
struct FreeSpaceUpdate {
  std::optional<std::string> status;  // none: the label stays as it is
  std::int32_t current = 0;
  std::string caption;

  bool operator==(const FreeSpaceUpdate&) const = default;
};

// `percent` comes whole from the engine. Above 100 it isn't a share: the free space has grown during the
// wipe, and the engine takes the new space in.
FreeSpaceUpdate ComputeFreeSpaceProgress(std::int32_t percent, std::int32_t kbDone, std::int32_t kbTotal,
                                         const std::string& drive, Regional& regional);

}  // namespace zq
