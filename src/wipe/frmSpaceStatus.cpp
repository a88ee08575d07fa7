#include "wipe/frmSpaceStatus.h"

#include "platform/MessageBoxes.h"
#include "wipe/FreeSpaceWipe.h"

namespace zq {

frmSpaceStatus::frmSpaceStatus(AppState& state, Platform& platform, FreeSpaceWipe& freeSpaceWipe)
    : Form(IDD_frmSpaceStatus), state_(state), platform_(platform), freeSpaceWipe_(freeSpaceWipe) {
  cmdCancel.Click = [this] { cmdCancel_Click(); };
}

void frmSpaceStatus::Load() {
  if (state_.Settings.ProgressBars != 1) pbCurrent.UsePlainLook();
}

bool frmSpaceStatus::UserConfirmsCancel() {
  return platform_.messageBoxes.Show({.text = "Cancel the current operation?",
                                      .title = "Cancel",
                                      .icon = MessageIcon::Question,
                                      .buttons = MessageButtons::YesNo}) != MessageAnswer::No;
}

void frmSpaceStatus::cmdCancel_Click() {
  // The engine stands still meanwhile: this runs inside the pump of its progress event.
  if (!UserConfirmsCancel()) return;
  freeSpaceWipe_.CancelOperation();
  Unload();
}

bool frmSpaceStatus::QueryUnload(CloseReason reason) {
  if (reason == CloseReason::Program) return true;
  if (!UserConfirmsCancel()) return false;
  freeSpaceWipe_.CancelOperation();
  return true;
}

void SpaceStatusWindow::Show() {
  Default<frmSpaceStatus>::Touch().Show();
  Default<frmSpaceStatus>::Touch().Repaint();
}
void SpaceStatusWindow::Unload() {
  Default<frmSpaceStatus>::Touch().Unload();
}
void SpaceStatusWindow::SetStatus(const std::string& text) {
  Default<frmSpaceStatus>::Touch().lblStatus.SetText(text);
}
void SpaceStatusWindow::SetCurrent(int percent) {
  Default<frmSpaceStatus>::Touch().pbCurrent.SetValue(percent);
}
void SpaceStatusWindow::SetCaption(const std::string& text) {
  Default<frmSpaceStatus>::Touch().SetCaption(text);
}

}  // namespace zq
