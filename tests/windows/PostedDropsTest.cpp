// A drop that comes as a message, as the shell hands it to a program of higher rights: what is taken of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "controls/PostedDrops.h"
#include "platform/win32/Win32ShellDrops.h"
#include "support/driver/Drop.h"
#include "support/fakes/FakeShellDrops.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class PostedDropsTest : public testing::Test {
 protected:
  void SetUp() override {
    root_ = ::CreateWindowExW(0, L"STATIC", L"root", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr,
                              nullptr, nullptr);
    target_ = ::CreateWindowExW(0, L"STATIC", L"target", WS_CHILD | WS_VISIBLE, 0, 0, 100, 100, root_,
                                nullptr, nullptr, nullptr);
  }
  void TearDown() override {
    posted_.Revoke();
    ::DestroyWindow(root_);
  }

  bool Register() {
    return posted_.Register(target_, shell_, [this](const DroppedPaths& paths) { dropped_ = paths; });
  }
  // What the window makes of such a message.
  DroppedPaths Send(WPARAM handle) {
    dropped_.clear();
    ::SendMessageW(target_, WM_DROPFILES, handle, 0);
    return dropped_;
  }
  DroppedPaths SendList(const std::string& bytes) {
    const HGLOBAL memory = GlobalCopy(bytes);
    const DroppedPaths paths = Send(reinterpret_cast<WPARAM>(memory));
    EXPECT_EQ(::GlobalFree(memory), nullptr) << "it is still there";
    return paths;
  }
  static std::string List(const DroppedPaths& paths) {
    const std::vector<char> bytes = DropFilesBytes(paths);
    return {bytes.begin(), bytes.end()};
  }

  EventLog log_;
  FakeShellDrops shell_{log_};
  HWND root_ = nullptr;
  HWND target_ = nullptr;
  PostedDrops posted_;
  DroppedPaths dropped_;

 private:
  static HGLOBAL GlobalCopy(const std::string& bytes) {
    const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(::GlobalLock(memory), bytes.data(), bytes.size());
    ::GlobalUnlock(memory);
    return memory;
  }
};

TEST_F(PostedDropsTest, AreTakenInTheirOrderUntilTheyAreRevoked) {
  ASSERT_TRUE(Register());
  EXPECT_EQ(shell_.window, reinterpret_cast<WindowHandle>(target_));
  EXPECT_THAT(SendList(List({"C:\\b.txt", "C:\\ä.txt"})), ElementsAre("C:\\b.txt", "C:\\ä.txt"));
  posted_.Revoke();
  EXPECT_THAT(log_, ElementsAre("allow 233", "allow 4a", "allow 49", "accept files", "accept no files"));
  EXPECT_THAT(SendList(List({"C:\\b.txt"})), IsEmpty());
}

TEST_F(PostedDropsTest, AreNotTakenWhereTheWindowIsNotOpenedToThem) {
  shell_.refused = WM_COPYDATA;
  EXPECT_FALSE(Register());
  EXPECT_THAT(SendList(List({"C:\\b.txt"})), IsEmpty());
  EXPECT_THAT(log_, Not(Contains("accept files")));
}

// A program may post one whenever it likes; the list must not grow while its rows are wiped.
TEST_F(PostedDropsTest, AreTakenWhereTheUserCouldDropAlone) {
  ASSERT_TRUE(Register());
  const std::string list = List({"C:\\b.txt"});
  ::EnableWindow(root_, FALSE);
  EXPECT_THAT(SendList(list), IsEmpty()) << "behind a modal window";
  ::EnableWindow(root_, TRUE);
  ::ShowWindow(root_, SW_HIDE);
  EXPECT_THAT(SendList(list), IsEmpty()) << "hidden";
  ::ShowWindow(root_, SW_SHOWMINNOACTIVE);
  EXPECT_THAT(SendList(list), IsEmpty()) << "minimised";
  ::ShowWindow(root_, SW_SHOWNOACTIVATE);
  EXPECT_THAT(SendList(list), ElementsAre("C:\\b.txt"));
}

TEST_F(PostedDropsTest, DamagedListOrAHandleThatIsNoneBringsNothing) {
  ASSERT_TRUE(Register());
  const std::string list = List({"C:\\b.txt"});
  EXPECT_THAT(SendList(list.substr(0, list.size() - 2)), IsEmpty()) << "without its end";
  EXPECT_THAT(SendList(list.substr(0, 10)), IsEmpty()) << "within its head";
  EXPECT_THAT(SendList("\x7f\x7f\x7f\x7f" + list.substr(4)), IsEmpty()) << "its names lie elsewhere";
  EXPECT_THAT(Send(0), IsEmpty());
  const HGLOBAL freed = ::GlobalAlloc(GMEM_MOVEABLE, 100);
  ASSERT_EQ(::GlobalFree(freed), nullptr);
  EXPECT_THAT(Send(reinterpret_cast<WPARAM>(freed)), IsEmpty());
}

// The desktop of these tests has the rights that the tests have.
TEST_F(PostedDropsTest, TheSystemHoldsNothingBackHereAndOpensAWindowWhenAsked) {
  Win32ShellDrops shell;
  EXPECT_FALSE(shell.HeldBack());
  const auto window = reinterpret_cast<WindowHandle>(target_);
  EXPECT_TRUE(shell.AllowMessage(window, WM_DROPFILES));
  const auto accepts = [&] { return (::GetWindowLongW(target_, GWL_EXSTYLE) & WS_EX_ACCEPTFILES) != 0; };
  shell.AcceptFiles(window, true);
  EXPECT_TRUE(accepts());
  shell.AcceptFiles(window, false);
  EXPECT_FALSE(accepts());
}

}  // namespace
}  // namespace zq::test
