#include <gtest/gtest.h>

#include "platform/RunTimeError.h"

namespace zq {
namespace {

TEST(RunTimeError, ReportNamesNumberAndDescription) {
  EXPECT_EQ(ReportText(RunTimeError(ErrorNumber::Overflow)), "Run-time error '6':\r\n\r\nOverflow");
  EXPECT_EQ(ReportText(RunTimeError(ErrorNumber::PathFileAccessError)),
            "Run-time error '75':\r\n\r\nPath/File access error");
}

TEST(RunTimeError, SixteenBitCountersOverflowAtTheirBounds) {
  EXPECT_EQ(ToInt16(32767), 32767);
  EXPECT_EQ(ToInt16(-32768), -32768);
  for (std::int64_t tooLarge : {std::int64_t{32768}, std::int64_t{-32769}, std::int64_t{1} << 40}) {
    try {
      ToInt16(tooLarge);
      FAIL() << tooLarge;
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::Overflow);
    }
  }
}

}  // namespace
}  // namespace zq
