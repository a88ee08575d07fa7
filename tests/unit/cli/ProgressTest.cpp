#include <gtest/gtest.h>

#include "cli/Progress.h"

namespace zq::cli {
namespace {

TEST(Progress, CountsEachItemByItsLength) {
  WorkShare work({1'000'000, 3'000'000});
  EXPECT_EQ(work.Share(), 0);
  work.Item(0, 0.5);
  EXPECT_NEAR(work.Share(), 0.125, 0.005);
  work.Item(1, 0.5);
  EXPECT_NEAR(work.Share(), 0.5, 0.005);
  work.Item(0, 1);
  work.Item(1, 1);
  EXPECT_DOUBLE_EQ(work.Share(), 1);
}

TEST(Progress, NeverGoesBackNorBeyondTheEnd) {
  WorkShare work({100, 100});
  work.Item(0, 0.8);
  const double before = work.Share();
  work.Item(0, 0.2);
  work.Item(0, -1);
  EXPECT_EQ(work.Share(), before);
  work.Item(0, 7);
  work.Item(1, 7);
  work.Item(1, 1);
  EXPECT_LE(work.Share(), 1);
}

TEST(Progress, MovesOverEmptyFilesToo) {
  WorkShare work({0, 0, 0, 0});
  work.Item(0, 1);
  EXPECT_DOUBLE_EQ(work.Share(), 0.25);
  EXPECT_EQ(WorkShare({}).Share(), 1);
}

TEST(Progress, TellsTheTimeLeftOnceItCanBeKnown) {
  EXPECT_EQ(ProgressText(0.5, 1'999, "a", 80), " 50%  a");
  EXPECT_EQ(ProgressText(0.5, 10'000, "a", 80), " 50%  10 s left  a");
  EXPECT_EQ(ProgressText(0.25, 60'000, "a", 80), " 25%  3 min 0 s left  a");
  EXPECT_EQ(ProgressText(0.001, 60'000, "a", 80), "  0%  a");
  EXPECT_EQ(ProgressText(0.999, 0, "a", 80), " 99%  a");
}

TEST(Progress, FitsTheLine) {
  EXPECT_EQ(ProgressText(0.5, 0, "abcdefghij", 14), " 50%  ...fghij");
  EXPECT_EQ(ProgressText(0.5, 0, "a\nb", 14), " 50%  a\\nb");
  for (std::size_t columns = 0; columns < 30; ++columns) {
    EXPECT_LE(ProgressText(0.5, 9'999'999, "some/path/that/is/long", columns).size(), columns);
  }
}

class FakeClock final : public engine::Clock {
 public:
  Time Now() const override { return now; }
  Time now{0};
};

TEST(Progress, IsDrawnTenTimesASecondAtMostAndTakenAwayAtTheEnd) {
  FakeClock clock;
  std::FILE* file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  {
    ProgressLine line(file, clock);
    for (int i = 0; i < 1'000; ++i) {  // one second
      line.Show(0.5, "a");
      clock.now += engine::Clock::Time(1'000);
    }
  }
  std::rewind(file);
  std::string text(1'000, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file));
  std::fclose(file);
  std::string wanted;
  for (int i = 0; i < 10; ++i) wanted += "\r 50%  a";
  EXPECT_EQ(text, wanted + "\r       \r");
}

TEST(Progress, IsNotDrawnWhereNobodyReadsIt) {
  FakeClock clock;
  ProgressLine line(nullptr, clock);
  line.Show(0.5, "a");
  line.Clear();
}

}  // namespace
}  // namespace zq::cli
