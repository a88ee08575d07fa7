// JobLifecycle: what New, Open, Save, Close, Delete and the end of the program do to the open job, and when
// the user is asked to save it.
#pragma once

#include <string>

#include "jobs/JobFile.h"

namespace zq {

// The job dialogs. Each is shown modally, owned by the main window, and answers through the state.
class JobDialogs {
 public:
  virtual ~JobDialogs() = default;
  virtual void ShowSave() = 0;     // OK sets CurrentJobName
  virtual void ShowNew() = 0;      // OK sets Settings.SkipNewJobNote
  virtual void ShowOpenJob() = 0;  // OK is ChooseSavedJob
};

// OK in frmOpenJob: takes `name` for SelectedJobName and clears JobActionCancelled. The name of the job that
// is open, in its very letters, sets the flag instead: that job isn't loaded anew.
void ChooseSavedJob(AppState& state, const std::string& name);

class JobLifecycle {
 public:
  JobLifecycle(AppState& state, JobList& jobList, Platform& platform, FileIcons& icons, ToolStates& tools,
               JobDialogs& dialogs)
      : state_(state),
        jobList_(jobList),
        platform_(platform),
        tools_(tools),
        dialogs_(dialogs),
        jobFile_(state, jobList, platform, icons, tools) {}

  // The commands. Each leaves the tools' state in step with the job.
  void NewJob();
  void OpenJob();
  void SaveJob();
  void CloseJob();  // sets JobActionCancelled if the user cancels; doesn't clear it first
  void DeleteOpenJob();

  // Loads the job that the command line names. False if it names none: its words are items to add then. True
  // also if the job can't be loaded.
  bool OpenJobFromCommandLine(const std::string& commandLine);

  // The program is to end. False if it has to go on: the user has cancelled, and the job is as before, or
  // the QuickWipe Bin is busy, and the job is closed all the same.
  bool CloseForExit();

  // The session is to end, which may still be called off: asks and saves as CloseForExit does, but leaves the
  // job as it is. False if the session has to go on, with the job as CloseForExit leaves it then.
  bool AllowSessionEnd();

  // Leaves the untitled job without rows, asking nothing.
  void DropJob();

 private:
  bool OfferToSave();
  bool HasSomethingToSave() const;
  void LoadJob(const std::string& name);
  void UpdateTools();

  AppState& state_;
  JobList& jobList_;
  Platform& platform_;
  ToolStates& tools_;
  JobDialogs& dialogs_;
  JobFile jobFile_;
};

}  // namespace zq
