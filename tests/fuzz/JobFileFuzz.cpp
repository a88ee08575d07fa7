// A job's file: any bytes are loaded or refused as a whole, what was loaded without a quote in it is saved
// and loaded back the same, and so is a job made of the input's lines.
#include <algorithm>
#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "fuzz/Fuzz.h"
#include "jobs/FileIcons.h"
#include "jobs/FileMask.h"
#include "jobs/JobFile.h"
#include "jobs/JobList.h"
#include "platform/Platform.h"
#include "support/Rows.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeToolStates.h"

namespace zq::test {
namespace {

constexpr const char* kJob = "C:\\Zeroquill\\Jobs\\Job.zqj";

// So many bytes are four characters or more, which a file's path must have.
constexpr std::size_t kLongEnough = 16;

// A program that loads and saves one job. On its disc stand a file and a folder that rows may name.
struct Program : FakePlatform {
  Program() {
    state.AppFolder = "C:\\Zeroquill\\";
    files.AddFolder("C:\\Zeroquill\\Jobs");
    files.AddFile("C:\\dir\\a.doc", "secret");
  }

  std::vector<JobRow> Load(const std::string& bytes) {
    files.AddFile(kJob, bytes);
    state.CurrentJobName = "Job";
    state.JobSaved = false;
    jobList.Clear();
    boxes.answers = {MessageAnswer::Ok};
    boxes.shown.clear();
    jobFile.LoadJob();
    return Rows();
  }
  std::vector<JobRow> Rows() const {
    std::vector<JobRow> rows;
    for (int row = 1; row <= static_cast<int>(jobList.Count()); ++row) rows.push_back(jobList.Row(row));
    return rows;
  }
  std::string Saved() {
    jobFile.SaveJob();
    return files.Find(kJob)->content;
  }

  AppState state;
  JobList jobList{regional};
  FakeIconPainter painter;
  FileIcons icons{painter, regional};
  FakeToolStates tools{files.log};
  JobFile jobFile{state, jobList, platform, icons, tools};
  DataFolder folder{files, state};
};

bool HoldsQuote(const std::string& text) {
  return text.find('"') != std::string::npos;
}

// Whether a row that was loaded comes back as it is. A folder's row without "Yes" or "No" is saved as a
// file, and a path with a backslash at its end can get a new picture each time.
bool ComesBack(const JobRow& row) {
  return !HoldsQuote(row.NameAndLocation) && !HoldsQuote(row.FolderMask) &&
         !row.NameAndLocation.ends_with('\\') && row.IsFolderRow() == (row.SmallIcon == kFolderPicture);
}

// Whatever can be decoded is encoded so that it decodes the same, if no field holds a quote.
void CheckCoding(const std::string& bytes) {
  try {
    const JobData job = DecodeJob(bytes);
    Require(DecodeJobStamp(bytes) == job.lastWiping);
    bool quoted = HoldsQuote(job.lastWiping);
    for (const std::string& file : job.files) quoted = quoted || HoldsQuote(file);
    for (const JobFolder& folder : job.folders)
      quoted = quoted || HoldsQuote(folder.path + folder.mask + folder.subFolders);
    Require(quoted || DecodeJob(EncodeJob(job)) == job);
  } catch (const RunTimeError& error) {
    Require(error.Number() == ErrorNumber::InputPastEndOfFile);
  }
}

void CheckLoading(const std::string& bytes) {
  CheckCoding(bytes);
  Program program;
  const std::vector<JobRow> rows = program.Load(bytes);
  Require(program.state.JobSaved);
  if (program.state.CurrentJobName.empty()) {
    Require(rows.empty() && program.boxes.shown.size() == 1 && program.tools.panels.empty());
    return;
  }
  Require(program.state.CurrentJobName == "Job" && program.boxes.shown.empty());
  Require(program.tools.panels["Static2"] == "Job: Job");
  Require(ReadJobStamp(program.folder, "Job") == program.state.LastWiping);
  Require(program.files.Find("C:\\dir\\a.doc")->content == "secret");

  StampJobFile(program.state, program.folder);
  Require(program.files.Find(kJob)->content == bytes);

  if (HoldsQuote(program.state.LastWiping) || !std::all_of(rows.begin(), rows.end(), ComesBack)) return;
  const std::string stamp = program.state.LastWiping;
  const std::string saved = program.Saved();
  Require(program.Load(saved) == rows);
  Require(program.state.LastWiping == stamp);
  Require(program.Saved() == saved);
}

// Each line is a folder or, where it is long enough for one, a file.
void CheckSaving(std::string_view text) {
  Program program;
  program.state.CurrentJobName = "Job";
  std::vector<JobRow> folders;
  std::vector<JobRow> filesBehind;
  while (!text.empty()) {
    const auto [line, rest] = FirstLineAndRest(text);
    text = rest;
    std::string path(line);
    std::erase(path, '"');
    if (path == "[FILES]") continue;  // a mark to any reader
    const bool isFile = path.size() % 2 == 0 && path.size() >= kLongEnough;
    const JobRow row = isFile ? FileRow(path) : MakeFolderRow(path, path.substr(0, 5), path.size() % 3 == 0);
    program.jobList.Add(row);
    (isFile ? filesBehind : folders).push_back(row);
  }
  const std::string saved = program.Saved();
  std::vector<JobRow> loaded = program.Load(saved);
  Require(program.Saved() == saved);

  folders.insert(folders.end(), filesBehind.begin(), filesBehind.end());
  Require(loaded.size() == folders.size());
  for (std::size_t i = 0; i < loaded.size(); ++i) {
    Require(loaded[i].NameAndLocation == folders[i].NameAndLocation);
    Require(loaded[i].FolderMask == folders[i].FolderMask);
    Require(loaded[i].SubFolders == folders[i].SubFolders);
  }
}

}  // namespace
}  // namespace zq::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq::test;
  CheckLoading(std::string(TextOf(data, size)));
  CheckSaving(TextOf(data, size));
  return 0;
}
