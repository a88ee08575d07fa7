#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/engine/EngineRig.h"
#include "wipe/LeftFillers.h"

namespace zq {
namespace {

using engine::test::FakeClock;
using engine::test::FakeDevice;

struct LeftFillersRig {
  LeftFillersRig() {
    device.passesNeeded = 0;  // nothing of them was ever anybody's
    device.MakeFile("/drive/ZQFILL-0123456789bc/z0000001", "")->stored = "x";
    device.MakeFile("/drive/ZQFILL-0123456789bc/z00000ff", "");
    device.MakeFile("/drive/mine", "mine");
  }
  FakeClock clock;
  FakeDevice device{clock};
};

TEST(LeftFillers, AreRemovedAndNothingElse) {
  LeftFillersRig rig;
  rig.device.MakeFile("/drive/ZQFILL-0123456789bd/letter.txt", "mine");
  EXPECT_TRUE(LeftFillers(rig.device, rig.clock).RemoveFrom("/drive"));
  EXPECT_FALSE(rig.device.Exists("/drive/ZQFILL-0123456789bc"));
  EXPECT_EQ(rig.device.Find("/drive/mine")->stored, "mine");
  EXPECT_EQ(rig.device.Find("/drive/ZQFILL-0123456789bd/letter.txt")->stored, "mine");
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(LeftFillers, WaitForTheNextStartWhereItTakesTooLong) {
  LeftFillersRig rig;
  rig.device.entryLatency = kLongestAtStart;
  EXPECT_FALSE(LeftFillers(rig.device, rig.clock).RemoveFrom("/drive"));
  EXPECT_TRUE(rig.device.Exists("/drive/ZQFILL-0123456789bc/z00000ff"));
  rig.device.entryLatency = {};
  EXPECT_TRUE(LeftFillers(rig.device, rig.clock).RemoveFrom("/drive"));
  EXPECT_FALSE(rig.device.Exists("/drive/ZQFILL-0123456789bc"));
}

TEST(LeftFillers, HaveOneLimitForAllDrives) {
  LeftFillersRig rig;
  LeftFillers left(rig.device, rig.clock);
  rig.clock.Advance(kLongestAtStart);
  EXPECT_FALSE(left.RemoveFrom("/drive"));
  EXPECT_TRUE(rig.device.Exists("/drive/ZQFILL-0123456789bc"));
}

TEST(LeftFillers, AreNotDoneWithOnADriveThatCannotBeOpened) {
  LeftFillersRig rig;
  EXPECT_FALSE(LeftFillers(rig.device, rig.clock).RemoveFrom("/nowhere"));
}

}  // namespace
}  // namespace zq
