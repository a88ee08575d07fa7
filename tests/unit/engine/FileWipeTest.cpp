// The wipe of one file, as its operations on the device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "engine/FileWipe.h"
#include "engine/PassPlan.h"
#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// One line for each operation that changes something; the writes of one pass as "pass 55" or "pass random".
std::vector<std::string> Story(const FakeDevice& device) {
  std::vector<std::string> story;
  for (const Op& op : device.ops) {
    if (!op.ok) continue;
    std::string line = op.kind;
    if (op.kind == "write") {
      const bool uniform = op.data.find_first_not_of(op.data[0]) == std::string::npos;
      static constexpr char kDigits[] = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(op.data[0]);
      line = uniform ? std::string("pass ") + kDigits[byte >> 4] + kDigits[byte & 15] : "pass random";
    } else if (op.kind == "info" || op.kind == "open folder" || op.kind == "list streams") {
      continue;
    }
    if (line.compare(0, 4, "pass") == 0 && !story.empty() && story.back() == line) continue;
    if (line == "read" && !story.empty() && story.back() == line) continue;
    story.push_back(line);
  }
  return story;
}

TEST(FileWipe, WritesTheRoundsInOrderAndFlushesEachPassBeforeTheNext) {
  EngineRig rig;
  rig.device.MakeFile("/folder/secret.txt", Secret(10'000));
  EXPECT_TRUE(rig.engine.WipeFile("/folder/secret.txt", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "");
  EXPECT_THAT(Story(rig.device),
              ElementsAre("open", "pass 55", "flush", "pass AA", "flush", "pass random", "flush", "pass 00",
                          "flush", "pass FF", "flush", "pass random", "flush", "pass 33", "flush", "pass CC",
                          "flush", "pass random", "flush", "drop cache", "read", "set length", "set dates",
                          "rename", "rename", "rename", "flush entry", "remove", "flush folder"));
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_EQ(rig.device.openHandles, 0);
  EXPECT_FALSE(rig.device.Exists("/folder/secret.txt"));
  EXPECT_TRUE(rig.device.Find("/folder")->children.empty());
}

TEST(FileWipe, WritesAsManyPassesAsTheLevelStandsFor) {
  for (const int level : {3, 5, 7}) {
    EngineRig rig;
    rig.device.passesNeeded = 3 * level;
    rig.device.MakeFile("/x", Secret(1));
    EXPECT_TRUE(rig.engine.WipeFile("/x", level));
    EXPECT_EQ(rig.device.Count("write"), static_cast<std::size_t>(3 * level));
    EXPECT_THAT(rig.device.violations, IsEmpty());
  }
}

TEST(FileWipe, RefusesALevelThatThereIsNot) {
  for (const int level : {-1, 0, 1, 4, 9}) {
    EngineRig rig;
    rig.device.MakeFile("/x", Secret(10));
    EXPECT_FALSE(rig.engine.WipeFile("/x", level));
    EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("level"));
    EXPECT_THAT(rig.device.ops, IsEmpty());
  }
}

TEST(FileWipe, CoversEachFileToTheEndOfItsLastCluster) {
  for (const std::uint32_t cluster : {512u, 4096u, 65536u, 2'097'152u}) {
    for (const std::size_t size : {1ul, 511ul, 512ul, 4095ul, 4096ul, 4097ul, 200'001ul}) {
      EngineRig rig;
      rig.device.clusterBytes = cluster;
      rig.device.MakeFile("/x", Secret(size));
      ASSERT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
      const std::uint64_t extent = (size + cluster - 1) / cluster * cluster;
      std::uint64_t written = 0;
      for (const Op& op : rig.device.ops) {
        if (op.kind == "write") written += op.size;
      }
      EXPECT_EQ(written, extent * 9) << cluster << ' ' << size;
      EXPECT_THAT(rig.device.violations, IsEmpty());
    }
  }
}

TEST(FileWipe, CoversWhatIsReservedBehindTheEnd) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(5'000))->allocatedBytes = 50'000;
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  EXPECT_THAT(rig.device.violations, IsEmpty());
  std::uint64_t end = 0;
  for (const Op& op : rig.device.ops) {
    if (op.kind == "write") end = std::max<std::uint64_t>(end, op.offset + op.size);
  }
  EXPECT_EQ(end, 53'248u);
}

TEST(FileWipe, CoversOfASparseFileWhatHasRoomAndTakesNoMore) {
  EngineRig rig;
  const auto node = rig.device.MakeFile("/x", Secret(1'000'001));
  node->room = {{8'192, 4'096}, {655'360, 65'536}, {999'424, 4'096}};
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_FALSE(rig.device.Exists("/x"));
  std::map<std::uint64_t, std::uint64_t> written;
  std::uint64_t read = 0;
  for (const Op& op : rig.device.ops) {
    if (op.kind == "write") written[op.offset] += op.size;
    if (op.kind == "read") read += op.size;
  }
  EXPECT_THAT(written, ElementsAre(std::pair{8'192u, 9u * 4'096}, std::pair{655'360u, 9u * 65'536},
                                   std::pair{999'424u, 9u * 4'096}));
  EXPECT_EQ(read, 73'728u) << "or the read-back has looked elsewhere";
  const std::vector<Event> told = rig.events.Of("progress");
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.back().done, 1'000'001);
}

TEST(FileWipe, RemovesASparseFileWithoutRoomWithoutWriting) {
  EngineRig rig;
  const auto node = rig.device.MakeFile("/x", Secret(100'000));
  node->room.emplace();
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_FALSE(rig.device.Exists("/x"));
}

TEST(FileWipe, TellsOnceWhatMayBeLeftInPlacesOutOfReach) {
  EngineRig rig;
  for (const char* path : {"/top/a", "/top/b"}) {
    rig.device.MakeFile(path, Secret(100))->caveat = "Copies may be left on the server.";
  }
  EXPECT_TRUE(rig.engine.WipeFolder("/top", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.engine.Note(), "Copies may be left on the server.");
}

TEST(FileWipe, NeverLeavesTheRecordOfAFileThatLiesInIt) {
  for (const std::size_t size : {123u, 512u}) {
    EngineRig rig;
    rig.device.recordBytes = 700;
    rig.device.MakeFile("/x", Secret(size));
    EXPECT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
    EXPECT_THAT(rig.device.violations, IsEmpty());
    for (const Op& op : rig.device.ops) {
      if (op.kind == "write") {
        EXPECT_EQ(op.offset + op.size, size);
      }
    }
  }
}

TEST(FileWipe, UsesNoRandomByteTwice) {
  EngineRig rig;
  rig.device.MakeFile("/a", Secret(20'000));
  rig.device.MakeFile("/b", Secret(20'000));
  EXPECT_TRUE(rig.engine.WipeFile("/a", 7));
  EXPECT_TRUE(rig.engine.WipeFile("/b", 7));
  std::set<std::string> blocks;
  std::size_t count = 0;
  for (const Op& op : rig.device.ops) {
    if (op.kind != "write" || op.data.find_first_not_of(op.data[0]) == std::string::npos) continue;
    for (std::size_t at = 0; at + 64 <= op.data.size(); at += 64, ++count)
      blocks.insert(op.data.substr(at, 64));
  }
  EXPECT_EQ(count, 2u * 7 * 20'480 / 64);
  EXPECT_EQ(blocks.size(), count);
}

TEST(FileWipe, WorksWithoutDirectTransfers) {
  EngineRig rig;
  rig.device.direct = false;
  rig.device.MakeFile("/x", Secret(1'000'000));
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(FileWipe, HidesTheNameByOneOfTheSameLengthThenByShorterOnes) {
  EngineRig rig;
  rig.device.MakeFile("/folder/accounts 2024.ods", Secret(10));
  EXPECT_TRUE(rig.engine.WipeFile("/folder/accounts 2024.ods", 3));
  std::vector<std::size_t> lengths;
  std::string last = "/folder/accounts 2024.ods";
  for (const Op& op : rig.device.ops) {
    if (op.kind != "rename") continue;
    const std::size_t arrow = op.path.find(" > ");
    EXPECT_EQ(op.path.substr(0, arrow), last);
    const std::string name = op.path.substr(arrow + 3);
    EXPECT_EQ(name.find_first_not_of("0123456789bcdefghijklmpqrsvwxyz_"), std::string::npos);
    lengths.push_back(name.size());
    last = "/folder/" + name;
  }
  EXPECT_THAT(lengths, ElementsAre(17u, 8u, 1u));
}

// A record gives names room in steps of four characters, the first of which ends behind the third.
TEST(FileWipe, CoversANameInARecordByOneThatFillsItsRoom) {
  for (const auto& [length, room] : std::map<std::size_t, std::size_t>{
           {1, 3}, {2, 3}, {3, 3}, {4, 7}, {7, 7}, {12, 15}, {17, 19}, {252, 255}, {255, 255}}) {
    EngineRig rig;
    rig.device.namesLieInRecords = true;
    const std::string name(length, 'n');
    rig.device.MakeFile("/folder/" + name, Secret(10));
    ASSERT_TRUE(rig.engine.WipeFile("/folder/" + name, 3)) << rig.engine.LastErrorText();
    std::vector<std::size_t> lengths;
    for (const Op& op : rig.device.ops) {
      if (op.kind == "rename") lengths.push_back(op.path.size() - op.path.find(" > ") - 3);
    }
    EXPECT_THAT(lengths, ElementsAre(room)) << "of " << length;
  }
}

TEST(FileWipe, CoversANameInARecordThoughOthersOfItsLengthAreTaken) {
  EngineRig rig;
  rig.device.namesLieInRecords = true;
  rig.device.MakeFile("/folder/secret", Secret(10));
  std::string taken;
  int tries = 0;
  rig.device.onOp = [&](const Op& op) {
    if (op.kind != "rename" || ++tries > 1) return;
    taken = "/folder/" + op.path.substr(op.path.find(" > ") + 3);
    rig.device.MakeFile(taken, "of another one");
  };
  ASSERT_TRUE(rig.engine.WipeFile("/folder/secret", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(tries, 2);
  EXPECT_EQ(rig.device.Find("/folder")->children.size(), 1u);
  EXPECT_TRUE(rig.device.Exists(taken));
}

TEST(FileWipe, FindsAnotherNameWhenOneIsTaken) {
  EngineRig rig;
  rig.device.MakeFile("/folder/ab", Secret(10));
  for (const char c : std::string("0123456789bcdefghijklmpqrsvwxyz_")) {
    rig.device.MakeFile(std::string("/folder/") + c, "");
  }
  EXPECT_TRUE(rig.engine.WipeFile("/folder/ab", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.device.Find("/folder")->children.size(), 32u);
  EXPECT_GT(rig.device.ops.size() - rig.device.Count("rename"), 0u);
}

TEST(FileWipe, WipesTheNamedStreamsToo) {
  EngineRig rig;
  const auto file = rig.device.MakeFile("/x", Secret(5'000));
  for (const std::string name : {"Zone.Identifier", "big"}) {
    auto stream = std::make_shared<Node>();
    stream->original = stream->written = stream->stored = Secret(name == "big" ? 300'000 : 30);
    stream->writeCounts.resize(stream->original.size());
    file->streams[name] = stream;
  }
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_TRUE(file->streams.empty());
  EXPECT_EQ(rig.events.Of("wiped").size(), 1u);
}

TEST(FileWipe, RemovesAnEmptyFileWithoutAPass) {
  EngineRig rig;
  rig.device.MakeFile("/x", "");
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_FALSE(rig.device.Exists("/x"));
  const std::vector<Event> progress = rig.events.Of("progress");
  ASSERT_EQ(progress.size(), 2u);
  for (const Event& event : progress) EXPECT_EQ(event.total, 0);
  EXPECT_EQ(rig.events.Of("wiped").size(), 1u);
}

TEST(FileWipe, RefusesWhatCantBeOverwrittenInPlace) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10))->notInPlace = "it is compressed by the file system";
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(),
            "Opening /x: it can't be overwritten in place, since it is compressed by the file system");
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_EQ(rig.device.Find("/x")->stored, Secret(10));
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(FileWipe, RefusesAFileWithAStreamThatCantBeOverwrittenInPlace) {
  EngineRig rig;
  const auto file = rig.device.MakeFile("/x", Secret(10));
  file->streams["s"] = std::make_shared<Node>();
  file->streams["s"]->notInPlace = "it is a sparse file";
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("/x:s"));
  EXPECT_EQ(file->stored, Secret(10));
}

TEST(FileWipe, RefusesAllThatIsNotARegularFile) {
  EngineRig rig;
  rig.device.MakeLink("/link", EntryKind::Link);
  rig.device.MakeLink("/junction", EntryKind::FolderLink);
  rig.device.MakeLink("/pipe", EntryKind::Other);
  rig.device.MakeFolder("/folder");
  const std::map<std::string, std::string> reasons = {{"/link", "it is a link"},
                                                      {"/junction", "it is a link"},
                                                      {"/pipe", "it is not a regular file"},
                                                      {"/folder", "it is a folder"},
                                                      {"/", "it is not a file"},
                                                      {"", "the path is empty"},
                                                      {"/none", "The file is not there (2)"}};
  for (const auto& [path, reason] : reasons) {
    EXPECT_FALSE(rig.engine.WipeFile(path, 3)) << path;
    EXPECT_EQ(rig.engine.LastErrorText(), "Opening " + path + ": " + reason);
  }
  EXPECT_TRUE(rig.device.Exists("/link"));
  EXPECT_TRUE(rig.device.Exists("/junction"));
  EXPECT_TRUE(rig.device.Exists("/pipe"));
  EXPECT_TRUE(rig.device.Exists("/folder"));
  EXPECT_THAT(rig.events.Of("wiped"), IsEmpty());
  EXPECT_EQ(rig.events.Of("error").size(), reasons.size());
}

TEST(FileWipe, FailsOnAReadOnlyFile) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10))->readOnly = true;
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Opening /x: Access is denied (5)");
  EXPECT_TRUE(rig.device.Exists("/x"));
}

TEST(FileWipe, LeavesAnotherFileThatHasComeUnderTheName) {
  EngineRig rig;
  rig.device.MakeFile("/folder/x", Secret(10));
  rig.device.onOp = [&](const Op& op) {
    if (op.kind == "set dates") rig.device.MakeFile("/folder/x", "innocent");
  };
  EXPECT_FALSE(rig.engine.WipeFile("/folder/x", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("another file has come under this name"));
  EXPECT_EQ(rig.device.Find("/folder/x")->stored, "innocent");
}

TEST(FileWipe, SaysThatTheContentIsGoneWhenOnlyTheEntryStays) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10));
  rig.device.fault = FakeDevice::Fault::FailFromThenOn;
  rig.device.faultAt = std::numeric_limits<std::size_t>::max();
  rig.device.onOp = [&](const Op& op) {
    if (op.kind == "remove") rig.device.faultAt = 1;
  };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_THAT(rig.engine.LastErrorText(),
              ::testing::MatchesRegex(
                  R"(Removing /x \(already overwritten, now named .\): The 'device' has failed \(1117\))"));
  EXPECT_EQ(rig.device.Find("/")->children.size(), 1u);
}

TEST(FileWipe, FindsOutADeviceThatDoesNotKeepWhatItTook) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(100'000));
  // The last write of the last pass gets lost.
  std::size_t lastWrite = 0;
  {
    EngineRig probe;
    probe.device.MakeFile("/x", Secret(100'000));
    ASSERT_TRUE(probe.engine.WipeFile("/x", 3));
    for (std::size_t i = 0; i < probe.device.ops.size(); ++i) {
      if (probe.device.ops[i].kind == "write") lastWrite = i + 1;
    }
  }
  rig.device.fault = FakeDevice::Fault::LoseWrite;
  rig.device.faultAt = lastWrite;
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(
      rig.engine.LastErrorText(),
      "Reading back /x: the device doesn't hold what was written, or another program has written to it");
  EXPECT_TRUE(rig.device.Exists("/x"));
  EXPECT_EQ(rig.device.Count("set length"), 0u);
}

TEST(FileWipe, TellsProgressOnceFromZeroToTheLength) {
  for (const bool direct : {true, false}) {
    EngineRig rig;
    rig.device.direct = direct;
    rig.device.bytesPerSecond = 20'000'000;
    rig.device.flushLatency = Clock::Time{2'000};
    rig.device.MakeFile("/folder/movie", Secret(5'000'001));
    EXPECT_TRUE(rig.engine.WipeFile("/folder/movie", 3));
    const std::vector<Event> events = rig.events.Of("progress");
    ASSERT_GT(events.size(), 10u);
    EXPECT_EQ(events.front().done, 0);
    EXPECT_EQ(events.back().done, 5'000'001);
    for (std::size_t i = 0; i < events.size(); ++i) {
      EXPECT_EQ(events[i].total, 5'000'001);
      EXPECT_EQ(events[i].name, "movie");
      if (i == 0) continue;
      EXPECT_GE(events[i].done, events[i - 1].done);
      const auto gap = events[i].at - events[i - 1].at;
      EXPECT_LE(gap, Clock::Time{100'000}) << i;
      if (i + 1 < events.size()) {
        EXPECT_GE(gap, Clock::Time{30'000}) << i;
      }
    }
    EXPECT_EQ(rig.events.all.back().kind, "wiped");
    EXPECT_EQ(rig.events.all.back().name, "movie");
  }
}

TEST(FileProgress, ScalesLengthsThatDontFitIntoThirtyTwoBits) {
  EngineRig rig;
  const bool cancelled = false;
  Operation operation(rig.device, rig.events, rig.clock, rig.seeds, cancelled);
  for (const std::uint64_t length :
       {std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000}, std::uint64_t{5} << 40,
        std::numeric_limits<std::uint64_t>::max() / 16}) {
    rig.events.all.clear();
    const Item item{"/big", "big", ItemKind::File};
    FileProgress progress(operation, item);
    progress.Start(length, length * 10);
    for (int tenth = 1; tenth <= 10; ++tenth) {
      rig.clock.Advance(Clock::Time{50'000});
      progress.Worked(length);
      const Event& event = rig.events.all.back();
      EXPECT_NEAR(static_cast<double>(event.done) / event.total, tenth / 10.0, 1e-6);
      EXPECT_GT(event.total, 0x3FFFFFFE);
      EXPECT_LT(event.done, event.total) << "the total is kept for the end";
    }
    progress.Finish();
    EXPECT_EQ(rig.events.all.back().done, rig.events.all.back().total);
    EXPECT_EQ(rig.events.all.back().total, rig.events.all.front().total);
  }
}

TEST(FileWipe, RefusesAMemberCalledFromInsideAnEvent) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10));
  rig.device.MakeFile("/y", Secret(10));
  int calls = 0;
  rig.events.onEvent = [&](const Event&) {
    ++calls;
    EXPECT_FALSE(rig.engine.WipeFile("/y", 3));
    EXPECT_FALSE(rig.engine.WipeFreeSpace("/", 3));
  };
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "");
  EXPECT_GT(calls, 0);
  EXPECT_EQ(rig.device.Find("/y")->stored, Secret(10));
}

TEST(FileWipe, EndsInFailureWhenAHandlerThrows) {
  EngineRig rig;
  rig.device.MakeFile("/x", Secret(10));
  rig.events.onEvent = [](const Event&) { throw std::runtime_error("handler \"broken\""); };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "handler 'broken'");
  EXPECT_TRUE(rig.device.Exists("/x"));
  EXPECT_EQ(rig.device.openHandles, 0);
  rig.events.onEvent = [](const Event&) { throw std::bad_alloc(); };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "There is not enough memory for the operation");
  rig.events.onEvent = [](const Event&) { throw 7; };
  EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "An event handler failed");
  rig.events.onEvent = nullptr;
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3));
}

TEST(FileWipe, WritesNothingWithoutASeed) {
  for (const int call : {1, 2}) {
    EngineRig rig;
    rig.seeds.failAtCall = call;
    rig.device.MakeFile("/x", Secret(10));
    EXPECT_FALSE(rig.engine.WipeFile("/x", 3));
    EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("has failed (1117)"));
    EXPECT_EQ(rig.device.Find("/")->children.size(), 1u);
    if (call == 1) {
      EXPECT_EQ(rig.device.Count("write"), 0u);
    }
    EXPECT_EQ(rig.device.openHandles, 0);
  }
}

}  // namespace
}  // namespace zq::engine::test
