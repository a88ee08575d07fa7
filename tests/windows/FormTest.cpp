// Forms and their default instances: every window of the program rests on these.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/Form.h"
#include "controls/MessageLoop.h"
#include "platform/RunTimeError.h"
#include "resource.h"

namespace zq::test {
namespace {

std::vector<std::string> happened;
int living = 0;
bool loadFails = false;
bool refuses = false;

// A form over the template of the about box, which has a label and an OK button.
class frmSample final : public Form {
 public:
  frmSample() : Form(IDD_frmAbout) {
    ++living;
    cmdOK.Click = [this] { cmdOK_Click(); };
  }
  ~frmSample() override { --living; }

  Label Label1{*this, IDC_frmAbout_Label1};
  Button cmdOK{*this, IDC_frmAbout_cmdOK};
  std::string memberReadAfterClose = "still here";

 private:
  void Load() override {
    happened.push_back(IsVisible() ? "load shown" : "load hidden");
    if (loadFails) throw RunTimeError(ErrorNumber::Overflow);
  }
  bool QueryUnload(CloseReason reason) override {
    happened.push_back(reason == CloseReason::User ? "query user" : "query program");
    return !refuses;
  }
  void Unloaded() override { happened.push_back("unloaded"); }
  void cmdOK_Click() {
    Unload();
    // The instance is given up by now, but lives until its code has left the stack.
    happened.push_back(memberReadAfterClose);
  }
};

class FormTest : public testing::Test {
 protected:
  void SetUp() override {
    happened.clear();
    loadFails = false;
    refuses = false;
    Default<frmSample>::SetFactory([] { return std::make_unique<frmSample>(); });
  }
  void TearDown() override {
    refuses = false;
    if (Default<frmSample>::IsLoaded()) Default<frmSample>::Touch().Unload();
    Form::DestroyClosed();
    EXPECT_EQ(living, 0);
  }
};

using Happened = std::vector<std::string>;

TEST_F(FormTest, TouchingAnEmptyReferenceMakesAHiddenInstanceAndRunsItsLoad) {
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
  frmSample& form = Default<frmSample>::Touch();
  EXPECT_TRUE(Default<frmSample>::IsLoaded());
  EXPECT_FALSE(form.IsVisible());
  EXPECT_EQ(happened, Happened{"load hidden"});
  EXPECT_EQ(&form, &Default<frmSample>::Touch());
  EXPECT_EQ(happened.size(), 1U);
}

TEST_F(FormTest, CanBeFilledBeforeItIsShownAndKeepsWhatWasFilled) {
  Default<frmSample>::Touch().Label1.SetText("Ünïcode €");
  Default<frmSample>::Touch().Show();
  EXPECT_TRUE(Default<frmSample>::Touch().IsVisible());
  EXPECT_EQ(Default<frmSample>::Touch().Label1.Text(), "Ünïcode €");
  Default<frmSample>::Touch().Hide();
  EXPECT_FALSE(Default<frmSample>::Touch().IsVisible());
  EXPECT_EQ(Default<frmSample>::Touch().Label1.Text(), "Ünïcode €");
}

TEST_F(FormTest, ClosingGivesUpTheInstanceAndTouchingMakesAFreshOne) {
  Default<frmSample>::Touch().Label1.SetText("old");
  Default<frmSample>::Touch().Unload();
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
  EXPECT_NE(Default<frmSample>::Touch().Label1.Text(), "old");
  EXPECT_FALSE(Default<frmSample>::Touch().IsVisible());
  EXPECT_EQ(happened, (Happened{"load hidden", "query program", "unloaded", "load hidden"}));
}

TEST_F(FormTest, CanCloseInsideItsOwnHandler) {
  frmSample& form = Default<frmSample>::Touch();
  ::SendMessageA(form.cmdOK.Handle(), BM_CLICK, 0, 0);
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
  EXPECT_EQ(happened, (Happened{"load hidden", "query program", "unloaded", "still here"}));
  Form::DestroyClosed();
  EXPECT_EQ(living, 0);
}

TEST_F(FormTest, CloseBoxTellsThatTheUserAsksAndCanBeRefused) {
  frmSample& form = Default<frmSample>::Touch();
  refuses = true;
  ::SendMessageA(form.Handle(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(Default<frmSample>::IsLoaded());
  EXPECT_TRUE(::IsWindow(form.Handle()));
  refuses = false;
  ::SendMessageA(form.Handle(), WM_CLOSE, 0, 0);
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
  EXPECT_EQ(happened, (Happened{"load hidden", "query user", "query user", "unloaded"}));
}

// The system tells the form alone.
TEST_F(FormTest, ControlsAreToldOfOtherSystemColours) {
  frmSample& form = Default<frmSample>::Touch();
  const HWND label = form.Label1.Handle();
  bool told = false;
  const SUBCLASSPROC listen = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR heard) {
    if (message == WM_SYSCOLORCHANGE) *reinterpret_cast<bool*>(heard) = true;
    return ::DefSubclassProc(window, message, wParam, lParam);
  };
  ::SetWindowSubclass(label, listen, 1, reinterpret_cast<DWORD_PTR>(&told));
  ::SendMessageW(static_cast<Form&>(form).Handle(), WM_SYSCOLORCHANGE, 0, 0);
  ::RemoveWindowSubclass(label, listen, 1);
  EXPECT_TRUE(told);
}

TEST_F(FormTest, EscapeClosesNothing) {
  frmSample& form = Default<frmSample>::Touch();
  form.Show();
  ::PostMessageA(form.Handle(), WM_KEYDOWN, VK_ESCAPE, 0);
  PumpMessages();
  EXPECT_TRUE(Default<frmSample>::IsLoaded());
  EXPECT_EQ(happened, Happened{"load hidden"});
}

TEST_F(FormTest, EnterPressesTheDefaultButton) {
  frmSample& form = Default<frmSample>::Touch();
  form.Show();
  ::PostMessageA(form.Handle(), WM_KEYDOWN, VK_RETURN, 0);
  PumpMessages();
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
}

TEST_F(FormTest, EnterThatIsHeldDownPressesNothing) {
  frmSample& form = Default<frmSample>::Touch();
  form.Show();
  ::PostMessageA(form.cmdOK.Handle(), WM_KEYDOWN, VK_RETURN, 0x401C0001);
  PumpMessages();
  EXPECT_TRUE(Default<frmSample>::IsLoaded());
  ::PostMessageA(form.cmdOK.Handle(), WM_KEYDOWN, VK_RETURN, 0x001C0001);
  PumpMessages();
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
}

TEST_F(FormTest, FailureOfTheLoadReachesTheCallerAndLeavesNoInstance) {
  loadFails = true;
  EXPECT_THROW(Default<frmSample>::Touch(), RunTimeError);
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
  Form::DestroyClosed();
  EXPECT_EQ(living, 0);
}

TEST_F(FormTest, ModalFormDisablesItsOwnerUntilItCloses) {
  const HWND owner = ::CreateWindowExA(0, "STATIC", "owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 700,
                                       500, nullptr, nullptr, nullptr, nullptr);
  bool ownerEnabledMeanwhile = true;
  bool shownMeanwhile = false;
  RECT place{};
  static std::function<void()> onTimer;
  onTimer = [&] {
    frmSample& form = Default<frmSample>::Touch();
    ownerEnabledMeanwhile = ::IsWindowEnabled(owner);
    shownMeanwhile = form.IsVisible();
    ::GetWindowRect(form.Handle(), &place);
    ::SendMessageA(form.cmdOK.Handle(), BM_CLICK, 0, 0);
  };
  const UINT_PTR timer = ::SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR id, DWORD) {
    ::KillTimer(nullptr, id);
    onTimer();
  });
  ASSERT_NE(timer, 0U);
  Default<frmSample>::Touch().ShowModal(owner);

  EXPECT_TRUE(shownMeanwhile);
  EXPECT_FALSE(ownerEnabledMeanwhile);
  EXPECT_TRUE(::IsWindowEnabled(owner));
  EXPECT_FALSE(Default<frmSample>::IsLoaded());
  RECT ownerRect{};
  ::GetWindowRect(owner, &ownerRect);
  EXPECT_NEAR(place.left + place.right, ownerRect.left + ownerRect.right, 2) << "centred on its owner";
  EXPECT_NEAR(place.top + place.bottom, ownerRect.top + ownerRect.bottom, 2);
  ::DestroyWindow(owner);
}

TEST_F(FormTest, KnowsTheFormOfAWindow) {
  frmSample& form = Default<frmSample>::Touch();
  const HWND window = form.Handle();
  EXPECT_EQ(Form::FromHandle(window), &form);
  EXPECT_EQ(Form::FromHandle(form.cmdOK.Handle()), nullptr);
  form.Unload();
  EXPECT_EQ(Form::FromHandle(window), nullptr);
}

}  // namespace
}  // namespace zq::test
