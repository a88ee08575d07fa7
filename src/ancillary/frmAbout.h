// frmAbout: product, version, licence.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "resource.h"

namespace zq {

class frmAbout final : public Form {
 public:
  frmAbout();

 private:
  Image Image1{*this, IDC_frmAbout_Image1, "imgabout"};
  Label Label1{*this, IDC_frmAbout_Label1};
  Button cmdOK{*this, IDC_frmAbout_cmdOK};

  void Load() override { Label1.SetBold(); }
};

}  // namespace zq
