// The main window's commands: each comes by a tool's name through the one table.
#include <windows.h>
#include <commdlg.h>

#include <algorithm>
#include <exception>

#include "ancillary/frmAbout.h"
#include "controls/CommonDialog.h"
#include "controls/WaitCursor.h"
#include "core/main/frmMain.h"
#include "core/state/ItemExists.h"
#include "jobs/CommandState.h"
#include "jobs/frmEdit.h"
#include "jobs/frmFolder.h"
#include "jobs/frmNew.h"
#include "jobs/frmOpenJob.h"
#include "jobs/frmSave.h"
#include "platform/MessageBoxes.h"
#include "platform/RunTimeError.h"
#include "reports/ReportDocument.h"

namespace zq {
namespace {

constexpr unsigned kAddFilesFlags = OFN_HIDEREADONLY | OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST |
                                    OFN_SHAREAWARE | OFN_EXPLORER | OFN_LONGNAMES;
constexpr unsigned kAddFilesBufferBytes = 32000;

}  // namespace

void frmMain::DockStudio1_ToolClick(std::string_view toolName) {
  switch (OperationOf(toolName)) {
    case Operation::AddFiles:
      AddFilesDialog();
      UpdateCommandState();
      break;
    case Operation::AddFolder:
      AddFolder();
      UpdateCommandState();
      break;
    case Operation::NewJob:
      jobLifecycle_.NewJob();
      break;
    case Operation::OpenJob:
      jobLifecycle_.OpenJob();
      break;
    case Operation::SaveJob:
      jobLifecycle_.SaveJob();
      break;
    case Operation::CloseJob:
      jobLifecycle_.CloseJob();
      break;
    case Operation::DeleteOpenJob:
      jobLifecycle_.DeleteOpenJob();
      break;
    case Operation::EditFolderItem:
      EditFolderItem();
      break;
    case Operation::RemoveSelectedItem:
      RemoveSelectedItem();
      UpdateCommandState();
      break;
    case Operation::QuickWipeBin:
      ToggleQuickWipeBin();
      break;
    case Operation::Exit:
      Unload();
      break;
    case Operation::ViewReport:
      ViewReport();
      break;
    case Operation::About:
      Default<frmAbout>::Touch().ShowModal(Handle());
      break;
    case Operation::RunJobWipe:
      RunJobWipe();
      break;
    case Operation::None:
    case Operation::HelpContents:
    case Operation::LaunchManager:
    case Operation::Preferences:
    case Operation::WipeFreeSpace:
    case Operation::WebPage:
      break;
  }
}

void frmMain::DockStudio1_MenuOpening(std::string_view menuName) {
  if (menuName == "mnuActions") UpdateActionsMenu(jobList_, DockStudio1);
}

void frmMain::AddFilesDialog() {
  const OpenDialogResult result = ShowOpen(Handle(), {.title = "Add Files",
                                                      .filter = "All Files|*.*",
                                                      .initialFolder = addFiles_.InitialFolder(),
                                                      .flags = kAddFilesFlags,
                                                      .maxFileSize = kAddFilesBufferBytes});
  if (result.outcome == OpenDialogOutcome::TooManyFiles) {
    platform_.messageBoxes.Show({.text = "The names of the selected files are more than can be taken at one "
                                         "time, and none was added.  Select "
                                         "fewer files, or drag them onto the list from Windows Explorer.",
                                 .title = "Add Files",
                                 .icon = MessageIcon::Exclamation});
  }
  if (result.fileName.empty()) return;
  const WaitCursor wait;
  addFiles_.AddDialogResult(result.fileName);
}

void frmMain::AddFolder() {
  const std::string folder = state_.Settings.LastFolder.Trimmed();
  state_.Settings.LastFolder = folder;
  if (!folder.empty()) Default<frmFolder>::Touch().FT1.SelectPath(folder);
  Default<frmFolder>::Touch().ShowModal(Handle());
}

void frmMain::ShowFor(const std::string& path) {
  Default<frmFolder>::Touch().FT1.SelectPath(path);
  Default<frmFolder>::Touch().ShowModal(Handle());
}

void frmMain::EditFolderItem() {
  const JobRow& row = jobList_.Row(jobList_.SelectedRow());
  frmEdit& form = Default<frmEdit>::Touch();
  form.lblFolder.SetText(row.NameAndLocation);
  form.txtMask.SetText(row.FolderMask);
  form.chkSub.SetValue(row.SubFolders == "Yes" ? 1 : 0);
  form.ShowModal(Handle());
}

void frmMain::ListView1_DblClick() {
  try {
    if (jobList_.Count() > 0 && jobList_.Row(jobList_.SelectedRow()).IsFolderRow()) EditFolderItem();
  } catch (const RunTimeError&) {
    // No row is selected.
  }
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

void frmMain::RemoveSelectedItem() {
  const int row = jobList_.SelectedRow();
  if (row == 0) return;
  const MessageAnswer answer = platform_.messageBoxes.Show(
      {.text = "Remove " + jobList_.Row(row).NameAndLocation + " from your listing?",
       .title = "Remove Item",
       .icon = MessageIcon::Question,
       .buttons = MessageButtons::YesNo});
  if (answer == MessageAnswer::No) return;
  jobList_.Remove(row);
  // The row that takes its place is selected, so that the key can be pressed again.
  jobList_.Select(std::min(row, static_cast<int>(jobList_.Count())));
  state_.JobSaved = false;
}

void frmMain::ViewReport() {
  try {
    if (ItemExists(platform_.files, kItemIsFile, state_.AppFolder + kReportDataFile)) {
      reportWindow_.ShowModal();
      return;
    }
  } catch (const std::exception&) {
    // A report that can't be read is none.
  }
  platform_.messageBoxes.Show({.text = "There is no report available to view at this time.",
                               .title = "No Report",
                               .icon = MessageIcon::Information});
}

void frmMain::ToggleQuickWipeBin() {
  if (!state_.QuickBinBusy) return;
  platform_.messageBoxes.Show(
      {.text = "An operation is currently being performed.  The QuickWipe Bin cannot be closed.",
       .title = "Operation",
       .icon = MessageIcon::Exclamation});
}

void frmMain::RunJobWipe() {
  wiping_ = true;
  jobWipe_.RunJobWipe();
  wiping_ = false;
}

}  // namespace zq
