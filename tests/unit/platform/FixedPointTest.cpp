#include <gtest/gtest.h>

#include "platform/FixedPoint.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

constexpr std::int64_t kLargest = 922337203685477;

TEST(FixedPoint, StartsAtZero) {
  EXPECT_EQ(FixedPoint(), FixedPoint(0));
  EXPECT_EQ(FixedPoint().Whole(), 0);
}

TEST(FixedPoint, HoldsWholeNumbersExactlyUpToItsBound) {
  for (std::int64_t whole :
       {std::int64_t{1}, std::int64_t{-1}, std::int64_t{4294967296}, kLargest, -kLargest}) {
    EXPECT_EQ(FixedPoint(whole).Whole(), whole);
    EXPECT_EQ(FixedPoint(whole).ToDouble(), static_cast<double>(whole));
  }
}

TEST(FixedPoint, RaisesOverflowBeyondItsBound) {
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint{kLargest + 1}; });
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint{-kLargest - 1}; });
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint{INT64_MAX}; });
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint{INT64_MIN}; });
}

TEST(FixedPoint, JoinsTheTwoWordsOfALengthUnsigned) {
  struct Case {
    std::uint32_t high;
    std::uint32_t low;
    std::int64_t whole;
  };
  constexpr Case kCases[] = {
      {0, 0, 0},
      {0, 1, 1},
      {0, 0x7FFFFFFF, 2147483647},
      {0, 0x80000000, 2147483648},
      {0, 0xFFFFFFFF, 4294967295},
      {1, 0, 4294967296},
      {1, 0xFFFFFFFF, 8589934591},
      {214748, 1566804069, kLargest},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(FixedPoint::FromWords(c.high, c.low), FixedPoint(c.whole)) << c.whole;
}

TEST(FixedPoint, RaisesOverflowForALengthBeyondItsBound) {
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint::FromWords(214748, 1566804070); });
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint::FromWords(0x7FFFFFFF, 0xFFFFFFFF); });
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint::FromWords(0x80000000, 0); });
  test::ExpectRaises(ErrorNumber::Overflow, [] { FixedPoint::FromWords(0xFFFFFFFF, 0xFFFFFFFF); });
}

TEST(FixedPoint, Counts) {
  FixedPoint count;
  ++count;
  ++count;
  count += FixedPoint(40);
  EXPECT_EQ(count, FixedPoint(42));
}

TEST(FixedPoint, KeepsItsValueWhenASumOverflows) {
  FixedPoint count(kLargest);
  test::ExpectRaises(ErrorNumber::Overflow, [&] { ++count; });
  EXPECT_EQ(count.Whole(), kLargest);
  test::ExpectRaises(ErrorNumber::Overflow, [&] { count += FixedPoint(kLargest); });
  EXPECT_EQ(count.Whole(), kLargest);
}

TEST(FixedPoint, Compares) {
  EXPECT_LT(FixedPoint(1), FixedPoint(2));
  EXPECT_GT(FixedPoint(0), FixedPoint(-1));
  EXPECT_NE(FixedPoint(1), FixedPoint(0));
}

}  // namespace
}  // namespace zq
