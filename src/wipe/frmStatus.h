// frmStatus: the progress window of a wipe of files and folders.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/ProgressBarEx.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"
#include "wipe/WipeProgress.h"

namespace zq {

class frmStatus final : public Form {
 public:
  frmStatus(AppState& state, Platform& platform, CancellableWipe& wipe);

  ProgressBarEx pbCurrent{*this, IDC_frmStatus_pbCurrent};
  ProgressBarEx pbOverall{*this, IDC_frmStatus_pbOverall};
  LongLabel lblStatus{*this, IDC_frmStatus_lblStatus};
  Button cmdCancel{*this, IDC_frmStatus_cmdCancel};

  // Enabled, it has the focus.
  void SetCancelEnabled(bool enabled);

 private:
  Image Image1{*this, IDC_frmStatus_Image1, "imgstatus"};

  void Load() override;
  bool QueryUnload(CloseReason reason) override;
  void cmdCancel_Click();
  bool UserConfirmsCancel();

  AppState& state_;
  Platform& platform_;
  CancellableWipe& wipe_;
};

// The window as the driver sees it: each call goes to the present instance, made afresh when there is none.
class StatusWindow final : public WipeStatusWindow {
 public:
  void Show() override;
  void Unload() override;
  void SetCancelEnabled(bool enabled) override;
  void SetStatus(const std::string& text) override;
  void Repaint() override;
  void SetCurrent(int percent) override;
  void SetOverall(int percent) override;
  void SetCaption(const std::string& text) override;
};

}  // namespace zq
