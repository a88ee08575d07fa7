#include "preferences/frmPreferences.h"

#include "core/state/Help.h"

namespace zq {
namespace {

constexpr const char* kTabs[] = {"Security Level", "Settings", "Explorer Manager"};

std::int16_t ValueOf(const CheckBox& box) {
  return static_cast<std::int16_t>(box.Value());
}

}  // namespace

frmPreferences::frmPreferences(AppState& state, Platform& platform, MainWindow& mainWindow, Help* help)
    : Form(IDD_frmPreferences), preferences_(state, platform, mainWindow), help_(help) {
  TabStrip1.Click = [this] { TabStrip1_Click(); };
  chkManager.Click = [this] { chkManager_Click(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { cmdCancel_Click(); };
  cmdHelp.Click = [this] { cmdHelp_Click(); };
}

void frmPreferences::Load() {
  for (const char* tab : kTabs) TabStrip1.Add(tab);
  TabStrip1_Click();
  for (const char* size : kReportFontSizes) cboSize.Add(size);

  const PreferencesFields fields = preferences_.Load();
  cboSize.Select(fields.reportFontSize);
  (fields.level == 3 ? opt3 : fields.level == 5 ? opt5 : opt7).SetValue(true);
  chkGridLines.SetValue(fields.gridLines);
  chkMaximize.SetValue(fields.maximize);
  chkPrompt.SetValue(fields.promptToSave);
  chkManager.SetValue(fields.explorerManager);
  chkProgressBars.SetValue(fields.progressBars);
  chkToolBars.SetValue(fields.toolBars);
}

PreferencesFields frmPreferences::Fields() const {
  return {.level = opt3.Value()   ? 3
                   : opt5.Value() ? 5
                                  : 7,
          .reportFontSize = cboSize.Text(),
          .gridLines = ValueOf(chkGridLines),
          .maximize = ValueOf(chkMaximize),
          .promptToSave = ValueOf(chkPrompt),
          .explorerManager = ValueOf(chkManager),
          .progressBars = ValueOf(chkProgressBars),
          .toolBars = ValueOf(chkToolBars)};
}

void frmPreferences::TabStrip1_Click() {
  const Page* const pages[] = {&picSecurity, &picSettings, &picExplorer};
  const HWND focus = ::GetFocus();
  for (int tab = 1; tab <= static_cast<int>(std::size(pages)); ++tab) {
    for (Control* control : *pages[tab - 1]) {
      const bool shown = tab == TabStrip1.Selected();
      // Keys would go on to what is no longer seen.
      if (!shown && control->Handle() == focus) TabStrip1.SetFocus();
      control->SetVisible(shown);
    }
  }
}

void frmPreferences::chkManager_Click() {
  chkManager.SetValue(preferences_.chkManager_Click(ValueOf(chkManager)));
}

void frmPreferences::cmdOK_Click() {
  preferences_.Store(Fields());
  Unload();
}

void frmPreferences::cmdCancel_Click() {
  Unload();
}

void frmPreferences::cmdHelp_Click() {
  if (help_) help_->ShowTopic(kHelpOnPreferences);
}

}  // namespace zq
