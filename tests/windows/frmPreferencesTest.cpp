// The preferences box by box: what they show, what each control changes, and what OK and Cancel do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Driving.h"
#include "core/state/AppState.h"
#include "preferences/frmPreferences.h"
#include "support/driver/Driver.h"
#include "support/fakes/FakeHelp.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// The tabs' own controls, in their order.
const std::vector<int> kPages[] = {
    {IDC_frmPreferences_Frame1, IDC_frmPreferences_opt3, IDC_frmPreferences_opt5, IDC_frmPreferences_opt7},
    {IDC_frmPreferences_Frame2, IDC_frmPreferences_chkProgressBars, IDC_frmPreferences_chkToolBars,
     IDC_frmPreferences_chkGridLines, IDC_frmPreferences_chkMaximize, IDC_frmPreferences_chkPrompt,
     IDC_frmPreferences_Label2, IDC_frmPreferences_cboSize},
    {IDC_frmPreferences_Frame3, IDC_frmPreferences_Label3, IDC_frmPreferences_chkManager}};

class frmPreferencesTest : public testing::Test {
 protected:
  void SetUp() override {
    state_.AppFolder = "C:\\Zeroquill\\";
    fake_.files.AddFolder("C:\\Zeroquill");
    fake_.registry.log = &log_;
    Default<frmPreferences>::SetFactory(
        [this] { return std::make_unique<frmPreferences>(state_, fake_.platform, mainWindow_, &help_); });
  }
  void TearDown() override {
    if (Default<frmPreferences>::IsLoaded()) Default<frmPreferences>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmPreferences& Open() { return Default<frmPreferences>::Touch(); }

  // The tab whose controls are shown, and no other's.
  int ShownTab() {
    int tab = 0;
    for (int i = 0; i < 3; ++i) {
      for (const int id : kPages[i]) {
        const bool shown = (::GetWindowLongW(Item(Open(), id), GWL_STYLE) & WS_VISIBLE) != 0;
        if (shown && id == kPages[i].front()) tab = i + 1;
        EXPECT_EQ(shown, tab == i + 1) << id;
      }
    }
    EXPECT_EQ(Open().TabStrip1.Selected(), tab);
    return tab;
  }
  // As a click on the tab does.
  void ClickTab(int tab) {
    RECT place{};
    ::SendMessageW(Open().TabStrip1.Handle(), TCM_GETITEMRECT, static_cast<WPARAM>(tab - 1),
                   reinterpret_cast<LPARAM>(&place));
    const LPARAM point = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
    ::SendMessageW(Open().TabStrip1.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, point);
    ::SendMessageW(Open().TabStrip1.Handle(), WM_LBUTTONUP, 0, point);
  }
  // Of the system's width at any resolution, on either side of a tab's text.
  void ExpectRoomBesideTheCaption() {
    const HWND strip = Open().TabStrip1.Handle();
    RECT place{};
    ASSERT_TRUE(::SendMessageW(strip, TCM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&place)));
    const HDC context = ::GetDC(strip);
    const HGDIOBJ before =
        ::SelectObject(context, reinterpret_cast<HFONT>(::SendMessageW(strip, WM_GETFONT, 0, 0)));
    SIZE text{};
    ::GetTextExtentPoint32W(context, L"Settings", 8, &text);
    ::SelectObject(context, before);
    ::ReleaseDC(strip, context);
    constexpr int kBeside = 6;
    EXPECT_GE(place.right - place.left,
              text.cx + 2 * ::MulDiv(kBeside, static_cast<Form&>(Open()).Dpi(), 96));
  }
  // A key with others held down, through the message loop.
  void Key(WPARAM key, std::initializer_list<int> held = {}) {
    BYTE before[256] = {};
    ::GetKeyboardState(before);
    BYTE keys[256] = {};
    for (const int other : held) keys[other] = 0x80;
    ::SetKeyboardState(keys);
    const HWND focus = ::GetFocus();
    MSG message{};
    message.hwnd = ::IsChild(Open().Handle(), focus) ? focus : Open().Handle();
    message.message = WM_KEYDOWN;
    message.wParam = key;
    DispatchToForms(message);
    ::SetKeyboardState(before);
  }
  // Alt with a letter, through the message loop.
  void Mnemonic(char letter) {
    constexpr LPARAM kWithAlt = 1 << 29;
    MSG message{};
    message.hwnd = Open().Handle();
    message.message = WM_SYSCHAR;
    message.wParam = static_cast<WPARAM>(letter);
    message.lParam = kWithAlt;
    DispatchToForms(message);
  }
  int FocusId() { return ::GetDlgCtrlID(::GetFocus()); }

  FakePlatform fake_;
  EventLog& log_ = fake_.files.log;
  FakeMainWindow mainWindow_{log_};
  EventLog asked_;
  FakeHelp help_{asked_};
  AppState state_;
};

TEST_F(frmPreferencesTest, OpensWithItsTexts) {
  Form& form = Open();
  EXPECT_EQ(CaptionOf(form), "Preferences");
  const std::pair<int, const char*> kTexts[] = {
      {IDC_frmPreferences_Label1,
       "This option allows you to define several default settings within Zeroquill.  Click a bold header "
       "item "
       "to change to that portion of preferences.  For help with these settings, select the Help button "
       "below."},
      {IDC_frmPreferences_Frame1, "Wipe Security"},
      {IDC_frmPreferences_opt3, "Level 3 Wiping (equal to 9 data writes per byte) - Strong Security"},
      {IDC_frmPreferences_opt5, "Level 5 Wiping (equal to 15 data writes per byte) - Stronger Security"},
      {IDC_frmPreferences_opt7, "Level 7 Wiping (equal to 21 data writes per byte) - Strongest Security"},
      {IDC_frmPreferences_Frame2, "Other Settings && Environment"},
      {IDC_frmPreferences_chkProgressBars, "Use Progress Bar Visual Styles"},
      {IDC_frmPreferences_chkToolBars, "Use Menu Visual Styles (XP or higher)"},
      {IDC_frmPreferences_chkGridLines, "Display Gridlines in Zeroquill Bin"},
      {IDC_frmPreferences_chkMaximize, "Maximize Window at Startup"},
      {IDC_frmPreferences_chkPrompt, "Prompt to Save Zeroquill Jobs"},
      {IDC_frmPreferences_Label2, "Report Font Size"},
      {IDC_frmPreferences_Frame3, "Explorer Manager"},
      {IDC_frmPreferences_Label3,
       "The Zeroquill Explorer Manager allows you to integrate Zeroquill with the Windows System.  The "
       "Explorer Manager will add an option on the Windows Explorer right click menu to allow quick wiping, "
       "as "
       "well as integrating itself with the Windows Recycle Bin, allowing you to wipe the contents of the "
       "system Recycle Bin."},
      {IDC_frmPreferences_chkManager, "Load Explorer Manager at System Startup"},
      {IDC_frmPreferences_cmdOK, "&OK"},
      {IDC_frmPreferences_cmdCancel, "&Cancel"},
      {IDC_frmPreferences_cmdHelp, "&Help"}};
  for (const auto& [id, text] : kTexts) EXPECT_EQ(TextOf(form, id), text);
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmPreferences_cmdOK);
  EXPECT_THAT(log_, IsEmpty()) << "opening changes nothing and asks nothing";
}

TEST_F(frmPreferencesTest, HasThreeTabsWithBoldCaptions) {
  const HWND strip = Open().TabStrip1.Handle();
  for (int tab = 0; tab < 3; ++tab) {
    wchar_t text[40] = L"";
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = static_cast<int>(std::size(text));
    ASSERT_TRUE(
        ::SendMessageW(strip, TCM_GETITEMW, static_cast<WPARAM>(tab), reinterpret_cast<LPARAM>(&item)));
    const wchar_t* const kCaptions[] = {L"Security Level", L"Settings", L"Explorer Manager"};
    EXPECT_STREQ(text, kCaptions[tab]);
  }
  EXPECT_EQ(Open().TabStrip1.Count(), 3);
  LOGFONTW font{};
  ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(strip, WM_GETFONT, 0, 0)), sizeof font, &font);
  EXPECT_EQ(font.lfWeight, FW_BOLD);
  // They stand in one row.
  EXPECT_EQ(::SendMessageW(strip, TCM_GETROWCOUNT, 0, 0), 1);
  ExpectRoomBesideTheCaption();
}

TEST_F(frmPreferencesTest, EachTabShowsItsOwnControlsAlone) {
  state_.Settings.ExplorerManager = 1;
  Open().Show();
  const char* const kNames[] = {"security", "settings", "manager"};
  EXPECT_EQ(ShownTab(), 1);
  for (const int tab : {2, 3, 1}) {
    ClickTab(tab);
    EXPECT_EQ(ShownTab(), tab);
    PumpMessages();
    TakePicture(Window(Open().Handle()), std::string("frmPreferences-") + kNames[tab - 1]);
  }
}

TEST_F(frmPreferencesTest, CtrlTabGoesRoundTheTabs) {
  Open().Show();
  EXPECT_EQ(FocusId(), IDC_frmPreferences_TabStrip1);
  for (const int tab : {2, 3, 1}) {
    Key(VK_TAB, {VK_CONTROL});
    EXPECT_EQ(ShownTab(), tab);
  }
  for (const int tab : {3, 2, 1}) {
    Key(VK_TAB, {VK_CONTROL, VK_SHIFT});
    EXPECT_EQ(ShownTab(), tab);
  }
  Key(VK_NEXT, {VK_CONTROL});
  EXPECT_EQ(ShownTab(), 2);
  Key(VK_PRIOR, {VK_CONTROL});
  EXPECT_EQ(ShownTab(), 1);
  Key(VK_TAB, {VK_CONTROL, VK_MENU});
  EXPECT_EQ(ShownTab(), 1) << "that belongs to the system";
}

TEST_F(frmPreferencesTest, FocusDoesNotStayOnWhatIsNoLongerSeen) {
  Open().Show();
  ::SetFocus(Item(Open(), IDC_frmPreferences_opt3));
  Key(VK_TAB, {VK_CONTROL});
  EXPECT_EQ(FocusId(), IDC_frmPreferences_TabStrip1);
  ::SetFocus(Item(Open(), IDC_frmPreferences_cmdCancel));
  Key(VK_TAB, {VK_CONTROL});
  EXPECT_EQ(FocusId(), IDC_frmPreferences_cmdCancel) << "it is seen on every tab";
}

TEST_F(frmPreferencesTest, TabKeyGoesFromTheTabsOverThePageToTheButtons) {
  Open().Show();
  EXPECT_THAT(TabOrder(Open()),
              ElementsAre(IDC_frmPreferences_TabStrip1, IDC_frmPreferences_opt3, IDC_frmPreferences_cmdOK,
                          IDC_frmPreferences_cmdCancel, IDC_frmPreferences_cmdHelp));
  ClickTab(2);
  EXPECT_THAT(TabOrder(Open()), ElementsAre(IDC_frmPreferences_TabStrip1, IDC_frmPreferences_chkProgressBars,
                                            IDC_frmPreferences_chkToolBars, IDC_frmPreferences_chkGridLines,
                                            IDC_frmPreferences_chkMaximize, IDC_frmPreferences_chkPrompt,
                                            IDC_frmPreferences_cboSize, IDC_frmPreferences_cmdOK,
                                            IDC_frmPreferences_cmdCancel, IDC_frmPreferences_cmdHelp));
  ClickTab(3);
  EXPECT_THAT(TabOrder(Open()), ElementsAre(IDC_frmPreferences_TabStrip1, IDC_frmPreferences_chkManager,
                                            IDC_frmPreferences_cmdOK, IDC_frmPreferences_cmdCancel,
                                            IDC_frmPreferences_cmdHelp));
}

TEST_F(frmPreferencesTest, ShowsTheLevelAndTheFontSizeOrTheLastOneOffered) {
  const std::pair<int, int> kLevels[] = {{3, IDC_frmPreferences_opt3},
                                         {5, IDC_frmPreferences_opt5},
                                         {7, IDC_frmPreferences_opt7},
                                         {0, IDC_frmPreferences_opt7}};
  const std::pair<std::int16_t, const char*> kSizes[] = {{8, "8"}, {10, "10"}, {12, "12"}, {9, "12"}};
  for (int i = 0; i < 4; ++i) {
    state_.Settings.Passes = kLevels[i].first;
    state_.Settings.ReportFontSize = kSizes[i].first;
    for (const int id : {IDC_frmPreferences_opt3, IDC_frmPreferences_opt5, IDC_frmPreferences_opt7})
      EXPECT_EQ(IsTicked(Open(), id), id == kLevels[i].second) << i;
    EXPECT_EQ(TextOf(Open(), IDC_frmPreferences_cboSize), kSizes[i].second);
    EXPECT_EQ(::SendMessageW(Item(Open(), IDC_frmPreferences_cboSize), CB_GETCOUNT, 0, 0), 3);
    Open().Unload();
  }
}

TEST_F(frmPreferencesTest, EachBoxShowsItsOwnSettingAndOkTakesItBack) {
  const std::pair<int, std::int16_t SettingsRecord::*> kBoxes[] = {
      {IDC_frmPreferences_chkProgressBars, &SettingsRecord::ProgressBars},
      {IDC_frmPreferences_chkToolBars, &SettingsRecord::ToolBars},
      {IDC_frmPreferences_chkGridLines, &SettingsRecord::GridLines},
      {IDC_frmPreferences_chkMaximize, &SettingsRecord::Maximize},
      {IDC_frmPreferences_chkPrompt, &SettingsRecord::PromptToSave}};
  for (const auto& [box, setting] : kBoxes) {
    const SettingsRecord before = state_.Settings;
    for (const auto& [other, otherSetting] : kBoxes)
      EXPECT_EQ(IsTicked(Open(), other), before.*otherSetting == 1) << other;
    Press(Open(), box);
    EXPECT_EQ(state_.Settings, before) << "nothing before OK";
    Press(Open(), IDC_frmPreferences_cmdOK);
    EXPECT_FALSE(Default<frmPreferences>::IsLoaded());
    SettingsRecord wanted = before;
    wanted.*setting = before.*setting == 1 ? 0 : 1;
    EXPECT_EQ(state_.Settings, wanted) << box;
    EXPECT_EQ(DecodeSettings(fake_.files.Find("C:\\Zeroquill\\Settings.dat")->content), wanted);
  }
}

TEST_F(frmPreferencesTest, OkTakesTheLevelAndTheFontSize) {
  const std::pair<int, int> kLevels[] = {
      {IDC_frmPreferences_opt5, 5}, {IDC_frmPreferences_opt7, 7}, {IDC_frmPreferences_opt3, 3}};
  const int kSizes[] = {10, 12, 8};
  for (int i = 0; i < 3; ++i) {
    Press(Open(), kLevels[i].first);
    ::SendMessageW(Item(Open(), IDC_frmPreferences_cboSize), CB_SETCURSEL, static_cast<WPARAM>((i + 1) % 3),
                   0);
    Press(Open(), IDC_frmPreferences_cmdOK);
    EXPECT_EQ(state_.Settings.Passes, kLevels[i].second);
    EXPECT_EQ(state_.Settings.ReportFontSize, kSizes[i]);
  }
}

TEST_F(frmPreferencesTest, OkSetsTheLinesAndTheLookOfTheMainWindow) {
  Press(Open(), IDC_frmPreferences_chkGridLines);
  Press(Open(), IDC_frmPreferences_chkToolBars);
  EXPECT_THAT(log_, IsEmpty());
  Press(Open(), IDC_frmPreferences_cmdOK);
  EXPECT_THAT(log_,
              ElementsAre("main: grid lines", "main: visual style 0", "record C:\\Zeroquill\\Settings.dat"));
}

TEST_F(frmPreferencesTest, CancelAndTheCloseBoxChangeNothing) {
  state_.Settings.ExplorerManager = 1;
  const SettingsRecord before = state_.Settings;
  for (const bool closeBox : {false, true}) {
    Press(Open(), IDC_frmPreferences_opt7);
    Press(Open(), IDC_frmPreferences_chkMaximize);
    fake_.boxes.answers = {MessageAnswer::Ok};
    Press(Open(), IDC_frmPreferences_chkManager);
    EXPECT_FALSE(IsTicked(Open(), IDC_frmPreferences_chkManager));
    if (closeBox) {
      Close(Open());
    } else {
      Press(Open(), IDC_frmPreferences_cmdCancel);
    }
    EXPECT_FALSE(Default<frmPreferences>::IsLoaded());
    EXPECT_EQ(state_.Settings, before);
    EXPECT_FALSE(fake_.files.Exists("C:\\Zeroquill\\Settings.dat"));
    EXPECT_TRUE(IsTicked(Open(), IDC_frmPreferences_chkManager)) << "a fresh load";
  }
  EXPECT_THAT(log_, ElementsAre("box Explorer Manager", "box Explorer Manager"));
}

TEST_F(frmPreferencesTest, EscDoesNothing) {
  Open().Show();
  Key(VK_ESCAPE);
  EXPECT_TRUE(Default<frmPreferences>::IsLoaded());
}

TEST_F(frmPreferencesTest, AltAndItsLetterPressAButton) {
  Open().Show();
  Mnemonic('h');
  EXPECT_THAT(asked_, ElementsAre("help: topic 11"));
  EXPECT_TRUE(Default<frmPreferences>::IsLoaded());
  Mnemonic('c');
  EXPECT_FALSE(Default<frmPreferences>::IsLoaded());
  EXPECT_THAT(log_, IsEmpty());
  Open().Show();
  Mnemonic('o');
  EXPECT_FALSE(Default<frmPreferences>::IsLoaded());
  EXPECT_THAT(log_, Contains("record C:\\Zeroquill\\Settings.dat"));
}

TEST_F(frmPreferencesTest, ReturnIsOk) {
  Open().Show();
  Key(VK_RETURN);
  EXPECT_FALSE(Default<frmPreferences>::IsLoaded());
  EXPECT_THAT(log_, Contains("record C:\\Zeroquill\\Settings.dat"));
}

TEST_F(frmPreferencesTest, UntickingTheManagerAsksAndCancelTicksItAgain) {
  state_.Settings.ExplorerManager = 1;
  fake_.boxes.answers = {MessageAnswer::Cancel};
  Press(Open(), IDC_frmPreferences_chkManager);
  EXPECT_TRUE(IsTicked(Open(), IDC_frmPreferences_chkManager));
  fake_.boxes.answers = {MessageAnswer::Ok};
  Press(Open(), IDC_frmPreferences_chkManager);
  EXPECT_FALSE(IsTicked(Open(), IDC_frmPreferences_chkManager));
  EXPECT_EQ(fake_.boxes.shown.size(), 2U);
  fake_.systemWindows.windows = {{"ZQ Explorer Manager"}};
  Press(Open(), IDC_frmPreferences_cmdOK);
  EXPECT_THAT(log_, Contains("registry: -Zeroquill Explorer Manager"));
  EXPECT_EQ(log_.back(), "close window 1");
}

TEST_F(frmPreferencesTest, TickingTheManagerAsksNothingBeforeOk) {
  Press(Open(), IDC_frmPreferences_chkManager);
  Press(Open(), IDC_frmPreferences_chkManager);
  Press(Open(), IDC_frmPreferences_chkManager);
  EXPECT_THAT(log_, IsEmpty());
  fake_.boxes.answers = {MessageAnswer::Yes};
  Press(Open(), IDC_frmPreferences_cmdOK);
  EXPECT_EQ(log_.back(), "start C:\\Zeroquill\\ZQExMan.exe");
  EXPECT_FALSE(Default<frmPreferences>::IsLoaded());
}

TEST_F(frmPreferencesTest, HelpAsksForItsTopicAndLeavesTheDialogOpen) {
  Press(Open(), IDC_frmPreferences_cmdHelp);
  EXPECT_THAT(asked_, ElementsAre("help: topic 11"));
  EXPECT_TRUE(Default<frmPreferences>::IsLoaded());
  EXPECT_THAT(log_, Not(Contains("record C:\\Zeroquill\\Settings.dat")));
}

// It follows its monitor's resolution, the bold tabs too.
TEST_F(frmPreferencesTest, TabsStayBoldAtAnotherResolution) {
  Open().Show();
  Form& form = Open();
  const int other = form.Dpi() == 96 ? 144 : 96;
  RECT place{};
  ::GetWindowRect(form.Handle(), &place);
  SIZE size{};
  ::SendMessageW(form.Handle(), WM_GETDPISCALEDSIZE, static_cast<WPARAM>(other),
                 reinterpret_cast<LPARAM>(&size));
  const RECT suggested{place.left, place.top, place.left + size.cx, place.top + size.cy};
  ::SendMessageW(form.Handle(), WM_DPICHANGED, MAKEWPARAM(other, other),
                 reinterpret_cast<LPARAM>(&suggested));
  PumpMessages();
  LOGFONTW tabs{};
  LOGFONTW rest{};
  ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(Open().TabStrip1.Handle(), WM_GETFONT, 0, 0)),
               sizeof tabs, &tabs);
  ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(form.Handle(), WM_GETFONT, 0, 0)), sizeof rest, &rest);
  EXPECT_EQ(tabs.lfHeight, rest.lfHeight);
  EXPECT_EQ(tabs.lfWeight, FW_BOLD);
  ExpectRoomBesideTheCaption();
  TakePicture(Window(form.Handle()), "frmPreferences-followed-" + std::to_string(other));
}

}  // namespace
}  // namespace zq::test
