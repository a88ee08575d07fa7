#include <gtest/gtest.h>

#include <string>

#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "preferences/MFindPartLoop.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeMessageBoxes.h"
#include "support/fakes/FakeProcess.h"
#include "support/fakes/FakeRegional.h"
#include "support/fakes/FakeRegistry.h"
#include "support/fakes/FakeWindowList.h"

namespace zq {
namespace {

class MFindPartLoopTest : public testing::Test {
 protected:
  // The handle that is found, with ManagerRunning telling the same.
  WindowHandle Find(const std::string& part, std::int16_t mode = kTitleBeginsWith) {
    state.ManagerRunning = !state.ManagerRunning;  // what was before doesn't count
    const WindowHandle found = FindWindowByTitlePart(part, mode, state, platform);
    EXPECT_EQ(state.ManagerRunning, found != 0);
    return found;
  }
  WindowHandle FindIn(const std::string& title, const std::string& part,
                      std::int16_t mode = kTitleBeginsWith) {
    windows.windows = {{title}};
    return Find(part, mode);
  }

  AppState state;
  test::FakeFiles files;
  test::FakeMessageBoxes boxes{files.log};
  test::FakeProcess process{files.log};
  test::FakeRegional regional;
  test::FakeRegistry registry;
  test::FakeWindowList windows{files.log};
  Platform platform{files, boxes, process, regional, registry, UntoldWork::Instance(), windows};
};

TEST_F(MFindPartLoopTest, WithoutWindowsNothingIsFound) {
  EXPECT_EQ(Find("ZQ Explorer Manager"), 0U);
}

TEST_F(MFindPartLoopTest, TheFrontWindowThatMatchesIsTaken) {
  windows.windows = {{"Other"}, {"ZQ Explorer Manager"}, {"ZQ Explorer Manager"}};
  EXPECT_EQ(Find("ZQ Explorer Manager"), 2U);
  EXPECT_EQ(windows.asked, 2) << "the walk stops there";
}

TEST_F(MFindPartLoopTest, LetterCaseIsIgnoredOnBothSides) {
  EXPECT_EQ(FindIn("zq explorer MANAGER", "ZQ Explorer Manager"), 1U);
  EXPECT_EQ(FindIn("ZQ EXPLORER MANAGER", "zq explorer manager"), 1U);
  EXPECT_EQ(FindIn("größe", "GRÖ"), 1U);
}

TEST_F(MFindPartLoopTest, AtTheBeginningByModeZero) {
  EXPECT_EQ(FindIn("ZQ Explorer Manager - about", "ZQ Explorer Manager"), 1U);
  EXPECT_EQ(FindIn("The ZQ Explorer Manager", "ZQ Explorer Manager"), 0U);
  EXPECT_EQ(FindIn("ZQ Explorer Manage", "ZQ Explorer Manager"), 0U);
}

TEST_F(MFindPartLoopTest, AnywhereByModeOne) {
  EXPECT_EQ(FindIn("The zq explorer manager here", "ZQ Explorer Manager", kTitleContains), 1U);
  EXPECT_EQ(FindIn("ZQ Explorer Manager", "ZQ Explorer Manager", kTitleContains), 1U);
  EXPECT_EQ(FindIn("ZQ Explorer", "ZQ Explorer Manager", kTitleContains), 0U);
}

TEST_F(MFindPartLoopTest, NowhereByAnyOtherMode) {
  for (const std::int16_t mode : {std::int16_t{-1}, std::int16_t{2}, std::int16_t{32767}})
    EXPECT_EQ(FindIn("ZQ Explorer Manager", "ZQ Explorer Manager", mode), 0U) << mode;
}

TEST_F(MFindPartLoopTest, WindowWithAParentIsNotSeen) {
  windows.windows = {{"Owner"}, {"ZQ Explorer Manager", 1}};
  EXPECT_EQ(Find("ZQ Explorer Manager"), 0U);
  windows.windows.push_back({"ZQ Explorer Manager"});
  EXPECT_EQ(Find("ZQ Explorer Manager"), 3U);
}

TEST_F(MFindPartLoopTest, EmptyTitleIsNotCompared) {
  EXPECT_EQ(FindIn("", "", kTitleBeginsWith), 0U);
  EXPECT_EQ(FindIn("", "", kTitleContains), 0U);
  EXPECT_EQ(FindIn("anything", "", kTitleBeginsWith), 1U);
}

TEST_F(MFindPartLoopTest, OrderThatChangesMeanwhileEndsTheWalk) {
  windows.windows = {{"One"}, {"Two"}};
  windows.turnsBack = true;
  EXPECT_EQ(Find("ZQ Explorer Manager"), 0U);
  EXPECT_EQ(windows.asked, 2);
}

}  // namespace
}  // namespace zq
