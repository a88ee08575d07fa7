// A cancel comes from inside an event, and gets through in time on the slowest device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr Clock::Time kAtMost{250'000};

// Runs `run` with a click on cancel at `clickAt`, which gets through at the next event; returns how long
// after the click the member has returned.
//
// `mayBeDone`: all that was to be wiped may be gone before the click gets through, and the result is a
// success then.
template <typename Run>
Clock::Time TimeToStop(EngineRig& rig, Clock::Time clickAt, const Run& run, bool mayBeDone = false) {
  const Clock::Time click = rig.clock.Now() + clickAt;
  bool cancelled = false;
  std::size_t eventsAfter = 0;
  rig.events.onEvent = [&](const Event& event) {
    // Files that go together go on to their end, and each end has to be told: what is gone without a word
    // would be listed as kept.
    const bool tellsAnEnd =
        event.kind == "wiped" || event.kind == "end" || (event.total > 0 && event.done == event.total);
    if (cancelled && !tellsAnEnd) ++eventsAfter;
    if (!cancelled && rig.clock.Now() >= click) {
      cancelled = true;
      rig.engine.CancelOperation();
    }
  };
  const bool done = run();
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(eventsAfter, 0u);
  EXPECT_TRUE(mayBeDone || !done);
  EXPECT_EQ(rig.engine.LastErrorText().find("Cancelled") == std::string::npos, done);
  return rig.clock.Now() - click;
}

TEST(Cancel, GetsThroughWhileTheDeviceDoesntAnswer) {
  for (const char* path : {"/top", "/top/x"}) {
    EngineRig rig;
    rig.device.queueDepth = 8;
    rig.device.MakeFile("/top/x", Secret(4'000'000));
    rig.device.MakeFile("/top/y", Secret(4'000));
    rig.device.onOp = [&](const Op& op) {
      if (op.kind == "write" && op.offset > 0) rig.device.answersNoMore = true;
    };
    const Clock::Time took = TimeToStop(rig, Clock::Time{1'000'000}, [&] {
      return std::string(path) == "/top" ? rig.engine.WipeFolder(path, 3) : rig.engine.WipeFile(path, 3);
    });
    EXPECT_LE(took, kAtMost);
    EXPECT_TRUE(rig.device.Exists("/top/x"));
    EXPECT_EQ(rig.device.openHandles, 0);
    EXPECT_THAT(rig.device.violations, IsEmpty());
  }
}

TEST(Cancel, StopsAFileInTimeOnASlowDevice) {
  for (const bool direct : {true, false}) {
    for (const std::uint64_t speed : {1'000'000u, 5'000'000u, 100'000'000u}) {
      for (const int clickAt : {0, 10'000, 333'000, 400'000}) {
        EngineRig rig;
        rig.device.direct = direct;
        rig.device.bytesPerSecond = speed;
        rig.device.MakeFile("/x", Secret(4'000'000));
        const Clock::Time took =
            TimeToStop(rig, Clock::Time{clickAt}, [&] { return rig.engine.WipeFile("/x", 3); });
        EXPECT_LE(took, kAtMost) << direct << ' ' << speed << ' ' << clickAt;
        EXPECT_TRUE(rig.device.Exists("/x")) << "not overwritten, not removed";
        EXPECT_EQ(rig.device.openHandles, 0);
        EXPECT_THAT(rig.events.Of("error"), IsEmpty());
      }
    }
  }
}

TEST(Cancel, StopsInTheReadBack) {
  EngineRig rig;
  rig.device.bytesPerSecond = 5'000'000;
  rig.device.MakeFile("/x", Secret(2'000'000));
  rig.events.onEvent = [&](const Event&) {
    if (!rig.device.ops.empty() && rig.device.ops.back().kind == "read") rig.engine.CancelOperation();
  };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.device.ops.back().kind, "read");
  EXPECT_TRUE(rig.device.Exists("/x"));
}

TEST(Cancel, StopsAFolderBetweenBatchesAndKeepsTheRest) {
  EngineRig rig;
  for (int i = 0; i < 600; ++i) rig.device.MakeFile("/f/" + std::to_string(1'000 + i), Secret(100));
  int wiped = 0;
  rig.events.onEvent = [&](const Event& event) {
    if (event.kind == "wiped" && ++wiped == 7) rig.engine.CancelOperation();
  };
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Cancelled"));
  EXPECT_GE(wiped, 7) << "what is gone with the seventh is told too";
  EXPECT_LE(wiped, 256);
  const auto& left = rig.device.Find("/f")->children;
  EXPECT_EQ(left.size(), static_cast<std::size_t>(600 - wiped));
  for (const auto& [name, node] : left) EXPECT_EQ(node->stored, Secret(100)) << name;
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(Cancel, RemovesNothingOfABatchThatIsNotThroughItsPasses) {
  for (const int clickAt : {0, 5, 17, 60, 120, 300}) {
    EngineRig rig;
    rig.device.bytesPerSecond = 4'000'000;
    rig.device.flushLatency = Clock::Time{500};
    for (int i = 0; i < 40; ++i) rig.device.MakeFile("/f/" + std::to_string(100 + i), Secret(3'000));
    const Clock::Time took =
        TimeToStop(rig, Clock::Time{clickAt * 1'000}, [&] { return rig.engine.WipeFolder("/f", 3); });
    EXPECT_LE(took, kAtMost) << clickAt;
    EXPECT_EQ(rig.device.Find("/f")->children.size(), 40u);
    EXPECT_TRUE(rig.device.Exists("/f/100")) << "with its name";
    EXPECT_EQ(rig.device.Count("set length") + rig.device.Count("rename") + rig.device.Count("remove"), 0u);
    EXPECT_THAT(rig.events.Of("wiped"), IsEmpty());
    EXPECT_EQ(rig.device.openHandles, 0);
  }
}

// The files of `folder` that were made with these names and contents: each is gone, and was told as wiped, or
// is there under its name, untouched or overwritten.
void ExpectGoneOrNamed(EngineRig& rig, const std::string& folder, int first, int count, std::size_t size) {
  const auto& left = rig.device.Find(folder)->children;
  std::set<std::string> wiped;
  for (const Event& event : rig.events.Of("wiped")) wiped.insert(event.name);
  std::size_t gone = 0;
  for (int i = first; i < first + count; ++i) {
    const std::string name = std::to_string(i);
    const auto found = left.find(name);
    if (found == left.end()) {
      ++gone;
      EXPECT_EQ(wiped.count(name), 1u) << name;
    } else {
      EXPECT_TRUE(found->second->original.size() == size || found->second->stored.empty()) << name;
    }
  }
  EXPECT_EQ(left.size() + gone, static_cast<std::size_t>(count)) << "one has another name";
}

// The time between two events, and so the longest that a click may wait.
void ExpectEventsOften(const EngineRig& rig) {
  Clock::Time last{};
  for (const Event& event : rig.events.all) {
    if (last != Clock::Time{}) {
      EXPECT_LE(event.at - last, kAtMost) << event.kind << ' ' << event.name;
    }
    last = event.at;
  }
}

// What a stick with many entries, or a folder over a network, may take for each of them. Clicks come at each
// `step` as long as there is an event to come that lets them through.
void StopRemovalsAtAnyTime(std::optional<NameRoom::Kind> nameRoom, Clock::Time step) {
  const auto setUp = [&](EngineRig& rig) {
    rig.device.nameRoom = nameRoom;
    rig.device.bytesPerSecond = 5'000'000;
    rig.device.entryLatency = rig.device.flushLatency = Clock::Time{5'000};
    for (int i = 100; i < 160; ++i) rig.device.MakeFile("/f/" + std::to_string(i), Secret(3'000));
  };
  EngineRig whole;
  setUp(whole);
  const Clock::Time start = whole.clock.Now();
  ASSERT_TRUE(whole.engine.WipeFolderFiles("/f", "*.*", false, 3)) << whole.engine.LastErrorText();
  EXPECT_THAT(whole.device.violations, IsEmpty());
  ExpectEventsOften(whole);
  const Clock::Time lastEvent = whole.events.all.back().at - start;
  EXPECT_LE(whole.clock.Now() - start - lastEvent, kAtMost) << "a click after it waits for the end";

  std::set<std::size_t> wipedCounts;
  std::size_t doneCount = 0;
  for (Clock::Time clickAt{0}; clickAt <= lastEvent; clickAt += step) {
    EngineRig rig;
    setUp(rig);
    bool done = false;
    const auto run = [&] { return done = rig.engine.WipeFolderFiles("/f", "*.*", false, 3); };
    const Clock::Time took = TimeToStop(rig, clickAt, run, true);
    EXPECT_LE(took, kAtMost) << clickAt.count();
    EXPECT_THAT(rig.device.violations, IsEmpty());
    EXPECT_EQ(rig.device.openHandles, 0);
    ExpectGoneOrNamed(rig, "/f", 100, 60, 3'000);
    EXPECT_EQ(done, rig.device.Find("/f")->children.empty());
    doneCount += done;
    wipedCounts.insert(rig.events.Of("wiped").size());
    if (::testing::Test::HasFailure()) break;
  }
  EXPECT_GT(wipedCounts.size(), 10u) << "no click came while a batch was being removed";
  EXPECT_TRUE(doneCount > 0 || !nameRoom) << "no click came while names were covered";
}

TEST(Cancel, StopsTheRemovalOfABatchInTimeOnADeviceThatIsSlowWithEntries) {
  StopRemovalsAtAnyTime({}, Clock::Time{47'000});
}

// The fillers that have been made go first.
TEST(Cancel, StopsARemovalInTimeWhereNamesAreCoveredAfterIt) {
  for (const auto kind : {NameRoom::Kind::Slots, NameRoom::Kind::Tree}) {
    StopRemovalsAtAnyTime(kind, Clock::Time{47'000});
  }
}

// Then all files are gone already, and the call is a success.
TEST(Cancel, StopsTheCoveringOfNamesInTime) {
  for (const auto kind : {NameRoom::Kind::Slots, NameRoom::Kind::Tree}) {
    std::size_t shorter = 0;
    std::size_t fillersOfAll = 0;
    for (std::size_t clickAtFiller : {1000u, 1u, 3u, 9u}) {
      EngineRig rig;
      rig.device.nameRoom = kind;
      rig.device.MakeFile("/f/x", Secret(3'000));
      rig.device.entryLatency = rig.device.flushLatency = Clock::Time{5'000};
      Clock::Time click{};
      rig.device.onOp = [&](const Op& op) {
        if (op.kind != "add" || rig.device.Count("add") != clickAtFiller) return;
        click = rig.clock.Now();
        rig.engine.CancelOperation();
      };
      EXPECT_TRUE(rig.engine.WipeFile("/f/x", 3));
      const std::size_t fillers = rig.device.Count("add");
      if (clickAtFiller == 1000) fillersOfAll = fillers;
      if (click != Clock::Time{}) {
        EXPECT_LE(rig.clock.Now() - click, kAtMost);
        EXPECT_THAT(rig.engine.Note(), HasSubstr("could not be covered"));
        shorter += fillers < fillersOfAll;
      }
      EXPECT_THAT(rig.device.Find("/f")->children, IsEmpty());
    }
    EXPECT_EQ(shorter, 3u);
  }
}

TEST(Cancel, StopsTheRemovalOfFoldersAndLinksInTimeAndLeavesTheirNames) {
  for (const bool renamesOpenFolders : {false, true}) {
    const auto setUp = [&](EngineRig& rig) {
      rig.device.renamesOpenFolders = renamesOpenFolders;
      rig.device.bytesPerSecond = 5'000'000;
      rig.device.entryLatency = rig.device.flushLatency = Clock::Time{5'000};
      for (int i = 100; i < 130; ++i) {
        rig.device.MakeFolder("/f/top/" + std::to_string(i) + "/200");
        rig.device.MakeLink("/f/top/" + std::to_string(i) + "/300", EntryKind::Link);
      }
    };
    EngineRig whole;
    setUp(whole);
    const Clock::Time start = whole.clock.Now();
    ASSERT_TRUE(whole.engine.WipeFolder("/f/top", 3)) << whole.engine.LastErrorText();
    ExpectEventsOften(whole);
    const Clock::Time duration = whole.clock.Now() - start;

    std::set<std::size_t> entriesLeft;
    for (Clock::Time clickAt{0}; clickAt < duration - kAtMost; clickAt += Clock::Time{47'000}) {
      EngineRig rig;
      setUp(rig);
      const Clock::Time took = TimeToStop(rig, clickAt, [&] { return rig.engine.WipeFolder("/f/top", 3); });
      EXPECT_LE(took, kAtMost) << clickAt.count();
      EXPECT_EQ(rig.device.openHandles, 0);
      ASSERT_TRUE(rig.device.Exists("/f/top"));
      const auto& left = rig.device.Find("/f/top")->children;
      std::size_t entries = left.size();
      for (const auto& [name, folder] : left) {
        entries += folder->children.size();
        EXPECT_EQ(name.size(), 3u) << name;
        EXPECT_EQ(name[0], '1') << name;
        for (const auto& [inner, node] : folder->children)
          EXPECT_TRUE(inner == "200" || inner == "300") << inner;
      }
      entriesLeft.insert(entries);
      if (::testing::Test::HasFailure()) break;
    }
    EXPECT_GT(entriesLeft.size(), 10u) << "no click came while folders were being removed";
  }
}

// The event of a failure is a place to cancel in, too: not one at which a folder has a name that isn't its
// own.
TEST(Cancel, FromInsideTheErrorOfAFolderLeavesTheNamesOfTheOthers) {
  for (const bool renamesOpenFolders : {false, true}) {
    EngineRig rig;
    rig.device.renamesOpenFolders = renamesOpenFolders;
    for (const char* name : {"/f/top/101", "/f/top/102", "/f/top/103"}) rig.device.MakeFolder(name);
    int renames = 0;
    rig.device.fault = FakeDevice::Fault::FailOnce;
    rig.device.onOp = [&](const Op& op) {
      if (op.kind == "rename entry" && ++renames == 5) rig.device.faultAt = rig.device.ops.size();
    };
    rig.events.onEvent = [&](const Event& event) {
      if (event.kind == "error") rig.engine.CancelOperation();
    };
    EXPECT_FALSE(rig.engine.WipeFolder("/f/top", 3));
    EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Cancelled"));
    ASSERT_TRUE(rig.device.Exists("/f/top"));
    for (const auto& [name, folder] : rig.device.Find("/f/top")->children) {
      EXPECT_THAT(name, ::testing::AnyOf("101", "102", "103"));
    }
  }
}

TEST(Cancel, WorksFromInsideAnErrorEvent) {
  EngineRig rig;
  rig.device.MakeFile("/f/a", Secret(10))->readOnly = true;
  rig.device.MakeFile("/f/b", Secret(10));
  rig.events.onEvent = [&](const Event& event) {
    if (event.kind == "error") rig.engine.CancelOperation();
  };
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Cancelled"));
  EXPECT_EQ(rig.device.Find("/f/b")->stored, Secret(10));
}

TEST(Cancel, AtTheVeryFirstEventWritesNothing) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10));
  rig.events.onEvent = [&](const Event&) { rig.engine.CancelOperation(); };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_EQ(rig.device.Find("/x")->stored, Secret(10));
}

TEST(Cancel, AfterTheFileIsGoneIsStillASuccess) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10));
  rig.events.onEvent = [&](const Event& event) {
    if (event.done == event.total) rig.engine.CancelOperation();
  };
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  EXPECT_FALSE(rig.device.Exists("/x"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 1u);
}

TEST(Cancel, WhenNothingRunsDoesNoHarm) {
  EngineRig rig;
  rig.engine.CancelOperation();
  rig.device.MakeFile("/x", Secret(10));
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  rig.engine.CancelOperation();
  rig.device.MakeFile("/y", Secret(10));
  EXPECT_TRUE(rig.engine.WipeFile("/y", 3));
}

TEST(Cancel, DoesNotReachTheNextOperation) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10));
  rig.events.onEvent = [&](const Event&) { rig.engine.CancelOperation(); };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  rig.events.onEvent = nullptr;
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "");
}

TEST(Cancel, StopsAFreeSpaceWipeInTimeAndGivesTheSpaceBack) {
  for (const bool direct : {true, false}) {
    for (const int clickAt : {0, 50'000, 1'000'000, 5'000'000}) {
      EngineRig rig;
      rig.device.direct = direct;
      rig.device.bytesPerSecond = 5'000'000;
      rig.device.capacityBytes = 8 << 20;
      rig.device.MakeFolder("/drive");
      const Clock::Time took =
          TimeToStop(rig, Clock::Time{clickAt}, [&] { return rig.engine.WipeFreeSpace("/drive", 3); });
      EXPECT_LE(took, kAtMost);
      EXPECT_TRUE(rig.device.Find("/drive")->children.empty());
      EXPECT_EQ(rig.device.openHandles, 0);
      EXPECT_THAT(rig.events.Of("error"), IsEmpty());
    }
  }
}

// While records are filled, on the full drive, in the passes, and while fillers that have names are removed
// one by one.
TEST(Cancel, StopsAFreeSpaceWipeInTimeAtAnyMoment) {
  struct SlowDrive : EngineRig {
    SlowDrive() {
      device.saysRecordsInTurn = device.givesRecordsInTurn = true;
      device.recordBytes = 700;
      device.recordSlots = 300;
      device.entryBytes = 100;
      device.capacityBytes = 256 << 10;
      device.bytesPerSecond = 2'000'000;
      device.entryLatency = device.flushLatency = Clock::Time{1'000};
      device.MakeFolder("/drive");
    }
  };
  // The moments of all events, of those with records taken, on the full drive, and behind a removal.
  std::vector<std::vector<Clock::Time>> moments(4);
  {
    SlowDrive rig;
    const Clock::Time begun = rig.clock.Now();
    rig.events.onEvent = [&](const Event&) {
      const bool fits[] = {true, rig.device.recordsTaken > 0, rig.device.FreeBytes() == 0,
                           rig.device.ops.back().kind == "remove entry"};
      for (std::size_t i = 0; i < moments.size(); ++i) {
        if (fits[i]) moments[i].push_back(rig.clock.Now() - begun);
      }
    };
    ASSERT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  }
  constexpr std::size_t kClicks = 5;
  for (std::size_t i = 0; i < moments.size() * kClicks; ++i) {
    SCOPED_TRACE(i);
    const std::vector<Clock::Time>& among = moments[i / kClicks];
    ASSERT_FALSE(among.empty());
    SlowDrive rig;
    const Clock::Time click = rig.clock.Now() + among[among.size() * (i % kClicks) / kClicks];
    bool cancelled = false;
    rig.events.onEvent = [&](const Event&) {
      if (std::exchange(cancelled, rig.clock.Now() >= click) || !cancelled) return;
      rig.engine.CancelOperation();
    };
    (void)rig.engine.WipeFreeSpace("/drive", 3);
    EXPECT_TRUE(cancelled);
    EXPECT_LE(rig.clock.Now() - click, kAtMost);
    EXPECT_TRUE(rig.device.Find("/drive")->children.empty());
    EXPECT_EQ(rig.device.recordsTaken, 0u);
    EXPECT_EQ(rig.device.openHandles, 0);
    EXPECT_THAT(rig.events.Of("error"), IsEmpty());
  }
}

}  // namespace
}  // namespace zq::engine::test
