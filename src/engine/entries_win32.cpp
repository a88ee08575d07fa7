#include "engine/entries_win32.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "engine/paths_win32.h"

namespace zq::engine::win32 {

Status LookAt(HANDLE handle, Facts& facts) {
  FILE_ATTRIBUTE_TAG_INFO info{};
  if (::GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &info, sizeof info) == 0) {
    const DWORD code = ::GetLastError();
    // Some file systems know no tags, and so no reparse points.
    FILE_BASIC_INFO basic{};
    if (::GetFileInformationByHandleEx(handle, FileBasicInfo, &basic, sizeof basic) == 0)
      return FromCode(code);
    if ((basic.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return FromCode(code);
    info.FileAttributes = basic.FileAttributes;
  }
  facts.attributes = info.FileAttributes;
  facts.isFolder = (info.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  facts.isReparsePoint = (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  facts.isLink = facts.isReparsePoint && IsReparseTagNameSurrogate(info.ReparseTag);
  return {};
}

Status IdentityOf(HANDLE handle, FileId& id) {
  FILE_ID_INFO wide{};
  if (::GetFileInformationByHandleEx(handle, FileIdInfo, &wide, sizeof wide) != 0) {
    id.volume = wide.VolumeSerialNumber;
    static_assert(sizeof id.file == sizeof wide.FileId);
    std::memcpy(id.file.data(), &wide.FileId, sizeof wide.FileId);
    return {};
  }
  BY_HANDLE_FILE_INFORMATION narrow{};
  if (::GetFileInformationByHandle(handle, &narrow) == 0) return LastError();
  id.volume = narrow.dwVolumeSerialNumber;
  id.file = {std::uint64_t{narrow.nFileIndexHigh} << 32 | narrow.nFileIndexLow, 0};
  return {};
}

EntryKind KindOf(const Facts& facts) {
  if (facts.isLink) return facts.isFolder ? EntryKind::FolderLink : EntryKind::Link;
  if (facts.isFolder) return EntryKind::Folder;
  return (facts.attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? EntryKind::Other : EntryKind::File;
}

Status RenameByHandle(HANDLE handle, const std::wstring& newPath) {
  const std::size_t pathBytes = newPath.size() * sizeof(wchar_t);
  std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + pathBytes);
  auto* info = reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
  info->ReplaceIfExists = FALSE;
  info->FileNameLength = static_cast<DWORD>(pathBytes);
  std::copy(newPath.begin(), newPath.end(), info->FileName);
  if (::SetFileInformationByHandle(handle, FileRenameInfo, info, static_cast<DWORD>(memory.size())) == 0) {
    return LastError();
  }
  return {};
}

Status RemoveByHandle(UniqueHandle& handle, const std::wstring& path) {
  // Taken out of the folder at once, even while a virus scanner still looks at the file. The class is
  // documented (Windows 10 1607), but not in every compiler's headers.
  constexpr auto kFileDispositionInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
  FILE_DISPOSITION_INFO_EX atOnce{FILE_DISPOSITION_FLAG_DELETE | FILE_DISPOSITION_FLAG_POSIX_SEMANTICS};
  if (::SetFileInformationByHandle(handle.Get(), kFileDispositionInfoEx, &atOnce, sizeof atOnce) == 0) {
    FILE_DISPOSITION_INFO atClose{TRUE};
    if (::SetFileInformationByHandle(handle.Get(), FileDispositionInfo, &atClose, sizeof atClose) == 0) {
      return LastError();
    }
  }
  handle.Reset();
  if (::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
    return Status::Refusal("it stays for as long as another program has it open");
  }
  const DWORD code = ::GetLastError();
  if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) return {};
  return FromCode(code);
}

Status ListStreamsOf(const std::wstring& path, std::vector<std::string>& names) {
  names.clear();
  WIN32_FIND_STREAM_DATA data{};
  const HANDLE search = ::FindFirstStreamW(path.c_str(), FindStreamInfoStandard, &data, 0);
  if (search == INVALID_HANDLE_VALUE) {
    switch (const DWORD code = ::GetLastError()) {
      case ERROR_HANDLE_EOF:  // none, as for most folders
      case ERROR_INVALID_PARAMETER:
      case ERROR_INVALID_FUNCTION:
      case ERROR_NOT_SUPPORTED:
      case ERROR_CALL_NOT_IMPLEMENTED:  // the file system has no streams
        return {};
      default:
        return FromCode(code);
    }
  }
  Status status;
  for (;;) {
    // ":name:$DATA"; the content itself is "::$DATA".
    const std::wstring name = data.cStreamName;
    if (!StartsWith(name, L"::")) names.push_back(Narrow(name.substr(1)));
    if (::FindNextStreamW(search, &data) == 0) break;
  }
  if (const DWORD code = ::GetLastError(); code != ERROR_HANDLE_EOF) status = FromCode(code);
  ::FindClose(search);
  return status;
}

}  // namespace zq::engine::win32
