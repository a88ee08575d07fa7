#include "jobs/frmEdit.h"

#include "jobs/FileMask.h"
#include "jobs/JobList.h"
#include "platform/MessageBoxes.h"

namespace zq {

frmEdit::frmEdit(AppState& state, Platform& platform, JobList& jobList)
    : Form(IDD_frmEdit), state_(state), platform_(platform), jobList_(jobList) {
  txtMask.Change = [this] { cmdOK.SetEnabled(HasMaskText(txtMask.Text())); };
  txtMask.GotFocus = [this] { txtMask.SelectAll(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { Unload(); };
}

void frmEdit::cmdOK_Click() {
  const std::string mask = txtMask.Text();
  const FolderVerdict verdict = VerdictOnEditedFolder(lblFolder.Text(), mask);
  if (verdict != FolderVerdict::Accepted) {
    platform_.messageBoxes.Show(BoxOf(verdict));
    if (verdict == FolderVerdict::ImproperMask) txtMask.SetFocus();
    return;
  }
  ChangeFolderItem(state_, jobList_, mask, chkSub.Value() == 1);
  Unload();
}

}  // namespace zq
