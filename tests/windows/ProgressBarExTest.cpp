#include <gtest/gtest.h>

#include "controls/Default.h"
#include "controls/MessageLoop.h"
#include "controls/ProgressBarEx.h"
#include "resource.h"

namespace zq::test {
namespace {

class frmBars final : public Form {
 public:
  frmBars() : Form(IDD_frmStatus) {}
  ProgressBarEx pbCurrent{*this, IDC_frmStatus_pbCurrent};
};

class ProgressBarExTest : public testing::Test {
 protected:
  void SetUp() override {
    form_.Create();
    form_.Show();
  }

  // The colour of the bar at a share of its width, three pixels above its lower edge: the text stands higher.
  COLORREF ColourAt(int percent) {
    const HWND bar = form_.pbCurrent.Handle();
    RECT client{};
    ::GetClientRect(bar, &client);
    const HDC window = ::GetDC(bar);
    const HDC memory = ::CreateCompatibleDC(window);
    const UniqueBitmap bitmap(::CreateCompatibleBitmap(window, client.right, client.bottom));
    const HGDIOBJ before = ::SelectObject(memory, bitmap.Get());
    ::SendMessageA(bar, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(memory), PRF_CLIENT);
    const COLORREF colour = ::GetPixel(memory, 1 + (client.right - 3) * percent / 100, client.bottom - 3);
    ::SelectObject(memory, before);
    ::DeleteDC(memory);
    ::ReleaseDC(bar, window);
    return colour;
  }

  LRESULT SystemPosition() { return ::SendMessageA(form_.pbCurrent.Handle(), PBM_GETPOS, 0, 0); }

  frmBars form_;
};

TEST_F(ProgressBarExTest, TellsItsPositionToScreenReaders) {
  form_.pbCurrent.SetValue(42);
  EXPECT_EQ(SystemPosition(), 42);
}

TEST_F(ProgressBarExTest, TakesValuesBeyondItsRangeAndDrawsThemFull) {
  form_.pbCurrent.UsePlainLook();
  form_.pbCurrent.SetValue(32767);
  EXPECT_EQ(form_.pbCurrent.Value(), 32767);
  EXPECT_EQ(SystemPosition(), 100);
  EXPECT_EQ(ColourAt(100), kProgressColourPlain);
  form_.pbCurrent.SetValue(-5);
  EXPECT_EQ(form_.pbCurrent.Value(), -5);
  EXPECT_EQ(SystemPosition(), 0);
  EXPECT_EQ(ColourAt(0), RGB(255, 255, 255));
}

TEST_F(ProgressBarExTest, FillsTheShareThatItsValueTells) {
  form_.pbCurrent.UsePlainLook();
  form_.pbCurrent.SetValue(50);
  EXPECT_EQ(ColourAt(10), RGB(40, 210, 43));
  EXPECT_EQ(ColourAt(40), RGB(40, 210, 43));
  EXPECT_EQ(ColourAt(65), RGB(255, 255, 255));
}

TEST_F(ProgressBarExTest, AsksToBeDrawnOnceForAllValuesUntilItIsDrawn) {
  const HWND bar = form_.pbCurrent.Handle();
  const auto isToBeDrawn = [&] { return ::GetUpdateRect(bar, nullptr, FALSE) != FALSE; };
  PumpMessages();
  form_.pbCurrent.SetValue(10);
  EXPECT_TRUE(isToBeDrawn());
  ::ValidateRect(bar, nullptr);  // shows whether the next value asks again
  form_.pbCurrent.SetValue(20);
  EXPECT_FALSE(isToBeDrawn());
  ::InvalidateRect(bar, nullptr, FALSE);
  PumpMessages();
  form_.pbCurrent.SetValue(30);
  EXPECT_TRUE(isToBeDrawn());
}

TEST_F(ProgressBarExTest, IsDrawnAgainAfterAValueThatCameWhileItWasHidden) {
  PumpMessages();
  form_.Hide();
  form_.pbCurrent.SetValue(10);
  form_.Show();
  PumpMessages();
  form_.pbCurrent.SetValue(20);
  EXPECT_TRUE(::GetUpdateRect(form_.pbCurrent.Handle(), nullptr, FALSE));
}

TEST_F(ProgressBarExTest, HasItsStoredBlueUntilThePlainLookIsAskedFor) {
  form_.pbCurrent.SetValue(100);
  EXPECT_EQ(ColourAt(10), RGB(49, 106, 197));
}

TEST_F(ProgressBarExTest, HasTheUsersColoursWithAContrastTheme) {
  form_.pbCurrent.ContrastTheme = [] { return true; };
  form_.pbCurrent.SetValue(50);
  EXPECT_EQ(ColourAt(10), ::GetSysColor(COLOR_HIGHLIGHT));
  EXPECT_EQ(ColourAt(65), ::GetSysColor(COLOR_WINDOW));
  form_.pbCurrent.ContrastTheme = [] { return false; };
  EXPECT_EQ(ColourAt(10), kProgressColourStored);
}

}  // namespace
}  // namespace zq::test
