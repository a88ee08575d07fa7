#include "jobs/FileMask.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "core/state/AppState.h"
#include "jobs/JobList.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"
#include "platform/Utf8.h"

namespace zq {
namespace {

constexpr std::size_t kShortestMask = 3;
constexpr std::size_t kLongestMask = 5;
constexpr std::size_t kRootDriveLength = 3;

struct Box {
  FolderVerdict verdict;
  const char* title;
  const char* statement;
  const char* more;  // a paragraph of its own, or null
  MessageIcon icon;
  MessageButtons buttons;
};

constexpr std::array<Box, 4> kBoxes{{
    {FolderVerdict::ImproperMask, "Improper Format",
     "It does not appear that the formatting of your file mask is correct.  File masks need to be defined "
     "properly to ensure only the files you want wiped will indeed be wiped.",
     "An example of a proper file mask would be *.doc (this would include all .doc files contained within "
     "the chosen folder).",
     MessageIcon::Exclamation, MessageButtons::Ok},
    {FolderVerdict::WholeDriveAdded, "Allowed Action",
     "You have selected a main root drive and defined the file mask to include ALL files.  This action "
     "cannot be performed by Zeroquill.  The program cannot wipe an entire drives contents.",
     nullptr, MessageIcon::Exclamation, MessageButtons::Ok},
    {FolderVerdict::WholeDriveEdited, "Allowed Action",
     "Your folder is a main root drive and you have defined the file mask to include ALL files.  This "
     "action cannot be performed by Zeroquill.  The program cannot wipe an entire drives contents.",
     nullptr, MessageIcon::Exclamation, MessageButtons::Ok},
    {FolderVerdict::RootDriveAdded, "Main Root Drive Selected",
     "You have selected a main root drive.  It is highly suggested that you do not define a main root drive "
     "as a selected folder.",
     "Wiping files over a main root drive is an action that can cause serious problems with your computer "
     "if you are not fully aware of the file types your are wiping.  Continue with this selection?",
     MessageIcon::Question, MessageButtons::OkCancel},
}};

bool IsEveryFileMask(std::string_view maskText) {
  return TrimBlanks(maskText) == kEveryFileMask;
}

const char* SubFoldersText(bool includeSubFolders) {
  return includeSubFolders ? kYes : kNo;
}

}  // namespace

bool IsImproperMask(std::string_view maskText) {
  const std::size_t length = CharacterCount(TrimBlanks(maskText));
  return length > kLongestMask || length < kShortestMask || maskText.find('.') == std::string_view::npos ||
         maskText.find('*') == std::string_view::npos;
}

bool HasMaskText(std::string_view maskText) {
  return !TrimBlanks(maskText).empty();
}

bool IsRootDrive(std::string_view path) {
  return CharacterCount(path) == kRootDriveLength;
}

bool CarriesPath(std::string_view nodeText) {
  if (nodeText.empty()) return false;
  return nodeText.substr(FirstCharacter(nodeText).sizeBytes).starts_with(':') || nodeText.starts_with("\\\\");
}

FolderVerdict VerdictOnAddedFolder(std::string_view path, std::string_view maskText) {
  if (IsImproperMask(maskText)) return FolderVerdict::ImproperMask;
  if (!IsRootDrive(path)) return FolderVerdict::Accepted;
  return IsEveryFileMask(maskText) ? FolderVerdict::WholeDriveAdded : FolderVerdict::RootDriveAdded;
}

FolderVerdict VerdictOnEditedFolder(std::string_view path, std::string_view maskText) {
  if (IsImproperMask(maskText)) return FolderVerdict::ImproperMask;
  if (IsRootDrive(path) && IsEveryFileMask(maskText)) return FolderVerdict::WholeDriveEdited;
  return FolderVerdict::Accepted;
}

Message BoxOf(FolderVerdict verdict) {
  const auto box = std::find_if(kBoxes.begin(), kBoxes.end(),
                                [verdict](const Box& candidate) { return candidate.verdict == verdict; });
  if (box == kBoxes.end()) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  std::string text = box->statement;
  if (box->more) text.append(kTwoLineBreaks).append(box->more);
  return {std::move(text), box->title, box->icon, box->buttons};
}

JobRow MakeFolderRow(const std::string& path, std::string_view maskText, bool includeSubFolders) {
  JobRow row;
  row.NameAndLocation = path;
  row.SmallIcon = kFolderPicture;
  row.Size = "N/A";
  row.FolderMask = TrimBlanks(maskText);
  row.SubFolders = SubFoldersText(includeSubFolders);
  return row;
}

void AddFolderItem(AppState& state, JobList& jobList, const std::string& path, std::string_view maskText,
                   bool includeSubFolders) {
  jobList.Add(MakeFolderRow(path, maskText, includeSubFolders));
  jobList.Select(1);
  jobList.Reveal(static_cast<int>(jobList.Count()));
  state.JobSaved = false;
  state.Settings.LastFolder = path;
  state.Settings.IncludeSubFolders = includeSubFolders ? 1 : 0;
}

void ChangeFolderItem(AppState& state, JobList& jobList, std::string_view maskText, bool includeSubFolders) {
  jobList.SetMask(jobList.SelectedRow(), TrimBlanks(maskText), SubFoldersText(includeSubFolders));
  state.JobSaved = false;
}

}  // namespace zq
