// An engine on a device in memory, with its events recorded.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/SecureDelete.h"
#include "unit/engine/FakeDevice.h"

namespace zq::engine::test {

struct Event {
  // "progress"; "wiped", a file; "error", of an item or of the operation; "end", of every item; "space"
  std::string kind;
  std::string name;  // or the error's text; of an end the path
  std::int32_t done = 0;
  std::int32_t total = 0;
  std::int32_t percent = 0;  // or the error's code
  Clock::Time at{};
  Item item = {};
  ItemEnd end = {};
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
                    const Item& item) override {
    Add({"progress", item.name, bytesDone, bytesTotal, percent, clock_.Now(), item});
  }
  void ItemEnded(const Item& item, const ItemEnd& end) override {
    Add({"end", item.path, 0, 0, end.errorCode, clock_.Now(), item, end});
    if (end.outcome == Outcome::Wiped && item.kind == ItemKind::File) {
      Add({"wiped", item.name, 0, 0, 0, clock_.Now(), item, end});
    }
    if (end.errorCode != 0) Add({"error", end.text, 0, 0, end.errorCode, clock_.Now(), item, end});
  }
  void WipeError(std::int32_t errorCode, const std::string& errorText) override {
    Add({"error", errorText, 0, 0, errorCode, clock_.Now()});
  }
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
