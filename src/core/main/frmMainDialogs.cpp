// The windows that the main window's commands open.
#include <windows.h>
#include <commdlg.h>

#include "ancillary/frmAbout.h"
#include "controls/CommonDialog.h"
#include "controls/WaitCursor.h"
#include "core/main/frmMain.h"
#include "jobs/frmEdit.h"
#include "jobs/frmFolder.h"
#include "jobs/frmNew.h"
#include "jobs/frmOpenJob.h"
#include "jobs/frmSave.h"
#include "preferences/frmPreferences.h"
#include "wipe/frmDriveWipe.h"

namespace zq {
namespace {

constexpr unsigned kAddFilesFlags = OFN_HIDEREADONLY | OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST |
                                    OFN_SHAREAWARE | OFN_EXPLORER | OFN_LONGNAMES;
// In UTF-16 units: for as many files as a job can have rows, each name at its longest, and their folder.
constexpr unsigned kAddFilesBuffer = 32767 * (255 + 1) + 32768;

}  // namespace

AddFilesChoice frmMain::ShowAddFiles(const std::string& initialFolder) {
  const OpenDialogResult result = ShowOpen(Handle(), {.title = "Add Files",
                                                      .filter = "All Files|*.*",
                                                      .initialFolder = initialFolder,
                                                      .flags = kAddFilesFlags,
                                                      .maxFileSize = kAddFilesBuffer});
  return {.tooMany = result.outcome == OpenDialogOutcome::TooManyFiles, .fileName = result.fileName};
}

void frmMain::ShowFor(const std::string& path) {
  if (!path.empty()) Default<frmFolder>::Touch().FT1.SelectPath(path);
  Default<frmFolder>::Touch().ShowModal(Handle());
}

void frmMain::ShowEdit(const JobRow& row) {
  frmEdit& form = Default<frmEdit>::Touch();
  form.lblFolder.SetText(row.NameAndLocation);
  form.txtMask.SetText(row.FolderMask);
  form.chkSub.SetValue(row.SubFolders == kYes ? 1 : 0);
  form.ShowModal(Handle());
}

void frmMain::ShowDriveWipe() {
  Default<frmDriveWipe>::Touch().ShowModal(Handle());
}

void frmMain::ShowPreferences() {
  Default<frmPreferences>::Touch().ShowModal(Handle());
}

void frmMain::ShowAbout() {
  Default<frmAbout>::Touch().ShowModal(Handle());
}

void frmMain::ShowSave() {
  Default<frmSave>::Touch().ShowModal(Handle());
}

void frmMain::ShowNew() {
  Default<frmNew>::Touch().ShowModal(Handle());
}

void frmMain::ShowOpenJob() {
  Default<frmOpenJob>::Touch().ShowModal(Handle());
}

void frmMain::CloseMainWindow() {
  Unload();
}

void frmMain::DoBusily(const std::function<void()>& work) {
  const WaitCursor wait;
  work();
}

}  // namespace zq
