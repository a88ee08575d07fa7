// JobFile: a job as it is kept on disc, one file of quoted lines for each job.
#pragma once

#include <string>
#include <vector>

namespace zq {

struct AppState;
struct Platform;
class FileIcons;
class Files;
class JobList;
class ToolStates;

// The file's bytes: the stamp, the folders' mark, three lines for each folder row, the files' mark, a line
// for each file row. Rows keep their order within their kind. Nothing is escaped: a field with a double
// quote in it doesn't read back whole. Raises Overflow beyond 32767 rows.
std::string EncodeJob(const JobList& jobList, const std::string& lastWiping);

// The stamp of a job's file, its first field; the rest isn't looked at. Raises as Files::Read does, and
// InputPastEndOfFile for an empty file.
std::string ReadJobStamp(Files& files, const std::string& path);

// A job as frmOpenJob lists it.
struct SavedJob {
  std::string name;
  std::string lastWiping;

  bool operator==(const SavedJob&) const = default;
};

// The saved jobs in the order of the file system; hidden and system files aren't jobs. A job that
// wouldn't load is listed all the same, but one whose stamp can't be read raises as ReadJobStamp does, and a
// listing that breaks off DeviceIoError: a job must not be missing from the list without a word.
std::vector<SavedJob> ListSavedJobs(Files& files, const std::string& appFolder);

// After the wipe of a job that has a name, once LastWiping is set. Leaves the disc as it is: see there.
void StampJobFile(const AppState& state, Files& files);

// Saving and loading the open job. A failure is told to the user and goes no further.
class JobFile {
 public:
  JobFile(AppState& state, JobList& jobList, Platform& platform, FileIcons& icons, ToolStates& tools)
      : state_(state), jobList_(jobList), platform_(platform), icons_(icons), tools_(tools) {}

  // Writes the list to the file of CurrentJobName, shows the name in the status bar and sets JobSaved. An
  // untitled job is left alone without a word. After a failure name and JobSaved are as before.
  void SaveJob();

  // Adds the rows of the file of CurrentJobName to the list, which the caller has emptied, shows the name
  // in the status bar and sets JobSaved. After a failure the job is untitled, saved and without rows;
  // LastWiping keeps what was read, and the status bar what it shows.
  void LoadJob();

 private:
  void ReadRows();
  void AddFolderRow(const std::string& path, std::string mask, std::string subFolders);
  void AddFileRow(const std::string& path);
  void ShowName();

  AppState& state_;
  JobList& jobList_;
  Platform& platform_;
  FileIcons& icons_;
  ToolStates& tools_;
};

}  // namespace zq
