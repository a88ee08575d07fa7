// An engine on a device in memory, with its events recorded.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/SecureDelete.h"
#include "unit/engine/FakeDevice.h"

namespace zq::engine::test {

struct Event {
  std::string kind;  // "progress", "error", "wiped", "space"
  std::string name;  // or the error's text
  std::int32_t done = 0;
  std::int32_t total = 0;
  std::int32_t percent = 0;  // or the error's code
  Clock::Time at{};
};

class RecordedEvents final : public EngineEvents {
 public:
  explicit RecordedEvents(const Clock& clock) : clock_(clock) {}

  std::vector<Event> all;
  std::function<void(const Event&)> onEvent;

  std::vector<Event> Of(const std::string& kind) const {
    std::vector<Event> found;
    for (const Event& event : all) {
      if (event.kind == kind) found.push_back(event);
    }
    return found;
  }

  void WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                    const std::string& itemName) override {
    Add({"progress", itemName, bytesDone, bytesTotal, percent, clock_.Now()});
  }
  void WipeError(std::int32_t errorCode, const std::string& errorText) override {
    Add({"error", errorText, 0, 0, errorCode, clock_.Now()});
  }
  void ItemWiped(const std::string& itemName) override { Add({"wiped", itemName, 0, 0, 0, clock_.Now()}); }
  void FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                         std::int32_t kbTotal) override {
    Add({"space", itemName, kbDone, kbTotal, percent, clock_.Now()});
  }

 private:
  void Add(Event event) {
    all.push_back(std::move(event));
    if (onEvent) onEvent(Event(all.back()));
  }

  const Clock& clock_;
};

// The part of the program's pattern match that the tests need: "*" and "?", with case kept apart.
inline bool MatchesMask(const char* name, const char* mask) {
  if (*mask == '\0') return *name == '\0';
  if (*mask == '*') return MatchesMask(name, mask + 1) || (*name != '\0' && MatchesMask(name + 1, mask));
  return *name != '\0' && (*mask == '?' || *mask == *name) && MatchesMask(name + 1, mask + 1);
}

struct EngineRig {
  FakeClock clock;
  FakeDevice device{clock};
  FakeSeeds seeds;
  RecordedEvents events{clock};
  SecureDelete engine{device, seeds, clock, events, [](const std::string& name, const std::string& mask) {
                        return MatchesMask(name.c_str(), mask.c_str());
                      }};
};

// `sizeBytes` of content that no pass writes.
inline std::string Secret(std::size_t sizeBytes) {
  static constexpr char kWords[] = "Top secret content. ";
  std::string text;
  while (text.size() < sizeBytes) text += kWords;
  text.resize(sizeBytes);
  return text;
}

}  // namespace zq::engine::test
