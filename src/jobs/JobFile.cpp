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
#include "jobs/mdlSize.h"
#include "platform/FieldReader.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Platform.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr const char* kFoldersMark = "[FOLDERS]";
constexpr const char* kFilesMark = "[FILES]";

constexpr const char* kErrorTitle = "Error";
constexpr const char* kLoadError = "An error was encountered trying to open the existing Zeroquill Job.";
constexpr const char* kSaveError =
    "An error was encountered trying to save the current wiping job.  Ensure that Zeroquill was installed "
    "with the proper permissions to create a Jobs sub folder under the main folder and can write files "
    "within the folder.";

// The number under which a file is opened. Files are numbered from 1: this one no file can have.
constexpr int kNumberOfNoFile = 0;

// Opens `path` for output: creates it, or empties it. Raises BadFileNameOrNumber before it touches the disc
// if no file can have the number, and else as Files::Write does.
void OpenForOutput(Files& files, int fileNumber, const std::string& path) {
  if (fileNumber <= kNumberOfNoFile) throw RunTimeError(ErrorNumber::BadFileNameOrNumber);
  files.Write(path, {});
}

}  // namespace

std::string EncodeJob(const JobList& jobList, const std::string& lastWiping) {
  std::string bytes = QuotedLine(lastWiping) + QuotedLine(kFoldersMark);
  const std::int16_t end = jobList.RowLoopEnd();
  for (int row = 1; row <= end; ++row) {
    const JobRow& item = jobList.Row(row);
    if (!item.IsFolderRow()) continue;
    bytes += QuotedLine(item.NameAndLocation);
    bytes += QuotedLine(item.FolderMask);
    bytes += QuotedLine(item.SubFolders);
  }
  bytes += QuotedLine(kFilesMark);
  for (int row = 1; row <= end; ++row) {
    const JobRow& item = jobList.Row(row);
    if (!item.IsFolderRow()) bytes += QuotedLine(item.NameAndLocation);
  }
  return bytes;
}

std::string ReadJobStamp(Files& files, const std::string& path) {
  const std::string bytes = files.Read(path);
  return FieldReader(bytes).Next();
}

std::vector<SavedJob> ListSavedJobs(Files& files, const std::string& appFolder) {
  std::vector<SavedJob> jobs;
  const std::string folder = appFolder + kJobsFolder;
  files.List(folder + "*" + kJobExtension, [&](const FileEntry& entry) {
    if (!IsJobFile(entry)) return;
    const std::string fileName = TrimAtNull(entry.name);
    const auto extensionCharacters = static_cast<int>(std::string_view(kJobExtension).size());
    jobs.push_back({std::string(WithoutLastCharacters(fileName, extensionCharacters)),
                    ReadJobStamp(files, folder + fileName)});
  });
  return jobs;
}

// A wipe leaves the job's file byte for byte as it is: the stamp stays in memory, and reaches the disc with
// the next save by hand. This comes of the refused open, and is to stay so. The file with the new stamp,
// which would take the place of the job's file, is asked for under a number that no file can have; the open
// fails before anything is created, and the routine ends there, with nothing to close and nobody told.
void StampJobFile(const AppState& state, Files& files) {
  try {
    OpenForOutput(files, kNumberOfNoFile, state.AppFolder + kJobsFolder + state.CurrentJobName + ".tmp");
  } catch (const RunTimeError&) {
  }
}

void JobFile::SaveJob() {
  if (state_.CurrentJobName.empty()) return;  // after a cancelled frmSave, for one
  try {
    // Complete before the file is opened, which empties it: too many rows cost no job that was saved. A
    // failure while it is written does, since no second file is used.
    const std::string bytes = EncodeJob(jobList_, state_.LastWiping);
    platform_.files.Write(JobFilePath(state_.AppFolder, state_.CurrentJobName), bytes);
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

void JobFile::ReadRows() {
  const std::string bytes = platform_.files.Read(JobFilePath(state_.AppFolder, state_.CurrentJobName));
  FieldReader reader(bytes);
  state_.LastWiping = reader.Next();
  reader.Next();  // the folders' mark: its place makes it that, whatever it says

  bool inFolders = true;
  while (!reader.AtEnd()) {
    const std::string field = reader.Next();
    if (field == kFilesMark) {
      inFolders = false;
    } else if (inFolders) {
      std::string mask = reader.Next();
      std::string subFolders = reader.Next();
      AddFolderRow(field, std::move(mask), std::move(subFolders));
    } else {
      AddFileRow(field);
    }
  }
}

// The mask and the text for the sub-folders stand in the row as they stand in the file, valid or not.
void JobFile::AddFolderRow(const std::string& path, std::string mask, std::string subFolders) {
  JobRow row;
  row.NameAndLocation = path;
  row.Size = "N/A";
  row.FolderMask = std::move(mask);
  row.SubFolders = std::move(subFolders);
  row.SmallIcon = kFolderPicture;
  row.Ghosted = !ItemExists(platform_.files, kItemIsFolder, path);
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
  tools_.SetPanelText("Static2", "Job: " + state_.CurrentJobName);
}

}  // namespace zq
