// The parts of start-up that need no window.
#pragma once

#include <optional>
#include <string>

namespace zq {

class Files;
class Regional;

// `applicationPath` without surrounding blanks and with exactly one backslash at its end.
std::string AppFolderFrom(const std::string& applicationPath);

// Creates `Jobs` and `Report` below `appFolder` where they are missing. Failures are passed over.
void EnsureDataFolders(Files& files, const std::string& appFolder);

inline constexpr int kItemIsFile = 1;
inline constexpr int kItemIsFolder = 2;

// Whether a directory entry stands at `path`. Kind 1 takes files alone, of whatever attributes; any
// other kind takes folders, and plain files of that name too. A path that ends in a backslash asks for
// the folder's content, "" has no entry, and any failure gives false.
bool ItemExists(Files& files, int kind, const std::string& path);

// The name of the job that the command line asks for, or nothing if it doesn't name one: it has to hold
// the program's folder and ".ZQJ", with case ignored. The folder part is thrown away: a job is always
// read from the program's own folder of jobs.
std::optional<std::string> JobNameFromCommandLine(const std::string& commandLine,
                                                  const std::string& appFolder, Regional& regional);

}  // namespace zq
