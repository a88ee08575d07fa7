#include "cli/Plan.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "cli/System.h"
#include "unit/engine/Scratch.h"

namespace zq::cli {
namespace {

using engine::test::Scratch;
using engine::test::Utf8;
using engine::test::WriteBytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class PlanTest : public testing::Test {
 protected:
  PlanTest() {
    std::filesystem::create_directories(scratch / "d/e");
    WriteBytes(scratch / "a.txt", "12345");
    WriteBytes(scratch / "b.tmp", "1");
    WriteBytes(scratch / "d/one.txt", "123");
    WriteBytes(scratch / "d/two.tmp", "12");
    WriteBytes(scratch / "d/e/three.tmp", "1234");
#ifdef _WIN32
    surroundings.style = PathStyle::Windows;
#endif
  }

  std::string At(const std::string& name) const {
    return Utf8((scratch.Path() / engine::test::FromUtf8(name)).make_preferred());
  }

  Plan Make(std::vector<std::string> names) {
    for (std::string& name : names) name = At(name);
    options.paths = std::move(names);
    return MakePlan(options, surroundings, *device, [] { return false; });
  }

  // The names of the items with that outcome, as they follow the scratch folder.
  std::vector<std::string> Names(const Plan& plan, Outcome outcome) const {
    std::vector<std::string> names;
    for (const Item& item : plan.items) {
      if (item.outcome != outcome) continue;
      names.push_back(item.path.substr(Utf8(scratch.Path()).size() + 1));
      std::ranges::replace(names.back(), '\\', '/');
    }
    return names;
  }

  Scratch scratch;
  Options options;
  Surroundings surroundings;
  std::unique_ptr<engine::Device> device = engine::MakeSystemDevice();
};

TEST_F(PlanTest, ListsFilesWithTheirLengths) {
  const Plan plan = Make({"a.txt", "b.tmp"});
  EXPECT_THAT(Names(plan, Outcome::Pending), ElementsAre("a.txt", "b.tmp"));
  ASSERT_THAT(plan.targets, SizeIs(1));
  EXPECT_THAT(plan.targets[0].files, SizeIs(2));
  const Totals totals = Count(plan, Outcome::Pending);
  EXPECT_EQ(totals.files, 2u);
  EXPECT_EQ(totals.bytes, 6u);
}

TEST_F(PlanTest, ListsAWholeFolderWithEachFolderAfterWhatItHolds) {
  options.recursive = true;
  const Plan plan = Make({"d"});
  EXPECT_THAT(Names(plan, Outcome::Pending),
              ElementsAre("d/e/three.tmp", "d/e", "d/one.txt", "d/two.tmp", "d"));
  ASSERT_THAT(plan.targets, SizeIs(1));
  EXPECT_EQ(plan.targets[0].kind, Target::Kind::Tree);
  EXPECT_EQ(Count(plan, Outcome::Pending).folders, 2u);
}

TEST_F(PlanTest, ListsTheMatchingFilesAndNoFolder) {
  options.mask = "*.tmp";
  EXPECT_THAT(Names(Make({"d"}), Outcome::Pending), ElementsAre("d/two.tmp"));
  options.recursive = true;
  EXPECT_THAT(Names(Make({"d"}), Outcome::Pending), ElementsAre("d/e/three.tmp", "d/two.tmp"));
  options.mask = "*.*";
  EXPECT_THAT(Names(Make({"d"}), Outcome::Pending), SizeIs(3));
  options.mask = "nothing";
  const Plan plan = Make({"d"});
  EXPECT_THAT(plan.items, IsEmpty());
  EXPECT_THAT(plan.targets, IsEmpty());
}

TEST_F(PlanTest, RefusesAFolderThatWasNotMeant) {
  const Plan plan = Make({"a.txt", "d"});
  ASSERT_THAT(plan.refusals, SizeIs(1));
  EXPECT_THAT(plan.refusals[0], HasSubstr("--recursive"));
  EXPECT_THAT(plan.targets, IsEmpty());
}

TEST_F(PlanTest, RefusesAllWhenOnePathIsProtected) {
  surroundings.homes = {{Locate(At("d/e")).canonical, {}, {}}};
  options.recursive = true;
  for (const char* name : {"d/e", "d", "d/."}) {
    const Plan plan = Make({"a.txt", name});
    EXPECT_THAT(plan.refusals, SizeIs(1)) << name;
    EXPECT_THAT(plan.targets, IsEmpty()) << name;
  }
}

TEST_F(PlanTest, TakesOnceWhatIsNamedTwice) {
  EXPECT_THAT(Names(Make({"a.txt", "d/../a.txt", "a.txt"}), Outcome::Pending), ElementsAre("a.txt"));
  options.recursive = true;
  EXPECT_THAT(Make({"d", "d/", "d/e/../../d"}).items, SizeIs(5));
}

TEST_F(PlanTest, TakesOnceWhatLiesInAFolderThatIsNamedToo) {
  options.recursive = true;
  for (const auto& names : std::vector<std::vector<std::string>>{
           {"d", "d/e", "d/one.txt"}, {"d/one.txt", "d/e", "d"}, {"d/e/three.tmp", "d"}}) {
    const Plan plan = Make(names);
    EXPECT_THAT(plan.items, SizeIs(5));
    EXPECT_THAT(plan.targets, SizeIs(1));
  }
}

TEST_F(PlanTest, TakesWithAMaskTheFilesThatAreNamedToo) {
  options.mask = "*.tmp";
  EXPECT_THAT(Names(Make({"d/one.txt", "d/two.tmp", "d", "d/e"}), Outcome::Pending),
              UnorderedElementsAre("d/two.tmp", "d/e/three.tmp", "d/one.txt"));
}

TEST_F(PlanTest, KnowsBeforehandWhatIsMissing) {
  const Plan plan = Make({"a.txt", "missing", "missing/too", "b.tmp/"});
  EXPECT_THAT(Names(plan, Outcome::Pending), ElementsAre("a.txt"));
  EXPECT_THAT(Names(plan, Outcome::Kept), SizeIs(3));
  for (const Item& item : plan.items) EXPECT_EQ(item.reason.empty(), item.outcome == Outcome::Pending);
}

TEST_F(PlanTest, StopsWhenItIsInterrupted) {
  options.recursive = true;
  options.paths = {At("d")};
  int looks = 0;
  const Plan plan = MakePlan(options, surroundings, *device, [&looks] { return ++looks > 2; });
  EXPECT_LT(plan.items.size(), 5u);
}

#ifndef _WIN32  // Links need a right there that not everybody has.
TEST_F(PlanTest, KeepsALinkThatIsNamedAndTakesThoseInAFolder) {
  std::filesystem::create_symlink("one.txt", scratch / "d/link");
  std::filesystem::create_directory_symlink("e", scratch / "d/folderlink");
  std::filesystem::create_directory_symlink("d", scratch / "top");
  options.recursive = true;
  Plan plan = Make({"d/link", "d/folderlink", "top", "top/"});
  EXPECT_THAT(plan.targets, IsEmpty());
  EXPECT_THAT(Names(plan, Outcome::Kept), SizeIs(3));

  plan = Make({"d"});
  EXPECT_EQ(Count(plan, Outcome::Pending).links, 2u);
  EXPECT_THAT(plan.items, SizeIs(7));
}

TEST_F(PlanTest, ResolvesTheLinksOnTheWay) {
  std::filesystem::create_directory_symlink("d", scratch / "way");
  EXPECT_THAT(Make({"way/one.txt", "d/one.txt"}).items, SizeIs(1));
  options.recursive = true;
  EXPECT_THAT(Make({"way/e", "d/e"}).targets, SizeIs(1));
  surroundings.homes = {{Locate(At("d/e")).canonical, {}, {}}};
  EXPECT_THAT(Make({"way/e"}).refusals, SizeIs(1));
}

TEST_F(PlanTest, PlainlyKeepsFoldersInWhichSomethingStays) {
  ASSERT_EQ(::mkfifo((scratch / "d/e/pipe").c_str(), 0600), 0);
  options.recursive = true;
  const Plan plan = Make({"d"});
  EXPECT_THAT(Names(plan, Outcome::Kept), ElementsAre("d/e/pipe", "d/e", "d"));
}
#endif

}  // namespace
}  // namespace zq::cli
