// What zqwipe asks of the system beside the engine. One implementation for each system (system_posix.cpp,
// system_win32.cpp). All paths are UTF-8, or on Linux whatever bytes they are.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "cli/Safety.h"

namespace zq::cli {

enum class EntryType { Missing, File, Folder, Link, Other };

struct Located {
  EntryType type = EntryType::Missing;
  std::string canonical;  // see Candidate; empty if even the way to it is missing
  FileId id;
  std::uint64_t lengthBytes = 0;  // of a file
  std::string trouble;            // why it can't be looked at; `type` is Missing then
};

// Looks at the entry itself, never at what a link leads to.
Located Locate(const std::string& path);
// Of the file alone, quicker. 0 if it can't be told.
std::uint64_t LengthBytes(const std::string& path);
// Whether there is an entry of that name, were it a link that leads nowhere.
bool Exists(const std::string& path);

Surroundings FindSurroundings();

// Whether somebody sits there to answer or to read.
bool IsTerminal(std::FILE* stream);
// In columns; 80 where it isn't known.
int TerminalWidth(std::FILE* stream);

// Opens a new file for writing that only this user may read. Null if it can't, or if it exists; `trouble`
// then says why.
std::FILE* CreateNewFile(const std::string& path, std::string& trouble);

// A line from standard input, without its end. None at the end of the input, and none once a request to stop
// has come.
std::optional<std::string> ReadAnswer();

// Readies the process's streams: text in UTF-8, no end by a reader that has gone. The console has its code
// page back when the process ends.
void PrepareStreams();

// From now on a request to stop (Ctrl+C, a closed terminal, the system's shut-down) is only noted. One that
// was being ignored when the program started still is.
void CatchInterrupts();
bool WasInterrupted();

}  // namespace zq::cli
