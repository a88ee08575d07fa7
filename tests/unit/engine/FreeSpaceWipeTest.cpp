#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "engine/FreeSpaceWipe.h"
#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Fault = FakeDevice::Fault;

constexpr std::uint64_t kMiB = 1 << 20;

struct FreeSpaceRig : EngineRig {
  FreeSpaceRig() {
    device.capacityBytes = 8 * kMiB;
    device.MakeFile("/drive/mine", Secret(100'000));
  }
  void ExpectCleanedUp() {
    EXPECT_EQ(device.Find("/drive")->children.size(), 1u) << "a filler was left behind";
    EXPECT_EQ(device.Find("/drive/mine")->stored, Secret(100'000));
    EXPECT_EQ(device.openHandles, 0);
  }
};

TEST(FreeSpaceWipe, OverwritesAllFreeClustersInAllPasses) {
  for (const bool writesWhatFits : {false, true}) {
    FreeSpaceRig rig;
    rig.device.writesWhatFits = writesWhatFits;
    const std::uint64_t freeBytes = rig.device.capacityBytes - rig.device.UsedBytes();
    std::uint64_t mostUsed = 0;
    rig.device.onOp = [&](const Op&) { mostUsed = std::max(mostUsed, rig.device.UsedBytes()); };
    EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
    rig.ExpectCleanedUp();
    EXPECT_EQ(mostUsed, rig.device.capacityBytes) << "down to the last cluster";
    std::uint64_t written = 0;
    for (const Op& op : rig.device.ops) {
      if (op.kind == "write" && op.ok) written += op.size;
    }
    EXPECT_EQ(written, freeBytes * 9);
    EXPECT_THAT(rig.device.violations, IsEmpty());
  }
}

TEST(FreeSpaceWipe, FlushesEachPassOverAFillerBeforeTheNext) {
  FreeSpaceRig rig;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  // Of each filler: the writes between two flushes are of one kind.
  std::map<std::string, std::string> unflushed;
  for (const Op& op : rig.device.ops) {
    if (!op.ok) continue;
    if (op.kind == "flush") unflushed.erase(op.path);
    if (op.kind == "write") {
      const bool uniform = op.data.find_first_not_of(op.data[0]) == std::string::npos;
      const std::string kind = uniform ? std::string(1, op.data[0]) : "random";
      const auto [at, isNew] = unflushed.emplace(op.path, kind);
      EXPECT_EQ(at->second, kind);
    }
    if (op.kind == "remove entry") {
      EXPECT_EQ(unflushed.count(op.path), 0u);
    }
  }
}

TEST(FreeSpaceWipe, KeepsAllItsSpaceUntilTheLastPassIsDone) {
  FreeSpaceRig rig;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  std::size_t lastRead = 0;
  std::size_t firstRemoval = 0;
  for (std::size_t i = 0; i < rig.device.ops.size(); ++i) {
    if (rig.device.ops[i].kind == "read") lastRead = i;
    if (rig.device.ops[i].kind == "remove entry" && firstRemoval == 0) firstRemoval = i;
  }
  EXPECT_GT(lastRead, 0u);
  EXPECT_GT(firstRemoval, lastRead);
}

TEST(FreeSpaceWipe, FillsTheRecordsOfSmallFiles) {
  FreeSpaceRig rig;
  rig.device.recordBytes = 700;
  rig.device.recordSlots = 20;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  rig.ExpectCleanedUp();
  EXPECT_EQ(rig.device.recordSlots, 0u);
}

TEST(FreeSpaceWipe, TellsTheSameTotalInEveryEvent) {
  FreeSpaceRig rig;
  rig.device.bytesPerSecond = 20'000'000;
  const auto freeKb = static_cast<std::int32_t>((rig.device.capacityBytes - rig.device.UsedBytes()) / 1024);
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  const std::vector<Event> events = rig.events.Of("space");
  ASSERT_GT(events.size(), 10u);
  EXPECT_EQ(events.front().percent, 0);
  EXPECT_EQ(events.front().done, 0);
  EXPECT_EQ(events.back().percent, 100);
  EXPECT_EQ(events.back().done, freeKb);
  for (std::size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(events[i].total, freeKb);
    if (i == 0) continue;
    EXPECT_GE(events[i].percent, events[i - 1].percent);
    EXPECT_GE(events[i].done, events[i - 1].done);
    EXPECT_LE(events[i].at - events[i - 1].at, Clock::Time{100'000});
  }
  EXPECT_THAT(rig.events.Of("progress"), IsEmpty());
  EXPECT_THAT(rig.events.Of("error"), IsEmpty());
}

TEST(FreeSpaceWipe, TakesInSpaceThatWasFreedMeanwhile) {
  FreeSpaceRig rig;
  rig.device.bytesPerSecond = 20'000'000;
  rig.device.MakeFile("/other", Secret(3 * kMiB));
  bool freed = false;
  rig.device.onOp = [&](const Op& op) {
    if (op.kind != "read" || freed) return;
    freed = true;
    rig.device.Find("/")->children.erase("other");
  };
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  rig.ExpectCleanedUp();
  const std::vector<Event> events = rig.events.Of("space");
  bool signalled = false;
  for (const Event& event : events) signalled = signalled || event.percent >= 101;
  EXPECT_TRUE(signalled);
  EXPECT_EQ(events.back().percent, 100);
  EXPECT_NEAR(events.back().total - events.front().total, 3 * 1024, 1);
  EXPECT_EQ(events.back().done, events.back().total);
}

TEST(FreeSpaceWipe, TakesInSpaceThatIsFreedWhileItFills) {
  FreeSpaceRig rig;
  rig.device.bytesPerSecond = 20'000'000;
  rig.device.MakeFile("/other", Secret(3 * kMiB));
  bool freed = false;
  rig.device.onOp = [&](const Op& op) {
    if (op.kind != "write" || freed) return;
    freed = true;
    rig.device.Find("/")->children.erase("other");
  };
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  rig.ExpectCleanedUp();
  const std::vector<Event> events = rig.events.Of("space");
  bool signalled = false;
  for (const Event& event : events) signalled = signalled || event.percent >= 101;
  EXPECT_TRUE(signalled);
  EXPECT_GT(events.back().total, events.front().total + 2 * 1024);
}

TEST(FreeSpaceWipe, EndsOnADriveThatNeverComesToRest) {
  FreeSpaceRig rig;
  rig.device.onOp = [&](const Op& op) {
    if (op.kind == "read" && op.offset == 0) rig.device.capacityBytes += 2 * kMiB;
  };
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  rig.ExpectCleanedUp();
}

TEST(FreeSpaceWipe, DoesNothingOnAFullDrive) {
  FreeSpaceRig rig;
  rig.device.capacityBytes = rig.device.UsedBytes();
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  rig.ExpectCleanedUp();
  EXPECT_EQ(rig.events.Of("space").back().total, 0);
}

TEST(FreeSpaceWipe, TellsEveryFaultAndRemovesItsFillersAllTheSame) {
  for (const Fault fault : {Fault::FailOnce, Fault::FailFromThenOn}) {
    for (std::size_t n = 1;; ++n) {
      SCOPED_TRACE(n);
      FreeSpaceRig rig;
      rig.device.capacityBytes = kMiB;
      rig.device.recordBytes = 700;
      rig.device.recordSlots = 2;
      rig.device.fault = fault;
      rig.device.faultAt = n;
      const bool result = rig.engine.WipeFreeSpace("/drive", 3);
      EXPECT_EQ(rig.device.openHandles, 0);
      if (!rig.device.faultHappened) {
        EXPECT_TRUE(result);
        rig.ExpectCleanedUp();
        break;
      }
      EXPECT_FALSE(result) << rig.device.faultKind;
      ASSERT_EQ(rig.events.Of("error").size(), 1u);
      EXPECT_NE(rig.events.Of("error")[0].percent, 0);
      EXPECT_EQ(rig.events.Of("error")[0].name, rig.engine.LastErrorText());
      EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("The 'device' has failed (1117)"));
      // What a failed removal leaves is told; all else is gone.
      if (fault == Fault::FailOnce && rig.device.faultKind != "remove entry") rig.ExpectCleanedUp();
    }
  }
}

TEST(FreeSpaceWipe, FindsOutADeviceThatDoesNotKeepWhatItTook) {
  FreeSpaceRig rig;
  std::size_t writes = 0;
  rig.device.fault = Fault::LoseWrite;
  {
    FreeSpaceRig probe;
    ASSERT_TRUE(probe.engine.WipeFreeSpace("/drive", 3));
    for (std::size_t i = 0; i < probe.device.ops.size(); ++i) {
      if (probe.device.ops[i].kind == "write" && probe.device.ops[i].ok) writes = i + 1;
    }
  }
  rig.device.faultAt = writes;
  EXPECT_FALSE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("doesn't hold what was written"));
  rig.ExpectCleanedUp();
}

}  // namespace
}  // namespace zq::engine::test
