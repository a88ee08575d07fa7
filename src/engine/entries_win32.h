// What the Windows device asks of, and does to, an entry that it has a handle to. Renaming and removing go
// by handle: the entry that goes is the file that was overwritten.
#pragma once

#include <string>
#include <vector>

#include "engine/system_win32.h"

namespace zq::engine::win32 {

struct Facts {
  DWORD attributes = 0;
  bool isFolder = false;
  bool isReparsePoint = false;
  bool isLink = false;  // a reparse point that stands for something in another place
};

Status LookAt(HANDLE handle, Facts& facts);
EntryKind KindOf(const Facts& facts);

// The 128 bits of ReFS where the system knows them, else the 64 of NTFS.
Status IdentityOf(HANDLE handle, FileId& id);

Status RenameByHandle(HANDLE handle, const std::wstring& newPath);

// Closes the handle in any case of success: an entry goes with its last handle.
Status RemoveByHandle(UniqueHandle& handle, const std::wstring& path);

Status ListStreamsOf(const std::wstring& path, std::vector<std::string>& names);

}  // namespace zq::engine::win32
