#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

TEST(ReportList, KeepsItemsInOrder) {
  ReportList list;
  EXPECT_EQ(list.Count(), 0);
  list.Add("first");
  list.Add("");
  list.Add("third");
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(list.Items(), (std::vector<std::string>{"first", "", "third"}));
  EXPECT_EQ(list.Last(), "third");
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
}

TEST(ReportList, RaisesOverflowBefore32768Items) {
  ReportList list;
  for (int i = 0; i < 32767; ++i) list.Add("x");
  EXPECT_EQ(list.Count(), 32767);
  test::ExpectRaises(ErrorNumber::Overflow, [&] { list.Add("one too many"); });
  EXPECT_EQ(list.Count(), 32767);
  EXPECT_EQ(list.Last(), "x");
}

TEST(AppState, StartsWithAnUntitledSavedJob) {
  const AppState state;
  EXPECT_EQ(state.CurrentJobName, "");
  EXPECT_EQ(state.LastWiping, "N/A");
  EXPECT_TRUE(state.JobSaved);
  EXPECT_FALSE(state.CancelRequested);
  EXPECT_FALSE(state.SecondInstance);
  EXPECT_FALSE(state.JobActionCancelled);
  EXPECT_EQ(state.SelectedJobName, "");
  EXPECT_FALSE(state.QuickBinOpen);
  EXPECT_EQ(state.SavedWindowState, 0);
  EXPECT_FALSE(state.QuickBinBusy);
  EXPECT_EQ(state.TotalWipeItems, FixedPoint(0));
  EXPECT_EQ(state.FreeSpaceDrive, "");
  EXPECT_EQ(state.FreeSpacePasses, 0);
  EXPECT_EQ(state.FreeSpaceError, "");
  EXPECT_FALSE(state.FreeSpaceActive);
  EXPECT_FALSE(state.ManagerRunning);
}

}  // namespace
}  // namespace zq
