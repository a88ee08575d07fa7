// JobName: which names a job can have, and the file that belongs to one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/MessageBoxes.h"

namespace zq {

class DataFolder;
class Regional;
struct FileEntry;

inline constexpr const char* kJobExtension = ".zqj";

// The file of the job `name`, in the program's folder.
std::string JobFileName(const std::string& name);

// Whether an entry of the folder of jobs counts as a file there: folders, hidden and system files don't.
bool IsJobFile(const FileEntry& entry);

// Whether OK in frmSave is enabled for this text of `txtName`: for any but blanks.
bool HasJobNameText(std::string_view nameText);

// Whether the text holds one of the nine characters that a file's name can't have. Nothing else about a
// name is checked: its length, a dot at its end and the names of devices are let through.
bool HasIllegalCharacter(std::string_view nameText);

// What OK in frmSave makes of the text of `txtName`. The dialog does as the note says.
enum class JobNameVerdict : std::uint8_t {
  Accepted,  // the trimmed text is the job's name, and the dialog closes
  Illegal,   // box; the focus goes to `txtName`
  Exists,    // question; OK accepts, anything else gives the focus to `txtName`
};

// The characters are looked for in the text as it stands, the file under the trimmed one.
JobNameVerdict VerdictOnJobName(const DataFolder& folder, std::string_view nameText);

// The box of a verdict. Raises InvalidProcedureCall for Accepted, which has none.
Message BoxOf(JobNameVerdict verdict);

// The name of the job that the command line asks for, or nothing if it doesn't name one: it has to hold
// the program's folder and ".ZQJ", with case ignored. The folder part is thrown away: a job is always
// read from the program's own folder of jobs.
std::optional<std::string> JobNameFromCommandLine(const std::string& commandLine,
                                                  const std::string& appFolder, Regional& regional);

}  // namespace zq
