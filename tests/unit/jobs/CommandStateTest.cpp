#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "jobs/CommandState.h"
#include "jobs/JobList.h"
#include "platform/RunTimeError.h"
#include "support/Rows.h"
#include "support/fakes/FakeRegional.h"
#include "support/fakes/FakeToolStates.h"

namespace zq {
namespace {

using testing::ElementsAre;

// Notes only when it has to show the rows.
class ListView final : public JobListView {
 public:
  explicit ListView(test::EventLog& log) : log_(log) {}
  void RevealRows(int) override {}
  void RowsChanged() override {}
  void RowChanged(int) override {}
  void SelectionChanged(int) override {}
  void ShowPendingRows() override { log_.push_back("rows shown"); }

 private:
  test::EventLog& log_;
};

class CommandStateTest : public testing::Test {
 protected:
  void AddFiles(int count) {
    for (int i = 0; i < count; ++i) {
      jobList.Add(test::FileRow("C:\\file" + std::to_string(i)));
    }
  }
  void AddFolder() { jobList.Add(test::FolderRow("C:\\Papers")); }
  void Update() { UpdateCommandState(state, jobList, tools, regional); }

  test::FakeRegional regional;
  AppState state;
  JobList jobList{regional};
  test::EventLog log;
  test::FakeToolStates tools{log};
};

TEST_F(CommandStateTest, SetsAllInOrderForAnEmptyUntitledJob) {
  Update();
  EXPECT_THAT(log, ElementsAre("-mnuFileDelete", "-mnuFileClose", "-WipeNow", "-mnuActionsWipeNow",
                               "-mnuActionsRemove", "-SaveJob", "-mnuFileSave", "Static3=0 Items",
                               "-mnuActionsEdit"));
}

TEST_F(CommandStateTest, SetsAllInOrderForANamedJobWithASelectedFolder) {
  state.CurrentJobName = "Old papers";
  AddFolder();
  jobList.UserSelected(1);
  Update();
  EXPECT_THAT(log, ElementsAre("+mnuFileDelete", "+mnuFileClose", "+WipeNow", "+mnuActionsWipeNow",
                               "+mnuActionsRemove", "+SaveJob", "+mnuFileSave", "Static3=1 Item",
                               "-mnuActionsEdit", "+mnuActionsEdit"));
}

TEST_F(CommandStateTest, HasTheListShowItsRowsBeforeAnythingTellsOfThem) {
  ListView view(log);
  jobList.SetView(&view);
  AddFiles(1);
  Update();
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(log.front(), "rows shown");
}

TEST_F(CommandStateTest, EnablesDeleteByTheNameAndTheRestByTheRows) {
  state.CurrentJobName = "Old papers";
  Update();
  EXPECT_TRUE(tools.enabledTools["mnuFileDelete"]);
  EXPECT_FALSE(tools.enabledTools["mnuFileClose"]);
  EXPECT_FALSE(tools.enabledTools["mnuFileSave"]);

  state.CurrentJobName = "";
  AddFiles(1);
  Update();
  EXPECT_FALSE(tools.enabledTools["mnuFileDelete"]);
  EXPECT_TRUE(tools.enabledTools["mnuFileClose"]);
  EXPECT_TRUE(tools.enabledTools["mnuFileSave"]);

  jobList.Remove(1);
  Update();
  EXPECT_FALSE(tools.enabledTools["WipeNow"]);
  EXPECT_FALSE(tools.enabledTools["mnuActionsWipeNow"]);
}

TEST_F(CommandStateTest, CountsTheItemsInThePanel) {
  regional.groupSeparator = ".";
  std::size_t rows = 0;
  struct Case {
    std::size_t count;
    std::string_view text;
  };
  constexpr Case kCases[] = {{0, "0 Items"},     {1, "1 Item"},         {2, "2 Items"},
                             {999, "999 Items"}, {1000, "1.000 Items"}, {1234, "1.234 Items"}};
  for (const Case& c : kCases) {
    AddFiles(static_cast<int>(c.count - rows));
    rows = c.count;
    Update();
    EXPECT_EQ(tools.panels["Static3"], c.text);
  }
}

TEST_F(CommandStateTest, EnablesEditForASelectedFolderRowAlone) {
  AddFiles(1);
  AddFolder();
  const auto editFor = [&](int selected) {
    jobList.UserSelected(selected);
    tools.enabledTools["mnuActionsEdit"] = true;
    UpdateActionsMenu(jobList, tools);
    return tools.enabledTools["mnuActionsEdit"];
  };
  EXPECT_FALSE(editFor(1));
  EXPECT_TRUE(editFor(2));
  EXPECT_FALSE(editFor(0)) << "nothing selected";
  EXPECT_FALSE(editFor(3)) << "no such row";
  jobList.Clear();
  EXPECT_FALSE(editFor(1)) << "empty list";
}

TEST_F(CommandStateTest, TouchesNothingButEditWhenTheActionsMenuOpens) {
  UpdateActionsMenu(jobList, tools);
  EXPECT_THAT(log, ElementsAre("-mnuActionsEdit"));
}

TEST_F(CommandStateTest, PassesOverAFailureInTheStepOfEditAlone) {
  tools.missingTool = "mnuActionsEdit";
  Update();
  EXPECT_EQ(log.back(), "Static3=0 Items");
  tools.missingTool = "WipeNow";
  EXPECT_THROW(Update(), RunTimeError);
}

}  // namespace
}  // namespace zq
