#include "engine/file_win32.h"

#include "engine/entries_win32.h"
#include "engine/transfers_win32.h"

namespace zq::engine::win32 {
namespace {

struct AttributeRefusal {
  DWORD attribute;
  const char* reason;
};

constexpr DWORD kIntegrityStream = 0x00008000;  // ReFS writes such files to a new place
constexpr DWORD kRecallOnOpen = 0x00040000;     // the content comes from elsewhere when it is asked for
constexpr DWORD kRecallOnDataAccess = 0x00400000;

constexpr AttributeRefusal kRefusedAttributes[] = {
    {FILE_ATTRIBUTE_COMPRESSED, "it is compressed by the file system"},
    {FILE_ATTRIBUTE_SPARSE_FILE, "it is a sparse file"},
    {FILE_ATTRIBUTE_ENCRYPTED, "it is encrypted by the file system"},
    {kIntegrityStream, "the file system writes its new data to a new place"},
    {FILE_ATTRIBUTE_OFFLINE, "its content is kept in another place"},
    {kRecallOnOpen, "its content is kept in another place"},
    {kRecallOnDataAccess, "its content is kept in another place"},
    {FILE_ATTRIBUTE_REPARSE_POINT, "another program keeps its content"},
};

}  // namespace

Status WindowsFile::Open(const std::wstring& folderPath, const std::wstring& name, const Volume& volume,
                         Access access, DWORD disposition, std::unique_ptr<File>& file) {
  const std::wstring path = JoinWide(folderPath, name);
  bool direct = access == Access::Direct;
  const auto open = [&] {
    const DWORD flags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_WRITE_THROUGH |
                        FILE_FLAG_OVERLAPPED | (direct ? FILE_FLAG_NO_BUFFERING : 0);
    // Others may read meanwhile. They may not write: that would bring content back.
    return UniqueHandle(::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                      FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, disposition, flags,
                                      nullptr));
  };
  UniqueHandle handle = open();
  if (!handle.IsOpen() && direct && ::GetLastError() == ERROR_INVALID_PARAMETER) {
    direct = false;
    handle = open();
  }
  if (!handle.IsOpen()) return LastError();
  if (::GetFileType(handle.Get()) != FILE_TYPE_DISK) return Status::Refusal("it is not a regular file");
  Facts facts;
  if (Status status = LookAt(handle.Get(), facts); !status.Ok()) return status;
  if (facts.isLink) return Status::Refusal("it is a link");
  // Not each file system keeps us from opening it.
  if ((facts.attributes & FILE_ATTRIBUTE_READONLY) != 0) return Status::Refusal(kReadOnly);
  file = std::make_unique<WindowsFile>(std::move(handle), folderPath, name, volume, direct);
  return {};
}

Status WindowsFile::Info(FileInfo& info) {
  FILE_STANDARD_INFO standard{};
  if (::GetFileInformationByHandleEx(handle_.Get(), FileStandardInfo, &standard, sizeof standard) == 0) {
    return LastError();
  }
  Facts facts;
  if (Status status = LookAt(handle_.Get(), facts); !status.Ok()) return status;
  info.lengthBytes = static_cast<std::uint64_t>(standard.EndOfFile.QuadPart);
  info.allocatedBytes = static_cast<std::uint64_t>(standard.AllocationSize.QuadPart);
  info.clusterBytes = volume_.clusterBytes;
  // What lies in clusters occupies whole ones; what lies in the MFT record is told in units of 8 bytes.
  info.inRecord = volume_.isNtfs && info.lengthBytes > 0 && info.allocatedBytes % volume_.clusterBytes != 0;
  info.names = standard.NumberOfLinks;
  info.notInPlace.clear();
  for (const AttributeRefusal& refusal : kRefusedAttributes) {
    if ((facts.attributes & refusal.attribute) != 0) {
      info.notInPlace = refusal.reason;
      break;
    }
  }
  return {};
}

Status WindowsFile::Identity(FileId& id) {
  return IdentityOf(handle_.Get(), id);
}

Status WindowsFile::Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) {
  OverlappedTransfer transfer;
  if (Status status = transfer.Prepare(); !status.Ok()) return status;
  transfer.BeginWrite(handle_.Get(), offsetBytes, data);
  return transfer.End(written);
}

Status WindowsFile::Flush() {
  return ::FlushFileBuffers(handle_.Get()) != 0 ? Status{} : LastError();
}

Status WindowsFile::DropCache() {
  return {};
}

Status WindowsFile::Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) {
  OverlappedTransfer transfer;
  if (Status status = transfer.Prepare(); !status.Ok()) return status;
  transfer.BeginRead(handle_.Get(), offsetBytes, data);
  return transfer.End(got);
}

Status WindowsFile::ListStreams(std::vector<std::string>& names) {
  return ListStreamsOf(Path(), names);
}

Status WindowsFile::OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) {
  return Open(folderPath_, name_ + L':' + Wide(name), volume_, access, OPEN_EXISTING, stream);
}

Status WindowsFile::SetLength(std::uint64_t lengthBytes) {
  FILE_END_OF_FILE_INFO info{};
  info.EndOfFile.QuadPart = static_cast<LONGLONG>(lengthBytes);
  if (::SetFileInformationByHandle(handle_.Get(), FileEndOfFileInfo, &info, sizeof info) == 0) {
    return LastError();
  }
  return {};
}

Status WindowsFile::SetDates() {
  constexpr LONGLONG kMoment = 119'600'496'000'000'000;  // noon of the first day that FAT knows, 1980-01-01
  FILE_BASIC_INFO info{};                                // attributes 0: they stay
  info.CreationTime.QuadPart = kMoment;
  info.LastAccessTime.QuadPart = kMoment;
  info.LastWriteTime.QuadPart = kMoment;
  info.ChangeTime.QuadPart = kMoment;
  if (::SetFileInformationByHandle(handle_.Get(), FileBasicInfo, &info, sizeof info) == 0) return LastError();
  return {};
}

Status WindowsFile::Rename(const std::string& newName) {
  std::wstring wide;
  if (Status status = WideName(newName, wide); !status.Ok()) return status;
  if (Status status = RenameByHandle(handle_.Get(), JoinWide(folderPath_, wide)); !status.Ok()) return status;
  name_ = std::move(wide);
  return {};
}

Status WindowsFile::FlushEntry() {
  return Flush();
}

Status WindowsFile::Remove() {
  return RemoveByHandle(handle_, Path());
}

}  // namespace zq::engine::win32
