#include "engine/entries_win32.h"

#include <algorithm>
#include <cstddef>

#include "engine/WindowsContent.h"

namespace zq::engine::win32 {

Facts FactsOf(DWORD attributes, DWORD reparseTag) {
  Facts facts;
  facts.attributes = attributes;
  facts.isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  facts.isReparsePoint = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  facts.isLink = facts.isReparsePoint && IsReparseTagNameSurrogate(reparseTag);
  return facts;
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

Status ListStreamsOf(HANDLE handle, const Volume& volume, std::vector<std::string>& names) {
  constexpr std::size_t kMostBytes = std::size_t{16} << 20;
  names.clear();
  if (!volume.HasStreams()) return {};
  std::vector<std::byte> answer(4096);
  while (::GetFileInformationByHandleEx(handle, FileStreamInfo, answer.data(),
                                        static_cast<DWORD>(answer.size())) == 0) {
    const DWORD code = ::GetLastError();
    if (code == ERROR_HANDLE_EOF) return {};  // none, as for most folders
    if (code != ERROR_MORE_DATA && code != ERROR_INSUFFICIENT_BUFFER) return FromCode(code);
    if (answer.size() >= kMostBytes) return FromCode(code);
    answer.assign(answer.size() * 4, std::byte{0});
  }
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  for (const std::u16string& name : StreamNames(answer)) {
    names.push_back(Narrow(std::wstring(name.begin(), name.end())));
  }
  return {};
}

}  // namespace zq::engine::win32
