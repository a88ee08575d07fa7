#include <gtest/gtest.h>

#include <limits>

#include "support/fakes/FakeRegional.h"
#include "wipe/FreeSpaceProgress.h"

namespace zq {
namespace {

class FreeSpaceProgressTest : public testing::Test {
 protected:
  FreeSpaceUpdate Compute(std::int32_t percent, std::int32_t kbDone, std::int32_t kbTotal) {
    return ComputeFreeSpaceProgress(percent, kbDone, kbTotal, "C:\\", regional);
  }

  test::FakeRegional regional;
};

TEST_F(FreeSpaceProgressTest, TellsTheAmountTheShareAndTheDrive) {
  EXPECT_EQ(Compute(42, 1234567, 2939445),
            (FreeSpaceUpdate{.status = "Wiped 1,234,567 KB of 2,939,445 KB...",
                             .current = 42,
                             .caption = "42% - Wipe Drive Free Space (C:\\)"}));
}

TEST_F(FreeSpaceProgressTest, LeavesTheLabelWhileNothingIsDone) {
  EXPECT_EQ(Compute(0, 0, 2939445),
            (FreeSpaceUpdate{
                .status = std::nullopt, .current = 0, .caption = "0% - Wipe Drive Free Space (C:\\)"}));
  EXPECT_FALSE(Compute(7, 0, 10).status);
}

TEST_F(FreeSpaceProgressTest, TotalOfZeroPrintsAsNothing) {
  EXPECT_EQ(Compute(1, 5, 0).status, "Wiped 5 KB of  KB...");
}

TEST_F(FreeSpaceProgressTest, GroupsDigitsAsTheSystemDoes) {
  regional.groupSeparator = ".";
  EXPECT_EQ(Compute(1, 1000, 1000000).status, "Wiped 1.000 KB of 1.000.000 KB...");
}

TEST_F(FreeSpaceProgressTest, AHundredIsAShareStill) {
  EXPECT_EQ(Compute(100, 8, 8), (FreeSpaceUpdate{.status = "Wiped 8 KB of 8 KB...",
                                                 .current = 100,
                                                 .caption = "100% - Wipe Drive Free Space (C:\\)"}));
}

TEST_F(FreeSpaceProgressTest, FiguresAboveAHundredTellThatTheDriveHasChanged) {
  for (const std::int32_t percent : {101, 102, 250, 1000, std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(Compute(percent, 3, 8),
              (FreeSpaceUpdate{.status = "Drive contents changed.  Now including any additional free space "
                                         "in the wipe operation.  Please wait..." +
                                         std::to_string(percent) + "%...",
                               .current = 100,
                               .caption = "100% - Wipe Drive Free Space (C:\\)"}));
  }
}

TEST_F(FreeSpaceProgressTest, ComputesNoShareOfItsOwn) {
  EXPECT_EQ(Compute(3, 8, 8).current, 3);
  EXPECT_EQ(Compute(-5, 8, 8).caption, "-5% - Wipe Drive Free Space (C:\\)");
}

}  // namespace
}  // namespace zq
