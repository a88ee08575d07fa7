// FileMask: the rules of a folder item: which masks are proper, which folders are refused or asked about,
// and the row that comes of it. Who takes a mask from a row takes it as valid.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "jobs/JobRow.h"
#include "platform/Like.h"
#include "platform/MessageBoxes.h"

namespace zq {

struct AppState;
class JobList;

// True for a mask that is refused: without its surrounding blanks it has fewer than three or more than
// five characters, or it has no "." or no "*". Five is a bound on purpose, so that "*.html" is refused;
// nothing else is looked at, and "..*" is proper. A character is a code point.
bool IsImproperMask(std::string_view maskText);

// Whether OK is enabled for this text of `txtMask`: for any but blanks.
bool HasMaskText(std::string_view maskText);

// A path of exactly three characters, such as "C:\". No other test is made: a share's root isn't one.
bool IsRootDrive(std::string_view path);

// Whether the text of a node in the folder tree is a path: its second character is ":" or its first two
// are "\\". Other nodes, such as the desktop, can't be added.
bool CarriesPath(std::string_view nodeText);

// What OK makes of a folder and the text of `txtMask`. The dialog does as the note says.
enum class FolderVerdict : std::uint8_t {
  Accepted,          // the row is written, the dialog closes
  ImproperMask,      // box; the dialog stays, and the focus goes to `txtMask`
  WholeDriveAdded,   // box; the dialog stays, and the focus where it is
  WholeDriveEdited,  // the same, with another text
  RootDriveAdded,    // question; OK accepts, anything else leaves the dialog open
};

// OK in frmFolder.
FolderVerdict VerdictOnAddedFolder(std::string_view path, std::string_view maskText);

// OK in frmEdit, which asks nothing about a root drive with a narrower mask.
FolderVerdict VerdictOnEditedFolder(std::string_view path, std::string_view maskText);

// The box of a verdict. Raises InvalidProcedureCall for Accepted, which has none.
Message BoxOf(FolderVerdict verdict);

// A folder row of the job list, with `maskText` trimmed.
JobRow MakeFolderRow(const std::string& path, std::string_view maskText, bool includeSubFolders);

// What an accepted OK in frmFolder does: the row goes to the end of the list, row 1 is selected, the job
// is modified, and the settings remember the folder and the flag. A folder that is listed already is
// listed once more.
void AddFolderItem(AppState& state, JobList& jobList, const std::string& path, std::string_view maskText,
                   bool includeSubFolders);

// What an accepted OK in frmEdit does: the selected row gets the trimmed mask and the flag, and the job is
// modified. Raises SubscriptOutOfRange if no row is selected.
void ChangeFolderItem(AppState& state, JobList& jobList, std::string_view maskText, bool includeSubFolders);

}  // namespace zq
