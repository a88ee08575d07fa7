// frmWelcome: the notice of the first start. Closing it, in whatever way, leaves the marker that it was seen.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"

namespace zq {

class frmWelcome final : public Form {
 public:
  frmWelcome(AppState& state, Platform& platform);

 private:
  Image Image1{*this, IDC_frmWelcome_Image1, "imgwelcome"};
  Label Label1{*this, IDC_frmWelcome_Label1};
  Button cmdOK{*this, IDC_frmWelcome_cmdOK};

  void Load() override;
  void DpiChanged() override { CentrePicture(); }
  void CentrePicture();
  void Unloaded() override;

  AppState& state_;
  Platform& platform_;
};

}  // namespace zq
