// frmSave: asks for the job's name.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"

namespace zq {

// OK sets CurrentJobName; writing the file is for whoever has shown it.
class frmSave final : public Form {
 public:
  frmSave(AppState& state, Platform& platform);

 private:
  Image Image1{*this, IDC_frmSave_Image1, "imgsave"};
  TextBox txtName{*this, IDC_frmSave_txtName};
  Button cmdOK{*this, IDC_frmSave_cmdOK};
  Button cmdCancel{*this, IDC_frmSave_cmdCancel};

  void cmdOK_Click();

  AppState& state_;
  Platform& platform_;
};

}  // namespace zq
