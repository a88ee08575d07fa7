// What the program does before its first window.
#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>
#include <ole2.h>

namespace zq::test {
namespace {

class WindowsEnvironment final : public testing::Environment {
 public:
  void SetUp() override {
    const INITCOMMONCONTROLSEX classes{sizeof classes,
                                       ICC_WIN95_CLASSES | ICC_COOL_CLASSES | ICC_STANDARD_CLASSES};
    ASSERT_TRUE(::InitCommonControlsEx(&classes));
    ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
  }
  void TearDown() override { ::OleUninitialize(); }
};

[[maybe_unused]] const testing::Environment* const kEnvironment =
    testing::AddGlobalTestEnvironment(new WindowsEnvironment);

}  // namespace
}  // namespace zq::test
