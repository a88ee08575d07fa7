// The walk would notice what it has left out.
#include <gtest/gtest-spi.h>

#include <algorithm>
#include <set>

#include "e2e/walk/Visits.h"

namespace zq::test {
namespace {

const std::string& TheProgram() {
  static const std::string path = ProgramFolder() + "\\Zeroquill\\Zeroquill.exe";
  return path;
}

TEST(WalkInventory, HasARowForEachTemplateOfTheProgramAndNoOther) {
  std::vector<int> templates = TemplatesIn(TheProgram());
  std::vector<int> rows;
  for (const WindowRow& row : WindowRows()) {
    if (row.templateId != 0) rows.push_back(row.templateId);
  }
  std::sort(templates.begin(), templates.end());
  std::sort(rows.begin(), rows.end());
  EXPECT_FALSE(templates.empty());
  EXPECT_EQ(rows, templates);
}

TEST(WalkInventory, HasAllCommandsAndTheirNumbersInOrder) {
  const std::vector<std::string> names = CommandNames();
  EXPECT_GT(names.size(), 20u);
  EXPECT_EQ(names.front(), "mnuFileNew");
  EXPECT_EQ(names.back(), "WipeFreeSpace");
  std::set<int> numbers;
  for (const std::string& name : names) numbers.insert(CommandIdOf(name));
  EXPECT_EQ(numbers.size(), names.size());
  EXPECT_THROW(CommandIdOf("mnuFileNone"), DriverError);
}

TEST(WalkInventory, NamesEachBoxOnce) {
  std::set<std::string_view> ids;
  for (const BoxRow& row : Boxes()) EXPECT_TRUE(ids.insert(row.id).second) << row.id;
  EXPECT_THROW(BoxOfId("none"), DriverError);
}

TEST(WalkInventory, TellsAllThatWasNotVisited) {
  std::size_t wanted = CommandNames().size();
  for (const WindowRow& row : WindowRows()) wanted += row.elsewhere.empty() ? 1 : 0;
  for (const BoxRow& row : Boxes()) wanted += row.elsewhere.empty() ? 1 : 0;
  ::testing::TestPartResultArray failures;
  {
    const ::testing::ScopedFakeTestPartResultReporter reporter(
        ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    Visits().ExpectAll(TheProgram());
  }
  EXPECT_EQ(static_cast<std::size_t>(failures.size()), wanted);
}

TEST(WalkInventory, HolesOfAPatternTakeAnyText) {
  EXPECT_TRUE(IsOfPattern("Remove C:\\a from your listing?", "Remove {} from your listing?"));
  EXPECT_TRUE(IsOfPattern("Remove  from your listing?", "Remove {} from your listing?"));
  EXPECT_FALSE(IsOfPattern("Remove C:\\a from your list?", "Remove {} from your listing?"));
  EXPECT_FALSE(IsOfPattern("Please remove it from your listing?", "Remove {} from your listing?"));
  EXPECT_TRUE(IsOfPattern("a - b - c", "{} - {}"));
  EXPECT_FALSE(IsOfPattern("a - b", "{} - {} - {}"));
  EXPECT_FALSE(IsOfPattern("whole and more", "whole"));
}

}  // namespace
}  // namespace zq::test
