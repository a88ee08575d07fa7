// A walk that keeps few folders open, however deep it goes, and takes nothing else for one that it had
// closed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

// With each level a file, and a folder beside the way down.
std::string MakeDeepTree(FakeDevice& device, int levels) {
  std::string path = "/f/top";
  for (int i = 0; i < levels; ++i) {
    device.MakeFile(path + "/file", Secret(500));
    device.MakeFile(path + "/beside/file", Secret(500));
    path += "/d";
  }
  device.MakeFile(path + "/file", Secret(500));
  return path;
}

void LimitTo(FakeDevice& device, std::size_t files, std::size_t folders, std::size_t levels) {
  device.renamesOpenFolders = true;
  device.openAtOnce = {files, folders, levels};
}

// Runs `change` when a folder is first opened again from one inside it.
void AtTheFirstReturn(EngineRig& rig, std::function<void()> change) {
  rig.device.onOp = [change = std::move(change), done = false](const Op& op) mutable {
    if (done || op.kind != "open above") return;
    done = true;
    change();
  };
}

std::string Below(const std::string& path, int levels) {
  std::string below = path;
  for (int i = 0; i < levels; ++i) below += "/d";
  return below;
}

TEST(OpenLevels, AreFewHoweverDeepTheTreeIs) {
  EngineRig rig;
  LimitTo(rig.device, 8, 5, 6);
  MakeDeepTree(rig.device, 60);
  EXPECT_TRUE(rig.engine.WipeFolder("/f/top", 3)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/f/top"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 121u);
  EXPECT_LE(rig.device.mostOpenFolders, 6 + 5 + 3);
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(OpenLevels, AreFewWhereOnlySomeFilesGo) {
  EngineRig rig;
  LimitTo(rig.device, 8, 5, 6);
  MakeDeepTree(rig.device, 60);
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/f/top", "*.*", true, 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.events.Of("wiped").size(), 121u);
  EXPECT_LE(rig.device.mostOpenFolders, 6 + 5 + 3);
  EXPECT_TRUE(rig.device.Exists(Below("/f/top", 60) + "/file") == false &&
              rig.device.Exists(Below("/f/top", 60)));
}

// Others in the process may have opened so many that there is less room than was thought.
TEST(OpenLevels, AreClosedWhenTheSystemOpensNoMore) {
  EngineRig rig;
  rig.device.renamesOpenFolders = true;
  rig.device.openAtOnce.levels = 40;
  rig.device.mostOpenFiles = 30;
  MakeDeepTree(rig.device, 60);
  EXPECT_TRUE(rig.engine.WipeFolder("/f/top", 3)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/f/top"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 121u);
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(OpenLevels, AreFoundByNameWhenTheInnerOneWasMoved) {
  EngineRig rig;
  LimitTo(rig.device, 8, 5, 6);
  MakeDeepTree(rig.device, 30);
  std::string moved;
  AtTheFirstReturn(rig, [&] {
    moved = rig.device.ops.back().path;
    const std::string holder = moved.substr(0, moved.rfind('/'));
    rig.device.MakeFolder("/elsewhere")->children["d"] = rig.device.Find(moved);
    rig.device.Find(holder)->children.erase("d");
  });
  EXPECT_FALSE(rig.engine.WipeFolder("/f/top", 3));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("The file is not there"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 61u) << "the others go all the same";
  EXPECT_TRUE(rig.device.Exists("/elsewhere/d"));
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_EQ(rig.device.openHandles, 0);
}

// As in an attack: one that was closed is put away, and another has its name.
TEST(OpenLevels, AreNotMistakenForOthersInTheirPlace) {
  for (const bool onlyFiles : {false, true}) {
    EngineRig rig;
    LimitTo(rig.device, 8, 5, 6);
    MakeDeepTree(rig.device, 30);
    rig.device.MakeFile("/other/file", Secret(5'000));
    std::string holder;
    AtTheFirstReturn(rig, [&] {
      const std::string inner = rig.device.ops.back().path;
      holder = inner.substr(0, inner.rfind('/'));
      const std::string above = holder.substr(0, holder.rfind('/'));
      rig.device.MakeFolder("/elsewhere")->children["d"] = rig.device.Find(inner);
      rig.device.MakeFolder("/put/away")->children["d"] = rig.device.Find(holder);
      rig.device.Find(holder)->children.erase("d");
      rig.device.Find(above)->children["d"] = rig.device.Find("/other");
    });
    EXPECT_FALSE(onlyFiles ? rig.engine.WipeFolderFiles("/f/top", "*.*", true, 3)
                           : rig.engine.WipeFolder("/f/top", 3));
    EXPECT_THAT(rig.engine.LastErrorText(),
                HasSubstr("Opening " + holder + ": it isn't where it was any more"));
    EXPECT_EQ(rig.device.Find("/other/file")->stored, Secret(5'000));
    EXPECT_EQ(rig.device.Find(holder), rig.device.Find("/other"));
    EXPECT_TRUE(rig.device.Exists("/put/away/d"));
    EXPECT_THAT(rig.device.violations, IsEmpty());
    EXPECT_EQ(rig.device.openHandles, 0);
    // What lies above it goes on.
    EXPECT_FALSE(rig.device.Exists("/f/top/beside/file"));
    EXPECT_FALSE(rig.device.Exists("/f/top/file"));
  }
}

}  // namespace
}  // namespace zq::engine::test
