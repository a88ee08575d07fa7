// frmFolder: adds a folder with its mask to the job.
#pragma once

#include <string>

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/FolderTreeview.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"

namespace zq {

class Help;
class JobList;

class frmFolder final : public Form {
 public:
  // `help` may be null: the Help button then shows none.
  frmFolder(AppState& state, Platform& platform, JobList& jobList, Help* help = nullptr);

  FolderTreeview FT1{*this, IDC_frmFolder_FT1};

 private:
  Image Image1{*this, IDC_frmFolder_Image1, "imgfolder"};
  TextBox txtMask{*this, IDC_frmFolder_txtMask};
  CheckBox chkSub{*this, IDC_frmFolder_chkSub};
  Button cmdOK{*this, IDC_frmFolder_cmdOK};
  Button cmdCancel{*this, IDC_frmFolder_cmdCancel};
  Button cmdHelp{*this, IDC_frmFolder_cmdHelp};

  void Load() override;
  void Unloaded() override;
  void FT1_SelectionChange(const std::string& text, const std::string& fullPath);
  void cmdOK_Click();
  void cmdHelp_Click();
  void DropToNormalLevel();

  AppState& state_;
  Platform& platform_;
  JobList& jobList_;
  Help* help_;
  std::string FolderPath;  // of the last node that carries one
};

}  // namespace zq
