// frmSpaceStatus: the progress window of a free-space wipe.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/ProgressBarEx.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"
#include "wipe/FreeSpaceProgress.h"

namespace zq {

class FreeSpaceWipe;

class frmSpaceStatus final : public Form {
 public:
  frmSpaceStatus(AppState& state, Platform& platform, FreeSpaceWipe& freeSpaceWipe);

  ProgressBarEx pbCurrent{*this, IDC_frmSpaceStatus_pbCurrent};
  Label lblStatus{*this, IDC_frmSpaceStatus_lblStatus};

 private:
  Image Image1{*this, IDC_frmSpaceStatus_Image1, "imgspacestatus"};
  Button cmdCancel{*this, IDC_frmSpaceStatus_cmdCancel};

  void Load() override;
  bool QueryUnload(CloseReason reason) override;
  void cmdCancel_Click();
  bool UserConfirmsCancel();

  AppState& state_;
  Platform& platform_;
  FreeSpaceWipe& freeSpaceWipe_;
};

// The window as the driver sees it: each call goes to the present instance, made afresh when there is none.
class SpaceStatusWindow final : public FreeSpaceStatusWindow {
 public:
  void Show() override;
  void Unload() override;
  void SetStatus(const std::string& text) override;
  void SetCurrent(int percent) override;
  void SetCaption(const std::string& text) override;
};

}  // namespace zq
