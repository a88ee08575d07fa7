// The free space of a small drive: asked about, wiped, cancelled, and refused on a drive that takes nothing.
#include "e2e/FreeSpaceStage.h"
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {
namespace {

constexpr char kKept[] = "D:\\kept.txt";
constexpr char kKeptContent[] = "this file is live, and stays";
constexpr Limit kLongestWipe{300000};  // for a drive that doesn't keep up

std::string_view LevelCaption(int passes) {
  constexpr char kLevel5[] = "Level 5 Wiping (15 data writes per byte)- Stronger Security";
  return passes == 3 ? kLevel3 : passes == 5 ? kLevel5 : kLevel7;
}

Window OpenDialog(Walk& walk, std::string_view command) {
  walk.Command(command);
  const Window dialog = walk.Dialog("frmDriveWipe", kFreeSpaceDialog);
  EXPECT_TRUE(dialog.Child(LevelCaption(walk.settings.passes)).IsChecked())
      << "each time as in the preferences";
  return dialog;
}

// Asks for a wipe. The question must be of this drive, or nothing is answered.
MessageBoxView Ask(Walk& walk, char drive, int passes) {
  const Window dialog = OpenDialog(walk, "WipeFreeSpace");
  ChooseDrive(dialog, static_cast<WORD>(drive), LevelCaption(passes));
  dialog.Child("OK").Press();
  MessageBoxView box = walk.visits.SeeBox(walk.Run(), "space-question");
  const std::string name = std::string("drive ") + drive + ":\\.";
  if (box.text.find(name) == std::string::npos)
    throw DriverError("another drive would be wiped: " + box.text);
  return box;
}

void WipeToTheEnd(Walk& walk) {
  const StampWindow stamps;
  const auto freeKB = static_cast<int>(FreeBytes() / 1024);
  Ask(walk, 'D', walk.settings.passes).Answer("OK");
  const MessageBoxView box = walk.Run().WaitBox("Free Space Wipe Complete", kLongestWipe);
  walk.visits.SeeBox(box, "space-complete");
  const std::vector<std::string> lines = Lines(box.text);
  ASSERT_EQ(lines.size(), 8u) << box.text;
  EXPECT_TRUE(stamps.Has(lines[4].substr(std::string("Wipe Started:  ").size()))) << lines[4];
  EXPECT_TRUE(stamps.Has(lines[5].substr(std::string("Wipe Ended:  ").size()))) << lines[5];
  EXPECT_EQ(lines[6], "Security Level:  " + std::to_string(walk.settings.passes));
  const int wipedKB = FigureIn(lines[7], "Free Space Wiped:  ", " KB");
  EXPECT_LE(wipedKB, freeKB);
  EXPECT_GE(wipedKB, freeKB - freeKB / 20);  // what the fillers need for themselves comes off
  EXPECT_TRUE(walk.Main().window.IsVisible());
  box.Answer("OK");
}

void CancelAtWork(Walk& walk) {
  Ask(walk, 'D', 7).Answer("OK");
  const Window status = WaitSpaceStatus(walk.Run());
  // Without a question to the window: it answers between two events alone, and the wipe goes on.
  const HWND button = ::FindWindowExW(status.Handle(), nullptr, L"Button", L"Cancel Operation");
  ::PostMessageW(button, BM_CLICK, 0, 0);
  const MessageBoxView question = walk.visits.SeeBox(walk.Run(), "space-cancel");
  ::SetWindowPos(question.window.Handle(), nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  walk.visits.See("frmSpaceStatus", status);
  EXPECT_FALSE(walk.Main().window.IsVisible());
  question.Answer("No");
  ::PostMessageW(button, BM_CLICK, 0, 0);
  walk.Answer("space-cancel", "Yes");
  walk.Answer("space-cancelled", "OK");
  EXPECT_FALSE(static_cast<bool>(status));
}

}  // namespace

void WipeFreeSpace(Walk& walk) {
  RequireDrivesThatMayBeFilled();
  WriteFileBytes(kKept, kKeptContent);
  const std::vector<std::string> names = NamesOnSmallDrive();
  const std::string report = ReadFileBytes(walk.reportPath);
  const auto expectAsBefore = [&] {
    walk.Main().window.WaitEnabled();
    EXPECT_TRUE(walk.Main().window.IsVisible());
    EXPECT_EQ(ReadFileBytes(kKept), kKeptContent);
    EXPECT_EQ(NamesOnSmallDrive(), names);
    EXPECT_EQ(ReadFileBytes(walk.reportPath), report) << "there is no report of it";
    EXPECT_FALSE(PathExists(walk.folder + "\\FreeSpace.dat"));
  };

  const Window dialog = OpenDialog(walk, "mnuActionsWipeFreeSpace");
  PressHelp(walk, dialog, "of-free-space");
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  Ask(walk, 'D', walk.settings.passes).Answer("Cancel");
  expectAsBefore();

  WipeToTheEnd(walk);
  expectAsBefore();
  CancelAtWork(walk);
  expectAsBefore();

  // The root of C: takes nothing here.
  Ask(walk, 'C', walk.settings.passes).Answer("OK");
  walk.Answer("space-error", "OK");
  walk.Main().window.WaitEnabled();
  EXPECT_TRUE(::DeleteFileW(L"D:\\kept.txt"));
}

}  // namespace zq::test
