#include "wipe/JobWipe.h"

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/ItemExists.h"
#include "core/state/MainWindow.h"
#include "jobs/JobFile.h"
#include "jobs/JobList.h"
#include "platform/Files.h"
#include "platform/Like.h"
#include "platform/MessageBoxes.h"
#include "platform/PathPlace.h"
#include "platform/Process.h"
#include "platform/Regional.h"
#include "platform/RunTimeError.h"
#include "reports/ReportData.h"
#include "wipe/RecursiveSearch.h"
#include "wipe/WipeProgress.h"

namespace zq {
namespace {

constexpr const char* kNothingFound =
    "All listed items in your current Job were not found at their defined locations and may have been "
    "previously wiped.  The wipe operation cannot continue.";
constexpr const char* kConfirmation =
    "This operation will securely wipe all available files and based on the settings, available folders "
    "contents as well.  Once the wipe operation is complete, the files will not be recoverable.";
constexpr const char* kSureToContinue = "Are you sure you wish to continue?";
constexpr const char* kComplete = "The wipe operation is now complete.";
constexpr const char* kCancelled =
    "The wipe operation was cancelled so all items may not have been completely processed.  You can review "
    "the report for more details.";
constexpr const char* kNoPlaceToWipe =
    "It lies neither on a drive with a letter nor in a share of a server, and was not touched.";
constexpr const char* kReviewReport = "Do you wish to review the report for the current operation?";
constexpr const char* kCancelLine =
    "User cancelled wipe operation.  Listed items may or may not have finished processing.";

// How the counting and the wipe tell a folder row. It is wider than IsFolderRow, on purpose: a job file
// made by hand can have any text in this cell. A row whose text is neither "Yes" nor "No" was looked for
// as a file, and is treated as a folder without its sub-folders once it has been found.
bool HasSubFoldersText(const JobRow& row) {
  return !row.SubFolders.empty();
}

bool IncludesSubFolders(const JobRow& row) {
  return row.SubFolders == kYes;
}

// A row made by hand may name anything. What isn't on a drive or a share isn't touched; a folder has to be
// named from there on, too: by a current folder it would be whichever folder happens to have that name.
bool NamesAPlaceToWipe(const JobRow& row) {
  return HasSubFoldersText(row) ? BeginsOnADriveOrShare(row.NameAndLocation)
                                : !BeginsInAnotherNameSpace(row.NameAndLocation);
}

std::string WithQuestion(const char* statement, const char* question) {
  return std::string(statement) + kTwoLineBreaks + question;
}

}  // namespace

void JobWipe::RunJobWipe() {
  if (!SFD1) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);

  if (!CheckRows()) {
    platform_.messageBoxes.Show(
        {kNothingFound, "No Items Found", MessageIcon::Information, MessageButtons::Ok});
    return;
  }
  if (platform_.messageBoxes.Show({WithQuestion(kConfirmation, kSureToContinue), "Wipe Operation",
                                   MessageIcon::Question, MessageButtons::OkCancel}) != MessageAnswer::Ok) {
    return;
  }

  state_.FreeSpaceActive = false;
  state_.CancelRequested = false;
  state_.TotalWipeItems = FixedPoint();
  ProcessedWipeItems = FixedPoint();
  DoWork();
  mainWindow_.Show();
  statusWindow_.Unload();
  platform_.longWork.CallUser();
  const char* outcome = state_.CancelRequested ? kCancelled : kComplete;
  if (platform_.messageBoxes.Show({WithQuestion(outcome, kReviewReport), "Wipe Operation",
                                   MessageIcon::Question, MessageButtons::YesNo}) != MessageAnswer::No &&
      reportViewer_) {
    reportViewer_->ShowModal();
  }
}

// From the hidden main window to the report.
void JobWipe::DoWork() {
  const LongWorkScope work(platform_.longWork, kFilesReasonToStay);
  // Before the main window goes: a program without a window loses the front to another one.
  statusWindow_.Show();
  mainWindow_.Hide();
  ClearReportLists();
  platform_.longWork.ShowUncounted();

  statusWindow_.SetCancelEnabled(false);
  CountRows();
  statusWindow_.SetCancelEnabled(true);
  WipeRows();
  if (state_.CancelRequested) state_.ReportErrors.Add(kCancelLine);

  // After a cancel the user has closed the window: a fresh, hidden one takes this, and is unloaded below.
  statusWindow_.SetCancelEnabled(false);
  statusWindow_.SetCurrent(0);
  statusWindow_.SetOverall(0);
  statusWindow_.SetStatus("Creating Report Data...Please Wait...");
  statusWindow_.Repaint();
  WriteReport();
  ClearReportLists();
  if (reportViewer_) reportViewer_->Load();
}

// Ghosts the rows whose items don't exist and brings back those that have reappeared. True if any exists.
bool JobWipe::CheckRows() {
  bool anyAvailable = false;
  const std::int16_t end = jobList_.RowLoopEnd();
  for (int row = 1; row <= end; ++row) {
    const JobRow& item = jobList_.Row(row);
    const int kind = item.IsFolderRow() ? kItemIsFolder : kItemIsFile;
    const bool exists = ItemExists(platform_.files, kind, item.NameAndLocation);
    jobList_.SetGhosted(row, !exists);
    anyAvailable = anyAvailable || exists;
  }
  return anyAvailable;
}

// Counts the files, and makes every read-only, hidden or system file an ordinary one before the first write.
void JobWipe::CountRows() {
  const std::int16_t end = jobList_.RowLoopEnd();
  for (int row = 1; row <= end; ++row) {
    const JobRow& item = jobList_.Row(row);
    if (item.Ghosted) continue;
    if (NamesAPlaceToWipe(item)) CountRow(item);
    platform_.process.PumpMessages();
  }
}

void JobWipe::CountRow(const JobRow& row) {
  std::string path = row.NameAndLocation;
  if (HasSubFoldersText(row)) {
    SearchFolder(platform_.files, platform_.process, path, "*", row.FolderMask, IncludesSubFolders(row),
                 state_.TotalWipeItems);
  } else {
    ++state_.TotalWipeItems;
    ClearAttributes(platform_.files, path);
  }
}

// The rows of a job are one operation to the engine, however the run ends.
void JobWipe::WipeRows() {
  OneWhole whole(whole_);
  const std::int16_t end = jobList_.RowLoopEnd();
  for (int row = 1; row <= end; ++row) {
    const JobRow& item = jobList_.Row(row);
    if (item.Ghosted) continue;
    if (HasSubFoldersText(item)) {
      WipeFolderRow(row);
    } else {
      WipeFileRow(row);
    }
    platform_.process.PumpMessages();
    if (state_.CancelRequested) break;
  }
  // It belongs to no row: the rows have been told as what they were then.
  if (!whole.End()) state_.ReportErrors.Add(SFD1->GetLastErrorText());
}

void JobWipe::WipeFolderRow(int row) {
  const JobRow item = jobList_.Row(row);  // a copy: the engine's events let other code run
  const std::int32_t level = state_.Settings.Passes;
  // Listed before the attempt, so that a folder that fails or is cancelled is in the report, too.
  state_.ReportFolders.Add(item.NameAndLocation);
  if (!NamesAPlaceToWipe(item)) {
    AddErrorLine(item.NameAndLocation, kNoPlaceToWipe);
    return;
  }

  bool wiped = false;
  if (item.FolderMask == kEveryFileMask && IncludesSubFolders(item)) {
    wiped = SFD1->WipeFolder(item.NameAndLocation, level);
    if (wiped) jobList_.SetGhosted(row, true);
  } else {
    // The folder stays, and so does the row: it can be wiped again.
    wiped = SFD1->WipeFolderFiles(item.NameAndLocation, item.FolderMask, IncludesSubFolders(item), level);
  }
  if (!wiped) AddErrorLine(item.NameAndLocation, SFD1->GetLastErrorText());
}

void JobWipe::WipeFileRow(int row) {
  const std::string path = jobList_.Row(row).NameAndLocation;
  state_.ReportFiles.Add(path);
  if (!NamesAPlaceToWipe(jobList_.Row(row))) {
    AddErrorLine(path, kNoPlaceToWipe);
    return;
  }
  if (!SFD1->WipeFile(path, state_.Settings.Passes)) {
    AddErrorLine(path, SFD1->GetLastErrorText());
    return;
  }
  jobList_.SetGhosted(row, true);
  jobList_.SetSize(row, "0 Bytes");
}

void JobWipe::AddErrorLine(const std::string& path, const std::string& reason) {
  state_.ReportErrors.Add(path + " - " + reason);
}

void JobWipe::WriteReport() {
  const std::string stamp = platform_.regional.Now();
  // The saved state of a job that has a name stays as it is, and so, in effect, does its file: the stamp
  // is written by the next save.
  if (!state_.CurrentJobName.empty()) {
    state_.LastWiping = stamp;
    StampJobFile(state_, DataFolder(platform_.files, state_));
  }

  ReportData report;
  report.jobName = state_.CurrentJobName.empty() ? "Untitled Job" : state_.CurrentJobName;
  report.stamp = stamp;
  report.folders = state_.ReportFolders.Items();
  report.files = state_.ReportFiles.Items();
  report.errors = state_.ReportErrors.Items();
  DataFolder(platform_.files, state_).Write(kReportFile, EncodeReport(report));
}

void JobWipe::ClearReportLists() {
  state_.ReportFolders.Clear();
  state_.ReportFiles.Clear();
  state_.ReportErrors.Clear();
}

void JobWipe::CancelOperation() {
  SFD1->CancelOperation();
  state_.CancelRequested = true;
}

void JobWipe::SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t /*unused*/,
                                const std::string& itemName) {
  if (state_.FreeSpaceActive) return;
  const ProgressUpdate update = ComputeProgress(bytesDone, bytesTotal, itemName, ProcessedWipeItems,
                                                state_.TotalWipeItems, platform_.regional);
  ShowProgress(update, statusWindow_, platform_.longWork);
  // While a file is in work, a click on Cancel gets through here alone.
  platform_.process.PumpMessages();
}

void JobWipe::SFD1_WorkElsewhere(const std::string& itemName) {
  if (state_.FreeSpaceActive) return;
  statusWindow_.SetStatus(ProgressStatus(0, 0, itemName, platform_.regional));
  platform_.process.PumpMessages();
}

void JobWipe::SFD1_ItemWiped(const std::string& /*itemName*/) {
  ++ProcessedWipeItems;
}

}  // namespace zq
