#include <gtest/gtest.h>

#include "controls/BarLayout.h"

namespace zq {
namespace {

const BarLayout kArranged{{2, false, 210}, {1, true, 300}, {3, false, 1200}};
constexpr std::string_view kArrangedText =
    "Zeroquill bars 1\r\nband 2 same row 210\r\nband 1 new row 300\r\nband 3 same row 1200\r\n";

TEST(BarLayout, IsWrittenAsALineForEachBandInTheirOrder) {
  EXPECT_EQ(EncodeBarLayout(kArranged), kArrangedText);
}

TEST(BarLayout, ComesBackAsItWasWritten) {
  EXPECT_EQ(DecodeBarLayout(kArrangedText, 3), kArranged);
}

TEST(BarLayout, IsWrittenWithWidthsThatCanBeReadBack) {
  const BarLayout layout{{1, false, -5}, {2, false, 40000}};
  EXPECT_EQ(EncodeBarLayout(layout), "Zeroquill bars 1\r\nband 1 same row 0\r\nband 2 same row 32767\r\n");
  EXPECT_EQ(DecodeBarLayout(EncodeBarLayout(layout), 2), (BarLayout{{1, false, 0}, {2, false, 32767}}));
}

TEST(BarLayout, IsNotReadFromAFileThatEndsEarly) {
  for (std::size_t length = 0; length < kArrangedText.size(); ++length) {
    EXPECT_FALSE(DecodeBarLayout(kArrangedText.substr(0, length), 3)) << length;
  }
}

TEST(BarLayout, IsNotReadFromAFileOfAnotherVersion) {
  EXPECT_FALSE(DecodeBarLayout("Zeroquill bars 2\r\nband 1 same row 10\r\n", 1));
}

TEST(BarLayout, IsNotReadUnlessItHoldsEachBandOnce) {
  const auto decoded = [](const BarLayout& layout) { return DecodeBarLayout(EncodeBarLayout(layout), 2); };
  EXPECT_TRUE(decoded({{2, false, 1}, {1, false, 1}}));
  EXPECT_FALSE(decoded({{1, false, 1}}));
  EXPECT_FALSE(decoded({{1, false, 1}, {1, false, 1}}));
  EXPECT_FALSE(decoded({{1, false, 1}, {3, false, 1}}));
  EXPECT_FALSE(decoded({{0, false, 1}, {1, false, 1}}));
  EXPECT_FALSE(decoded({{1, false, 1}, {2, false, 1}, {3, false, 1}}));
}

TEST(BarLayout, IsNotReadFromTextThatWouldBeWrittenOtherwise) {
  const auto decoded = [](std::string_view line) {
    return DecodeBarLayout("Zeroquill bars 1\r\n" + std::string(line), 1);
  };
  EXPECT_TRUE(decoded("band 1 new row 10\r\n"));
  EXPECT_FALSE(decoded("band 1 new row 010\r\n"));
  EXPECT_FALSE(decoded("band 1 new row -1\r\n"));
  EXPECT_FALSE(decoded("band 1 new row 32768\r\n"));
  EXPECT_FALSE(decoded("band 1 new row 99999999999\r\n"));
  EXPECT_FALSE(decoded("band 1 new row 10\n"));
  EXPECT_FALSE(decoded("band 1  new row 10\r\n"));
  EXPECT_FALSE(decoded("band 1 new row 10\r\n\r\n"));
}

}  // namespace
}  // namespace zq
