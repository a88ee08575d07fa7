// The system's message boxes, answered from inside.
#include <gtest/gtest.h>

#include <vector>

#include "Driving.h"
#include "platform/win32/Win32MessageBoxes.h"

namespace zq::test {
namespace {

constexpr wchar_t kTitle[] = L"A box – коробка";
constexpr const char* kTitleUtf8 = "A box – коробка";

HWND FindBox() {
  return ::FindWindowW(L"#32770", kTitle);
}

// Does one thing after another to the boxes that come up, each to a box of its own.
class BoxUser {
 public:
  explicit BoxUser(std::vector<std::function<void(HWND)>> actions) : actions_(std::move(actions)) { Wait(); }

  int BoxesSeen() const { return seen_; }

 private:
  void Wait() {
    Later([this] {
      const HWND box = FindBox();
      if (box && box != last_) {
        last_ = box;
        const std::function<void(HWND)> action = actions_.at(static_cast<std::size_t>(seen_));
        ++seen_;
        action(box);
      }
      if (seen_ < static_cast<int>(actions_.size())) Wait();
    });
  }

  std::vector<std::function<void(HWND)>> actions_;
  HWND last_ = nullptr;
  int seen_ = 0;
};

std::function<void(HWND)> Choose(int button) {
  return [button](HWND box) { ::PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0); };
}
void PressEsc(HWND box) {
  ::PostMessageW(::GetDlgItem(box, IDYES), WM_KEYDOWN, VK_ESCAPE, 0);
  ::PostMessageW(::GetDlgItem(box, IDYES), WM_KEYUP, VK_ESCAPE, 0);
}
void PressCloseBox(HWND box) {
  ::PostMessageW(box, WM_SYSCOMMAND, SC_CLOSE, 0);
}

MessageAnswer Ask(MessageButtons buttons) {
  return Win32MessageBoxes().Show(
      {.text = "A text", .title = kTitleUtf8, .icon = MessageIcon::Question, .buttons = buttons});
}

TEST(Win32MessageBoxes, AYesNoBoxAnswersYesOrNo) {
  for (const auto& [button, answer] :
       {std::pair{IDYES, MessageAnswer::Yes}, std::pair{IDNO, MessageAnswer::No}}) {
    const BoxUser user({Choose(button)});
    EXPECT_EQ(Ask(MessageButtons::YesNo), answer);
  }
}

TEST(Win32MessageBoxes, AYesNoBoxAsksAgainAfterWhatIsNoAnswer) {
  const BoxUser user({Choose(IDCANCEL), Choose(IDCANCEL), Choose(IDNO)});
  EXPECT_EQ(Ask(MessageButtons::YesNo), MessageAnswer::No);
  EXPECT_EQ(user.BoxesSeen(), 3);
}

TEST(Win32MessageBoxes, BoxesWithACancelButtonTakeEscAndTheCloseBoxForIt) {
  for (const MessageButtons buttons : {MessageButtons::OkCancel, MessageButtons::YesNoCancel}) {
    const BoxUser user({PressCloseBox});
    EXPECT_EQ(Ask(buttons), MessageAnswer::Cancel);
  }
  const BoxUser user(
      {[](HWND box) { ::PostMessageW(::GetDlgItem(box, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 0); }});
  EXPECT_EQ(Ask(MessageButtons::OkCancel), MessageAnswer::Cancel);
}

TEST(Win32MessageBoxes, AKeyThatIsHeldDownAnswersNothingAFreshOneDoes) {
  const auto press = [](HWND box, int button, WPARAM key, LPARAM state) {
    ::PostMessageW(::GetDlgItem(box, button), WM_KEYDOWN, key, state);
  };
  constexpr LPARAM kHeld = 0x401C0001;
  constexpr LPARAM kFresh = 0x001C0001;
  const BoxUser cancels({[&](HWND box) {
    press(box, IDOK, VK_RETURN, kHeld);
    press(box, IDOK, VK_ESCAPE, kFresh);
  }});
  EXPECT_EQ(Ask(MessageButtons::OkCancel), MessageAnswer::Cancel);
  const BoxUser says({[&](HWND box) {
    press(box, IDNO, VK_RETURN, kHeld);
    press(box, IDYES, 'N', kHeld);
    press(box, IDYES, VK_RETURN, kFresh);
  }});
  EXPECT_EQ(Ask(MessageButtons::YesNo), MessageAnswer::Yes);
}

TEST(Win32MessageBoxes, EscOnAYesNoBoxIsNeitherAnswer) {
  // Where the box doesn't know Esc, it is the same box that No is said to.
  int shown = 0;
  const BoxUser user({[&](HWND box) {
    ++shown;
    PressEsc(box);
    Later([&shown] {
      ++shown;
      ::PostMessageW(FindBox(), WM_COMMAND, IDNO, 0);
    });
  }});
  EXPECT_EQ(Ask(MessageButtons::YesNo), MessageAnswer::No);
  EXPECT_EQ(shown, 2);
}

}  // namespace
}  // namespace zq::test
