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

TEST(NameCover, FillsAFoldersBlocksAroundTheRenamingAndUntilThatIsDurable) {
  EngineRig rig;
  rig.device.nameRoom = Kind::Blocks;
  rig.device.MakeFile("/f/one", Secret(100));
  rig.device.MakeFile("/f/two", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3)) << rig.engine.LastErrorText();
  const std::vector<std::size_t> adds = Numbers(rig, "add", "/f/");
  const std::vector<std::size_t> renames = Numbers(rig, "rename", "/f/");
  const std::vector<std::size_t> flushes = Numbers(rig, "flush entry", "/f/");
  ASSERT_THAT(renames, SizeIs(4));
  ASSERT_THAT(flushes, ::testing::Not(IsEmpty()));
  std::size_t before = 0;
  std::size_t between = 0;
  std::size_t bytes = 0;
  for (const std::size_t add : adds) {
    const std::size_t length = NameIn(rig.device.ops[add].path).size();
    if (add < renames.front()) {
      ++before;
      EXPECT_EQ(length, 250u) << "long ones";
      bytes += length + 8;
    } else if (add > renames.back() && add < flushes.front()) {
      ++between;
      EXPECT_LT(length, 250u) << "shorter ones for the gaps";
    } else {
      EXPECT_GT(add, Numbers(rig, "remove", "/f/").back()) << "only after all is gone, if not before";
    }
  }
  EXPECT_GT(bytes, 4096u) << "the block is full, and one more was tried";
  EXPECT_GT(before, 1u);
  EXPECT_GT(between, 1u);
  // Those that were made before stay until the new names are on the device; one for each length has gone
  // since it lay in new room.
  std::size_t early = 0;
  for (const std::size_t removal : Numbers(rig, "remove entry", "/f/")) early += removal < flushes.back();
  EXPECT_EQ(early, 5u);
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
  for (const Kind kind : {Kind::Slots, Kind::Blocks, Kind::Tree}) {
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
  for (const Kind kind : {Kind::Slots, Kind::Blocks, Kind::Tree}) {
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
      if (hit == "set dates" && result) {  // a fault of this kind keeps nothing from being wiped
        EXPECT_FALSE(rig.device.Exists("/f/one"));
        continue;
      }
      if (hit != "add" && hit != "remove entry") {
        EXPECT_FALSE(result) << hit;
        if (rig.device.Exists("/f/one")) {
          EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(2)) << "no filler stays";
        }
        continue;
      }
      ++hits;
      EXPECT_TRUE(result) << hit << ": " << rig.engine.LastErrorText();
      EXPECT_FALSE(rig.device.Exists("/f/one"));
      if (hit == "add") {
        EXPECT_THAT(rig.engine.Note(), HasSubstr("could not be covered"));
        EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(1));
      } else if (rig.device.Find("/f")->children.size() > 1) {
        EXPECT_THAT(rig.engine.Note(), HasSubstr("could not be removed"));
        EXPECT_THAT(rig.device.Find("/f")->children, SizeIs(2));
      }
    }
    EXPECT_GT(hits, 20u);
  }
}

}  // namespace
}  // namespace zq::engine::test
