// How the Windows device opens a file, and how it removes one: what is opened is what was meant, nothing is
// opened for writing before it is known to be overwritten in place, and a scanner that looks at it is waited
// for.
#pragma once

#include <string>

#include "engine/WindowsCalls.h"
#include "engine/WindowsVolume.h"

namespace zq::engine::win32 {

// The folder that `path` names a part of: all before its last backslash.
std::wstring ParentPath(const std::wstring& path);

// Learns in which form the system tells the final paths beneath a folder, and the folder's own. Refused if it
// tells none.
Status LearnFinalPath(WindowsCalls& calls, SystemHandle folder, Volume& volume, std::wstring& finalPath);

// Whether what was opened lies in the folder with this final path: a folder on the way may have become a link
// meanwhile. Without a final path, which only a trusted file system may keep to itself, there is no telling.
Status CheckPlace(WindowsCalls& calls, SystemHandle handle, const Volume& volume,
                  const std::wstring& folderFinalPath);
Status CheckPlace(WindowsCalls& calls, SystemHandle handle, const Volume& volume,
                  const std::wstring& folderFinalPath, std::wstring& finalPath);

// What a file is to be opened by, and how.
struct Wanted {
  std::wstring path;
  std::wstring folderFinalPath;
  Access access = Access::Direct;
};

struct OpenedFile {
  SystemHandle handle = nullptr;  // the caller's to close
  bool direct = false;
  bool wasReadOnly = false;  // it isn't any more
  std::string caveat;
};

// For reading, writing and removing, shared with those who read. Links, folders and whatever isn't
// overwritten in place are refused, with nothing changed.
Status OpenToOverwrite(WindowsCalls& calls, Volume& volume, const Wanted& wanted, OpenedFile& opened);
// The same for a file that doesn't exist yet. A filler goes with its handle, even if the process is killed,
// and is shared with nobody.
enum class NewFile { ToStay, Filler };
Status CreateNew(WindowsCalls& calls, Volume& volume, const Wanted& wanted, OpenedFile& opened,
                 NewFile kind = NewFile::ToStay);

// Takes the read-only attribute off a file that is wiped, or puts it back. `handle` may be open for anything.
Status SetReadOnly(WindowsCalls& calls, SystemHandle handle, std::uint32_t attributes, bool readOnly);

// Opens, and waits a little for those who have it open in a way that doesn't go with `how`.
Code OpenPatiently(WindowsCalls& calls, Volume& volume, const std::wstring& path, const Opening& how,
                   SystemHandle& handle);

// Removes the entry at `path`, which `handle` is open to. Closes the handle in any case of success: an entry
// may go only with its last one. Ok if the entry is gone. `readOnlyAgain` puts the read-only attribute back
// that the file's other names had, too.
Status RemoveEntry(WindowsCalls& calls, SystemHandle& handle, const std::wstring& path, bool readOnlyAgain);

}  // namespace zq::engine::win32
