// frmNew: the note that a new job was started.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "core/state/AppState.h"
#include "resource.h"

namespace zq {

class frmNew final : public Form {
 public:
  explicit frmNew(AppState& state);

 private:
  Image Image1{*this, IDC_frmNew_Image1, "imgnew"};
  Label Label2{*this, IDC_frmNew_Label2};
  CheckBox chkShow{*this, IDC_frmNew_chkShow};
  Button cmdOK{*this, IDC_frmNew_cmdOK};

  void Load() override { Label2.SetBold(); }
  void cmdOK_Click();

  AppState& state_;
};

}  // namespace zq
