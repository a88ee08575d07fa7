// The wipe of free space in the real program: its dialog, its boxes, its progress, and what it leaves. It is
// done on a drive of a few megabytes alone.
#include "e2e/FreeSpaceStage.h"

namespace zq::test {
namespace {

using ::testing::StartsWith;

constexpr Limit kLongestWipe{300000};

using FreeSpace = FreeSpaceTest;

TEST_F(FreeSpace, DialogOffersTheDrivesAndStartsAtC) {
  const Program program(exe_);
  const MainWindow main(program);
  main.ChooseMenu('A', 'F');
  const Window dialog = program.WaitWindow(kFreeSpaceDialog);
  EXPECT_EQ(dialog.Owner(), main.window);
  EXPECT_FALSE(main.window.IsEnabled());
  const Window drives = dialog.ChildOfClass("ComboBox");
  EXPECT_EQ(drives.Send(CB_GETCOUNT), 2);
  EXPECT_EQ(drives.Send(CB_GETCURSEL), 0);
  EXPECT_TRUE(drives.HasFocus());
  EXPECT_TRUE(dialog.Child(kLevel3).IsChecked());
  ExpectLabelsFit(dialog);
  TakePicture(dialog, "freespace-dialog");
  TypeKey(dialog, 'D');
  Await("drive D", [&] { return drives.Send(CB_GETCURSEL) == 1; });
  drives.Post(CB_SHOWDROPDOWN, TRUE);
  Await("the list", [&] { return drives.Send(CB_GETDROPPEDSTATE) != 0; });
  TakePicture(dialog, "freespace-dialog-list");
  drives.Send(CB_SHOWDROPDOWN, FALSE);
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  main.window.WaitEnabled();
  EXPECT_TRUE(program.Boxes().empty());
}

TEST_F(FreeSpace, IsNotTouchedWithoutAnOkToBoth) {
  const ULONGLONG free = FreeBytes();
  const Program program(exe_);
  const MainWindow main(program);
  const Window first = OpenDialog(program, main);
  first.Close();
  first.WaitGone();
  main.window.WaitEnabled();
  const Window dialog = OpenDialog(program, main);
  ChooseDrive(dialog, 'D', kLevel3);
  const MessageBoxView box = Ask(program, dialog, "D:\\");
  TakePicture(box.window, "freespace-question");
  box.Answer("Cancel");
  main.window.WaitEnabled();
  EXPECT_TRUE(main.window.IsVisible());
  ExpectAsBefore(free);
}

TEST_F(FreeSpace, IsWipedAndGivenBack) {
  WriteFileBytes("D:\\deleted.txt", Marked("to be overwritten ", 100000));
  ASSERT_TRUE(::DeleteFileW(L"D:\\deleted.txt"));
  const ULONGLONG free = FreeBytes();
  const StampWindow stamps;
  const Program program(exe_);
  const MainWindow main(program);
  const Window dialog = OpenDialog(program, main);
  ChooseDrive(dialog, 'D', kLevel3);
  Ask(program, dialog, "D:\\").Answer("OK");

  const MessageBoxView box = program.WaitBox("Free Space Wipe Complete", kLongestWipe);
  TakePicture(box.window, "freespace-complete");
  const std::vector<std::string> lines = Lines(box.text);
  ASSERT_EQ(lines.size(), 8u) << box.text;
  EXPECT_EQ(lines[0], "Drive D:\\ has been successfully wiped.");
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[2], "Details:");
  EXPECT_EQ(lines[3], "");
  const std::string started = "Wipe Started:  ";
  const std::string ended = "Wipe Ended:  ";
  EXPECT_THAT(lines[4], StartsWith(started));
  EXPECT_TRUE(stamps.Has(lines[4].substr(started.size()))) << lines[4];
  EXPECT_THAT(lines[5], StartsWith(ended));
  EXPECT_TRUE(stamps.Has(lines[5].substr(ended.size()))) << lines[5];
  EXPECT_EQ(lines[6], "Security Level:  3");
  // What the file system needs for the fillers themselves comes off.
  const int wipedKB = FigureIn(lines[7], "Free Space Wiped:  ", " KB");
  const auto freeKB = static_cast<int>(free / 1024);
  EXPECT_LE(wipedKB, freeKB);
  EXPECT_GE(wipedKB, freeKB - freeKB / 20);
  ExpectBox(box, "Free Space Wipe Complete", box.text, BoxIcon::Information, {"OK"}, "OK");
  EXPECT_TRUE(main.window.IsVisible()) << "it is back before the box";
  box.Answer("OK");
  main.window.WaitEnabled();
  EXPECT_FALSE(PathExists(reportPath_)) << "there is no report of it";
  ExpectAsBefore(free);
}

TEST_F(FreeSpace, CancelStopsTheWipeAndGivesTheSpaceBack) {
  for (const bool byCloseBox : {false, true}) {
    SCOPED_TRACE(byCloseBox ? "close box" : "Cancel button");
    const ULONGLONG free = FreeBytes();
    const Program program(exe_);
    const MainWindow main(program);
    const Window dialog = OpenDialog(program, main);
    ChooseDrive(dialog, 'D', kLevel7);
    Ask(program, dialog, "D:\\").Answer("OK");
    const Window status = WaitSpaceStatus(program);
    // Posted without a question to the window before: it answers between two events alone, and the wipe goes
    // on.
    const HWND button = ::FindWindowExW(status.Handle(), nullptr, L"Button", L"Cancel Operation");
    const auto cancel = [&] {
      ::PostMessageW(byCloseBox ? status.Handle() : button, byCloseBox ? WM_CLOSE : BM_CLICK, 0, 0);
      return program.WaitBox("Cancel");
    };
    const MessageBoxView first = cancel();
    ExpectBox(first, "Cancel", "Cancel the current operation?", BoxIcon::Question, {"Yes", "No"}, "Yes");
    EXPECT_EQ(first.window.Owner(), status);
    EXPECT_FALSE(main.window.IsVisible());
    if (!byCloseBox) {
      TakePicture(first.window, "freespace-cancel");
      // Aside, for a look at the window that it covers.
      ::SetWindowPos(first.window.Handle(), nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
      const int percent = FigureIn(status.Text(), "", "% - Wipe Drive Free Space (D:\\)");
      EXPECT_EQ(ReadProgress(status.ChildOfClass(PROGRESS_CLASSA)).position, percent);
      ExpectLabelsFit(status);
      TakePicture(status, "freespace-status");
    }
    first.Answer("No");
    EXPECT_TRUE(static_cast<bool>(status));
    const MessageBoxView second = cancel();
    second.Answer("Yes");
    const MessageBoxView box = program.WaitBox("Cancelled");
    ExpectBox(box, "Cancelled", "The drive wipe operation was cancelled.", BoxIcon::Information, {"OK"},
              "OK");
    if (!byCloseBox) TakePicture(box.window, "freespace-cancelled");
    EXPECT_FALSE(static_cast<bool>(status));
    EXPECT_TRUE(main.window.IsVisible());
    box.Answer("OK");
    main.window.WaitEnabled();
    ExpectAsBefore(free);
  }
}

// What a kill leaves goes at the next start, and nothing else: not what only looks like it, nor on a drive
// that no wipe was begun on.
TEST_F(FreeSpace, WhatAKillLeftGoesAtTheNextStart) {
  const std::string record = folder_ + "\\FreeSpace.dat";
  const ULONGLONG free = FreeBytes();
  {
    const Program program(exe_);
    const MainWindow main(program);
    const Window dialog = OpenDialog(program, main);
    ChooseDrive(dialog, 'D', kLevel7);
    Ask(program, dialog, "D:\\").Answer("OK");
    const Window status = WaitSpaceStatus(program);
    Await("some progress", [&] { return status.Text().find('%') != std::string::npos; });
    EXPECT_EQ(ReadFileBytes(record), "D:\\");
  }
  Await("the fillers to go with the process that held them", [&] { return FreeBytes() == free; });
  EXPECT_EQ(ReadFileBytes(kKept), kKeptContent);
  // As where fillers outlive their handles.
  ::CreateDirectoryW(L"D:\\ZQFILL-0123456789bc", nullptr);
  WriteFileBytes("D:\\ZQFILL-0123456789bc\\z0000001", Marked("a filler ", 5000));
  ASSERT_TRUE(::CreateDirectoryW(L"D:\\ZQFILL-0123456789bd", nullptr));
  WriteFileBytes("D:\\ZQFILL-0123456789bd\\letter.txt", kKeptContent);
  StartUntilCleared(folder_);
  names_.insert(names_.begin(), "ZQFILL-0123456789bd");
  EXPECT_EQ(NamesOnSmallDrive(), names_);
  EXPECT_EQ(ReadFileBytes("D:\\ZQFILL-0123456789bd\\letter.txt"), kKeptContent);
  EXPECT_EQ(ReadFileBytes(kKept), kKeptContent);
  ASSERT_TRUE(::DeleteFileW(L"D:\\ZQFILL-0123456789bd\\letter.txt"));
  ASSERT_TRUE(::RemoveDirectoryW(L"D:\\ZQFILL-0123456789bd"));
}

TEST_F(FreeSpace, DriveThatTakesNoFolderIsToldAsAnError) {
  const ULONGLONG free = FreeBytes();
  const Program program(exe_);
  const MainWindow main(program);
  const Window dialog = OpenDialog(program, main);
  ChooseDrive(dialog, 'C', kLevel3);
  Ask(program, dialog, "C:\\").Answer("OK");
  const MessageBoxView box = program.WaitBox("Error");
  TakePicture(box.window, "freespace-error");
  const std::string start = "An error was encountered wiping drive C:\\.\r\n\r\nError Details: ";
  EXPECT_THAT(box.text, StartsWith(start));
  EXPECT_GT(box.text.size(), start.size());
  EXPECT_EQ(box.text.find('\n', start.size()), std::string::npos) << "the details are one line";
  ExpectBox(box, "Error", box.text, BoxIcon::Information, {"OK"}, "OK");
  box.Answer("OK");
  main.window.WaitEnabled();
  ExpectAsBefore(free);
}

}  // namespace
}  // namespace zq::test
