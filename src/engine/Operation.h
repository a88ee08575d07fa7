// What the parts of a running operation share: its surroundings, its passes, its memory, its pace, and the
// look at the cancel flag.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/EngineEvents.h"
#include "engine/Failure.h"
#include "engine/KeyStream.h"
#include "engine/Pace.h"
#include "engine/PassPlan.h"
#include "engine/Pipeline.h"
#include "engine/Traces.h"

namespace zq::engine {

// Receives the work that was done, as it is done. May raise an event, and throws Cancelled.
class WorkMeter {
 public:
  virtual ~WorkMeter() = default;
  virtual void Worked(std::uint64_t bytes) = 0;
};

// The time between two events while an operation works: at least ten a second, never two within 30 ms.
class EventTimer {
 public:
  explicit EventTimer(Clock& clock) : clock_(clock), last_(clock.Now()) {}

  void Raised() { last_ = clock_.Now(); }
  bool IsDue() const { return clock_.Now() - last_ >= kBetween; }

 private:
  static constexpr Clock::Time kBetween{35'000};

  Clock& clock_;
  Clock::Time last_;
};

// A job, or a command line, is one operation, whatever the number of calls: what is learned and what is made
// for one call serves the next.
class Operation {
 public:
  Operation(Device& theDevice, EngineEvents& theEvents, Clock& theClock, SeedSource& theSeeds,
            const bool& cancelFlag)
      : device(theDevice), events(theEvents), clock(theClock), seeds(theSeeds), cancelFlag_(cancelFlag) {}

  Device& device;
  EngineEvents& events;
  Clock& clock;
  SeedSource& seeds;
  std::vector<Pass> passes;  // of the running call
  Pace pace;
  Pipeline pipeline{device, clock, pace};
  AlignedBuffer buffer{Pace::kLargestUnit, 0};  // for what is made and used at once
  // Of the files in work, which share it: the owner can't take more events because there are more files.
  EventTimer timer{clock};

  // Memory full of one byte, for all writes of a pass. The last one's is filled anew, so nothing that uses
  // it may be under way when the pattern changes.
  std::span<const std::byte> Pattern(std::uint8_t pattern, std::size_t sizeBytes);

  // What couldn't be done and is no failure, for the owner to read. Empty mostly.
  std::string note;
  // Adds a sentence, unless the note has it.
  void AddNote(const std::string& sentence) {
    if (note.find(sentence) != std::string::npos) return;
    if (!note.empty()) note += ' ';
    note += sentence;
  }
  // The files of which a name has gone, and how many names each of them has left.
  std::map<FileId, std::uint32_t> namesLeft;
  // Of names, for the end of the operation.
  Traces traces{device};
  // Whether the renamings and removals of the running call are made durable at the end of the operation, once
  // for each folder. Who loses the power before may find entries of what is overwritten already.
  bool flushesNamesLater = false;

  // Forgets what belongs to the call before.
  void BeginCall(std::int32_t level) {
    passes = PassesOfLevel(level);
    flushesNamesLater = false;
    note.clear();
    namesLeft.clear();
    failureCount = 0;
    firstFailure.reset();
  }

  // The first one is kept. What can't be kept for want of memory is the least of the troubles then.
  void AddNote(const char* text) noexcept;

  // Covering names may take a while, and no longer than the wipe itself: false once it has, or at the end
  // that was set.
  bool MayCover() const;
  void CoveringTook(Clock::Time time) { covering_ += time; }
  void EndCoveringAt(Clock::Time end) { coveringEnd_ = end; }

  // The failures that were told, and the first: later ones are often its consequences.
  std::size_t failureCount = 0;
  std::optional<Failure> firstFailure;
  // What became of an item. None of these looks at the cancel flag.
  void TellWiped(const Item& item);
  void TellFailed(const Item& item, const Failure& failure, Outcome outcome, const std::string& nameNow);
  // Of what shares the fate of something that was told.
  void TellStays(const Item& item, const std::string& reason, Outcome outcome);
  // A failure that belongs to no single item.
  void TellFailure(const Failure& failure);

  // Throws Cancelled once the owner has asked for it. Called after every event and at every item.
  void LookForCancel() const {
    if (cancelFlag_) throw Cancelled{};
  }

  // Tells that the work is at `path`, which is no file with a progress of its own, if an event is due. False
  // once the owner wants to stop, for work that has to be brought to an end of its own then.
  bool MayGoOn(const std::string& path) {
    if (!cancelFlag_ && timer.IsDue()) {
      timer.Raised();
      events.WipeProgress(0, 0, 0, {path, path, ItemKind::Other});
    }
    return !cancelFlag_;
  }
  // The same for work that can end anywhere: throws Cancelled.
  void Tell(const std::string& path) {
    if (!MayGoOn(path)) throw Cancelled{};
  }

  // A random name of `length` characters, legal on every file system. Throws Failure without a seed.
  std::string RandomName(std::size_t length);

 private:
  const bool& cancelFlag_;
  const Clock::Time begun_ = clock.Now();
  Clock::Time covering_{};
  Clock::Time coveringEnd_ = Clock::Time::max();
  KeyStream names_;
  bool namesSeeded_ = false;
  UnitBuffers patternMemory_{1, 1};
  std::uint8_t pattern_ = 0;
  std::array<std::size_t, 2> patternBytes_{};  // so much of the small and of the large unit is filled
};

// Steps through random names for an entry of `folder` that is now called `name`: one of the same length, so
// that the name is overwritten where it stands, then one half as long and one of a single character, so that
// not even the length is kept. Where names lie in records the first is all, since the others take nothing
// more away. `rename` carries out one step; a taken name is tried again with another one.
// `shortest` belongs to the folder: 1 at first, it grows as the short names there are used up.
// Throws Failure, with `path` as the subject; returns the last name.
std::string HideName(Operation& operation, const Folder& folder, std::string name, const std::string& path,
                     std::size_t& shortest, const std::function<Status(const std::string& newName)>& rename);

}  // namespace zq::engine
