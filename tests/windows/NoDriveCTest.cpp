// The main window on a system without a drive C:, which ends with the dialog for wiping free space. It does
// so in a process of its own, in which the system's drives are faked.
#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "MainFormTest.h"
#include "support/driver/Driver.h"
#include "support/driver/Text.h"
#include "support/fakes/FakeDrives.h"
#include "wipe/frmDriveWipe.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

// In the environment of the process that is the program.
constexpr wchar_t kIsTheProgram[] = L"ZQ_IS_THE_PROGRAM";

class NoDriveC : public MainFormTest {
 protected:
  void SetUp() override {
    MainFormTest::SetUp();
    Default<frmDriveWipe>::SetFactory(
        [this] { return std::make_unique<frmDriveWipe>(state_, fake_.platform, drives_, &help_); });
  }

  void RunTheProgram() {
    drives_.types = {{"D:\\", kDriveFixed}, {"E:\\", kDriveRemovable}};
    Open();
    RunMessageLoop();
  }

  FakeDrives drives_;
};

// The program's window that has the tool, and the tool's command.
std::pair<Window, int> AwaitTool(const Program& program, const std::string& caption) {
  std::pair<Window, int> found;
  Await("the tool '" + caption + "'", [&] {
    for (const Window window : program.Windows()) {
      for (const Window child : window.Children()) {
        if (child.ClassName() != TOOLBARCLASSNAMEA) continue;
        for (const ToolButton& tool : ToolButtons(child)) {
          if (tool.caption == caption) found = {window, tool.command};
        }
      }
    }
    return static_cast<bool>(found.first);
  });
  return found;
}

TEST_F(NoDriveC, EndsTheProgramWithItsReport) {
  if (::GetEnvironmentVariableW(kIsTheProgram, nullptr, 0) > 0) return RunTheProgram();
  RequireCage();
  wchar_t path[MAX_PATH] = L"";
  ASSERT_NE(::GetModuleFileNameW(nullptr, path, MAX_PATH), 0u);
  ASSERT_TRUE(::SetEnvironmentVariableW(kIsTheProgram, L"1"));
  const Program program(ToUtf8(path), "--gtest_filter=NoDriveC.EndsTheProgramWithItsReport");
  ASSERT_TRUE(::SetEnvironmentVariableW(kIsTheProgram, nullptr));
  const auto [main, command] = AwaitTool(program, "Wipe Free Space");
  main.Command(command);
  const MessageBoxView box = program.WaitBox("Zeroquill");
  EXPECT_EQ(box.text, "Run-time error '35601':\r\n\r\nElement not found");
  EXPECT_EQ(ToString(box.icon), ToString(BoxIcon::Error));
  EXPECT_THAT(box.buttons, ElementsAre("OK"));
  TakePicture(box.window, "no-drive-c");
  box.Answer("OK");
  EXPECT_EQ(program.WaitExit(), 1u);
}

}  // namespace
}  // namespace zq::test
