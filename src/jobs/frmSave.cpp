#include "jobs/frmSave.h"

#include "core/state/DataFolder.h"
#include "jobs/JobName.h"
#include "platform/MessageBoxes.h"
#include "platform/Text.h"

namespace zq {

frmSave::frmSave(AppState& state, Platform& platform)
    : Form(IDD_frmSave), state_(state), platform_(platform) {
  txtName.Change = [this] { cmdOK.SetEnabled(HasJobNameText(txtName.Text())); };
  txtName.GotFocus = [this] { txtName.SelectAll(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { Unload(); };
}

void frmSave::cmdOK_Click() {
  const std::string name = txtName.Text();
  const JobNameVerdict verdict = VerdictOnJobName(DataFolder(platform_.files, state_), name);
  if (verdict != JobNameVerdict::Accepted) {
    const MessageAnswer answer = platform_.messageBoxes.Show(BoxOf(verdict));
    if (verdict != JobNameVerdict::Exists || answer != MessageAnswer::Ok) {
      txtName.SetFocus();
      return;
    }
  }
  state_.CurrentJobName = TrimBlanks(name);
  Unload();
}

}  // namespace zq
