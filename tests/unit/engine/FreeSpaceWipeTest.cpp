#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "engine/Fillers.h"
#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Fault = FakeDevice::Fault;

constexpr std::uint64_t kMiB = 1 << 20;

struct FreeSpaceRig : EngineRig {
  FreeSpaceRig() {
    device.capacityBytes = 4 * kMiB;
    device.MakeFile("/drive/mine", Secret(100'000));
  }
  void ExpectCleanedUp() {
    EXPECT_EQ(device.Find("/drive")->children.size(), 1u) << "a filler was left behind";
    EXPECT_EQ(device.Find("/drive/mine")->stored, Secret(100'000));
    EXPECT_EQ(device.openHandles, 0);
  }
};

// With the writes of the tail's and the records' first trials, some bytes more.
TEST(FreeSpaceWipe, OverwritesAllFreeClustersInAllPasses) {
  for (const bool nameless : {false, true}) {
    for (const bool writesWhatFits : {false, true}) {
      FreeSpaceRig rig;
      rig.device.hasNameless = nameless;
      rig.device.writesWhatFits = writesWhatFits;
      const std::uint64_t freeBytes = rig.device.FreeBytes();
      std::uint64_t mostUsed = 0;
      rig.device.onOp = [&](const Op&) { mostUsed = std::max(mostUsed, rig.device.UsedBytes()); };
      EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
      rig.ExpectCleanedUp();
      EXPECT_EQ(mostUsed, rig.device.capacityBytes) << "down to the last cluster";
      std::uint64_t written = 0;
      for (const Op& op : rig.device.ops) {
        if (op.kind == "write" && op.ok) written += op.size;
      }
      EXPECT_GE(written, freeBytes * 9);
      EXPECT_LT(written, freeBytes * 9 + 2 * rig.device.clusterBytes);
      EXPECT_THAT(rig.device.violations, IsEmpty());
    }
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

// Of a file: what it gives back has had all passes and was read back.
TEST(FreeSpaceWipe, KeepsItsSpaceUntilTheLastPassOverItIsDone) {
  FreeSpaceRig rig;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  std::map<std::string, std::uint64_t> lengths;
  std::map<std::string, std::uint64_t> written;
  std::map<std::string, std::uint64_t> readBack;
  for (const Op& op : rig.device.ops) {
    if (!op.ok) continue;
    if (op.kind == "write") {
      lengths[op.path] = std::max(lengths[op.path], op.offset + op.size);
      written[op.path] += op.size;
    }
    if (op.kind == "read") readBack[op.path] += op.size;
    if (op.kind == "set length" && lengths[op.path] > rig.device.clusterBytes) {
      EXPECT_EQ(written[op.path], lengths[op.path] * 9) << op.path;
      EXPECT_EQ(readBack[op.path], lengths[op.path]) << op.path;
    }
  }
}

// All that is free is held at one moment, and for a small part of the work alone.
TEST(FreeSpaceWipe, IsFullToTheBrimForTheLastPartAlone) {
  FreeSpaceRig rig;
  rig.device.bytesPerSecond = 20'000'000;
  Clock::Time full{0};
  Clock::Time last{0};
  bool wasFull = false;
  rig.device.onOp = [&](const Op&) {
    const Clock::Time now = rig.clock.Now();
    if (wasFull) full += now - last;
    wasFull = rig.device.FreeBytes() < 64 * 1024;
    last = now;
  };
  const Clock::Time begun = rig.clock.Now();
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_GT(full.count(), 0);
  EXPECT_LT(full * 20, rig.clock.Now() - begun);
}

TEST(FreeSpaceWipe, FillsTheRecordsOfSmallFiles) {
  for (const bool staysOpen : {false, true}) {
    FreeSpaceRig rig;
    rig.device.fillersStayOpen = staysOpen;
    rig.device.recordBytes = 700;
    rig.device.recordSlots = 200;
    rig.device.entryBytes = 100;
    EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
    rig.ExpectCleanedUp();
    EXPECT_EQ(rig.device.mostRecordsTaken, 200u) << "all of them at once";
    EXPECT_EQ(rig.engine.Note(), "");
    EXPECT_THAT(rig.device.violations, IsEmpty());
  }
}

// With few small files at a time, which is what makes a cancel quick.
TEST(FreeSpaceWipe, GoesAroundTheTableWhereRecordsComeInTurn) {
  for (const std::size_t slots : {3u, 20u, 63u, 64u, 65u, 300u, 1'000u}) {
    SCOPED_TRACE(slots);
    FreeSpaceRig rig;
    rig.device.saysRecordsInTurn = true;
    rig.device.givesRecordsInTurn = true;
    rig.device.recordBytes = 700;
    rig.device.recordSlots = slots;
    rig.device.entryBytes = 100;
    EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
    rig.ExpectCleanedUp();
    ASSERT_EQ(rig.device.recordPasses.size(), slots);
    for (std::size_t record = 0; record < slots; ++record) {
      EXPECT_EQ(rig.device.recordPasses[record], 9) << record;
    }
    EXPECT_LE(rig.device.mostRecordsTaken, 72u);
    EXPECT_EQ(rig.engine.Note(), "");
    EXPECT_THAT(rig.device.violations, IsEmpty());
  }
}

TEST(FreeSpaceWipe, KeepsAllRecordsWhereTheyComeInAnotherOrderThanIsSaid) {
  FreeSpaceRig rig;
  rig.device.saysRecordsInTurn = true;
  rig.device.recordBytes = 700;
  rig.device.recordSlots = 200;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  rig.ExpectCleanedUp();
  EXPECT_EQ(rig.device.mostRecordsTaken, 200u);
}

TEST(FreeSpaceWipe, TakesSmallFilesTogetherThroughEachPass) {
  FreeSpaceRig rig;
  rig.device.recordBytes = 700;
  rig.device.recordSlots = 200;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  std::map<std::string, std::vector<std::size_t>> writes;  // of each file of nine writes, by their places
  for (std::size_t i = 0; i < rig.device.ops.size(); ++i) {
    const Op& op = rig.device.ops[i];
    if (op.kind == "write" && op.ok && op.size > 512 && op.size <= 700) writes[op.path].push_back(i);
  }
  std::erase_if(writes, [](const auto& one) { return one.second.size() != 9; });  // the first trials
  EXPECT_GE(writes.size(), 200u);
  for (std::size_t pass = 0; pass + 1 < 9; ++pass) {
    std::size_t last = 0;
    std::size_t next = rig.device.ops.size();
    for (const auto& [path, places] : writes) {
      last = std::max(last, places[pass]);
      next = std::min(next, places[pass + 1]);
    }
    EXPECT_LT(last, next) << "pass " << pass;
  }
}

TEST(FreeSpaceWipe, StopsWhereTheTableOfRecordsBeginsToGrow) {
  FreeSpaceRig rig;
  rig.device.recordBytes = 700;
  rig.device.recordSlots = 10;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  std::size_t small = 0;
  for (const Op& op : rig.device.ops) {
    if (op.kind == "add" && op.ok) ++small;
  }
  EXPECT_LT(small, 120u);
}

TEST(FreeSpaceWipe, SaysWhenADriveIsTooFullForItsRecords) {
  FreeSpaceRig rig;
  rig.device.recordBytes = 700;
  rig.device.recordSlots = 200;
  rig.device.entryBytes = 100;
  rig.device.capacityBytes = rig.device.UsedBytes() + 4096;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.engine.Note(), HasSubstr("Not all records"));
  rig.ExpectCleanedUp();
}

TEST(FreeSpaceWipe, GivesSpaceBackWhereARemovalNeedsRoom) {
  for (const bool staysOpen : {false, true}) {
    FreeSpaceRig rig;
    rig.device.removalsNeedRoom = true;
    rig.device.fillersStayOpen = staysOpen;
    EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
    rig.ExpectCleanedUp();
  }
}

TEST(FreeSpaceWipe, ReachesWhatTheFileSystemKeepsBack) {
  FreeSpaceRig rig;
  rig.device.reserveBytes = 2 * kMiB;
  std::uint64_t mostUsed = 0;
  rig.device.onOp = [&](const Op&) { mostUsed = std::max(mostUsed, rig.device.UsedBytes()); };
  const auto freeKb = static_cast<std::int32_t>((rig.device.FreeBytes() + 2 * kMiB) / 1024);
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(mostUsed, rig.device.capacityBytes);
  EXPECT_FALSE(rig.device.ReserveIsGivenOut());
  for (const Event& event : rig.events.Of("space")) EXPECT_EQ(event.total, freeKb);
  EXPECT_EQ(rig.engine.Note(), "");
}

TEST(FreeSpaceWipe, PutsTheReserveBackOnEveryWayOut) {
  for (std::size_t n = 1;; ++n) {
    FreeSpaceRig rig;
    rig.device.capacityBytes = kMiB / 4;
    rig.device.reserveBytes = 16 << 10;
    rig.device.fault = Fault::FailFromThenOn;
    rig.device.faultAt = n;
    (void)rig.engine.WipeFreeSpace("/drive", 3);
    EXPECT_FALSE(rig.device.ReserveIsGivenOut()) << n;
    if (!rig.device.faultHappened) break;
  }
}

TEST(FreeSpaceWipe, SaysWhatIsKeptForOthers) {
  FreeSpaceRig rig;
  rig.device.keptBytes = 5 * kMiB;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_THAT(rig.engine.Note(), HasSubstr("5 MiB are kept for the administrator"));
}

TEST(FreeSpaceWipe, FailsWhereAQuotaKeepsItFromTheFreeSpace) {
  FreeSpaceRig rig;
  rig.device.keptBytes = 5 * kMiB;
  rig.device.keptByQuota = true;
  EXPECT_FALSE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("by a quota"));
  ASSERT_EQ(rig.events.Of("error").size(), 1u);
  rig.ExpectCleanedUp();
}

TEST(FreeSpaceWipe, IsRefusedWhereFilesAreNotOverwrittenInPlace) {
  FreeSpaceRig rig;
  rig.device.newFilesNotInPlace = "they are compressed";
  EXPECT_FALSE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("since they are compressed"));
  ASSERT_EQ(rig.events.Of("error").size(), 1u);
  EXPECT_NE(rig.events.Of("error")[0].percent, 0);
  rig.ExpectCleanedUp();
}

TEST(FreeSpaceWipe, TrimsWhatItGivesBackAndSaysSo) {
  FreeSpaceRig rig;
  rig.device.trims = true;
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_THAT(rig.engine.Note(), HasSubstr("(trim)"));
  EXPECT_GT(rig.device.Count("trim"), 1u);
  // After the passes, or it would only be given away.
  bool trimmed = false;
  for (const Op& op : rig.device.ops) {
    trimmed = trimmed || (op.kind == "trim" && op.path == "/drive");
    EXPECT_FALSE(trimmed && op.kind == "write");
  }
  FreeSpaceRig other;
  EXPECT_TRUE(other.engine.WipeFreeSpace("/drive", 3));
  EXPECT_EQ(other.device.Count("trim"), 0u);
}

TEST(FreeSpaceWipe, RemovesWhatAnEarlierRunHasLeft) {
  FreeSpaceRig rig;
  rig.device.MakeFile("/drive/ZQFILL-0123456789bc/z0000001", "")->stored = "x";
  rig.device.MakeFile("/drive/ZQFILL-0123456789bc/z00000ff", "");
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  rig.ExpectCleanedUp();
}

TEST(FreeSpaceWipe, LeavesAloneWhatOnlyLooksLikeItsOwn) {
  const auto always = [] { return true; };
  FreeSpaceRig rig;
  rig.device.MakeFile("/drive/ZQFILL-0123456789bc/letter.txt", "mine");
  rig.device.MakeFile("/drive/ZQFILL-0123456789bd/z0000001", "");
  rig.device.MakeFolder("/drive/ZQFILL-0123456789bd/z0000002");
  rig.device.MakeFile("/drive/ZQFILL-0123456789/z0000001", "mine");
  rig.device.MakeFile("/drive/zqfill-0123456789bc/z0000001", "mine");
  rig.device.MakeFile("/drive/ZQFILL-0123456789be", "mine");
  rig.device.MakeLink("/drive/ZQFILL-0123456789bf", EntryKind::Link);
  rig.device.MakeFile("/drive/ZQFILL-0123456789bg/z0000001", "")->stored = "in use";
  rig.device.Find("/drive/ZQFILL-0123456789bg")->locked = true;
  EXPECT_EQ(RemoveLeftFillers(rig.device, "/drive", always), 0u);
  for (const char* path : {"/drive/ZQFILL-0123456789bc/letter.txt", "/drive/ZQFILL-0123456789bd/z0000001",
                           "/drive/ZQFILL-0123456789bd/z0000002", "/drive/ZQFILL-0123456789/z0000001",
                           "/drive/zqfill-0123456789bc/z0000001", "/drive/ZQFILL-0123456789be",
                           "/drive/ZQFILL-0123456789bf", "/drive/ZQFILL-0123456789bg/z0000001"}) {
    EXPECT_TRUE(rig.device.Exists(path)) << path;
  }
  EXPECT_EQ(RemoveLeftFillers(rig.device, "/nowhere", always), 0u);
}

TEST(FreeSpaceWipe, MovesAtLeastEachSecondWhileSmallFilesAreFilled) {
  FreeSpaceRig rig;
  rig.device.recordBytes = 700;
  rig.device.recordSlots = 1'000;
  rig.device.flushLatency = Clock::Time{2'000};
  rig.device.entryLatency = Clock::Time{1'000};
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3)) << rig.engine.LastErrorText();
  const std::vector<Event> events = rig.events.Of("space");
  Clock::Time movedAt = events.front().at;
  std::int32_t done = 0;
  for (const Event& event : events) {
    EXPECT_LE(event.at - movedAt, Clock::Time{1'000'000}) << event.done << " KB";
    if (event.done == done) continue;
    done = event.done;
    movedAt = event.at;
  }
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

TEST(FreeSpaceWipe, HasMoreTimeForTheLogThanAFile) {
  FreeSpaceRig rig;
  rig.device.log = 7;
  rig.device.clearingTime = Clock::Time{600'000'000};
  EXPECT_TRUE(rig.engine.WipeFile("/drive/mine", 3));
  EXPECT_EQ(rig.device.clearedFor, Clock::Time{5'000'000});
  EXPECT_TRUE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_EQ(rig.device.clearedFor, Clock::Time{65'000'000});
  rig.device.MakeFile("/drive/another", Secret(100));
  EXPECT_TRUE(rig.engine.WipeFile("/drive/another", 3));
  EXPECT_EQ(rig.device.clearedFor, Clock::Time{70'000'000});
  // But none after a cancel.
  rig.device.onOp = [&](const Op& op) {
    if (op.kind == "read") rig.engine.CancelOperation();
  };
  EXPECT_FALSE(rig.engine.WipeFreeSpace("/drive", 3));
  EXPECT_LE(rig.device.clearedFor, Clock::Time{70'100'000});
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

TEST(FreeSpaceWipe, TakesTheWantOfARecordForTheEndOfAFile) {
  const auto wipe = [](const Status& onceFull, FreeSpaceRig& rig) {
    rig.device.onceFull = onceFull;
    const bool result = rig.engine.WipeFreeSpace("/drive", 3);
    rig.ExpectCleanedUp();
    return result;
  };
  for (const Status& status :
       {Status{Trouble::Exists, 17, "File exists"}, {Trouble::Other, 31, "General failure"}}) {
    FreeSpaceRig rig;
    EXPECT_TRUE(wipe(status, rig)) << rig.engine.LastErrorText();
  }
  FreeSpaceRig rig;
  EXPECT_FALSE(wipe({Trouble::Other, 5, "Input/output error"}, rig));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Input/output error (5)"));
}

TEST(FreeSpaceWipe, TellsEveryFaultAndRemovesItsFillersAllTheSame) {
  for (const Fault fault : {Fault::FailOnce, Fault::FailFromThenOn}) {
    for (std::size_t n = 1;; ++n) {
      FreeSpaceRig rig;
      rig.device.capacityBytes = kMiB / 8;
      rig.device.recordBytes = 700;
      rig.device.recordSlots = 2;
      rig.device.trims = true;
      rig.device.fault = fault;
      rig.device.faultAt = n;
      const bool result = rig.engine.WipeFreeSpace("/drive", 3);
      SCOPED_TRACE(std::to_string(n) + ' ' + rig.device.faultKind);
      EXPECT_EQ(rig.device.openHandles, 0);
      if (!rig.device.faultHappened) {
        EXPECT_TRUE(result);
        rig.ExpectCleanedUp();
        break;
      }
      // What is only for good measure, or shows in what comes after it.
      const bool isHarmless = rig.device.faultKind == "list" || rig.device.faultKind == "set length" ||
                              rig.device.faultKind == "trim";
      if (isHarmless && fault == Fault::FailOnce) {
        EXPECT_TRUE(result) << rig.engine.LastErrorText();
        rig.ExpectCleanedUp();
        continue;
      }
      if (rig.device.faultKind == "trim") continue;
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
