// The fillers that cover names in the blocks of folders: when they are made, when they go, and what they may
// not do to the wipe.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Kind = NameRoom::Kind;

std::string NameIn(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// The numbers of the operations of a kind whose path begins as told.
std::vector<std::size_t> Numbers(const EngineRig& rig, const std::string& kind, const std::string& start) {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < rig.device.ops.size(); ++i) {
    const Op& op = rig.device.ops[i];
    if (op.ok && op.kind == kind && op.path.rfind(start, 0) == 0) numbers.push_back(i);
  }
  return numbers;
}

TEST(NameCover, MakesNothingWhereTheFileSystemClearsNames) {
  EngineRig rig;
  rig.device.MakeFile("/f/top/secret", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFolder("/f/top", 3));
  EXPECT_EQ(rig.device.Count("add"), 0u);
}

TEST(NameCover, FillsAFoldersSlotsOnceTheirEntriesAreGoneAndUntilThatIsDurable) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Slots;
  rig.device.MakeFile("/f/one", Secret(100));
  rig.device.MakeFile("/f/two", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3)) << rig.engine.LastErrorText();
  const std::vector<std::size_t> adds = Numbers(rig, "add", "/f/");
  const std::vector<std::size_t> flushes = Numbers(rig, "flush folder", "/f");
  ASSERT_THAT(flushes, ::testing::Not(IsEmpty()));
  std::size_t longest = 1000;
  std::size_t bytes = 0;
  for (const std::size_t add : adds) {
    EXPECT_GT(add, Numbers(rig, "remove", "/f/").back()) << "only after all is gone";
    EXPECT_LT(add, flushes.back());
    const std::size_t length = NameIn(rig.device.ops[add].path).size();
    EXPECT_LE(length, longest) << "long ones first, then shorter ones for the gaps";
    longest = length;
    bytes += length + 8;
  }
  EXPECT_GT(bytes, 4096u) << "the block is full, and one more was tried";
  EXPECT_EQ(longest, 8u);
  // One for each length has gone since it lay in new room; the others stay until all is on the device.
  std::size_t early = 0;
  for (const std::size_t removal : Numbers(rig, "remove entry", "/f/")) early += removal < flushes.back();
  EXPECT_EQ(early, 6u);
  EXPECT_THAT(rig.device.Find("/f")->children, IsEmpty());
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_EQ(rig.engine.Note(), "");
}

TEST(NameCover, FillsATreeOfNamesOnceItIsEmptyAndFlushesItSo) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Tree;
  rig.device.renamesOpenFolders = true;
  rig.device.MakeFile("/f/top/secret", Secret(100));
  rig.device.MakeFile("/f/top/deep/other", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFolder("/f/top", 3)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/f/top"));
  EXPECT_THAT(rig.device.Find("/f")->children, IsEmpty());
  EXPECT_THAT(rig.device.violations, IsEmpty());
  const std::size_t lastFile = Numbers(rig, "remove", "/f/top").back();
  for (const char* folder : {"/f/top/deep", "/f/top"}) {
    std::vector<std::size_t> adds;
    for (const std::size_t add : Numbers(rig, "add", std::string(folder) + '/')) {
      if (rig.device.ops[add].path.rfind('/') == std::string(folder).size()) adds.push_back(add);
    }
    ASSERT_GE(adds.size(), 40u) << folder;
    EXPECT_GT(adds.front(), lastFile) << folder;
    const std::vector<std::size_t> flushes = Numbers(rig, "flush folder", folder);
    const std::vector<std::size_t> renames = Numbers(rig, "rename entry", std::string(folder) + " > ");
    ASSERT_THAT(renames, ::testing::Not(IsEmpty())) << folder;
    const bool flushed = std::any_of(flushes.begin(), flushes.end(), [&](std::size_t flush) {
      return rig.device.ops[flush].path == folder && flush > adds.back() && flush < renames.front();
    });
    EXPECT_TRUE(flushed) << folder << " is on the device, with the fillers in it, before it goes";
  }
  // A folder's own fillers come when those in it are gone.
  const std::vector<std::size_t> inner = Numbers(rig, "remove entry", "/f/top/");
  EXPECT_THAT(inner, ::testing::Not(IsEmpty()));
}

TEST(NameCover, EndsWhereTheFolderTakesNoMore) {
  for (const Kind kind : {Kind::Slots, Kind::Tree}) {
    EngineRig rig;
    rig.device.nameRoom = kind;
    rig.device.mostEntries = 8;
    rig.device.MakeFile("/f/one", Secret(100));
    rig.device.MakeFile("/f/keep", Secret(100));
    EXPECT_TRUE(rig.engine.WipeFile("/f/one", 3)) << rig.engine.LastErrorText();
    EXPECT_EQ(rig.engine.Note(), "") << "a full folder is a covered one";
    EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(1));
  }
}

// What goes wrong with a filler is told, and the wipe is none the worse.
TEST(NameCover, IsNoFailureOfTheWipe) {
  for (const Kind kind : {Kind::Slots, Kind::Tree}) {
    std::size_t hits = 0;
    for (std::size_t n = 1;; ++n) {
      SCOPED_TRACE(n);
      EngineRig rig;
      rig.device.nameRoom = kind;
      rig.device.MakeFile("/f/one", Secret(100));
      rig.device.MakeFile("/f/keep", Secret(100));
      rig.device.fault = FakeDevice::Fault::FailOnce;
      rig.device.faultAt = n;
      const bool result = rig.engine.WipeFile("/f/one", 3);
      EXPECT_THAT(rig.device.violations, IsEmpty());
      EXPECT_EQ(rig.device.openHandles, 0);
      EXPECT_TRUE(rig.device.Exists("/f/keep"));
      if (!rig.device.faultHappened) break;
      const std::string& hit = rig.device.faultKind;
      if (!result) {
        EXPECT_THAT(hit, ::testing::Not(::testing::AnyOf("add", "remove entry")));
        if (rig.device.Exists("/f/one")) {
          EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(2)) << "no filler stays";
        }
        continue;
      }
      ++hits;
      EXPECT_FALSE(rig.device.Exists("/f/one"));
      if (rig.device.Find("/f")->children.size() > 1) {
        EXPECT_EQ(hit, "remove entry");
        EXPECT_THAT(rig.engine.Note(), HasSubstr("could not be removed"));
        EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(2));
      } else if (hit == "set dates") {
        EXPECT_THAT(rig.engine.Note(), HasSubstr("The dates of what was wiped"));
      } else if (hit == "open" || hit == "info") {
        // One that looked for what a killed run may have left, and here there is nothing.
        EXPECT_EQ(rig.engine.Note(), "");
      } else {
        EXPECT_THAT(hit, ::testing::AnyOf("add", "flush folder"));
        EXPECT_THAT(rig.engine.Note(), HasSubstr("could not be covered"));
      }
    }
    EXPECT_GT(hits, 20u);
  }
}

// A process that is killed makes no further call, which to the device is as if each had failed.
TEST(NameCover, RemovesWhatAKilledRunHasLeftOfItsFillers) {
  for (const Kind kind : {Kind::Slots, Kind::Tree}) {
    EngineRig whole;
    whole.device.nameRoom = kind;
    whole.device.MakeFile("/f/one", Secret(100));
    ASSERT_TRUE(whole.engine.WipeFile("/f/one", 3));
    std::size_t mostLeft = 0;
    for (std::size_t n = Numbers(whole, "add", "/f/").front() + 1; n <= whole.device.ops.size(); ++n) {
      SCOPED_TRACE(n);
      EngineRig rig;
      rig.device.nameRoom = kind;
      rig.device.MakeFile("/f/one", Secret(100));
      rig.device.MakeFile("/f/keep", "");
      rig.device.fault = FakeDevice::Fault::FailFromThenOn;
      rig.device.faultAt = n;
      rig.engine.WipeFile("/f/one", 3);
      ASSERT_FALSE(rig.device.Exists("/f/one"));
      mostLeft = std::max(mostLeft, rig.device.Find("/f")->children.size());
      rig.device.fault = FakeDevice::Fault::None;
      rig.device.MakeFile("/f/two", Secret(100));
      ASSERT_TRUE(rig.engine.WipeFile("/f/two", 3)) << rig.engine.LastErrorText();
      EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(1))
          << "of all empty files only the one of the user";
      EXPECT_EQ(rig.engine.Note(), "");
    }
    EXPECT_GT(mostLeft, 15u);
  }
}

// Content is never a filler's.
TEST(NameCover, LeavesAFileOfAFillersNameThatIsNotEmpty) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Tree;
  rig.device.MakeFile("/f/one", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFile("/f/one", 3));
  const std::string name = NameIn(rig.device.ops[Numbers(rig, "add", "/f/")[3]].path);
  rig.device.MakeFile("/f/" + name, Secret(10));
  rig.device.MakeFile("/f/two", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFile("/f/two", 3));
  ASSERT_TRUE(rig.device.Exists("/f/" + name));
  EXPECT_EQ(rig.device.Find("/f/" + name)->stored, Secret(10));
}

// --- Once for a whole operation -------------------------------------------------------------------------

TEST(Traces, AreCoveredAndClearedOnceForEachFolderAndLogAtTheEndOfAWhole) {
  for (const bool ofNames : {true, false}) {
    EngineRig rig;
    if (ofNames) rig.device.nameRoom = Kind::Tree;
    rig.device.log = ofNames ? 0 : 7;
    for (const char* folder : {"/f/", "/g/", "/f/", "/g/", "/f/"}) {
      const std::string path = folder + std::to_string(rig.device.ops.size());
      rig.device.MakeFile(path, Secret(100));
      rig.engine.BeginWhole();
      EXPECT_TRUE(rig.engine.WipeFile(path, 3)) << rig.engine.LastErrorText();
      EXPECT_EQ(rig.device.Count("add") + rig.device.Count("clear traces"), 0u) << "not for each call";
    }
    rig.device.MakeFile("/f/sub/one", Secret(100));
    EXPECT_TRUE(rig.engine.WipeFolder("/f/sub", 3));
    const std::size_t inTheFolder = rig.device.Count("add");
    EXPECT_TRUE(rig.engine.EndWhole());
    if (ofNames) {
      EXPECT_EQ(inTheFolder, 48u) << "a folder that goes has to be covered before";
      EXPECT_EQ(Numbers(rig, "add", "/f/").size(), 48u + 48u);
      EXPECT_EQ(Numbers(rig, "add", "/g/").size(), 48u);
    } else {
      EXPECT_EQ(rig.device.Count("add"), 0u);
      EXPECT_EQ(rig.device.Count("clear traces"), 1u) << "both folders have one log";
    }
    EXPECT_EQ(rig.device.openHandles, 0);
    EXPECT_TRUE(rig.engine.EndWhole()) << "nothing is left to be done";
    EXPECT_LE(rig.device.Count("clear traces"), 1u);
  }
}

TEST(Traces, AreThoseOfACancelledCallToo) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Tree;
  for (int i = 0; i < 600; ++i) rig.device.MakeFile("/f/" + std::to_string(1'000 + i), Secret(100));
  int wiped = 0;
  rig.events.onEvent = [&](const Event& event) {
    if (event.kind == "wiped" && ++wiped == 7) rig.engine.CancelOperation();
  };
  EXPECT_FALSE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Cancelled"));
  EXPECT_GT(Numbers(rig, "add", "/f/").size(), 40u);
  EXPECT_GT(Numbers(rig, "add", "/f/").front(), Numbers(rig, "remove", "/f/").back());
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(Traces, AreGivenUpWhenTheyTakeTooLongWhichIsTold) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Tree;
  rig.engine.BeginWhole();
  for (int i = 100; i < 160; ++i) {
    rig.device.MakeFile("/" + std::to_string(i) + "/x", Secret(100));
    ASSERT_TRUE(rig.engine.WipeFile("/" + std::to_string(i) + "/x", 3));
  }
  rig.device.entryLatency = Clock::Time{5'000};
  const Clock::Time started = rig.clock.Now();
  EXPECT_TRUE(rig.engine.EndWhole());
  EXPECT_LE(rig.clock.Now() - started, Clock::Time{5'500'000});
  EXPECT_THAT(rig.engine.Note(), HasSubstr("could not be covered"));
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(Traces, ThatHoldContentAndCannotBeClearedAreAFailure) {
  for (const bool isWhole : {false, true}) {
    EngineRig rig;
    rig.device.log = 7;
    rig.device.MakeFile("/f/one", Secret(100));
    rig.device.onOp = [&](const Op& op) {
      if (op.kind != "clear traces") return;
      rig.device.fault = FakeDevice::Fault::FailOnce;
      rig.device.faultAt = rig.device.ops.size();
    };
    if (isWhole) rig.engine.BeginWhole();
    EXPECT_EQ(rig.engine.WipeFile("/f/one", 3), isWhole);
    EXPECT_EQ(rig.engine.EndWhole(), !isWhole);
    EXPECT_THAT(rig.device.faultKind, "clear traces");
    EXPECT_THAT(rig.events.Of("error"), SizeIs(1));
    EXPECT_THAT(rig.events.Of("error").front().name, HasSubstr("Clearing the journal after the wipe"));
  }
}

// Whoever has many rows has them mostly in many folders, and a process may have only so many open.
TEST(Traces, KeepFewFoldersOpen) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Tree;
  int most = 0;
  rig.device.onOp = [&](const Op&) { most = std::max(most, rig.device.openHandles); };
  rig.engine.BeginWhole();
  for (int i = 0; i < 100; ++i) {
    const std::string folder = "/f/" + std::to_string(i);
    rig.device.MakeFile(folder + "/x", Secret(100));
    ASSERT_TRUE(rig.engine.WipeFile(folder + "/x", 3)) << rig.engine.LastErrorText();
  }
  EXPECT_TRUE(rig.engine.EndWhole());
  EXPECT_EQ(rig.engine.Note(), "");
  EXPECT_LT(most, 80);
  for (int i = 0; i < 100; ++i) {
    EXPECT_FALSE(Numbers(rig, "add", "/f/" + std::to_string(i) + "/").empty()) << i;
  }
}

}  // namespace
}  // namespace zq::engine::test
