// Many files at once, as their operations on the device and their events.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::IsEmpty;

void MakeFiles(EngineRig& rig, int count, std::size_t size) {
  for (int i = 0; i < count; ++i) rig.device.MakeFile("/f/" + std::to_string(1'000 + i), Secret(size));
}

TEST(FileBatch, WritesAPassToAllFilesBeforeTheNextPassToAny) {
  EngineRig rig;
  MakeFiles(rig, 20, 3'000);
  ASSERT_TRUE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3)) << rig.engine.LastErrorText();
  std::map<std::string, int> written;
  for (const Op& op : rig.device.ops) {
    if (op.kind != "write") continue;
    const int pass = ++written[op.path];
    for (const auto& [path, passes] : written) EXPECT_GE(passes, pass - 1) << path;
  }
  EXPECT_EQ(written.size(), 20u);
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(FileBatch, FlushesEachFileBetweenTwoPassesOverIt) {
  for (const std::size_t depth : {1u, 8u}) {
    EngineRig rig;
    rig.device.queueDepth = depth;
    MakeFiles(rig, 30, 9'000);
    ASSERT_TRUE(rig.engine.WipeFolder("/f", 3)) << rig.engine.LastErrorText();
    EXPECT_THAT(rig.device.violations, IsEmpty()) << "each byte has reached the medium nine times";
    EXPECT_EQ(rig.events.Of("wiped").size(), 30u);
  }
}

TEST(FileBatch, ReplacesAllNamesThenMakesThemDurableThenRemoves) {
  EngineRig rig;
  MakeFiles(rig, 20, 100);
  ASSERT_TRUE(rig.engine.WipeFolder("/f", 3));
  std::size_t lastRename = 0;
  std::size_t firstFlush = 0;
  std::size_t lastFlush = 0;
  std::size_t firstRemove = 0;
  std::size_t lastRemove = 0;
  std::size_t folderFlush = 0;
  for (std::size_t i = 1; i < rig.device.ops.size(); ++i) {
    const std::string& kind = rig.device.ops[i].kind;
    if (kind == "rename") lastRename = i;
    if (kind == "flush entry") lastFlush = i;
    if (kind == "flush entry" && firstFlush == 0) firstFlush = i;
    if (kind == "remove") lastRemove = i;
    if (kind == "remove" && firstRemove == 0) firstRemove = i;
    if (kind == "flush folder" && folderFlush == 0) folderFlush = i;
  }
  EXPECT_LT(lastRename, firstFlush);
  EXPECT_LT(lastFlush, firstRemove);
  EXPECT_LT(lastRemove, folderFlush);
}

TEST(FileBatch, EmptiesAllFilesBeforeItRenamesOne) {
  EngineRig rig;
  MakeFiles(rig, 20, 100);
  ASSERT_TRUE(rig.engine.WipeFolder("/f", 3));
  std::size_t lastEmptied = 0;
  std::size_t firstRename = 0;
  std::size_t emptied = 0;
  for (std::size_t i = 1; i < rig.device.ops.size(); ++i) {
    const std::string& kind = rig.device.ops[i].kind;
    if (kind == "set length") {
      lastEmptied = i;
      ++emptied;
    }
    if (kind == "rename" && firstRename == 0) firstRename = i;
  }
  EXPECT_EQ(emptied, 20u);
  EXPECT_LT(lastEmptied, firstRename);
}

// Of 300 files only some find a name of one character, and the others don't go on asking for one.
TEST(FileBatch, LearnsHowShortTheNamesOfAFolderCanStillBe) {
  EngineRig rig;
  for (int i = 0; i < 300; ++i) rig.device.MakeFile("/f/a longer name " + std::to_string(i), Secret(100));
  ASSERT_TRUE(rig.engine.WipeFolder("/f", 3)) << rig.engine.LastErrorText();
  const auto renames = std::count_if(rig.device.ops.begin(), rig.device.ops.end(),
                                     [](const Op& op) { return op.kind == "rename"; });
  EXPECT_GE(renames, 3 * 300);
  EXPECT_LE(renames, 3 * 300 + 300 / 2);
}

TEST(FileBatch, GivesEachFileItsStartAndItsEndAndNeverGoesBack) {
  for (const std::size_t depth : {1u, 8u}) {
    EngineRig rig;
    rig.device.queueDepth = depth;
    rig.device.bytesPerSecond = 5'000'000;
    rig.device.flushLatency = Clock::Time{1'000};
    MakeFiles(rig, 150, 10'000);
    ASSERT_TRUE(rig.engine.WipeFolder("/f", 3)) << rig.engine.LastErrorText();
    std::map<std::string, std::vector<std::int32_t>> done;
    Clock::Time lastBetween{};
    Clock::Time last{};
    for (const Event& event : rig.events.Of("progress")) {
      if (event.name == "/f") continue;  // while files are being opened
      EXPECT_EQ(event.total, 10'000);
      done[event.name].push_back(event.done);
      if (last != Clock::Time{}) {
        EXPECT_LE(event.at - last, Clock::Time{100'000});
      }
      if (event.done != 0 && event.done != event.total) {
        EXPECT_GE(event.at - lastBetween, Clock::Time{30'000});
        lastBetween = event.at;
      }
      last = event.at;
    }
    EXPECT_EQ(done.size(), 150u);
    for (const auto& [name, values] : done) {
      EXPECT_EQ(values.front(), 0) << name;
      EXPECT_EQ(values.back(), 10'000) << name;
      EXPECT_TRUE(std::is_sorted(values.begin(), values.end())) << name;
      EXPECT_EQ(std::count(values.begin(), values.end(), 0), 1) << name;
      EXPECT_EQ(std::count(values.begin(), values.end(), 10'000), 1) << name;
    }
  }
}

TEST(FileBatch, UsesNoRandomByteTwice) {
  EngineRig rig;
  rig.device.queueDepth = 8;
  MakeFiles(rig, 12, 20'000);
  ASSERT_TRUE(rig.engine.WipeFolder("/f", 7));
  std::set<std::string> blocks;
  std::size_t count = 0;
  for (const Op& op : rig.device.ops) {
    if (op.kind != "write" || op.data.find_first_not_of(op.data[0]) == std::string::npos) continue;
    for (std::size_t at = 0; at + 64 <= op.data.size(); at += 64, ++count) {
      blocks.insert(op.data.substr(at, 64));
    }
  }
  EXPECT_EQ(count, 12u * 7 * 20'480 / 64);
  EXPECT_EQ(blocks.size(), count);
}

TEST(FileBatch, EndsBeforeAFileThatIsTooLargeForIt) {
  EngineRig rig;
  rig.device.passesNeeded = 9;
  rig.device.MakeFile("/f/a", Secret(1'000));
  rig.device.MakeFile("/f/b", Secret((64 << 20) + 1));
  rig.device.MakeFile("/f/c", Secret(1'000));
  bool bigStarted = false;
  rig.events.onEvent = [&](const Event& event) {
    if (event.name != "b" || bigStarted) return;
    bigStarted = true;
    EXPECT_FALSE(rig.device.Exists("/f/a"));
    rig.engine.CancelOperation();  // the rest of it would only take time
  };
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_TRUE(bigStarted);
  EXPECT_EQ(rig.device.Find("/f/c")->stored, Secret(1'000));
}

TEST(FileBatch, HandlesALargeFileWithSeveralWritesUnderWay) {
  EngineRig rig;
  rig.device.queueDepth = 4;
  rig.device.MakeFile("/x", Secret(12'345'678));
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

// --- Files of several names -----------------------------------------------------------------------------

TEST(FileBatch, WipesAFileOnceForAllNamesThatItHasInTheFolder) {
  for (const bool opensForOneAlone : {false, true}) {
    for (const std::size_t depth : {1u, 8u}) {
      EngineRig rig;
      rig.device.queueDepth = depth;
      rig.device.opensForOneAlone = opensForOneAlone;
      MakeFiles(rig, 5, 3'000);
      rig.device.MakeHardLink("/f/1001b", "/f/1001");
      rig.device.MakeHardLink("/f/sub/1001c", "/f/1001");
      ASSERT_TRUE(rig.engine.WipeFolder("/f", 3)) << rig.engine.LastErrorText();
      EXPECT_FALSE(rig.device.Exists("/f"));
      EXPECT_THAT(rig.device.violations, IsEmpty());
      EXPECT_THAT(rig.events.Of("error"), IsEmpty());
      EXPECT_EQ(rig.events.Of("wiped").size(), 7u);
      EXPECT_EQ(rig.engine.Note(), "");
      EXPECT_EQ(rig.device.openHandles, 0);
      std::uint64_t written = 0;
      for (const Op& op : rig.device.ops) {
        if (op.kind == "write") written += op.size;
      }
      EXPECT_EQ(written, 5u * 4'096 * 9) << "each content once";
    }
  }
}

TEST(FileBatch, SaysHowManyFilesHadOtherNamesThanThoseItWasGiven) {
  EngineRig rig;
  MakeFiles(rig, 3, 3'000);
  rig.device.MakeHardLink("/elsewhere/a", "/f/1001");
  ASSERT_TRUE(rig.engine.WipeFile("/f/1001", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.engine.Note(), "1 file has other names, too. Under these it is now empty.");
  EXPECT_EQ(rig.device.Find("/elsewhere/a")->stored, "");

  rig.device.MakeHardLink("/elsewhere/b", "/f/1000");
  rig.device.MakeHardLink("/elsewhere/c", "/f/1000");
  rig.device.MakeHardLink("/f/again", "/f/1002");
  rig.device.MakeHardLink("/elsewhere/d", "/f/1002");
  ASSERT_TRUE(rig.engine.WipeFolder("/f", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.engine.Note(), "2 files have other names, too. Under these they are now empty.");
  EXPECT_THAT(rig.device.violations, IsEmpty());

  rig.device.MakeFile("/f/last", Secret(10));
  ASSERT_TRUE(rig.engine.WipeFolder("/f", 3));
  EXPECT_EQ(rig.engine.Note(), "");
}

TEST(FileBatch, SaysSoOfFilesThatWereWipedThoughOthersFailed) {
  EngineRig rig;
  MakeFiles(rig, 3, 3'000);
  rig.device.MakeHardLink("/elsewhere/a", "/f/1001");
  rig.device.Find("/f/1000")->readOnly = true;
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_EQ(rig.engine.Note(), "1 file has other names, too. Under these it is now empty.");
}

TEST(FileBatch, KeepsAFileOfSeveralNamesThatFailsUnderAllOfThem) {
  EngineRig rig;
  MakeFiles(rig, 3, 3'000);
  rig.device.MakeHardLink("/f/1001b", "/f/1001");
  rig.device.Find("/f/1001")->notInPlace = "it is compressed by the file system";
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_EQ(rig.events.Of("error").size(), 2u);
  EXPECT_EQ(rig.device.Find("/f/1001")->stored, Secret(3'000));
  EXPECT_EQ(rig.device.Find("/f/1001b")->stored, Secret(3'000));
  EXPECT_EQ(rig.events.Of("wiped").size(), 2u);
}

// --- What others do meanwhile ---------------------------------------------------------------------------

// Does it to the file 1001 of a batch at the first operation of a kind, and expects that file alone to stay.
void ExpectStays(const std::string& opKind, const std::function<void(Node&)>& change, const char* reason) {
  SCOPED_TRACE(opKind);
  EngineRig rig;
  MakeFiles(rig, 3, 3'000);
  const std::shared_ptr<Node> node = rig.device.Find("/f/1001");
  bool changed = false;
  rig.device.onOp = [&](const Op& op) {
    if (changed || op.kind != opKind) return;
    changed = true;
    change(*node);
  };
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  ASSERT_TRUE(changed);
  EXPECT_EQ(rig.engine.LastErrorText(), std::string("Looking again at /f/1001: ") + reason);
  EXPECT_EQ(rig.device.Find("/f/1001"), node);
  EXPECT_EQ(rig.device.Find("/f")->children.size(), 1u);
  EXPECT_EQ(rig.device.Count("set length"), 2u);
  EXPECT_EQ(rig.events.Of("wiped").size(), 2u);
  EXPECT_EQ(rig.events.Of("error").size(), 1u);
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(FileBatch, KeepsAFileThatAnotherProgramMakesLongerOrShorter) {
  constexpr char kReason[] = "another program has changed its length during the wipe";
  for (const char* kind : {"write", "flush", "read"}) {
    ExpectStays(
        kind, [](Node& node) { node.written.resize(20'000, 'n'); }, kReason);
  }
  // Later it would be found by the read-back, or not at all: the passes lengthen the file again.
  ExpectStays(
      "write", [](Node& node) { node.written.append("new"); }, kReason);
  EngineRig rig;
  MakeFiles(rig, 2, 3'000);
  rig.events.onEvent = [&](const Event& event) {
    if (event.kind == "progress" && event.done == 0) rig.device.Find("/f/1001")->written.resize(10);
  };
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), std::string("Looking again at /f/1001: ") + kReason);
  EXPECT_TRUE(rig.device.Exists("/f/1001"));
}

TEST(FileBatch, KeepsAFileWhoseContentTheSystemSaysWasMoved) {
  constexpr char kReason[] = "another program has moved its content during the wipe";
  for (const char* kind : {"write", "flush", "read"}) {
    ExpectStays(
        kind, [&](Node& node) { node.notInPlace = kReason; }, kReason);
  }
}

TEST(FileWipe, KeepsAFileWhoseStreamAnotherProgramLengthens) {
  EngineRig rig;
  const auto file = rig.device.MakeFile("/f/x", Secret(3'000));
  file->streams["s"] = std::make_shared<Node>();
  rig.device.onOp = [&](const Op& op) {
    if (op.kind == "read") file->streams["s"]->written = "new";
  };
  EXPECT_FALSE(rig.engine.WipeFile("/f/x", 3));
  EXPECT_EQ(rig.engine.LastErrorText(),
            "Looking again at /f/x:s: another program has changed its length during the wipe");
  EXPECT_EQ(file->streams.size(), 1u);
}

TEST(FileWipe, WritesNothingButRandomDataWhereEqualContentsAreMerged) {
  EngineRig rig;
  rig.device.mergesEqual = true;
  const auto file = rig.device.MakeFile("/x", Secret(5'000));
  auto stream = std::make_shared<Node>();
  stream->original = stream->written = stream->stored = Secret(300);
  stream->writeCounts.resize(300);
  file->streams["s"] = stream;
  EXPECT_TRUE(rig.engine.WipeFile("/x", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.device.violations, IsEmpty());
  std::set<std::string> written;
  for (const Op& op : rig.device.ops) {
    if (op.kind == "write" && op.path == "/x:s") written.insert(op.data);
  }
  EXPECT_EQ(written.size(), 9u);
  for (const std::string& data : written) EXPECT_NE(data.find_first_not_of(data[0]), std::string::npos);
}

TEST(FolderWipe, RenamesFoldersTogetherWhereTheyMayBeOpen) {
  EngineRig rig;
  rig.device.renamesOpenFolders = true;
  for (const char* path : {"/top/a/one/x", "/top/a/two/y", "/top/b/z"}) {
    rig.device.MakeFile(path, Secret(100));
  }
  ASSERT_TRUE(rig.engine.WipeFolder("/top", 3)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/top"));
  std::size_t lastRename = 0;
  std::size_t firstRemove = 0;
  for (std::size_t i = 1; i < rig.device.ops.size(); ++i) {
    if (rig.device.ops[i].kind == "rename entry") lastRename = i;
    if (rig.device.ops[i].kind == "remove entry" && firstRemove == 0) firstRemove = i;
  }
  EXPECT_LT(lastRename, firstRemove);
  EXPECT_EQ(rig.device.Count("remove entry"), 5u);
  EXPECT_EQ(rig.device.ops.back().kind, "flush folder");
  EXPECT_EQ(rig.device.openHandles, 0);
}

// Its own files are what the system has too many of: it is run before its time.
TEST(FileBatch, RunsEarlyWhenNoMoreFilesCanBeOpened) {
  EngineRig rig;
  rig.device.mostOpenFiles = 7;
  for (int i = 0; i < 40; ++i) rig.device.MakeFile("/f/" + std::to_string(i), Secret(500));
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3)) << rig.engine.LastErrorText();
  EXPECT_TRUE(rig.device.Find("/f")->children.empty());
  EXPECT_THAT(rig.device.violations, ::testing::IsEmpty());
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(FileBatch, TellsThatNoFileCanBeOpenedAtAll) {
  EngineRig rig;
  rig.device.mostOpenFiles = 2;  // the folder and the one that holds it
  rig.device.MakeFile("/f/a", Secret(500));
  EXPECT_FALSE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Opening /f/a: Too many open files (24)");
  EXPECT_EQ(rig.device.Find("/f/a")->stored, Secret(500));
}

}  // namespace
}  // namespace zq::engine::test
