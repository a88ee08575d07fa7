#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "debug/LiveCount.h"

namespace zq::debug {
namespace {

std::ptrdiff_t Live(std::string_view name) {
  for (const Reading& reading : LiveCounts()) {
    if (reading.name == name) return reading.live;
  }
  ADD_FAILURE() << "no counter of " << name;
  return 0;
}

TEST(LiveCount, HasANameForEachKind) {
  const std::vector<Reading> readings = LiveCounts();
  EXPECT_EQ(readings.size(), static_cast<std::size_t>(Kind::Count));
  std::set<std::string> names;
  for (const Reading& reading : readings) {
    ASSERT_NE(reading.name, nullptr);
    EXPECT_TRUE(names.insert(reading.name).second) << reading.name << " twice";
  }
  EXPECT_STREQ(readings[static_cast<std::size_t>(Kind::Font)].name, "fonts");
  EXPECT_STREQ(readings[static_cast<std::size_t>(Kind::HeapByte)].name, "heap bytes");
}

TEST(LiveCount, AddsToOneKindAlone) {
  const std::ptrdiff_t icons = Live("icons");
  const std::ptrdiff_t fonts = Live("fonts");
  Count(Kind::Icon, 3);
  Count(Kind::Icon, -1);
  EXPECT_EQ(Live("icons"), icons + 2);
  EXPECT_EQ(Live("fonts"), fonts);
  Count(Kind::Icon, -2);
}

TEST(LiveCount, FollowsAnOwnerThroughCopiesMovesAndItsEnd) {
  struct Owner {
    Alive<Kind::Form> alive;
  };
  const std::ptrdiff_t before = Live("forms");
  {
    std::optional<Owner> first(std::in_place);
    Owner second = *first;
    const Owner third = std::move(second);
    EXPECT_EQ(Live("forms"), before + 3);
    second = third;
    EXPECT_EQ(Live("forms"), before + 3);
    first.reset();
    EXPECT_EQ(Live("forms"), before + 2);
  }
  EXPECT_EQ(Live("forms"), before);
}

// A window tells its text's length before the text.
TEST(LiveCount, IsATextOfTheSameLengthWhateverTheCounts) {
  const std::string before = InLines(LiveCounts());
  Count(Kind::HeapByte, 123'456'789'012);
  const std::string after = InLines(LiveCounts());
  Count(Kind::HeapByte, -123'456'789'012);
  EXPECT_EQ(before.size(), after.size());
  EXPECT_NE(after.find("heap bytes:    123456789012\n"), std::string::npos) << after;
  EXPECT_EQ(std::count(after.begin(), after.end(), '\n'), static_cast<std::ptrdiff_t>(Kind::Count));
}

}  // namespace
}  // namespace zq::debug
