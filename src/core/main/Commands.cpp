#include "core/main/Commands.h"

#include <algorithm>

#include "controls/ToolStates.h"
#include "core/main/CommandTable.h"
#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/Help.h"
#include "core/state/MainWindow.h"
#include "jobs/AddFiles.h"
#include "jobs/CommandState.h"
#include "jobs/JobLifecycle.h"
#include "jobs/JobList.h"
#include "jobs/ToolNames.h"
#include "platform/MessageBoxes.h"
#include "platform/Platform.h"
#include "platform/RunTimeError.h"
#include "preferences/ExplorerManager.h"
#include "quickbin/DropWipe.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/JobWipe.h"

namespace zq {
namespace {

constexpr const char* kTooManyFiles =
    "The names of the selected files are more than can be taken at one time, and none was added.  Select "
    "fewer files, or drag them onto the list from Windows Explorer.";
constexpr const char* kNoReport = "There is no report available to view at this time.";
constexpr const char* kNothingToRemove =
    "No item is selected.  Select the item that you wish to remove from your listing.";
constexpr const char* kBinBusy =
    "An operation is currently being performed.  The QuickWipe Bin cannot be closed.";

}  // namespace

void Commands::Run(std::string_view toolName) {
  const Command* command = CommandOf(toolName);
  if (command && command->operation) (this->*command->operation)();
}

void Commands::MenuOpening(std::string_view menuName) {
  if (menuName == kActionsMenu) UpdateActionsMenu(parts_.jobList, parts_.tools);
  if (menuName == kFileMenu) {
    parts_.explorerManager.Look();
    parts_.tools.SetEnabled("mnuFileLaunch", !parts_.state.ManagerRunning);
  }
}

void Commands::ListDoubleClicked() {
  try {
    const JobList& jobList = parts_.jobList;
    if (jobList.Count() > 0 && jobList.Row(jobList.SelectedRow()).IsFolderRow()) EditFolderItem();
  } catch (const RunTimeError&) {
    // No row is selected.
  }
}

// Closing empties the list whose rows a running wipe is walking. The window is hidden then, so that only the
// end of the session can ask.
bool Commands::CloseForExit() {
  return !wiping_ && parts_.jobLifecycle.CloseForExit();
}

bool Commands::AllowSessionEnd() {
  return !wiping_ && parts_.jobLifecycle.AllowSessionEnd();
}

void Commands::SessionEnds() {
  if (!wiping_) parts_.jobLifecycle.DropJob();
}

void Commands::UpdateTools() {
  UpdateCommandState(parts_.state, parts_.jobList, parts_.tools, parts_.platform.regional);
}

void Commands::AddFilesDialog() {
  const AddFilesChoice choice = parts_.windows.ShowAddFiles(parts_.addFiles.InitialFolder());
  if (choice.tooMany) {
    parts_.platform.messageBoxes.Show(
        {.text = kTooManyFiles, .title = "Add Files", .icon = MessageIcon::Exclamation});
  } else if (!choice.fileName.empty()) {
    parts_.windows.DoBusily([&] { parts_.addFiles.AddDialogResult(choice.fileName); });
  }
  UpdateTools();
}

void Commands::AddFolder() {
  const std::string folder = parts_.state.Settings.LastFolder.Trimmed();
  parts_.state.Settings.LastFolder = folder;
  parts_.folderDialog.ShowFor(folder);
  UpdateTools();
}

void Commands::NewJob() {
  parts_.jobLifecycle.NewJob();
}

void Commands::OpenJob() {
  parts_.jobLifecycle.OpenJob();
}

void Commands::SaveJob() {
  parts_.jobLifecycle.SaveJob();
}

void Commands::CloseJob() {
  parts_.jobLifecycle.CloseJob();
}

void Commands::DeleteOpenJob() {
  parts_.jobLifecycle.DeleteOpenJob();
}

void Commands::EditFolderItem() {
  parts_.windows.ShowEdit(parts_.jobList.Row(parts_.jobList.SelectedRow()));
}

void Commands::RemoveSelectedItem() {
  JobList& jobList = parts_.jobList;
  const int row = jobList.SelectedRow();
  if (row == 0) {
    parts_.platform.messageBoxes.Show(
        {.text = kNothingToRemove, .title = "Remove Item", .icon = MessageIcon::Information});
  } else {
    const MessageAnswer answer = parts_.platform.messageBoxes.Show(
        {.text = "Remove " + jobList.Row(row).NameAndLocation + " from your listing?",
         .title = "Remove Item",
         .icon = MessageIcon::Question,
         .buttons = MessageButtons::YesNo});
    if (answer == MessageAnswer::Yes) {
      jobList.Remove(row);
      // The row that takes its place is selected, so that the key can be pressed again.
      jobList.Select(std::min(row, static_cast<int>(jobList.Count())));
      parts_.state.JobSaved = false;
    }
  }
  UpdateTools();
}

void Commands::ShowPreferences() {
  parts_.windows.ShowPreferences();
}

void Commands::LaunchManager() {
  parts_.explorerManager.LaunchManager();
}

void Commands::ToggleQuickWipeBin() {
  AppState& state = parts_.state;
  if (state.QuickBinBusy) {
    parts_.platform.messageBoxes.Show(
        {.text = kBinBusy, .title = "Operation", .icon = MessageIcon::Exclamation});
  } else if (state.QuickBinOpen) {
    // Its closing does the first two as well, and for its own ways to close.
    parts_.tools.SetChecked(kQuickWipeBinTool, false);
    parts_.mainWindow.SetWindowState(state.SavedWindowState);
    parts_.windows.CloseQuickBin();
  } else {
    parts_.tools.SetChecked(kQuickWipeBinTool, true);
    state.SavedWindowState = parts_.mainWindow.WindowState();
    parts_.mainWindow.SetWindowState(kWindowMinimised);
    parts_.windows.ShowQuickBin();
  }
}

void Commands::ViewReport() {
  try {
    if (DataFolder(parts_.platform.files, parts_.state).HasFile(kReportFile)) {
      if (parts_.reportViewer) parts_.reportViewer->ShowModal();
      return;
    }
  } catch (const RunTimeError&) {
    // A report that can't be shown is as good as none.
  }
  parts_.platform.messageBoxes.Show(
      {.text = kNoReport, .title = "No Report", .icon = MessageIcon::Information});
}

void Commands::RunJobWipe() {
  wiping_ = true;
  parts_.jobWipe.RunJobWipe();  // what it raises ends the process
  wiping_ = false;
}

void Commands::WipeFreeSpace() {
  parts_.windows.ShowDriveWipe();
  if (parts_.state.FreeSpaceDrive.empty()) return;
  wiping_ = true;
  parts_.freeSpaceWipe.RunFreeSpaceWipe();  // what it raises ends the process
  wiping_ = false;
}

void Commands::HelpContents() {
  if (parts_.help) parts_.help->ShowContents();
}

void Commands::HelpWebPage() {
  if (parts_.help) parts_.help->ShowWebPage();
}

void Commands::About() {
  parts_.windows.ShowAbout();
}

void Commands::Exit() {
  parts_.windows.CloseMainWindow();
}

}  // namespace zq
