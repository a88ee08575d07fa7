// Many calls that are one operation: what they leave to its end, and that it isn't forgotten there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// The folders that were flushed, in their order.
std::vector<std::string> FlushedFolders(const EngineRig& rig) {
  std::vector<std::string> paths;
  for (const Op& op : rig.device.ops) {
    if (op.kind == "flush folder") paths.push_back(op.path);
  }
  return paths;
}

void WipeFiles(EngineRig& rig, const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    rig.device.MakeFile(path, Secret(5'000));
    ASSERT_TRUE(rig.engine.WipeFile(path, 3)) << rig.engine.LastErrorText();
    EXPECT_FALSE(rig.device.Exists(path));
  }
}

TEST(Whole, MakesTheRemovalsOfItsFilesDurableOnceForEachFolderAtItsEnd) {
  EngineRig rig;
  rig.device.renamesOpenFolders = true;
  rig.engine.BeginWhole();
  WipeFiles(rig, {"/f/a", "/g/b", "/f/c", "/f/d", "/g/e"});
  EXPECT_EQ(rig.device.Count("flush entry"), 0u);
  EXPECT_THAT(FlushedFolders(rig), IsEmpty());
  EXPECT_EQ(rig.device.Count("flush"), 5u * 9u) << "each pass has its own all the same";
  EXPECT_TRUE(rig.engine.EndWhole()) << rig.engine.LastErrorText();
  EXPECT_THAT(FlushedFolders(rig), ElementsAre("/f/", "/g/"));
  EXPECT_EQ(rig.device.openHandles, 0);
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

// Where a folder can't go while it is open, a later call may be the one that has to remove it.
TEST(Whole, KeepsNoFolderFromALaterCallThatRemovesIt) {
  for (const bool renamesOpenFolders : {false, true}) {
    EngineRig rig;
    rig.device.renamesOpenFolders = renamesOpenFolders;
    rig.device.MakeFile("/top/f/z", Secret(5'000));
    rig.engine.BeginWhole();
    WipeFiles(rig, {"/top/f/a", "/top/g/b", "/top/f/c"});
    if (!renamesOpenFolders) {
      EXPECT_THAT(FlushedFolders(rig), ElementsAre("/top/f/", "/top/g/")) << "as each is left";
    }
    EXPECT_TRUE(rig.engine.WipeFolder("/top/f", 3)) << rig.engine.LastErrorText();
    EXPECT_FALSE(rig.device.Exists("/top/f"));
    EXPECT_TRUE(rig.engine.EndWhole()) << rig.engine.LastErrorText();
    EXPECT_EQ(rig.device.openHandles, 0);
    EXPECT_THAT(rig.device.violations, IsEmpty());
  }
}

TEST(Whole, TellsARemovalThatCouldNotBeMadeDurable) {
  for (const bool renamesOpenFolders : {false, true}) {
    EngineRig rig;
    rig.device.renamesOpenFolders = renamesOpenFolders;
    rig.device.onOp = [&](const Op& op) {
      if (op.kind != "flush folder" || rig.device.faultHappened) return;
      rig.device.fault = FakeDevice::Fault::FailOnce;
      rig.device.faultAt = rig.device.ops.size();
    };
    rig.engine.BeginWhole();
    WipeFiles(rig, {"/f/a", "/g/b"});
    EXPECT_FALSE(rig.engine.EndWhole());
    EXPECT_THAT(rig.engine.LastErrorText(),
                HasSubstr("Flushing the removal of files from /f/: The 'device' has failed (1117)"));
    EXPECT_THAT(rig.events.Of("error"), SizeIs(1));
    EXPECT_EQ(rig.device.openHandles, 0);

    WipeFiles(rig, {"/f/c"});
    EXPECT_EQ(rig.device.Count("flush entry"), 1u) << "a call of its own leaves nothing to later";
    EXPECT_EQ(rig.engine.LastErrorText(), "");
  }
}

// The folder stays open from call to call, and the path may lead to another one by the second.
TEST(Whole, FollowsEachPathToWhatIsThereNow) {
  EngineRig rig;
  rig.device.renamesOpenFolders = true;
  rig.engine.BeginWhole();
  WipeFiles(rig, {"/f/a"});
  rig.device.MakeFile("/f/b", Secret(100));
  auto& root = rig.device.Find("/")->children;
  root["old"] = root["f"];
  root.erase("f");
  WipeFiles(rig, {"/f/b"});
  EXPECT_TRUE(rig.device.Exists("/old/b"));
  EXPECT_EQ(rig.device.Find("/old/b")->stored, Secret(100));
  EXPECT_TRUE(rig.engine.EndWhole());
}

}  // namespace
}  // namespace zq::engine::test
