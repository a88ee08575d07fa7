#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/FreeSpace.h"
#include "unit/engine/EngineRig.h"

namespace zq::cli {
namespace {

using engine::test::FakeDevice;
using testing::HasSubstr;
using testing::Not;
using End = SpaceResult::Outcome;

constexpr std::uint64_t kMiB = 1 << 20;

class FreeSpaceTest : public testing::Test {
 protected:
  FreeSpaceTest() {
    device.capacityBytes = 1 * kMiB;
    device.MakeFile("/drive/mine", engine::test::Secret(100'000));
    options.freeSpace = true;
    options.paths = {"/drive"};
  }

  void Run() {
    ProgressLine noLine(nullptr, clock);
    SpaceRunner runner({device, seeds, clock, noLine, [this] { return interrupted(); }});
    result = runner.Run("/drive", options.level);
    EXPECT_EQ(device.Find("/drive")->children.size(), 1u) << "a filler was left behind";
    EXPECT_EQ(device.Find("/drive/mine")->stored, engine::test::Secret(100'000));
  }

  std::string Json() const { return JsonReport({options, options.paths.front(), result, record, "now"}); }
  std::string Text() const { return TextReport({options, options.paths.front(), result, record, "now"}); }

  engine::test::FakeClock clock;
  FakeDevice device{clock};
  engine::test::FakeSeeds seeds;
  std::function<bool()> interrupted = [] { return false; };
  Options options;
  Record record;
  SpaceResult result;
};

TEST_F(FreeSpaceTest, IsOverwrittenInAllPassesOfTheLevel) {
  options.level = 5;
  const std::uint64_t free = device.FreeBytes();
  Run();
  EXPECT_EQ(result.outcome, End::Overwritten);
  EXPECT_EQ(result.bytes, free);
  EXPECT_EQ(CodeOf(result), ExitCode::AllGone);
  std::uint64_t written = 0;
  for (const engine::test::Op& op : device.ops) {
    if (op.kind == "write" && op.ok) written += op.size;
  }
  EXPECT_GE(written, free * 15);
  EXPECT_THAT(Json(), HasSubstr(R"("operation": "free-space", "drive": "/drive", "level": 5,)"));
  EXPECT_THAT(Json(), HasSubstr(R"("outcome": "overwritten", "bytes": )" + std::to_string(free)));
  EXPECT_THAT(Json(), HasSubstr(R"("failures": [], "notes": [], "refused": [])"));
  EXPECT_THAT(Text(), HasSubstr("Overwritten: the free space of /drive (924.0 KiB)."));
}

// At whatever event.
TEST_F(FreeSpaceTest, GivesTheSpaceBackWhenItIsCancelled) {
  for (const int lastEvent : {0, 1, 5, 20}) {
    int events = 0;
    device.bytesPerSecond = 10 * kMiB;
    interrupted = [&] { return ++events > lastEvent; };
    const std::uint64_t free = device.FreeBytes();
    Run();
    EXPECT_EQ(result.outcome, End::Cancelled) << lastEvent;
    EXPECT_EQ(CodeOf(result), ExitCode::Cancelled);
    EXPECT_EQ(result.failure, "");
    EXPECT_EQ(device.FreeBytes(), free);
  }
  EXPECT_THAT(Json(), HasSubstr(R"("cancelled": true, "exitCode": 3)"));
  EXPECT_THAT(Json(), HasSubstr(R"("outcome": "cancelled")"));
  EXPECT_THAT(Text(), HasSubstr("Cancelled: the free space of /drive is not overwritten, or in part."));
}

TEST_F(FreeSpaceTest, TellsWhyItHasFailed) {
  device.fault = FakeDevice::Fault::FailOnce;
  device.faultAt = 60;
  device.faultStatus = {engine::Trouble::Other, 5, "Input/output error"};
  Run();
  ASSERT_TRUE(device.faultHappened);
  EXPECT_EQ(result.outcome, End::Failed);
  EXPECT_EQ(CodeOf(result), ExitCode::SomeKept);
  EXPECT_THAT(result.failure, HasSubstr("Input/output error"));
  EXPECT_THAT(Json(), HasSubstr("Input/output error"));
  EXPECT_THAT(Text(), HasSubstr("Not overwritten, or in part: the free space of /drive."));
}

// A drive that stays full is what the user has to know, cancelled or not.
TEST_F(FreeSpaceTest, TellsWhatCouldNotBeRemovedAfterACancelToo) {
  int events = 0;
  device.bytesPerSecond = 10 * kMiB;
  interrupted = [&] { return ++events > 5; };
  device.onOp = [&](const engine::test::Op& op) {
    if (op.kind == "remove entry" && device.fault == FakeDevice::Fault::None && events > 5) {
      device.fault = FakeDevice::Fault::FailOnce;
      device.faultAt = device.ops.size();
      device.faultStatus = {engine::Trouble::Other, 5, "Input/output error"};
    }
  };
  ProgressLine noLine(nullptr, clock);
  SpaceRunner runner({device, seeds, clock, noLine, [this] { return interrupted(); }});
  result = runner.Run("/drive", 3);
  ASSERT_TRUE(device.faultHappened);
  EXPECT_EQ(result.outcome, End::Cancelled);
  EXPECT_THAT(result.failure, HasSubstr("Removing"));
}

TEST_F(FreeSpaceTest, TellsANote) {
  device.keptBytes = 3 * kMiB;
  Run();
  EXPECT_EQ(result.outcome, End::Overwritten);
  EXPECT_THAT(Json(), HasSubstr(R"("notes": ["Of the free space 3 MiB are kept for the administrator)"));
  EXPECT_THAT(Text(), HasSubstr("note   Of the free space 3 MiB are kept"));
}

TEST_F(FreeSpaceTest, TellsThatItWasNotBegun) {
  result.refusal = "there is nobody to confirm; nothing was overwritten";
  EXPECT_EQ(CodeOf(result), ExitCode::Usage);
  EXPECT_THAT(Json(), HasSubstr(R"("outcome": "refused", "bytes": 0)"));
  EXPECT_THAT(Json(), HasSubstr(R"("refused": ["there is nobody to confirm; nothing was overwritten"])"));
  EXPECT_THAT(Json(), Not(HasSubstr("started")));
}

TEST(FreeSpaceDrive, IsARootOrAMountPointAndNoOtherFolder) {
  Surroundings linux;
  linux.mountPoints = {"/", "/mnt/stick"};
  EXPECT_EQ(WhyNoDrive("/", linux), "");
  EXPECT_EQ(WhyNoDrive("/mnt/stick", linux), "");
  EXPECT_THAT(WhyNoDrive("/mnt/stick/folder", linux), HasSubstr("neither a drive nor where one is mounted"));
  EXPECT_THAT(WhyNoDrive("/mnt", linux), HasSubstr("neither a drive"));
  EXPECT_EQ(WhyNoDrive("", linux), "it can't be looked at");
  Surroundings windows;
  windows.style = PathStyle::Windows;
  windows.mountPoints = {"C:\\Data"};
  EXPECT_EQ(WhyNoDrive("D:\\", windows), "");
  EXPECT_EQ(WhyNoDrive("C:\\data", windows), "");
  EXPECT_THAT(WhyNoDrive("D:\\folder", windows), HasSubstr("neither a drive"));
}

}  // namespace
}  // namespace zq::cli
