// A window that is opened to the shell's drops: what is let through, and in what order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/DropMessages.h"
#include "support/fakes/FakeShellDrops.h"

namespace zq::test {
namespace {

using testing::ElementsAre;

struct DropMessagesTest : testing::Test {
  EventLog log;
  FakeShellDrops drops{log};
};

TEST_F(DropMessagesTest, AreLetThroughToTheOneWindowBeforeItAccepts) {
  EXPECT_TRUE(AdmitDrops(drops, 77));
  EXPECT_THAT(log, ElementsAre("allow 233", "allow 4a", "allow 49", "accept files"));
  EXPECT_EQ(drops.window, 77U);
}

TEST_F(DropMessagesTest, WindowToWhichOneOfThemIsRefusedAcceptsNothing) {
  drops.refused = kDropFilesMessage;
  EXPECT_FALSE(AdmitDrops(drops, 77));
  EXPECT_THAT(log, ElementsAre("allow 233"));
  log.clear();
  drops.refused = kCopyGlobalMessage;
  EXPECT_FALSE(AdmitDrops(drops, 77));
  EXPECT_THAT(log, ElementsAre("allow 233", "allow 4a", "allow 49"));
}

// The levels of Windows: 0x2000 medium, 0x3000 high.
TEST(ShellDrops, AreHeldBackFromAProcessOfHigherRightsThanTheShellsAlone) {
  EXPECT_TRUE(HoldsBack(0x3000, 0x2000));
  EXPECT_FALSE(HoldsBack(0x3000, 0x3000)) << "without user account control the shell has them too";
  EXPECT_FALSE(HoldsBack(0x2000, 0x2000));
  EXPECT_FALSE(HoldsBack(0x1000, 0x2000));
}

TEST(ShellDrops, AreNotHeldBackWhereALevelIsNotKnown) {
  EXPECT_FALSE(HoldsBack(0x3000, std::nullopt));
  EXPECT_FALSE(HoldsBack(std::nullopt, 0x2000));
  EXPECT_FALSE(HoldsBack(std::nullopt, std::nullopt));
}

}  // namespace
}  // namespace zq::test
