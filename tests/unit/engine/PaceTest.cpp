#include <gtest/gtest.h>

#include "engine/Pace.h"

namespace zq::engine {
namespace {

using std::chrono::milliseconds;

TEST(Pace, DoublesWhileTheDeviceIsQuickUpToTheLargestUnit) {
  Pace pace;
  const std::size_t first = pace.UnitBytes(Access::Direct);
  pace.UnitTook(milliseconds(1), first);
  EXPECT_EQ(pace.UnitBytes(Access::Direct), first * 2);
  for (int i = 0; i < 20; ++i) pace.UnitTook(milliseconds(1), pace.UnitBytes(Access::Direct));
  EXPECT_EQ(pace.UnitBytes(Access::Direct), Pace::kLargestUnit);
}

TEST(Pace, HalvesWhenTheDeviceGetsSlow) {
  Pace pace;
  for (int i = 0; i < 20; ++i) pace.UnitTook(milliseconds(1), pace.UnitBytes(Access::Direct));
  pace.UnitTook(milliseconds(200), Pace::kLargestUnit);
  EXPECT_EQ(pace.UnitBytes(Access::Direct), Pace::kLargestUnit / 2);
  for (int i = 0; i < 30; ++i) pace.UnitTook(milliseconds(200), 1);
  EXPECT_EQ(pace.UnitBytes(Access::Direct), 4096u) << "and stays aligned";
}

TEST(Pace, LearnsNothingFromAWriteThatWasSmallerThanTheUnit) {
  Pace pace;
  const std::size_t first = pace.UnitBytes(Access::Direct);
  pace.UnitTook(milliseconds(1), first - 1);
  EXPECT_EQ(pace.UnitBytes(Access::Direct), first);
}

// However long one takes: all that are under way have to end before a cancel gets through.
TEST(Pace, BoundsTheTransfersUnderWayByTheTimeUntilAllHaveEnded) {
  Pace pace;
  EXPECT_EQ(pace.TransfersAtOnce(), 1u);
  for (int i = 0; i < 20; ++i) pace.TransferTook(milliseconds(1));
  EXPECT_EQ(pace.TransfersAtOnce(), Pace::kMostTransfers);
  // The device does one after the other.
  for (const int eachTakes : {1, 2, 4, 8, 16, 32}) {
    const auto untilAllEnd = [&] { return static_cast<int>(pace.TransfersAtOnce()) * eachTakes; };
    for (int i = 0; i < 20; ++i) pace.TransferTook(milliseconds(untilAllEnd()));
    EXPECT_LE(untilAllEnd(), 100) << eachTakes;
    EXPECT_GE(untilAllEnd(), 20) << eachTakes;
  }
  for (int i = 0; i < 20; ++i) pace.TransferTook(milliseconds(500));
  EXPECT_EQ(pace.TransfersAtOnce(), 1u);
}

TEST(Pace, BoundsWhatWaitsInACacheByTheTimeOfItsFlush) {
  Pace pace;
  const std::uint64_t first = pace.FlushAfterBytes(Access::Cached);
  EXPECT_LE(pace.UnitBytes(Access::Cached), first);
  pace.FlushTook(milliseconds(100), first, Access::Cached);
  EXPECT_EQ(pace.FlushAfterBytes(Access::Cached), first / 2);
  EXPECT_LE(pace.UnitBytes(Access::Cached), first / 2);
  for (int i = 0; i < 40; ++i) {
    pace.FlushTook(milliseconds(5), pace.FlushAfterBytes(Access::Cached), Access::Cached);
  }
  EXPECT_EQ(pace.FlushAfterBytes(Access::Cached), std::uint64_t{128} << 20);
}

}  // namespace
}  // namespace zq::engine
