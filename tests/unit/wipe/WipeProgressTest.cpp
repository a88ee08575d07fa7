#include <gtest/gtest.h>

#include <limits>

#include "support/ExpectRaises.h"
#include "support/fakes/FakeRegional.h"
#include "wipe/WipeProgress.h"

namespace zq {
namespace {

using test::ExpectRaises;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

class WipeProgressTest : public testing::Test {
 protected:
  ProgressUpdate Progress(std::int32_t done, std::int32_t total, std::int64_t processed,
                          std::int64_t counted) {
    return ComputeProgress(done, total, "a.txt", FixedPoint(processed), FixedPoint(counted), regional);
  }
  test::FakeRegional regional;
};

TEST_F(WipeProgressTest, TheStatusTellsBothNumbersAndTheName) {
  EXPECT_EQ(Progress(1, 2, 0, 1).status, "Processed 1 bytes of 2 of a.txt...");
  EXPECT_EQ(Progress(1234, 12345678, 0, 1).status, "Processed 1,234 bytes of 12,345,678 of a.txt...");
  EXPECT_EQ(Progress(999, kMost, 0, 1).status, "Processed 999 bytes of 2,147,483,647 of a.txt...");
}

TEST_F(WipeProgressTest, AZeroLeavesTwoBlanksSideBySide) {
  EXPECT_EQ(Progress(0, 5, 0, 1).status, "Processed  bytes of 5 of a.txt...");
  EXPECT_EQ(Progress(0, 0, 0, 1).status, "Processed  bytes of  of a.txt...");
}

TEST_F(WipeProgressTest, NumbersAreGroupedInTheUsersWay) {
  regional.groupSeparator = ".";
  EXPECT_EQ(Progress(1000, 1234567, 0, 1).status, "Processed 1.000 bytes of 1.234.567 of a.txt...");
  regional.groupSeparator = "\u202f";
  EXPECT_EQ(Progress(1000, 2000, 0, 1).status, "Processed 1\u202f000 bytes of 2\u202f000 of a.txt...");
  regional.groupSeparator = "";
  EXPECT_EQ(Progress(1000, 2000, 0, 1).status, "Processed 1000 bytes of 2000 of a.txt...");
}

TEST_F(WipeProgressTest, NamesOfAnyScriptAreShownAsTheyCome) {
  const ProgressUpdate update =
      ComputeProgress(1, 2, "C:\\\u0416\u4e2d\U0001F600.txt", FixedPoint(0), FixedPoint(1), regional);
  EXPECT_EQ(update.status, "Processed 1 bytes of 2 of C:\\\u0416\u4e2d\U0001F600.txt...");
}

TEST_F(WipeProgressTest, TheCurrentItemGoesFromNothingToAHundred) {
  struct Case {
    std::int32_t done, total, percent;
  };
  constexpr Case kCases[] = {
      {0, 100, 0},
      {1, 100, 1},
      {99, 100, 99},
      {100, 100, 100},
      {101, 100, 100},  // more than there is shows as all
      {kMost, kMost, 100},
      {kMost - 1, kMost, 100},
      {kMost / 2, kMost, 50},
      {1, kMost, 0},
      {1, 200, 0},  // 0.5: a half goes to the even neighbour
      {3, 200, 2},  // 1.5
      {5, 200, 2},  // 2.5
      {7, 200, 4},  // 3.5
      {199, 200, 100},
      {115, 200, 57},  // the share is a little below 0.575 in double precision, so this is no half
      {1, 3, 33},
      {2, 3, 67},
      {-1, 100, -1},
      {5, -1, 100},
  };
  for (const Case& c : kCases) {
    const ProgressUpdate update = Progress(c.done, c.total, 0, 1);
    EXPECT_TRUE(update.setsCurrent) << c.done << " of " << c.total;
    EXPECT_EQ(update.current, c.percent) << c.done << " of " << c.total;
  }
}

TEST_F(WipeProgressTest, AnEmptyFileLeavesItsBarAloneWhileTheOverallBarMoves) {
  const ProgressUpdate update = Progress(0, 0, 1, 4);
  EXPECT_FALSE(update.setsCurrent);
  EXPECT_EQ(update.overall, 25);
  EXPECT_EQ(update.caption, "25% - Wipe Operation");
  EXPECT_FALSE(Progress(7, 0, 1, 4).setsCurrent);
}

TEST_F(WipeProgressTest, OverallCountsFilesAndNotBytes) {
  struct Case {
    std::int64_t processed, counted;
    const char* caption;
  };
  constexpr Case kCases[] = {
      {0, 2, "0% - Wipe Operation"},     {1, 2, "50% - Wipe Operation"},
      {2, 2, "100% - Wipe Operation"},   {1, 200, "0% - Wipe Operation"},  // 0.5
      {3, 200, "2% - Wipe Operation"},                                     // 1.5
      {5, 200, "2% - Wipe Operation"},                                     // 2.5
      {52, 50, "104% - Wipe Operation"}, {1, 922337203685477, "0% - Wipe Operation"},
  };
  for (const Case& c : kCases) {
    const ProgressUpdate update = Progress(10, 100, c.processed, c.counted);
    EXPECT_EQ(update.caption, c.caption);
    EXPECT_EQ(std::to_string(update.overall) + "% - Wipe Operation", c.caption);
    EXPECT_EQ(update.current, 10);
  }
}

TEST_F(WipeProgressTest, ThePercentageIsHeldIn16Bits) {
  EXPECT_EQ(Progress(10, 100, 32767, 100).overall, 32767);
  ExpectRaises(ErrorNumber::Overflow, [&] { Progress(10, 100, 32768, 100); });
}

TEST_F(WipeProgressTest, AJobOfOneFileShowsTheFilesProgressInBothBars) {
  for (const std::int64_t counted : {0, 1}) {
    for (const std::int64_t processed : {0, 1, 2}) {
      const ProgressUpdate update = Progress(30, 100, processed, counted);
      EXPECT_EQ(update.current, 30);
      EXPECT_EQ(update.overall, 30);
      EXPECT_EQ(update.caption, "30% - Wipe Operation");
    }
    EXPECT_EQ(Progress(0, 0, 1, counted).overall, 0);  // an empty file
  }
}

}  // namespace
}  // namespace zq
