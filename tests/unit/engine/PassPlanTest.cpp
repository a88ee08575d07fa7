#include <gtest/gtest.h>

#include <set>

#include "engine/PassPlan.h"

namespace zq::engine {
namespace {

TEST(PassPlan, GivesThreeWritesForEachRoundOfTheLevel) {
  for (const std::int32_t level : {3, 5, 7}) {
    const std::vector<Pass> passes = PassesOfLevel(level);
    ASSERT_EQ(passes.size(), static_cast<std::size_t>(level) * 3);
    std::set<std::uint8_t> patterns;
    for (std::size_t i = 0; i < passes.size(); i += 3) {
      EXPECT_FALSE(passes[i].random);
      EXPECT_FALSE(passes[i + 1].random);
      EXPECT_TRUE(passes[i + 2].random);
      EXPECT_EQ(passes[i].pattern ^ passes[i + 1].pattern, 0xFF);
      patterns.insert(passes[i].pattern);
      patterns.insert(passes[i + 1].pattern);
    }
    EXPECT_EQ(patterns.size(), static_cast<std::size_t>(level) * 2) << "no pattern comes twice";
  }
}

TEST(PassPlan, KnowsNoOtherLevel) {
  for (const std::int32_t level : {-3, 0, 1, 2, 4, 6, 8, 9, 2147483647})
    EXPECT_TRUE(PassesOfLevel(level).empty());
}

}  // namespace
}  // namespace zq::engine
