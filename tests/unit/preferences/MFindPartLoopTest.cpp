#include <gtest/gtest.h>

#include <string>

#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "preferences/MFindPartLoop.h"
#include "support/fakes/FakePlatform.h"

namespace zq {
namespace {

class MFindPartLoopTest : public testing::Test, protected test::FakePlatform {
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
    systemWindows.windows = {{title}};
    return Find(part, mode);
  }

  AppState state;
};

TEST_F(MFindPartLoopTest, WithoutWindowsNothingIsFound) {
  EXPECT_EQ(Find("ZQ Explorer Manager"), 0U);
}

TEST_F(MFindPartLoopTest, TheFrontWindowThatMatchesIsTaken) {
  systemWindows.windows = {{"Other"}, {"ZQ Explorer Manager"}, {"ZQ Explorer Manager"}};
  EXPECT_EQ(Find("ZQ Explorer Manager"), 2U);
  EXPECT_EQ(systemWindows.asked, 2) << "the walk stops there";
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
  systemWindows.windows = {{"Owner"}, {"ZQ Explorer Manager", 1}};
  EXPECT_EQ(Find("ZQ Explorer Manager"), 0U);
  systemWindows.windows.push_back({"ZQ Explorer Manager"});
  EXPECT_EQ(Find("ZQ Explorer Manager"), 3U);
}

TEST_F(MFindPartLoopTest, EmptyTitleIsNotCompared) {
  EXPECT_EQ(FindIn("", "", kTitleBeginsWith), 0U);
  EXPECT_EQ(FindIn("", "", kTitleContains), 0U);
  EXPECT_EQ(FindIn("anything", "", kTitleBeginsWith), 1U);
  systemWindows.windows = {{""}, {"ZQ Explorer Manager"}};
  EXPECT_EQ(Find("ZQ Explorer Manager"), 2U) << "the walk goes on behind it";
}

TEST_F(MFindPartLoopTest, OrderThatChangesMeanwhileEndsTheWalk) {
  systemWindows.windows = {{"One"}, {"Two"}};
  systemWindows.turnsBack = true;
  EXPECT_EQ(Find("ZQ Explorer Manager"), 0U);
  EXPECT_EQ(systemWindows.asked, 2);
}

}  // namespace
}  // namespace zq
