// A wipe of free space in whose middle the whole system ends, and the program's first start after that. The
// end between the two comes from outside: tests/forensic/free_space_windows_test.sh.
#include <algorithm>
#include <cstdlib>

#include "e2e/FreeSpaceStage.h"

namespace zq::test {
namespace {

using FreeSpaceKill = FreeSpaceTest;

// The end comes within seconds of the word that all is ready for it.
constexpr Limit kUntilTheEnd{120000};

bool HasFillers() {
  return std::ranges::any_of(NamesOnSmallDrive(),
                             [](const std::string& name) { return name.starts_with("ZQFILL-"); });
}

// Whichever comes first: the question whether to cancel, or the box at the end of a wipe that was quicker.
MessageBoxView AwaitQuestionOrEnd(const Program& program) {
  Window found;
  Await("a question or the end", [&] {
    for (Window box : program.Boxes()) {
      if (box.HasText("Cancel") || box.HasText("Free Space Wipe Complete")) found = box;
    }
    return static_cast<bool>(found);
  });
  return MessageBoxView(found);
}

// The engine stands still while the question whether to cancel is open. It is answered with No and asked anew
// until the drive is half full at least; a wipe that has come to its end between two questions is begun
// again.
TEST_F(FreeSpaceKill, ComesInTheMiddle) {
  const ULONGLONG free = FreeBytes();
  const Program program(exe_);
  const MainWindow main(program);
  Window status;
  for (;;) {
    if (!status) {
      main.window.WaitEnabled();
      const Window dialog = OpenDialog(program, main);
      ChooseDrive(dialog, 'D', kLevel7);
      Ask(program, dialog, "D:\\").Answer("OK");
      status = WaitSpaceStatus(program);
    }
    ::PostMessageW(status.Handle(), WM_CLOSE, 0, 0);
    const MessageBoxView box = AwaitQuestionOrEnd(program);
    const bool isHeld = box.title == "Cancel";
    if (isHeld && FreeBytes() <= free / 2) break;
    box.Answer(isHeld ? "No" : "OK");
  }
  EXPECT_TRUE(HasFillers());
  EXPECT_EQ(ReadFileBytes(folder_ + "\\FreeSpace.dat"), "D:\\");
  if (!HasFailure()) WriteFileBytes(ProgramFolder() + "\\ready", folder_);
  Await(
      "the end of the system", [] { return false; }, kUntilTheEnd);
}

// The program of the test before, in its folder, with what it had written there.
TEST_F(FreeSpaceKill, IsMadeGoodByTheNextStart) {
  const char* const killed = std::getenv("ZQ_KILLED_PROGRAM");
  ASSERT_TRUE(killed);
  const std::string folder = killed;
  ASSERT_TRUE(HasFillers());
  ASSERT_TRUE(PathExists(folder + "\\FreeSpace.dat"));
  const ULONGLONG free = FreeBytes();
  StartUntilCleared(folder);
  EXPECT_FALSE(HasFillers());
  EXPECT_GT(FreeBytes(), free);
  EXPECT_EQ(ReadFileBytes(kKept), kKeptContent);
}

}  // namespace
}  // namespace zq::test
