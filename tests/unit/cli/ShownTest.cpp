#include <gtest/gtest.h>

#include "cli/Shown.h"

namespace zq::cli {
namespace {

TEST(Shown, MakesVisibleWhatATerminalWouldActUpon) {
  EXPECT_EQ(Shown("a b/é.txt"), "a b/é.txt");
  EXPECT_EQ(Shown("a\nb\tc\rd"), "a\\nb\\tc\\rd");
  EXPECT_EQ(Shown("\x1B[2J"), "\\x1B[2J");
  EXPECT_EQ(Shown("\x7F"), "\\x7F");
  EXPECT_EQ(Shown("\xC2\x9B"), "\\x9B");
  EXPECT_EQ(Shown("\xE2\x80\xAEtxt.exe"), "\\u202Etxt.exe");
  EXPECT_EQ(Shown("\xFF\xC3"), "\\xFF\\xC3");
  EXPECT_EQ(Shown("C:\\a"), "C:\\a");
}

TEST(Shown, IsShortenedAtItsFront) {
  EXPECT_EQ(Shortened("abcdef", 6), "abcdef");
  EXPECT_EQ(Shortened("abcdefg", 6), "...efg");
  EXPECT_EQ(Shortened("abcdefg", 2), "..");
  EXPECT_EQ(Shortened("abcdefg", 0), "");
  // Each of these may take two columns.
  EXPECT_EQ(Shortened("ééééé", 10), "ééééé");
  EXPECT_EQ(Shortened("éééééé", 9), "...ééé");
  EXPECT_EQ(Shortened("éééééé", 8), "...éé");
}

TEST(Shown, AmountsHaveAUnitThatFits) {
  EXPECT_EQ(ShownBytes(0), "0 bytes");
  EXPECT_EQ(ShownBytes(1), "1 byte");
  EXPECT_EQ(ShownBytes(1023), "1023 bytes");
  EXPECT_EQ(ShownBytes(1024), "1.0 KiB");
  EXPECT_EQ(ShownBytes(1536), "1.5 KiB");
  EXPECT_EQ(ShownBytes(1024 * 1024 - 1), "1.0 MiB");
  EXPECT_EQ(ShownBytes(std::uint64_t{5} << 30), "5.0 GiB");
  EXPECT_EQ(ShownBytes(~std::uint64_t{0}), "16.0 EiB");
}

TEST(Shown, TimesHaveTheirTwoLargestUnits) {
  EXPECT_EQ(ShownSeconds(0), "0 s");
  EXPECT_EQ(ShownSeconds(59), "59 s");
  EXPECT_EQ(ShownSeconds(60), "1 min 0 s");
  EXPECT_EQ(ShownSeconds(3599), "59 min 59 s");
  EXPECT_EQ(ShownSeconds(3600 + 5 * 60 + 59), "1 h 5 min");
}

TEST(Shown, TotalsNameOnlyWhatThereIs) {
  EXPECT_EQ(ShownTotals({}), "nothing");
  EXPECT_EQ(ShownTotals({1, 0, 0, 0, 4}), "1 file (4 bytes)");
  EXPECT_EQ(ShownTotals({2, 1, 3, 1, 2048}), "2 files (2.0 KiB), 1 folder, 3 links, 1 other");
}

}  // namespace
}  // namespace zq::cli
