// The control of the companion: what is written, started, posted and told, in each state of the two.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/Settings.h"
#include "platform/Platform.h"
#include "preferences/ExplorerManager.h"
#include "support/fakes/FakePlatform.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kValue = "Zeroquill Explorer Manager";
constexpr const char* kStarted = "start D:\\Wiping Tools\\ZQExMan.exe";

const Message kOffer{"Do you wish to launch the Zeroquill Explorer Manager now?", "Explorer Manager",
                     MessageIcon::Question, MessageButtons::YesNo};

class ExplorerManagerTest : public testing::Test, protected test::FakePlatform {
 protected:
  ExplorerManagerTest() {
    state.AppFolder = "D:\\Wiping Tools\\";
    registry.log = &log;
  }

  // What the next start would make of the registry.
  bool IsRegistered() {
    files.AddFolder("D:\\Wiping Tools");
    return LoadSettings(DataFolder(files, state), registry).settings.ExplorerManager == 1;
  }

  AppState state;
  ExplorerManager manager{state, platform};
};

TEST_F(ExplorerManagerTest, IsLaunchedFromTheProgramsFolder) {
  manager.LaunchManager();
  EXPECT_THAT(log, ElementsAre(kStarted)) << "and nothing is told";
}

TEST_F(ExplorerManagerTest, LaunchThatFailsIsTold) {
  process.startFails = true;
  boxes.answers = {MessageAnswer::Ok};
  manager.LaunchManager();
  EXPECT_THAT(boxes.shown,
              ElementsAre(Message{"An error was encountered trying to lauch the Zeroquill Explorer Manager.",
                                  "Error Loading", MessageIcon::Exclamation, MessageButtons::Ok}));
}

TEST_F(ExplorerManagerTest, RunValueIsThePathWithoutQuotesAndWithoutANull) {
  manager.WriteManagerRunValue();
  const auto value = registry.Query(RegistryHive::LocalMachine, kKey, kValue);
  ASSERT_TRUE(value);
  EXPECT_EQ(value->type, kRegistryString);
  EXPECT_EQ(value->bytes, "D:\\Wiping Tools\\ZQExMan.exe");
  EXPECT_TRUE(IsRegistered());
}

TEST_F(ExplorerManagerTest, RegisteredAgainItIsThePresentFolders) {
  registry.Set(RegistryHive::LocalMachine, kKey, kValue, {kRegistryString, "C:\\Old\\ZQExMan.exe"});
  manager.WriteManagerRunValue();
  EXPECT_EQ(registry.Query(RegistryHive::LocalMachine, kKey, kValue)->bytes, "D:\\Wiping Tools\\ZQExMan.exe");
}

TEST_F(ExplorerManagerTest, RunValueIsRemoved) {
  manager.WriteManagerRunValue();
  manager.DeleteManagerRunValue();
  EXPECT_FALSE(registry.Query(RegistryHive::LocalMachine, kKey, kValue));
  EXPECT_FALSE(IsRegistered());
  manager.DeleteManagerRunValue();
  EXPECT_THAT(boxes.shown, IsEmpty()) << "it wasn't there any more";
}

TEST_F(ExplorerManagerTest, WhatTheRegistryRefusesIsNotTold) {
  registry.refuses = true;
  manager.WriteManagerRunValue();
  EXPECT_FALSE(IsRegistered());
  registry.refuses = false;
  manager.WriteManagerRunValue();
  registry.refuses = true;
  manager.DeleteManagerRunValue();
  EXPECT_TRUE(IsRegistered());
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(ExplorerManagerTest, OfferIsAcceptedAndItStarts) {
  boxes.answers = {MessageAnswer::Yes};
  manager.OfferManagerLaunch();
  EXPECT_THAT(boxes.shown, ElementsAre(kOffer));
  EXPECT_THAT(log, ElementsAre("box Explorer Manager", kStarted));
}

TEST_F(ExplorerManagerTest, OfferIsDeclinedAndNothingStarts) {
  for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Cancel}) {
    log.clear();
    boxes.answers = {answer};
    manager.OfferManagerLaunch();
    EXPECT_THAT(log, ElementsAre("box Explorer Manager"));
  }
}

TEST_F(ExplorerManagerTest, NothingIsOfferedWhileAWindowOfItsTitleIsThere) {
  for (const char* title : {"ZQ Explorer Manager", "zq explorer manager", "ZQ Explorer Manager 2"}) {
    systemWindows.windows = {{title}};
    manager.OfferManagerLaunch();
    EXPECT_THAT(log, IsEmpty()) << title;
  }
}

TEST_F(ExplorerManagerTest, TitleThatHasItsOwnFurtherInIsNotItsWindow) {
  systemWindows.windows = {{"About ZQ Explorer Manager"}};
  boxes.answers = {MessageAnswer::No};
  manager.OfferManagerLaunch();
  EXPECT_THAT(boxes.shown, ElementsAre(kOffer));
}

TEST_F(ExplorerManagerTest, OfferedLaunchThatFailsIsTold) {
  process.startFails = true;
  boxes.answers = {MessageAnswer::Yes, MessageAnswer::Ok};
  manager.OfferManagerLaunch();
  EXPECT_THAT(boxes.shown,
              ElementsAre(kOffer, Message{"An error was encountered trying to load the Zeroquill Explorer "
                                          "Manager.  The Manager should be loaded the next time you restart "
                                          "your system.",
                                          "Error Loading", MessageIcon::Exclamation, MessageButtons::Ok}));
}

TEST_F(ExplorerManagerTest, IsNotShutDownWhenItDoesNotRun) {
  systemWindows.windows = {{"Other"}};
  manager.ShutDownManager();
  EXPECT_THAT(log, IsEmpty());
}

// The look passes over a window with a parent, and what it doesn't see isn't closed.
TEST_F(ExplorerManagerTest, WindowOfItsTitleWithAParentIsLeftAlone) {
  systemWindows.windows = {{"Owner"}, {"ZQ Explorer Manager", 1}};
  manager.ShutDownManager();
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ExplorerManagerTest, IsToldToCloseByItsExactTitle) {
  systemWindows.windows = {{"ZQ Explorer Manager - help"}, {"ZQ Explorer Manager"}};
  manager.ShutDownManager();
  EXPECT_THAT(log, ElementsAre("close window 2"));
}

TEST_F(ExplorerManagerTest, AnotherTitleThatBeginsWithItsIsLeftAlone) {
  systemWindows.windows = {{"ZQ Explorer Manager - help"}};
  manager.ShutDownManager();
  EXPECT_TRUE(state.ManagerRunning);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ExplorerManagerTest, ShutDownThatTheSystemRefusesIsTold) {
  systemWindows.windows = {{"ZQ Explorer Manager"}};
  systemWindows.refusesPost = true;
  boxes.answers = {MessageAnswer::Ok};
  manager.ShutDownManager();
  EXPECT_THAT(boxes.shown,
              ElementsAre(Message{"Zeroquill was unable to shut down the Explorer Manager automatically for "
                                  "this session of Windows.  To shut down the Manager from your System Tray, "
                                  "you can right click the Manager icon and choose the Exit option.",
                                  "Error", MessageIcon::Exclamation, MessageButtons::Ok}));
}

}  // namespace
}  // namespace zq
