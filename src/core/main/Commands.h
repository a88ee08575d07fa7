// Commands: what each command of the main window does. Windows are behind interfaces: the main window opens
// them, tests play them.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zq {

struct AppState;
struct JobRow;
struct Platform;
class AddFiles;
class ExplorerManager;
class FolderDialog;
class FreeSpaceWipe;
class Help;
class JobLifecycle;
class JobList;
class JobWipe;
class MainWindow;
class ReportViewer;
class ToolStates;

// What the user chose in the Add Files dialog.
struct AddFilesChoice {
  bool tooMany = false;  // more names than the dialog can give: none is taken
  std::string fileName;  // as AddFiles::AddDialogResult takes it; "" for none
};

// The windows that the commands open, beside those of the job's life. All but the Bin are modal, owned by the
// main window.
class CommandWindows {
 public:
  virtual ~CommandWindows() = default;
  virtual AddFilesChoice ShowAddFiles(const std::string& initialFolder) = 0;
  virtual void ShowEdit(const JobRow& row) = 0;  // OK is ChangeFolderItem
  virtual void ShowDriveWipe() = 0;  // OK sets FreeSpaceDrive and FreeSpacePasses, all else clears the drive
  virtual void ShowPreferences() = 0;
  virtual void ShowQuickBin() = 0;  // without a modal state, and without an owner
  virtual void CloseQuickBin() = 0;
  virtual void ShowAbout() = 0;
  // Closes the main window, which asks CloseForExit.
  virtual void CloseMainWindow() = 0;
  // Does `work` under the hourglass.
  virtual void DoBusily(const std::function<void()>& work) = 0;
};

// What the commands work on; all of it outlives them.
struct CommandParts {
  AppState& state;
  JobList& jobList;
  Platform& platform;
  ToolStates& tools;
  AddFiles& addFiles;
  JobLifecycle& jobLifecycle;
  JobWipe& jobWipe;
  FreeSpaceWipe& freeSpaceWipe;
  ExplorerManager& explorerManager;
  MainWindow& mainWindow;
  FolderDialog& folderDialog;
  CommandWindows& windows;
  ReportViewer* reportViewer = nullptr;  // null: there is no window for reports, and none opens
  Help* help = nullptr;                  // null: the Help menu's first two commands do nothing
};

class Commands {
 public:
  explicit Commands(const CommandParts& parts) : parts_(parts) {}

  // A tool was activated, by menu, tool bar or key: runs its operation out of the command table. A name that
  // isn't in there does nothing.
  void Run(std::string_view toolName);

  // A menu of the menu bar is about to open.
  void MenuOpening(std::string_view menuName);

  // A double click into the list: the same as Edit on a folder row, nothing elsewhere.
  void ListDoubleClicked();

  // The main window is to close. False if it has to stay; see JobLifecycle::CloseForExit. While a wipe
  // runs it stays, and the job with it.
  bool CloseForExit();

  // The session is to end; see JobLifecycle::AllowSessionEnd. False while a wipe runs.
  bool AllowSessionEnd();

  // The session ends now: leaves no job, but to a wipe the rows that it walks.
  void SessionEnds();

  // Brings the tools and the item count in step with the job.
  void UpdateTools();

  // The operations, as the command table names them.
  void AddFilesDialog();
  void AddFolder();
  void NewJob();
  void OpenJob();
  void SaveJob();
  void CloseJob();
  void DeleteOpenJob();
  void EditFolderItem();  // raises SubscriptOutOfRange if no row is selected
  void RemoveSelectedItem();
  void ShowPreferences();
  void LaunchManager();
  void ToggleQuickWipeBin();
  void ViewReport();
  void RunJobWipe();
  void WipeFreeSpace();
  void HelpContents();
  void HelpWebPage();
  void About();
  void Exit();

 private:
  const CommandParts parts_;
  bool wiping_ = false;
};

}  // namespace zq
