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

constexpr const char* kChild = "NoDriveC.DISABLED_MainWindow";

class NoDriveC : public MainFormTest {
 protected:
  void SetUp() override {
    MainFormTest::SetUp();
    Default<frmDriveWipe>::SetFactory(
        [this] { return std::make_unique<frmDriveWipe>(state_, fake_.platform, drives_, &help_); });
  }

  FakeDrives drives_;
};

// What the test below starts.
TEST_F(NoDriveC, DISABLED_MainWindow) {
  drives_.types = {{"D:\\", kDriveFixed}, {"E:\\", kDriveRemovable}};
  Open();
  RunMessageLoop();
}

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

TEST(NoDriveCTest, EndsTheProgramWithItsReport) {
  RequireCage();
  wchar_t path[MAX_PATH] = L"";
  ASSERT_NE(::GetModuleFileNameW(nullptr, path, MAX_PATH), 0u);
  const Program program(ToUtf8(path),
                        std::string("--gtest_also_run_disabled_tests --gtest_filter=") + kChild);
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
