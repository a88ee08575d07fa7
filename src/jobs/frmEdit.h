// frmEdit: changes the mask of a folder row, and whether its sub-folders are included.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"

namespace zq {

class JobList;

// Acts on the row that is selected at OK. Whoever shows it fills the three fields first.
class frmEdit final : public Form {
 public:
  frmEdit(AppState& state, Platform& platform, JobList& jobList);

  Label lblFolder{*this, IDC_frmEdit_lblFolder};
  TextBox txtMask{*this, IDC_frmEdit_txtMask};
  CheckBox chkSub{*this, IDC_frmEdit_chkSub};

 private:
  Image Image1{*this, IDC_frmEdit_Image1, "imgedit"};
  Button cmdOK{*this, IDC_frmEdit_cmdOK};
  Button cmdCancel{*this, IDC_frmEdit_cmdCancel};

  void Load() override { lblFolder.SetBold(); }
  void cmdOK_Click();

  AppState& state_;
  Platform& platform_;
  JobList& jobList_;
};

}  // namespace zq
