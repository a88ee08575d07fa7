// What the Windows device asks of, and does to, an entry that it has a handle to. Renaming goes by
// handle: the entry that is renamed is the file that was overwritten.
#pragma once

#include <string>
#include <vector>

#include "engine/WindowsVolume.h"
#include "engine/system_win32.h"

namespace zq::engine::win32 {

struct Facts {
  DWORD attributes = 0;
  bool isFolder = false;
  bool isReparsePoint = false;
  bool isLink = false;  // a reparse point that stands for something in another place
};

Facts FactsOf(DWORD attributes, DWORD reparseTag);
EntryKind KindOf(const Facts& facts);

Status RenameByHandle(HANDLE handle, const std::wstring& newPath);

// The names of the streams, in the form "name:$DATA", by handle: whatever has come under its name.
Status ListStreamsOf(HANDLE handle, const Volume& volume, std::vector<std::string>& names);

}  // namespace zq::engine::win32
