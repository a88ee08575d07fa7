#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "cli/Reports.h"
#include "cli/Runner.h"
#include "cli/System.h"
#include "unit/engine/Scratch.h"

namespace zq::cli {
namespace {

using engine::test::Scratch;
using engine::test::Utf8;
using engine::test::WriteBytes;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RunnerTest : public testing::Test {
 protected:
  RunnerTest() {
    std::filesystem::create_directories(scratch / "d/e");
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d/a.txt", "d/b.tmp", "d/e/a.txt"}) {
      WriteBytes(scratch / name, std::string(10'000, 'x'));
    }
#ifdef _WIN32
    surroundings.style = PathStyle::Windows;
#endif
  }

  std::string At(const std::string& name) const {
    return Utf8((scratch.Path() / engine::test::FromUtf8(name)).make_preferred());
  }

  void MakePlanFor(std::vector<std::string> names) {
    for (std::string& name : names) name = At(name);
    options.paths = std::move(names);
    plan = MakePlan(options, surroundings, *device, [] { return false; });
    ASSERT_THAT(plan.refusals, IsEmpty());
  }

  void Run() {
    ProgressLine noLine(nullptr, clock);
    Runner runner({*device, seeds, clock, noLine, [this] { return interrupted(); }}, options);
    result = runner.Run(plan);
    EXPECT_EQ(Count(plan, Outcome::Pending).Items(), 0u);
  }

  const Item& ItemAt(const std::string& name) const {
    return *std::ranges::find(plan.items, At(name), &Item::path);
  }

  ExitCode Code() const {
    return CodeOf(options, plan, result);
  }
  bool IsThere(const std::string& name) const {
    return Exists(At(name));
  }

  Scratch scratch;
  Options options;
  Surroundings surroundings;
  engine::SystemSeed seeds;
  engine::SteadyClock clock;
  std::unique_ptr<engine::Device> device = engine::MakeSystemDevice();
  std::function<bool()> interrupted = [] { return false; };
  Plan plan;
  RunResult result;
};

TEST_F(RunnerTest, WipesOneFile) {
  MakePlanFor({"a.txt"});
  Run();
  EXPECT_EQ(ItemAt("a.txt").outcome, Outcome::Wiped);
  EXPECT_EQ(Code(), ExitCode::AllGone);
  EXPECT_FALSE(IsThere("a.txt"));
  EXPECT_TRUE(IsThere("b.txt"));
}

TEST_F(RunnerTest, WipesTheNamedFilesOfAFolderAndNoOther) {
  MakePlanFor({"c.txt", "a.txt", "d/a.txt"});
  Run();
  EXPECT_EQ(Count(plan, Outcome::Wiped).files, 3u);
  EXPECT_EQ(Code(), ExitCode::AllGone);
  EXPECT_TRUE(IsThere("b.txt"));
  EXPECT_TRUE(IsThere("d/b.tmp"));
  EXPECT_FALSE(IsThere("a.txt") || IsThere("c.txt") || IsThere("d/a.txt"));
}

TEST_F(RunnerTest, WipesATreeWithNamesakes) {
  options.recursive = true;
  MakePlanFor({"d"});
  Run();
  EXPECT_THAT(plan.items, SizeIs(5));
  EXPECT_EQ(Count(plan, Outcome::Wiped).Items(), 5u);
  EXPECT_FALSE(IsThere("d"));
  EXPECT_TRUE(IsThere("a.txt"));
}

TEST_F(RunnerTest, WipesTheMatchingFiles) {
  options.mask = "*.txt";
  options.recursive = true;
  MakePlanFor({"d"});
  Run();
  EXPECT_EQ(Count(plan, Outcome::Wiped).Items(), 2u);
  EXPECT_TRUE(IsThere("d/b.tmp"));
  EXPECT_TRUE(IsThere("d/e"));
}

TEST_F(RunnerTest, TellsAFileThatVanishedApart) {
  MakePlanFor({"a.txt", "b.txt", "d/a.txt"});
  std::filesystem::remove(scratch / "b.txt");
  Run();
  EXPECT_EQ(ItemAt("a.txt").outcome, Outcome::Wiped);
  EXPECT_EQ(ItemAt("b.txt").outcome, Outcome::Kept);
  EXPECT_EQ(ItemAt("d/a.txt").outcome, Outcome::Wiped);
  EXPECT_EQ(Code(), ExitCode::SomeKept);
}

TEST_F(RunnerTest, TellsAFileThatCameLater) {
  options.recursive = true;
  MakePlanFor({"d"});
  WriteBytes(scratch / "d/late.txt", "x");
  Run();
  EXPECT_THAT(result.alsoWiped, testing::ElementsAre(At("d/late.txt")));
  EXPECT_FALSE(IsThere("d"));
  EXPECT_EQ(Code(), ExitCode::AllGone);
}

TEST_F(RunnerTest, TellsOfFilesThatHaveOtherNamesToo) {
  options.recursive = true;
  const std::string other = "other names, too. Under these";
  const auto count = [&] {
    return std::ranges::count_if(result.notes,
                                 [&](const std::string& note) { return note.find(other) != note.npos; });
  };
  std::filesystem::create_hard_link(scratch / "d/e/a.txt", scratch / "outside");
  std::filesystem::create_hard_link(scratch / "b.txt", scratch / "b2.txt");
  MakePlanFor({"d", "b.txt", "b2.txt"});
  Run();
  EXPECT_EQ(Code(), ExitCode::AllGone);
  EXPECT_EQ(count(), 1) << "both names of b.txt were given";
  const Finished finished{options, plan, result, Code(), "now"};
  EXPECT_THAT(JsonReport(finished), testing::HasSubstr("1 file has " + other));
  EXPECT_THAT(TextReport(finished), testing::HasSubstr("1 file has " + other));
  EXPECT_EQ(std::filesystem::file_size(scratch / "outside"), 0u);
}

TEST_F(RunnerTest, DestroysNothingOnceInterrupted) {
  options.recursive = true;
  MakePlanFor({"a.txt", "b.txt", "d"});
  interrupted = [] { return true; };
  Run();
  EXPECT_EQ(Code(), ExitCode::Cancelled);
  EXPECT_EQ(Count(plan, Outcome::Wiped).Items(), 0u);
  for (const Item& item : plan.items) EXPECT_EQ(item.reason, "cancelled before its turn");
  EXPECT_TRUE(IsThere("a.txt") && IsThere("b.txt") && IsThere("d/e/a.txt"));
}

TEST_F(RunnerTest, StopsInTheMiddleAndTellsHowFarItCame) {
  options.recursive = true;
  MakePlanFor({"d", "a.txt", "b.txt"});
  int looks = 0;
  interrupted = [&looks] { return ++looks > 2; };  // while the folder's files are in work together
  Run();
  EXPECT_EQ(Code(), ExitCode::Cancelled);
  EXPECT_TRUE(result.cancelled);
  EXPECT_TRUE(IsThere("d"));
  for (const Item& item : plan.items) {
    EXPECT_EQ(Exists(item.path), item.outcome == Outcome::Kept) << item.path;
    if (item.outcome == Outcome::Kept) {
      EXPECT_THAT(item.reason, HasSubstr("cancelled")) << item.path;
    }
  }
  EXPECT_EQ(ItemAt("b.txt").reason, "cancelled before its turn");
}

#ifndef _WIN32
// As while the question stands.
TEST_F(RunnerTest, TouchesNothingThatASwappedFolderLeadsTo) {
  options.recursive = true;
  std::filesystem::create_directories(scratch / "home/e");
  WriteBytes(scratch / "home/a.txt", "mine");
  WriteBytes(scratch / "home/e/a.txt", "mine");
  MakePlanFor({"d/a.txt", "d/b.tmp", "d/e"});
  std::filesystem::rename(scratch / "d", scratch / "elsewhere");
  std::filesystem::create_directory_symlink(scratch / "home", scratch / "d");
  Run();
  EXPECT_EQ(Count(plan, Outcome::Wiped).Items(), 0u);
  EXPECT_TRUE(IsThere("home/a.txt") && IsThere("home/e/a.txt"));
  EXPECT_EQ(std::filesystem::file_size(scratch / "home/e/a.txt"), 4u);
  EXPECT_TRUE(IsThere("elsewhere/e/a.txt"));
  EXPECT_EQ(Code(), ExitCode::SomeKept);
}
#endif

TEST_F(RunnerTest, TellsTheReasonOfWhatItCannotWipe) {
  options.recursive = true;
  MakePlanFor({"a.txt", "b.txt", "d"});
  // A folder has come in the place of a file.
  std::filesystem::remove(scratch / "d/e/a.txt");
  std::filesystem::create_directories(scratch / "d/e/a.txt/sub");
  std::filesystem::remove(scratch / "b.txt");
  std::filesystem::create_directory(scratch / "b.txt");
  Run();
  EXPECT_EQ(ItemAt("a.txt").outcome, Outcome::Wiped);
  EXPECT_EQ(ItemAt("b.txt").outcome, Outcome::Kept);
  EXPECT_FALSE(ItemAt("b.txt").reason.empty());
  // Gone, but not overwritten: what bore this name was no file any more.
  EXPECT_EQ(ItemAt("d/e/a.txt").outcome, Outcome::Kept);
  EXPECT_EQ(Code(), ExitCode::SomeKept);
  const Finished finished{options, plan, result, Code(), "now"};
  EXPECT_THAT(Complaints(finished), SizeIs(testing::Ge(2u)));
  EXPECT_THAT(TextReport(finished), HasSubstr("kept   " + At("b.txt") + ": "));
  EXPECT_THAT(JsonReport(finished), HasSubstr("\"exitCode\": 1"));
}

}  // namespace
}  // namespace zq::cli
