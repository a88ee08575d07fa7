// What is dropped on the QuickWipe Bin, and what it shows meanwhile and afterwards.
#include <gmock/gmock.h>

#include <string_view>

#include "QuickBinForm.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class frmQuickDropTest : public QuickBinForm {};

TEST_F(frmQuickDropTest, WipesWhatIsDroppedBeforeTheDropReturns) {
  const std::string readOnly = scratch_.Make("read only.txt", "secret", FILE_ATTRIBUTE_READONLY);
  const std::string empty = scratch_.Make("empty.txt", "");
  const std::string inside = scratch_.Make("folder\\inside.txt", "stays");
  Open();
  Drop({readOnly, scratch_ / "folder", empty});
  // No message has been handled since.
  EXPECT_FALSE(PathExists(readOnly));
  EXPECT_FALSE(PathExists(empty));
  EXPECT_EQ(ReadFileBytes(inside), "stays");
  EXPECT_EQ(Panel(), "Last Operation: Success");
  EXPECT_TRUE(IsEnabled(Bin(), IDC_frmQuick_cmdCancel));
  EXPECT_FALSE(state_.QuickBinBusy);
  EXPECT_FALSE(::IsWindowVisible(Bin().pb1.Handle()));
  EXPECT_EQ(::GetParent(Bin().pb1.Handle()), main_) << "where the bar rests";
  EXPECT_EQ(Bin().pb1.Value(), 100);
  ClickPanel(0);
  ClickPanel(1);
  EXPECT_FALSE(Default<frmQuickErrors>::IsLoaded());
  PumpMessages();
  TakePicture(Window(HandleOf(Bin())), "frmQuick-success");

  // A bar that rests elsewhere goes with the Bin all the same.
  Bin().Unload();
  EXPECT_EQ(::GetWindow(main_, GW_CHILD), nullptr);
}

// No message is handled in a drop: whatever changes is on the screen before the wipe goes on.
TEST_F(frmQuickDropTest, PaintsItsPanelAndItsBarWhileAWipeRunsAndStaysOpen) {
  state_.Settings.ProgressBars = 0;
  const std::string first = scratch_.Make("first letter.txt", std::string(20000, 'a'));
  const std::string second = scratch_.Make("second letter.txt", std::string(20000, 'b'));
  Open();
  const HWND bar = Bin().StatusBar1.Handle();
  bool between = false;
  // Between the two files: the first is at its end, and the panel is about to name the second.
  const Watch watch(bar, [&](UINT message, LPARAM text) {
    if (between || message != SB_SETTEXTW ||
        std::wstring_view(reinterpret_cast<const wchar_t*>(text)).find(L"second") == std::wstring_view::npos)
      return;
    between = true;
    EXPECT_FALSE(PathExists(first));
    EXPECT_TRUE(PathExists(second));
    EXPECT_TRUE(state_.QuickBinBusy);
    EXPECT_NE(Panel().find("first letter.txt"), std::string::npos);
    EXPECT_EQ(Bin().pb1.Value(), 100);
    EXPECT_TRUE(::IsWindowVisible(Bin().pb1.Handle()));
    EXPECT_EQ(::GetParent(Bin().pb1.Handle()), bar);
    const RECT panel = Bin().StatusBar1.PanelPlace(1);
    RECT place{};
    ::GetWindowRect(Bin().pb1.Handle(), &place);
    ::MapWindowPoints(nullptr, bar, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_TRUE(::EqualRect(&place, &panel)) << "it fills the second panel";
    for (const HWND window : {bar, Bin().pb1.Handle(), Item(Bin(), IDC_frmQuick_cmdCancel)})
      EXPECT_FALSE(::GetUpdateRect(window, nullptr, FALSE)) << "nothing of it waits to be painted";
    EXPECT_FALSE(IsEnabled(Bin(), IDC_frmQuick_cmdCancel));
    Close(Bin());
    EXPECT_TRUE(Default<frmQuick>::IsLoaded()) << "the close box does nothing";
    EXPECT_TRUE(state_.QuickBinOpen);
    TakePicture(Window(HandleOf(Bin())), "frmQuick-busy", When::AtOnce);
  });
  Bring({first, second});
  EXPECT_TRUE(between);
  EXPECT_FALSE(PathExists(second));
  EXPECT_EQ(Panel(), "Last Operation: Success");
}

TEST_F(frmQuickDropTest, FrameAroundThePictureAnswersTheDragUntilItIsLetGo) {
  const std::string path = scratch_.Make("dragged.txt", "secret");
  Open();
  const HWND frame = Item(Bin(), IDC_frmQuick_dropFrame);
  EXPECT_FALSE(::IsWindowVisible(frame));
  MoveIntoView();
  const Picture atRest = AroundThePicture();
  std::vector<std::string> told;
  const Watch watch(frame, [&](UINT message, LPARAM) {
    if (message == WM_PAINT && told.empty()) {
      told.emplace_back("framed");
      BringToScreen();
      TakePicture(Window(HandleOf(Bin())), "frmQuick-hover", When::AtOnce);
    }
  });
  const Watch drop(Bin().StatusBar1.Handle(), [&](UINT message, LPARAM) {
    if (message != SB_SETTEXTW || told.size() != 1) return;
    told.emplace_back(::IsWindowVisible(frame) ? "wipes framed" : "wipes");
    // No message is handled until the wipe ends: what the frame has left is painted by now.
    EXPECT_TRUE(WaitFor([&] {
      BringToScreen();
      return AroundThePicture() == atRest;
    })) << "the picture isn't whole while the wipe runs";
  });
  EXPECT_EQ(DragFilesTo(Window(Bin().imgDrop.Handle()).Centre(), {path}),
            static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_THAT(told, ElementsAre("framed", "wipes"));
  EXPECT_FALSE(PathExists(path));
  EXPECT_EQ(Panel(), "Last Operation: Success");
  MoveMouseTo({0, 0});
}

TEST_F(frmQuickDropTest, LockedFileAndOneThatIsGoneAreListedByAClickOnThePanel) {
  const std::string locked = scratch_.Make("locked.txt", "in use");
  const std::string free = scratch_.Make("free.txt", "secret");
  const std::string gone = scratch_ / "gone.txt";
  Open();
  const HANDLE held = ::CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  MoveIntoView();
  Drop({locked, free, gone});
  ::CloseHandle(held);
  EXPECT_EQ(ReadFileBytes(locked), "in use");
  EXPECT_FALSE(PathExists(free));
  EXPECT_EQ(Panel(), "Last Operation: Errors");
  EXPECT_THAT(fake_.boxes.shown, IsEmpty());
  PumpMessages();
  TakePicture(Window(HandleOf(Bin())), "frmQuick-errors");
  ClickPanel(1);
  EXPECT_FALSE(Default<frmQuickErrors>::IsLoaded());
  for (int time = 0; time < 2; ++time) {
    const std::vector<std::string> lines = ErrorsByClick("frmQuickErrors");
    ASSERT_EQ(lines.size(), 2U) << "each opening lists them once";
    EXPECT_THAT(lines[0], StartsWith(locked + " - "));
    EXPECT_THAT(lines[1], StartsWith(gone + " - "));
  }
  Bring({locked});
  EXPECT_FALSE(PathExists(locked)) << "nobody holds it any more";
  EXPECT_EQ(Panel(), "Last Operation: Success");
}

TEST_F(frmQuickDropTest, ErrorsAreListedByTheKeyboardToo) {
  const std::string gone = scratch_ / "gone.txt";
  Open();
  const auto press = [this](WPARAM key) {
    MSG message{};
    message.hwnd = Item(Bin(), IDC_frmQuick_cmdCancel);
    message.message = WM_KEYDOWN;
    message.wParam = key;
    DispatchToForms(message);
  };
  const auto pressWithCtrl = [&](WPARAM key) {
    const HeldKey control(VK_CONTROL);
    press(key);
  };
  pressWithCtrl('E');
  EXPECT_FALSE(Default<frmQuickErrors>::IsLoaded()) << "nothing has failed";
  Bring({gone});
  press('E');
  pressWithCtrl('D');
  EXPECT_FALSE(Default<frmQuickErrors>::IsLoaded());
  const std::vector<std::string> lines = ErrorsBy([&] { pressWithCtrl('E'); }, "frmQuickErrors-one");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines[0], StartsWith(gone + " - "));
}

TEST_F(frmQuickDropTest, DropOfNothingIsASuccess) {
  Open();
  Bring({});
  EXPECT_EQ(Panel(), "Last Operation: Success") << "nothing has failed";
}

TEST_F(frmQuickDropTest, DropWithoutItsListChangesNothingAndADamagedListIsADropOfNothing) {
  const std::string gone = scratch_ / "gone.txt";
  Open();
  const POINT picture = Window(Bin().imgDrop.Handle()).Centre();
  Bring({gone});
  ASSERT_EQ(Panel(), "Last Operation: Errors");
  EXPECT_EQ(DragListTo(picture, {}), static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_EQ(Panel(), "Last Operation: Errors") << "the last status stays";
  EXPECT_EQ(ErrorsByClick("frmQuickErrors-one").size(), 1U);

  const std::string kept = scratch_.Make("kept.txt", "stays");
  std::vector<char> damaged = DropFilesBytes({kept});
  damaged.resize(damaged.size() - 2 * sizeof(wchar_t));  // without the zeros of its end
  EXPECT_EQ(DragListTo(picture, damaged), static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_EQ(Panel(), "Last Operation: Success");
  EXPECT_EQ(ReadFileBytes(kept), "stays");
}

}  // namespace
}  // namespace zq::test
