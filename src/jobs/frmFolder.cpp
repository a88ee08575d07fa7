#include "jobs/frmFolder.h"

#include "core/state/Help.h"
#include "jobs/FileMask.h"
#include "jobs/JobList.h"
#include "platform/MessageBoxes.h"

namespace zq {

frmFolder::frmFolder(AppState& state, Platform& platform, JobList& jobList, Help* help)
    : Form(IDD_frmFolder), state_(state), platform_(platform), jobList_(jobList), help_(help) {
  FT1.SelectionChange = [this](const std::string& text, const std::string& fullPath) {
    FT1_SelectionChange(text, fullPath);
  };
  txtMask.Change = [this] { cmdOK.SetEnabled(HasMaskText(txtMask.Text())); };
  txtMask.GotFocus = [this] { txtMask.SelectAll(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { Unload(); };
  cmdHelp.Click = [this] { cmdHelp_Click(); };
}

void frmFolder::Load() {
  chkSub.SetValue(state_.Settings.IncludeSubFolders);
  FT1.SelectDesktop();
}

void frmFolder::Unloaded() {
  DropToNormalLevel();
}

// The template puts the window above all others.
void frmFolder::DropToNormalLevel() {
  ::SetWindowPos(Handle(), HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void frmFolder::FT1_SelectionChange(const std::string& text, const std::string& fullPath) {
  const bool carriesPath = CarriesPath(text);
  if (carriesPath) FolderPath = fullPath;
  cmdOK.SetEnabled(carriesPath);
}

void frmFolder::cmdOK_Click() {
  const std::string mask = txtMask.Text();
  const FolderVerdict verdict = VerdictOnAddedFolder(FolderPath, mask);
  if (verdict != FolderVerdict::Accepted) {
    const MessageAnswer answer = platform_.messageBoxes.Show(BoxOf(verdict));
    if (verdict == FolderVerdict::ImproperMask) txtMask.SetFocus();
    if (verdict != FolderVerdict::RootDriveAdded || answer != MessageAnswer::Ok) return;
  }
  AddFolderItem(state_, jobList_, FolderPath, mask, chkSub.Value() == 1);
  Unload();
}

void frmFolder::cmdHelp_Click() {
  // Or the help window would be hidden behind this one. It isn't raised again.
  DropToNormalLevel();
  if (help_) help_->ShowTopic(kHelpOnFolder);
}

}  // namespace zq
