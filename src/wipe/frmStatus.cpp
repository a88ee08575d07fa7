#include "wipe/frmStatus.h"

#include "platform/MessageBoxes.h"

namespace zq {

frmStatus::frmStatus(AppState& state, Platform& platform, CancellableWipe& wipe)
    : Form(IDD_frmStatus), state_(state), platform_(platform), wipe_(wipe) {
  cmdCancel.Click = [this] { cmdCancel_Click(); };
}

void frmStatus::Load() {
  if (state_.Settings.ProgressBars != 1) {
    pbCurrent.UsePlainLook();
    pbOverall.UsePlainLook();
  }
}

void frmStatus::SetCancelEnabled(bool enabled) {
  cmdCancel.SetEnabled(enabled);
  if (!enabled) return;
  // The system takes the focus from a button that is disabled, and gives it to no other.
  cmdCancel.SetFocus();
}

bool frmStatus::UserConfirmsCancel() {
  return platform_.messageBoxes.Show({.text = "Cancel the current operation?",
                                      .title = "Cancel",
                                      .icon = MessageIcon::Question,
                                      .buttons = MessageButtons::YesNo}) != MessageAnswer::No;
}

void frmStatus::cmdCancel_Click() {
  // The engine stands still meanwhile: this runs inside the pump of its progress event.
  if (!UserConfirmsCancel()) return;
  wipe_.CancelOperation();
  Unload();
}

bool frmStatus::QueryUnload(CloseReason reason) {
  if (reason == CloseReason::Program) return true;
  // The counting pass and the report phase can't be stopped.
  if (!cmdCancel.IsEnabled()) return false;
  if (!UserConfirmsCancel()) return false;
  wipe_.CancelOperation();
  return true;
}

void StatusWindow::Show() {
  Default<frmStatus>::Touch().Show();
  Default<frmStatus>::Touch().Repaint();
}
void StatusWindow::Unload() {
  Default<frmStatus>::Touch().Unload();
}
void StatusWindow::SetCancelEnabled(bool enabled) {
  Default<frmStatus>::Touch().SetCancelEnabled(enabled);
}
void StatusWindow::SetStatus(const std::string& text) {
  Default<frmStatus>::Touch().lblStatus.SetText(text);
}
void StatusWindow::Repaint() {
  Default<frmStatus>::Touch().lblStatus.Repaint();
}
void StatusWindow::SetCurrent(int percent) {
  Default<frmStatus>::Touch().pbCurrent.SetValue(percent);
}
void StatusWindow::SetOverall(int percent) {
  Default<frmStatus>::Touch().pbOverall.SetValue(percent);
}
void StatusWindow::SetCaption(const std::string& text) {
  Default<frmStatus>::Touch().SetCaption(text);
}

}  // namespace zq
