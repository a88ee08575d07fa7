#include "jobs/JobFile.h"

#include <cstdint>
#include <utility>

#include "controls/ToolStates.h"
#include "core/state/AppState.h"
#include "core/state/ItemExists.h"
#include "jobs/FileIcons.h"
#include "jobs/JobList.h"
#include "jobs/JobName.h"
#include "jobs/JobRow.h"
#include "jobs/ToolNames.h"
#include "jobs/mdlSize.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Platform.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr const char* kErrorTitle = "Error";
constexpr const char* kLoadError = "An error was encountered trying to open the existing Zeroquill Job.";
constexpr const char* kSaveError =
    "An error was encountered trying to save the current wiping job.  Ensure that Zeroquill was installed "
    "with the proper permissions to create a Jobs sub folder under the main folder and can write files "
    "within the folder.";

// The number under which a file is opened. Files are numbered from 1: this one no file can have.
constexpr int kNumberOfNoFile = 0;

// Opens the file `name` for output: creates it, or empties it. Raises BadFileNameOrNumber before it touches
// the disc if no file can have the number, and else as Files::Write does.
void OpenForOutput(const DataFolder& folder, int fileNumber, const std::string& name) {
  if (fileNumber <= kNumberOfNoFile) throw RunTimeError(ErrorNumber::BadFileNameOrNumber);
  folder.Write(name, {});
}

}  // namespace

JobData JobDataOf(const JobList& jobList, const std::string& lastWiping) {
  JobData job;
  job.lastWiping = lastWiping;
  const std::int16_t end = jobList.RowLoopEnd();
  for (int row = 1; row <= end; ++row) {
    const JobRow& item = jobList.Row(row);
    if (item.IsFolderRow()) {
      job.folders.push_back({item.NameAndLocation, item.FolderMask, item.SubFolders});
    } else {
      job.files.push_back(item.NameAndLocation);
    }
  }
  return job;
}

std::string ReadJobStamp(const DataFolder& folder, const std::string& name) {
  return DecodeJobStamp(folder.Read(JobFileName(name)));
}

std::vector<SavedJob> ListSavedJobs(const DataFolder& folder) {
  std::vector<SavedJob> jobs;
  const ListEnd end =
      folder.List(std::string(kJobsFolder) + "*" + kJobExtension, [&](const FileEntry& entry) {
        if (!IsJobFile(entry)) return;
        const std::string fileName = TrimAtNull(entry.name);
        const auto extensionCharacters = static_cast<int>(std::string_view(kJobExtension).size());
        const std::string name(WithoutLastCharacters(fileName, extensionCharacters));
        jobs.push_back({name, DecodeJobStamp(folder.Read(kJobsFolder + fileName))});
      });
  if (end == ListEnd::BrokenOff) throw RunTimeError(ErrorNumber::DeviceIoError);
  return jobs;
}

// A wipe leaves the job's file byte for byte as it is: the stamp stays in memory, and reaches the disc with
// the next save by hand. This comes of the refused open, and is to stay so. The file with the new stamp,
// which would take the place of the job's file, is asked for under a number that no file can have; the open
// fails before anything is created, and the routine ends there, with nothing to close and nobody told.
void StampJobFile(const AppState& state, const DataFolder& folder) {
  try {
    OpenForOutput(folder, kNumberOfNoFile, kJobsFolder + state.CurrentJobName + ".tmp");
  } catch (const RunTimeError&) {
  }
}

void JobFile::SaveJob() {
  if (state_.CurrentJobName.empty()) return;  // after a cancelled frmSave, for one
  try {
    // Complete before the file is opened, which empties it: too many rows cost no job that was saved. A
    // failure while it is written does, since no second file is used.
    const std::string bytes = EncodeJob(JobDataOf(jobList_, state_.LastWiping));
    dataFolder_.Write(JobFileName(state_.CurrentJobName), bytes);
  } catch (const RunTimeError&) {
    platform_.messageBoxes.Show({kSaveError, kErrorTitle, MessageIcon::Exclamation, MessageButtons::Ok});
    return;
  }
  ShowName();
  state_.JobSaved = true;
}

void JobFile::LoadJob() {
  try {
    ReadRows();
  } catch (const RunTimeError&) {
    // Before the box, during which the windows go on: none may see a part of a job.
    state_.CurrentJobName = "";
    state_.JobSaved = true;
    jobList_.Clear();
    platform_.messageBoxes.Show({kLoadError, kErrorTitle, MessageIcon::Exclamation, MessageButtons::Ok});
    return;
  }
  state_.JobSaved = true;
  ShowName();
}

// The stamp is taken by itself: it stays what it was read as when the rest can't be read.
void JobFile::ReadRows() {
  const std::string bytes = dataFolder_.Read(JobFileName(state_.CurrentJobName));
  state_.LastWiping = DecodeJobStamp(bytes);
  JobData job = DecodeJob(bytes);
  for (JobFolder& folder : job.folders) AddFolderRow(std::move(folder));
  for (const std::string& file : job.files) AddFileRow(file);
}

// The mask and the text for the sub-folders stand in the row as they stand in the file, valid or not.
void JobFile::AddFolderRow(JobFolder folder) {
  JobRow row;
  row.Ghosted = !ItemExists(platform_.files, kItemIsFolder, folder.path);
  row.NameAndLocation = std::move(folder.path);
  row.Size = "N/A";
  row.FolderMask = std::move(folder.mask);
  row.SubFolders = std::move(folder.subFolders);
  row.SmallIcon = kFolderPicture;
  jobList_.Add(std::move(row));
}

// A path that is listed already is listed once more. Raises as IconForFileRow and GetFileSize64 do.
void JobFile::AddFileRow(const std::string& path) {
  JobRow row;
  row.NameAndLocation = path;
  row.Ghosted = !ItemExists(platform_.files, kItemIsFile, path);
  row.Size = FormatFileSize(GetFileSize64(platform_.files, path).ToDouble(), platform_.regional);
  row.SmallIcon = icons_.IconForFileRow(path, path);
  jobList_.Add(std::move(row));
}

void JobFile::ShowName() {
  tools_.SetPanelText(kJobPanel, "Job: " + state_.CurrentJobName);
}

}  // namespace zq
