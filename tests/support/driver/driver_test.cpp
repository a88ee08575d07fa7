// The driver library, tried on a program whose every window is known.
#include "support/driver/Driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/driver/sample_app.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr Limit kShort{300};

class Driver : public ::testing::Test {
 protected:
  Program sample_{ProgramFolder() + "\\zq_sample_app.exe", "one \"two three\" größe"};
  Window main_ = sample_.WaitWindow(kSampleTitle);
};

TEST_F(Driver, FindsAWindowByTitleAndClass) {
  EXPECT_EQ(main_.ClassName(), "ZqSample");
  EXPECT_EQ(main_.ProcessId(), sample_.Id());
  EXPECT_TRUE(sample_.FindWindow(kSampleTitle, "ZqSample"));
  EXPECT_FALSE(sample_.FindWindow(kSampleTitle, "Other"));
  EXPECT_FALSE(sample_.FindWindow("Sample"));
  EXPECT_THROW(sample_.WaitWindow("Sample", "", kShort), DriverError);
}

TEST_F(Driver, GivesTheExitCodeOfAProgramThatIsClosed) {
  EXPECT_TRUE(sample_.IsRunning());
  EXPECT_THROW(sample_.WaitExit(kShort), DriverError);
  main_.Close();
  EXPECT_EQ(sample_.WaitExit(), 42u);
  EXPECT_FALSE(main_);
  EXPECT_FALSE(sample_.IsRunning());
  EXPECT_THROW(main_.Text(), DriverError);
  EXPECT_THROW(sample_.WaitWindow(kSampleTitle), DriverError);
}

TEST_F(Driver, EndsAProgramWithItsObject) {
  DWORD id = 0;
  {
    const Program second(ProgramFolder() + "\\zq_sample_app.exe");
    second.WaitWindow(kSampleTitle);
    id = second.Id();
  }
  HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, id);
  if (process != nullptr) {
    EXPECT_EQ(::WaitForSingleObject(process, 5000), static_cast<DWORD>(WAIT_OBJECT_0));
    ::CloseHandle(process);
  }
}

TEST_F(Driver, ReadsAListView) {
  const ListView list(main_.Child(kList));
  list.WaitRows(3);
  EXPECT_THAT(list.Columns(), ElementsAre("Name & Location", "Size"));
  EXPECT_THAT(list.Row(0), ElementsAre("C:\\letter.doc", "12 KB"));
  EXPECT_THAT(list.Row(1), ElementsAre("C:\\größe ☃.txt", "0 Bytes"));
  EXPECT_THAT(list.Row(2), ElementsAre(" one \"two three\" größe", "arguments"));
  EXPECT_EQ(list.State(0) & LVIS_CUT, 0u);
  EXPECT_NE(list.State(1) & LVIS_CUT, 0u);
  EXPECT_EQ(list.Image(1), 1);
  EXPECT_EQ(list.Find("C:\\größe ☃.txt"), 1);
  EXPECT_EQ(list.Find("C:\\nothing"), -1);
  EXPECT_THROW(list.Text(3), DriverError);
}

TEST_F(Driver, SelectsOneRow) {
  const ListView list(main_.Child(kList));
  list.WaitRows(3);
  EXPECT_EQ(list.Selected(), -1);
  list.Select(1);
  EXPECT_EQ(list.Selected(), 1);
  list.Select(0);
  EXPECT_EQ(list.Selected(), 0);
  EXPECT_EQ(list.State(1) & LVIS_SELECTED, 0u);
  ClickAt(list.RowPoint(1));
  EXPECT_TRUE(WaitFor([&] { return list.Selected() == 1; }));
}

TEST_F(Driver, ReadsAVirtualList) {
  const ListView list(main_.Child(kVirtualList));
  EXPECT_EQ(list.Rows(), 32767);
  EXPECT_EQ(list.Text(32766), "row 32766");
}

TEST_F(Driver, ReadsStatusProgressAndTools) {
  EXPECT_THAT(StatusPanels(main_.Child(kStatus)), ElementsAre("Panel 0 ü", "Panel 1 ü", "Panel 2 ü"));
  const ProgressState progress = ReadProgress(main_.Child(kProgress));
  EXPECT_EQ(progress.position, 55);
  EXPECT_EQ(progress.low, 0);
  EXPECT_EQ(progress.high, 200);

  const Window tools = main_.Child(kTools);
  const std::vector<ToolButton> buttons = ToolButtons(tools);
  ASSERT_EQ(buttons.size(), 3u);
  EXPECT_EQ(buttons[0].caption, "Größer");
  EXPECT_EQ(buttons[0].command, kCommand);
  EXPECT_TRUE(buttons[0].enabled);
  EXPECT_FALSE(buttons[0].checked);
  EXPECT_TRUE(buttons[1].separator);
  EXPECT_FALSE(buttons[2].enabled);
  EXPECT_TRUE(buttons[2].checked);
  EXPECT_THROW(WaitToolEnabled(tools, kEnable + 1000, true, kShort), DriverError);
  main_.Command(kEnable);
  WaitToolEnabled(tools, kEnable + 1000, true);
}

TEST_F(Driver, ReadsAndSetsSimpleControls) {
  const Window edit = main_.Child(kEdit);
  EXPECT_EQ(edit.Text(), "begin");
  edit.SetText("größer ☃");
  EXPECT_EQ(edit.Text(), "größer ☃");
  edit.PostText("ab");
  edit.WaitText("abgrößer ☃");
  EXPECT_TRUE(main_.Child(kCheck).IsChecked());
  main_.Child("Check & see").Press();
  EXPECT_TRUE(WaitFor([&] { return !main_.Child(kCheck).IsChecked(); }));

  const Window combo = main_.Child(kCombo);
  EXPECT_THAT(Entries(combo), ElementsAre("first", "zweite Größe", "third"));
  EXPECT_EQ(SelectedEntry(combo), "zweite Größe");
  SelectEntry(combo, "third");
  EXPECT_EQ(SelectedEntry(combo), "third");
  edit.WaitText("chosen");
  EXPECT_THROW(SelectEntry(combo, "fourth"), DriverError);
}

TEST_F(Driver, OpensATree) {
  const TreeView tree(main_.Child(kTree));
  EXPECT_THAT(tree.Children(TVI_ROOT), ElementsAre("Drive (C:)"));
  HTREEITEM item = tree.Open({"Drive (C:)", "Größe", "Below"});
  tree.Select(item);
  EXPECT_EQ(tree.Selected(), item);
  EXPECT_EQ(tree.Text(tree.Selected()), "Below");
}

TEST_F(Driver, SeesWhatIsEnabledAndWhatIsHidden) {
  const Window off = main_.Child("Off");
  EXPECT_FALSE(off.IsEnabled());
  EXPECT_THROW(off.Press(), DriverError);
  EXPECT_THROW(off.WaitEnabled(kShort), DriverError);
  main_.Command(kEnable);
  off.WaitEnabled();
  const Window progress = main_.Child(kProgress);
  EXPECT_TRUE(progress.IsVisible());
  main_.Command(kHide);
  progress.WaitHidden();
  EXPECT_THROW(main_.Child(9999), DriverError);
  EXPECT_THROW(main_.Child("nobody"), DriverError);
}

struct BoxCase {
  const char* title;
  const char* text;
  BoxIcon icon;
  std::vector<std::string> buttons;
  const char* defaultButton;
  const char* press;
  const char* answer;
};

TEST_F(Driver, ReadsAndAnswersEachKindOfMessageBox) {
  const std::vector<BoxCase> cases = {
      {"Plain", "One line.", BoxIcon::None, {"OK"}, "OK", "OK", "answer 1"},
      {"Information",
       "It is done.\r\n\r\nGo on?",
       BoxIcon::Information,
       {"OK", "Cancel"},
       "OK",
       "Cancel",
       "answer 2"},
      {"Question", "Größe behalten?", BoxIcon::Question, {"Yes", "No"}, "No", "Yes", "answer 6"},
      {"Warning", "A\nB\nC", BoxIcon::Warning, {"Yes", "No", "Cancel"}, "Cancel", "No", "answer 7"},
      {"Error", "Failed.", BoxIcon::Error, {"Retry", "Cancel"}, "Retry", "Retry", "answer 4"},
      {"Many", "Which?", BoxIcon::Question, {"Abort", "Retry", "Ignore"}, "Abort", "Ignore", "answer 5"},
  };
  int command = kFirstBox;
  for (const BoxCase& expected : cases) {
    SCOPED_TRACE(expected.title);
    EXPECT_TRUE(sample_.Boxes().empty());
    main_.Command(command++);
    const MessageBoxView box = sample_.WaitBox(expected.title);
    TakePicture(box.window, std::string("box-") + expected.title);
    EXPECT_EQ(box.title, expected.title);
    EXPECT_EQ(box.text, expected.text);
    EXPECT_EQ(box.icon, expected.icon) << ToString(box.icon);
    EXPECT_EQ(box.buttons, expected.buttons);
    EXPECT_EQ(box.defaultButton, expected.defaultButton);
    EXPECT_EQ(box.window.Owner(), main_);
    EXPECT_FALSE(main_.IsEnabled());
    EXPECT_EQ(box.window.IsTopmost(), std::string(expected.title) == "Warning");
    box.Answer(expected.press);
    main_.Child(kEdit).WaitText(expected.answer);
  }
}

TEST_F(Driver, PressesAButtonThatOpensABoxAndDismissesIt) {
  main_.Child("Ask me").Press();
  const MessageBoxView box = sample_.WaitBox("Question");
  EXPECT_THROW(sample_.WaitBox("Other", kShort), DriverError);
  EXPECT_THROW(box.Answer("Maybe"), DriverError);
  box.Answer("No");
  main_.Child(kEdit).WaitText("answer 7");
  main_.Command(kFirstBox + 1);
  sample_.WaitBox("Information").Dismiss();
  main_.Child(kEdit).WaitText("answer 2");
}

TEST_F(Driver, TellsADialogFromAMessageBox) {
  main_.Command(kOpenDialogLike);
  const Window dialog = sample_.WaitWindow("Looks like a box");
  EXPECT_EQ(dialog.ClassName(), "#32770");
  EXPECT_TRUE(sample_.Boxes().empty());
}

TEST_F(Driver, TypesARealKeyWithAModifier) {
  TypeKey(main_, 'K', {VK_CONTROL});
  main_.Child(kEdit).WaitText("command");
}

TEST_F(Driver, DropsFilesByMessage) {
  const ListView list(main_.Child(kList));
  list.WaitRows(3);
  PostDroppedFiles(main_, {"C:\\größe ☃.txt", "C:\\b c.txt"});
  list.WaitRows(5);
  EXPECT_THAT(list.Row(3), ElementsAre("C:\\größe ☃.txt", "dropped"));
  EXPECT_THAT(list.Row(4), ElementsAre("C:\\b c.txt", "dropped"));
}

TEST_F(Driver, DragsFilesWithTheMouse) {
  const ListView list(main_.Child(kList));
  list.WaitRows(3);
  EXPECT_EQ(DragFilesTo(list.TheWindow().Centre(), {"C:\\größe ☃.txt", "C:\\b.txt"}),
            static_cast<DWORD>(DROPEFFECT_COPY));
  list.WaitRows(5);
  EXPECT_THAT(list.Row(3), ElementsAre("C:\\größe ☃.txt", "dragged"));
  EXPECT_THAT(list.Row(4), ElementsAre("C:\\b.txt", "dragged"));
  // The tree takes nothing.
  EXPECT_EQ(DragFilesTo(main_.Child(kTree).Centre(), {"C:\\b.txt"}), static_cast<DWORD>(DROPEFFECT_NONE));
  EXPECT_EQ(list.Rows(), 5);
}

LRESULT CALLBACK RefuseTheFront(int code, WPARAM window, LPARAM about) {
  return code == HCBT_ACTIVATE ? 1 : ::CallNextHookEx(nullptr, code, window, about);
}

// A press on a window that can't come to the front is eaten unless the window says that it wants none.
TEST_F(Driver, DragsFilesThoughItsWindowCannotComeToTheFront) {
  const ListView list(main_.Child(kList));
  list.WaitRows(3);
  HHOOK refusal = ::SetWindowsHookExW(WH_CBT, RefuseTheFront, nullptr, ::GetCurrentThreadId());
  ASSERT_NE(refusal, nullptr);
  DWORD effect = DROPEFFECT_NONE;
  EXPECT_NO_THROW(effect = DragFilesTo(list.TheWindow().Centre(), {"C:\\b.txt"}));
  ::UnhookWindowsHookEx(refusal);
  EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_COPY));
  list.WaitRows(4);
}

// A window that is topmost, too, may come above the one that is dragged from at any moment.
TEST_F(Driver, DragsFilesBesideATopmostWindowThatIsLiftedAgainAndAgain) {
  const ListView list(main_.Child(kList));
  list.WaitRows(3);
  std::atomic<bool> lifted{false};
  std::atomic<bool> dragged{false};
  std::thread other([&] {
    HWND window = ::CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"topmost", WS_POPUP | WS_VISIBLE, 0, 0, 90, 90,
                                    nullptr, nullptr, nullptr, nullptr);
    while (!dragged) {
      ::SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
      lifted = true;
      MSG message;
      while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) ::DispatchMessageW(&message);
    }
    ::DestroyWindow(window);
  });
  Await("the topmost window", [&] { return lifted.load(); });
  DWORD effect = DROPEFFECT_NONE;
  EXPECT_NO_THROW(effect = DragFilesTo(list.TheWindow().Centre(), {"C:\\b.txt"}));
  dragged = true;
  other.join();
  EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_COPY));
  list.WaitRows(4);
}

TEST_F(Driver, TakesAPicture) {
  const std::string path = TakePicture(main_, "sample");
  ASSERT_FALSE(path.empty());
  const std::string png = ReadFileBytes(path);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  const Picture picture = GrabWindow(main_);
  EXPECT_EQ(picture.width, 650);
  EXPECT_EQ(picture.height, 400);

  // A maximised window reaches over the screen's edges.
  ::ShowWindowAsync(main_.Handle(), SW_MAXIMIZE);
  Await("the maximised window", [&] { return ::IsZoomed(main_.Handle()) != 0; });
  const Picture maximised = GrabWindow(main_);
  EXPECT_EQ(maximised.width, ::GetSystemMetrics(SM_CXSCREEN));
  EXPECT_THAT(maximised.pixels, ::testing::Not(::testing::Each(maximised.pixels.front())));
}

TEST(Scratch, IsMadeFreshAndRemovedWithReadOnlyFiles) {
  std::string folder;
  {
    const ScratchFolder scratch;
    folder = scratch.Path();
    const std::string path = scratch.Make("a\\größe ☃.txt", "secret words", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(ReadFileBytes(path), "secret words");
    EXPECT_TRUE(FolderHolds(folder, "secret"));
    EXPECT_TRUE(FolderHolds(folder, "größe"));
    EXPECT_FALSE(FolderHolds(folder, "secrets"));
    EXPECT_TRUE(PathExists(scratch.CopyIn("zq_sample_app.exe")));
  }
  EXPECT_FALSE(PathExists(folder));
}

TEST(Wait, NamesWhatDidNotCome) {
  try {
    Await(
        "the moon", [] { return false; }, Limit(20));
    FAIL();
  } catch (const DriverError& error) {
    EXPECT_THAT(error.what(), HasSubstr("the moon"));
  }
}

}  // namespace
}  // namespace zq::test
