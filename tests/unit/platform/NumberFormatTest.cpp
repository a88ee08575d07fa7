#include <gtest/gtest.h>

#include <limits>

#include "platform/NumberFormat.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

TEST(FormatGrouped, PutsASeparatorBetweenGroupsOfThree) {
  test::FakeRegional regional;
  struct Case {
    std::int64_t value;
    std::string_view text;
  };
  constexpr Case kCases[] = {
      {1, "1"},
      {12, "12"},
      {999, "999"},
      {1000, "1,000"},
      {1001, "1,001"},
      {32767, "32,767"},
      {100000, "100,000"},
      {999999999, "999,999,999"},
      {1234567890, "1,234,567,890"},
      {2147483647, "2,147,483,647"},
      {-1, "-1"},
      {-999, "-999"},
      {-1000, "-1,000"},
      {std::numeric_limits<std::int64_t>::max(), "9,223,372,036,854,775,807"},
      {std::numeric_limits<std::int64_t>::min(), "-9,223,372,036,854,775,808"},
  };
  for (const Case& c : kCases) EXPECT_EQ(FormatGrouped(c.value, regional), c.text);
}

TEST(FormatGrouped, ShowsZeroAsNothing) {
  test::FakeRegional regional;
  EXPECT_EQ(FormatGrouped(0, regional), "");
}

TEST(FormatGrouped, TakesTheUsersSeparatorOfAnyLength) {
  test::FakeRegional regional;
  regional.groupSeparator = "\xC2\xA0";
  EXPECT_EQ(FormatGrouped(1234567, regional),
            "1\xC2\xA0"
            "234\xC2\xA0"
            "567");
  regional.groupSeparator = "";
  EXPECT_EQ(FormatGrouped(1234567, regional), "1234567");
}

TEST(FormatTwoDecimals, ShowsADigitBeforeAndTwoBehindTheSeparator) {
  test::FakeRegional regional;
  struct Case {
    double value;
    std::string_view text;
  };
  constexpr Case kCases[] = {
      {0, "0.00"},
      {0.5, "0.50"},
      {0.01, "0.01"},
      {0.004, "0.00"},
      {1, "1.00"},
      {1500 / 1024.0, "1.46"},
      {1048575 / 1024.0, "1024.00"},
      {5120, "5120.00"},
      {1234567.891, "1234567.89"},  // no groups
      {0.999, "1.00"},
      {9.996, "10.00"},
      // Halves that a double holds exactly go away from zero.
      {0.125, "0.13"},
      {0.375, "0.38"},
      {0.625, "0.63"},
      {2.125, "2.13"},
      {-0.125, "-0.13"},
      {-1.5, "-1.50"},
      {-0.001, "0.00"},
  };
  for (const Case& c : kCases) EXPECT_EQ(FormatTwoDecimals(c.value, regional), c.text) << c.value;
}

TEST(FormatTwoDecimals, TakesTheUsersDecimalSeparator) {
  test::FakeRegional regional;
  regional.decimalSeparator = ",";
  EXPECT_EQ(FormatTwoDecimals(1.5, regional), "1,50");
}

TEST(FormatTwoDecimals, RaisesOverflowForWhatIsNoNumber) {
  test::FakeRegional regional;
  for (double value : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                       -std::numeric_limits<double>::infinity(), 1e300}) {
    SCOPED_TRACE(value);
    test::ExpectRaises(ErrorNumber::Overflow, [&] { FormatTwoDecimals(value, regional); });
  }
}

TEST(RoundToInt16, TakesTheNearestAndAHalfToItsEvenNeighbour) {
  struct Case {
    double value;
    std::int16_t rounded;
  };
  constexpr Case kCases[] = {
      {0, 0},
      {0.4, 0},
      {0.5, 0},
      {0.6, 1},
      {1.5, 2},
      {2.5, 2},
      {3.5, 4},
      {99.5, 100},
      {100.5, 100},
      {-0.5, 0},
      {-0.6, -1},
      {-1.5, -2},
      {-2.5, -2},
      {33.3, 33},
      {66.7, 67},
      {32767.4, 32767},
      {-32768.5, -32768},
      {32766.5, 32766},
      {0.49999999999999994, 0},
  };
  for (const Case& c : kCases) EXPECT_EQ(RoundToInt16(c.value), c.rounded) << c.value;
}

TEST(RoundToInt16, RaisesOverflowOutside16Bits) {
  for (double value : {32767.5, 32768.0, -32768.6, -32769.0, 1e10, -1e300,
                       std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    SCOPED_TRACE(value);
    test::ExpectRaises(ErrorNumber::Overflow, [&] { RoundToInt16(value); });
  }
}

}  // namespace
}  // namespace zq
