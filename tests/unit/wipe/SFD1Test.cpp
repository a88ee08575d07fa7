// The engine control between a real engine, on a device in memory, and handlers that a test plays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/RunTimeError.h"
#include "support/ExpectRaises.h"
#include "unit/engine/EngineRig.h"
#include "wipe/SFD1.h"

namespace zq {
namespace {

using engine::test::FakeClock;
using engine::test::FakeDevice;
using engine::test::Secret;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::StartsWith;

struct Raised {
  std::string kind;  // "progress", "elsewhere", "error", "wiped", "space"
  std::string text;  // the item's name, or the error's text
  std::int32_t done = 0;
  std::int32_t total = 0;
  std::int32_t percent = 0;  // or the error's code
};

class Handlers final : public WipeEvents {
 public:
  std::vector<Raised> all;
  std::function<void(const Raised&)> onEvent;

  std::vector<Raised> Of(const std::string& kind) const {
    std::vector<Raised> found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const Raised& event) { return event.kind == kind; });
    return found;
  }
  std::vector<std::string> TextsOf(const std::string& kind) const {
    std::vector<std::string> texts;
    for (const Raised& event : Of(kind)) texts.push_back(event.text);
    return texts;
  }

  void SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                         const std::string& itemName) override {
    Add({"progress", itemName, bytesDone, bytesTotal, percent});
  }
  void SFD1_WorkElsewhere(const std::string& itemName) override { Add({"elsewhere", itemName}); }
  void SFD1_WipeError(std::int32_t errorCode, const std::string& errorText) override {
    Add({"error", errorText, 0, 0, errorCode});
  }
  void SFD1_ItemWiped(const std::string& itemName) override { Add({"wiped", itemName}); }
  void SFD1_FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                              std::int32_t kbTotal) override {
    Add({"space", itemName, kbDone, kbTotal, percent});
  }

 private:
  void Add(const Raised& event) {
    all.push_back(event);
    if (onEvent) onEvent(event);
  }
};

class SFD1Test : public testing::Test {
 protected:
  SFD1Test() { device.capacityBytes = std::uint64_t{64} * device.clusterBytes; }

  // `call` ends by raising what the handler of the first event of `kind` raised, and no handler is called
  // after that one.
  void ExpectRaisedOnce(const std::string& kind, const std::function<void()>& call) {
    handlers.all.clear();
    handlers.onEvent = [kind](const Raised& event) {
      if (event.kind == kind) throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
    };
    test::ExpectRaises(ErrorNumber::SubscriptOutOfRange, call);
    handlers.onEvent = nullptr;
    EXPECT_EQ(handlers.Of(kind).size(), 1U) << kind;
    ASSERT_FALSE(handlers.all.empty());
    EXPECT_EQ(handlers.all.back().kind, kind);
  }

  FakeClock clock;
  std::unique_ptr<FakeDevice> owned = std::make_unique<FakeDevice>(clock);
  FakeDevice& device = *owned;
  Handlers handlers;
  SFD1 control{handlers, std::move(owned)};
};

TEST_F(SFD1Test, TellsTheProgressOfAFileAndThatItIsGone) {
  device.MakeFile("/letter", Secret(5000));
  EXPECT_TRUE(control.WipeFile("/letter", 3)) << control.GetLastErrorText();
  EXPECT_FALSE(device.Exists("/letter"));
  const std::vector<Raised> progress = handlers.Of("progress");
  ASSERT_GE(progress.size(), 2U);
  EXPECT_EQ(progress.front().done, 0);
  EXPECT_EQ(progress.front().percent, 0);
  EXPECT_EQ(progress.front().total, 5000);
  EXPECT_EQ(progress.front().text, "letter");
  EXPECT_THAT(handlers.TextsOf("wiped"), ElementsAre("letter"));
  EXPECT_THAT(handlers.Of("error"), IsEmpty());
}

TEST_F(SFD1Test, TellsOfFilesAloneThatTheyAreGone) {
  device.MakeFile("/papers/a", Secret(10));
  device.MakeFile("/papers/old/b", Secret(10));
  EXPECT_TRUE(control.WipeFolder("/papers", 3)) << control.GetLastErrorText();
  EXPECT_FALSE(device.Exists("/papers"));
  EXPECT_THAT(handlers.TextsOf("wiped"), testing::UnorderedElementsAre("a", "b"));
}

TEST_F(SFD1Test, TellsWorkAtFoldersWithoutFigures) {
  device.MakeFile("/papers/a", Secret(5000));
  // Each of the first steps takes until an event is due, by the control's own clock.
  int slowSteps = 8;
  device.onOp = [&slowSteps](const engine::test::Op&) {
    const auto due = std::chrono::steady_clock::now() + std::chrono::milliseconds(40);
    if (slowSteps-- <= 0) return;
    while (std::chrono::steady_clock::now() < due) std::this_thread::yield();
  };
  EXPECT_TRUE(control.WipeFolder("/papers", 3)) << control.GetLastErrorText();
  EXPECT_THAT(handlers.TextsOf("elsewhere"), Contains("/papers"));
  for (const Raised& event : handlers.Of("progress")) {
    EXPECT_EQ(event.text, "a");
    EXPECT_EQ(event.total, 5000);
  }
}

TEST_F(SFD1Test, TellsAFailureOnceAndNotAgainForTheFolderThatStaysWithIt) {
  device.MakeFile("/papers/a", Secret(10))->notInPlace = "it is compressed";
  EXPECT_FALSE(control.WipeFolder("/papers", 3));
  EXPECT_TRUE(device.Exists("/papers/a"));
  EXPECT_THAT(handlers.TextsOf("error"), ElementsAre(HasSubstr("it is compressed")));
  EXPECT_NE(handlers.Of("error").front().percent, 0);
  EXPECT_THAT(control.GetLastErrorText(), HasSubstr("it is compressed"));
  EXPECT_THAT(handlers.Of("wiped"), IsEmpty());
}

TEST_F(SFD1Test, TellsAFailureThatBelongsToNoItem) {
  EXPECT_FALSE(control.WipeFile("/letter", 4));
  EXPECT_EQ(handlers.Of("error").size(), 1U);
}

TEST_F(SFD1Test, TakesMaskAndSubfoldersAsGiven) {
  for (const char* path : {"/papers/a.doc", "/papers/a.txt", "/papers/old/b.doc"}) device.MakeFile(path, "x");
  EXPECT_TRUE(control.WipeFolderFiles("/papers", "*.doc", false, 3)) << control.GetLastErrorText();
  EXPECT_THAT(handlers.TextsOf("wiped"), ElementsAre("a.doc"));
  EXPECT_TRUE(control.WipeFolderFiles("/papers", "*.doc", true, 3)) << control.GetLastErrorText();
  EXPECT_THAT(handlers.TextsOf("wiped"), ElementsAre("a.doc", "b.doc"));
  EXPECT_TRUE(device.Exists("/papers/a.txt"));
  EXPECT_TRUE(device.Exists("/papers/old"));
}

TEST_F(SFD1Test, TellsTheProgressOfAFreeSpaceWipe) {
  device.MakeFolder("/drive");
  const auto freeKb = static_cast<std::int32_t>((device.capacityBytes - device.UsedBytes()) / 1024);
  EXPECT_TRUE(control.WipeFreeSpace("/drive", 3)) << control.GetLastErrorText();
  const std::vector<Raised> space = handlers.Of("space");
  ASSERT_GE(space.size(), 2U);
  EXPECT_EQ(space.front().percent, 0);
  EXPECT_EQ(space.front().done, 0);
  EXPECT_EQ(space.back().percent, 100);
  EXPECT_EQ(space.back().done, freeKb);
  for (const Raised& event : space) {
    EXPECT_EQ(event.total, freeKb);
    EXPECT_THAT(event.percent, AllOf(Ge(0), Le(100)));
    EXPECT_THAT(event.text, StartsWith("/drive"));
  }
  EXPECT_EQ(handlers.all.size(), space.size()) << "no other event";
}

TEST_F(SFD1Test, WhatAHandlerRaisesStopsTheEngineAndIsRaisedByTheMember) {
  for (const char* path : {"/papers/a", "/papers/b"}) device.MakeFile(path, Secret(5000));
  device.MakeFolder("/drive");
  ExpectRaisedOnce("progress", [&] { control.WipeFile("/papers/a", 3); });
  ExpectRaisedOnce("progress", [&] { control.WipeFolder("/papers", 3); });
  ExpectRaisedOnce("progress", [&] { control.WipeFolderFiles("/papers", "*", false, 3); });
  ExpectRaisedOnce("space", [&] { control.WipeFreeSpace("/drive", 3); });
  ExpectRaisedOnce("error", [&] { control.WipeFile("/missing", 3); });
  EXPECT_TRUE(device.Exists("/papers/a"));
  EXPECT_TRUE(device.Exists("/papers/b"));
  EXPECT_THAT(device.Find("/drive")->children, IsEmpty()) << "a filler was left behind";
  EXPECT_EQ(device.openHandles, 0);
}

// Files of one batch are gone together before the first of them is told; those of the next are not begun.
TEST_F(SFD1Test, WhatTheFirstWipedFileRaisesSparesWhatIsNotInItsBatch) {
  for (const char* path : {"/papers/a", "/papers/b"}) device.MakeFile(path, Secret(5000));
  device.mostOpenFiles = 3;  // one and two folders: each file is a batch of its own
  ExpectRaisedOnce("wiped", [&] { control.WipeFolder("/papers", 3); });
  EXPECT_FALSE(device.Exists("/papers/a"));
  ASSERT_TRUE(device.Exists("/papers/b")) << "nothing goes on after it";
  EXPECT_EQ(device.Find("/papers/b")->stored, Secret(5000));
  EXPECT_EQ(device.openHandles, 0);

  device.MakeFile("/papers/c", Secret(5000));
  device.mostOpenFiles = 0;
  ExpectRaisedOnce("wiped", [&] { control.WipeFolder("/papers", 3); });
  ASSERT_TRUE(device.Exists("/papers"));
  EXPECT_THAT(device.Find("/papers")->children, IsEmpty());
  EXPECT_EQ(device.openHandles, 0);
}

TEST_F(SFD1Test, AWholeSeesToItsTracesOnceAtItsEnd) {
  device.log = 7;
  control.BeginWhole();
  for (const char* path : {"/papers/a", "/papers/b"}) {
    device.MakeFile(path, Secret(10));
    EXPECT_TRUE(control.WipeFile(path, 3)) << control.GetLastErrorText();
  }
  EXPECT_EQ(device.Count("clear traces"), 0U);
  control.EndWhole();
  EXPECT_EQ(device.Count("clear traces"), 1U);
}

TEST_F(SFD1Test, WhatIsRaisedAtTheEndOfAWholeIsNotRaisedByTheNextMember) {
  device.log = 7;
  device.MakeFile("/papers/a", Secret(10));
  device.onOp = [this](const engine::test::Op& op) {
    if (op.kind != "clear traces") return;
    device.fault = FakeDevice::Fault::FailOnce;
    device.faultAt = device.ops.size();
  };
  handlers.onEvent = [](const Raised& event) {
    if (event.kind == "error") throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
  };
  control.BeginWhole();
  EXPECT_TRUE(control.WipeFile("/papers/a", 3)) << control.GetLastErrorText();
  EXPECT_THAT(handlers.Of("error"), IsEmpty());
  control.EndWhole();
  EXPECT_EQ(handlers.Of("error").size(), 1U);

  device.onOp = nullptr;
  device.MakeFile("/papers/b", Secret(10));
  EXPECT_TRUE(control.WipeFile("/papers/b", 3)) << control.GetLastErrorText();
}

TEST_F(SFD1Test, WhatWasRaisedIsForgottenWithTheMemberThatRaisedIt) {
  device.MakeFile("/letter", Secret(10));
  ExpectRaisedOnce("progress", [&] { control.WipeFile("/letter", 3); });
  EXPECT_TRUE(control.WipeFile("/letter", 3)) << control.GetLastErrorText();
  EXPECT_THAT(handlers.TextsOf("wiped"), ElementsAre("letter"));
}

TEST_F(SFD1Test, CancelInAHandlerEndsTheMemberWithoutRaising) {
  device.MakeFile("/letter", Secret(5000));
  handlers.onEvent = [this](const Raised&) { control.CancelOperation(); };
  EXPECT_FALSE(control.WipeFile("/letter", 3));
  EXPECT_TRUE(device.Exists("/letter"));
  EXPECT_THAT(handlers.Of("error"), IsEmpty());
  EXPECT_NE(control.GetLastErrorText(), "");
}

}  // namespace
}  // namespace zq
