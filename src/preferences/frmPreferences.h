// frmPreferences: the dialog of the user's settings.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/DropDownList.h"
#include "controls/OptionButton.h"
#include "controls/TabStrip.h"
#include "preferences/Preferences.h"
#include "resource.h"

namespace zq {

class Help;

// Its controls are a copy of the settings: nothing of them changes before OK.
class frmPreferences final : public Form {
 public:
  // `help` may be null: the Help button then does nothing.
  frmPreferences(AppState& state, Platform& platform, MainWindow& mainWindow, Help* help = nullptr);

  TabStrip TabStrip1{*this, IDC_frmPreferences_TabStrip1};

 private:
  Image Image1{*this, IDC_frmPreferences_Image1, "imgpreferences"};
  Control Frame1{*this, IDC_frmPreferences_Frame1};
  OptionButton opt3{*this, IDC_frmPreferences_opt3};
  OptionButton opt5{*this, IDC_frmPreferences_opt5};
  OptionButton opt7{*this, IDC_frmPreferences_opt7};
  Control Frame2{*this, IDC_frmPreferences_Frame2};
  CheckBox chkProgressBars{*this, IDC_frmPreferences_chkProgressBars};
  CheckBox chkToolBars{*this, IDC_frmPreferences_chkToolBars};
  CheckBox chkGridLines{*this, IDC_frmPreferences_chkGridLines};
  CheckBox chkMaximize{*this, IDC_frmPreferences_chkMaximize};
  CheckBox chkPrompt{*this, IDC_frmPreferences_chkPrompt};
  Label Label2{*this, IDC_frmPreferences_Label2};
  DropDownList cboSize{*this, IDC_frmPreferences_cboSize};
  Control Frame3{*this, IDC_frmPreferences_Frame3};
  Label Label3{*this, IDC_frmPreferences_Label3};
  CheckBox chkManager{*this, IDC_frmPreferences_chkManager};
  Button cmdOK{*this, IDC_frmPreferences_cmdOK};
  Button cmdCancel{*this, IDC_frmPreferences_cmdCancel};
  Button cmdHelp{*this, IDC_frmPreferences_cmdHelp};

  // What each tab shows, alone.
  using Page = std::vector<Control*>;
  const Page picSecurity{&Frame1, &opt3, &opt5, &opt7};
  const Page picSettings{&Frame2,      &chkProgressBars, &chkToolBars, &chkGridLines,
                         &chkMaximize, &chkPrompt,       &Label2,      &cboSize};
  const Page picExplorer{&Frame3, &Label3, &chkManager};

  void Load() override;
  bool TranslateShortcut(MSG& message) override { return TabStrip1.TranslateShortcut(message); }
  PreferencesFields Fields() const;
  void TabStrip1_Click();
  void chkManager_Click();
  void cmdOK_Click();
  void cmdCancel_Click();
  void cmdHelp_Click();

  Preferences preferences_;
  Help* help_;
};

}  // namespace zq
