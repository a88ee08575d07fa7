// A cancel comes from inside an event, and gets through in time on the slowest device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr Clock::Time kAtMost{250'000};

// Runs `run` with a click on cancel at `clickAt`, which gets through at the next event; returns how long
// after the click the member has returned.
template <typename Run>
Clock::Time TimeToStop(EngineRig& rig, Clock::Time clickAt, const Run& run) {
  const Clock::Time click = rig.clock.Now() + clickAt;
  bool cancelled = false;
  std::size_t eventsAfter = 0;
  rig.events.onEvent = [&](const Event&) {
    if (cancelled) ++eventsAfter;
    if (!cancelled && rig.clock.Now() >= click) {
      cancelled = true;
      rig.engine.CancelOperation();
    }
  };
  EXPECT_FALSE(run());
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(eventsAfter, 0u);
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Cancelled"));
  return rig.clock.Now() - click;
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

}  // namespace
}  // namespace zq::engine::test
