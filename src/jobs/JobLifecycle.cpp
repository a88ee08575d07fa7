#include "jobs/JobLifecycle.h"

#include <optional>

#include "controls/ToolStates.h"
#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "jobs/CommandState.h"
#include "jobs/JobList.h"
#include "jobs/JobName.h"
#include "jobs/ToolNames.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Platform.h"

namespace zq {
namespace {

constexpr const char* kSaveQuestion = "Save the current Wiping Job?";
constexpr const char* kDeleteQuestion = "Are you sure you wish to delete the currently open Job?";

}  // namespace

void ChooseSavedJob(AppState& state, const std::string& name) {
  const bool isOpen = name == state.CurrentJobName;
  if (!isOpen) state.SelectedJobName = name;
  state.JobActionCancelled = isOpen;
}

void JobLifecycle::NewJob() {
  state_.JobActionCancelled = false;
  CloseJob();
  if (!state_.JobActionCancelled && state_.Settings.SkipNewJobNote == 0) dialogs_.ShowNew();
}

void JobLifecycle::OpenJob() {
  const std::string openJob = state_.CurrentJobName;
  state_.JobActionCancelled = true;  // until ChooseSavedJob clears it
  dialogs_.ShowOpenJob();
  if (state_.JobActionCancelled) return;

  CloseJob();
  if (state_.JobActionCancelled) {
    if (!openJob.empty()) state_.CurrentJobName = openJob;
    return;
  }
  LoadJob(state_.SelectedJobName);
}

// There is no way to save a job that has a name under another.
void JobLifecycle::SaveJob() {
  if (!state_.CurrentJobName.empty()) {
    jobFile_.SaveJob();
    return;
  }
  dialogs_.ShowSave();
  jobFile_.SaveJob();
  UpdateTools();
}

void JobLifecycle::CloseJob() {
  if (OfferToSave()) DropJob();
}

// False if the user cancels, with JobActionCancelled set.
bool JobLifecycle::OfferToSave() {
  if (!HasSomethingToSave()) return true;
  const MessageAnswer answer = platform_.messageBoxes.Show(
      {kSaveQuestion, "Save", MessageIcon::Question, MessageButtons::YesNoCancel});
  if (answer == MessageAnswer::Yes) {
    // From here on the job may go, also when frmSave is cancelled and when the save fails.
    if (state_.CurrentJobName.empty()) dialogs_.ShowSave();
    jobFile_.SaveJob();
  } else if (answer != MessageAnswer::No) {
    state_.JobActionCancelled = true;
    return false;
  }
  return true;
}

void JobLifecycle::DropJob() {
  state_.CurrentJobName = "";
  state_.JobSaved = true;
  state_.LastWiping = "N/A";
  tools_.SetPanelText(kJobPanel, "");
  tools_.SetPanelText(kItemCountPanel, "");
  jobList_.Clear();
  UpdateTools();
}

void JobLifecycle::DeleteOpenJob() {
  if (platform_.messageBoxes.Show({kDeleteQuestion, "Delete Job", MessageIcon::Question,
                                   MessageButtons::OkCancel}) != MessageAnswer::Ok) {
    return;
  }
  // The job's file alone, and none of the files that it names. One that can't be deleted stays, silently.
  DataFolder(platform_.files, state_).Remove(JobFileName(state_.CurrentJobName));
  // With these, CloseJob has nothing to ask.
  state_.CurrentJobName = "";
  state_.JobSaved = true;
  CloseJob();
}

bool JobLifecycle::OpenJobFromCommandLine(const std::string& commandLine) {
  const std::optional<std::string> name =
      JobNameFromCommandLine(commandLine, state_.AppFolder, platform_.regional);
  if (!name) return false;
  LoadJob(*name);
  return true;
}

bool JobLifecycle::CloseForExit() {
  state_.JobActionCancelled = false;
  CloseJob();
  return !state_.JobActionCancelled && !state_.QuickBinBusy;
}

bool JobLifecycle::AllowSessionEnd() {
  if (state_.QuickBinBusy) return CloseForExit();
  state_.JobActionCancelled = false;
  return OfferToSave();
}

// A named job without rows is offered too; an untitled one whose rows are all gone isn't.
bool JobLifecycle::HasSomethingToSave() const {
  return state_.Settings.PromptToSave == 1 && !state_.JobSaved &&
         (!state_.CurrentJobName.empty() || jobList_.Count() > 0);
}

void JobLifecycle::LoadJob(const std::string& name) {
  state_.CurrentJobName = name;
  jobFile_.LoadJob();
  UpdateTools();
}

void JobLifecycle::UpdateTools() {
  UpdateCommandState(state_, jobList_, tools_, platform_.regional);
}

}  // namespace zq
