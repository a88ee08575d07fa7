#include "engine/file_win32.h"

#include "engine/WindowsStorage.h"
#include "engine/entries_win32.h"
#include "engine/transfers_win32.h"

namespace zq::engine::win32 {

WindowsFile::~WindowsFile() {
  if (opened_.handle == nullptr) return;
  // It stays, so it is read-only again.
  std::uint32_t attributes = 0;
  std::uint32_t tag = 0;
  if (opened_.wasReadOnly && place_.calls->Look(opened_.handle, attributes, tag) == kSuccess) {
    (void)place_.calls->SetAttributes(opened_.handle, attributes | kAttributeReadOnly);
  }
  place_.calls->Close(opened_.handle);
}

Status WindowsFile::Open(const FolderPlace& place, const std::wstring& name, Access access,
                         std::unique_ptr<File>& file) {
  OpenedFile opened;
  const Wanted wanted{JoinWide(place.path, name), place.finalPath, access};
  if (Status status = OpenToOverwrite(*place.calls, *place.volume, wanted, opened); !status.Ok())
    return status;
  auto made = std::make_unique<WindowsFile>(place, name, std::move(opened));
  if (::GetFileType(made->Handle()) != FILE_TYPE_DISK) return Status::Refusal("it is not a regular file");
  file = std::move(made);
  return {};
}

Status WindowsFile::Add(const FolderPlace& place, const std::wstring& name, Access access, NewFile kind,
                        std::unique_ptr<File>& file) {
  OpenedFile opened;
  const Wanted wanted{JoinWide(place.path, name), place.finalPath, access};
  if (Status status = CreateNew(*place.calls, *place.volume, wanted, opened, kind); !status.Ok()) {
    return status;
  }
  file = std::make_unique<WindowsFile>(place, name, std::move(opened));
  return {};
}

Status WindowsFile::Info(FileInfo& info) {
  WindowsCalls& calls = *place_.calls;
  Volume& volume = *place_.volume;
  FILE_STANDARD_INFO standard{};
  if (::GetFileInformationByHandleEx(Handle(), FileStandardInfo, &standard, sizeof standard) == 0) {
    return LastError();
  }
  std::uint32_t attributes = 0;
  std::uint32_t tag = 0;
  if (const Code code = calls.Look(Handle(), attributes, tag); code != kSuccess) return FromCode(code);
  info = {};
  info.lengthBytes = static_cast<std::uint64_t>(standard.EndOfFile.QuadPart);
  info.allocatedBytes = static_cast<std::uint64_t>(standard.AllocationSize.QuadPart);
  info.clusterBytes = volume.clusterBytes;
  info.mostBytes = MostBytesOn(volume);
  info.names = names_ = standard.NumberOfLinks;
  info.caveat = CaveatOf(volume);
  if (!info.caveat.empty() && !opened_.caveat.empty()) info.caveat += ' ';
  info.caveat += opened_.caveat;
  info.notInPlace = WhyNotWith(attributes, tag, volume.isTrusted);
  if (!info.notInPlace.empty()) return {};

  if (!places_) ProtectClusters(calls, Handle(), volume);
  Places places;
  info.notInPlace = FindPlaces(calls, Handle(), volume, places);
  info.inRecord = volume.IsNtfs() && info.lengthBytes > 0 && places.kind == Places::Kind::InRecord;
  if (info.notInPlace.empty() && !info.inRecord && (attributes & kAttributeSparse) != 0) {
    info.notInPlace = FindRoom(calls, Handle(), volume, info.lengthBytes, places, info.room.emplace());
  }
  if (!places_) {
    places_ = std::move(places);
  } else if (!LiesWhereItLay(*places_, places)) {
    info.notInPlace = "another program has moved it during the wipe";
  }
  return {};
}

Status WindowsFile::Identity(FileId& id) {
  const Code code = place_.calls->Identity(Handle(), id);
  return code == kSuccess ? Status{} : FromCode(code);
}

Status WindowsFile::Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) {
  OverlappedTransfer transfer;
  if (Status status = transfer.Prepare(); !status.Ok()) return status;
  transfer.BeginWrite(Handle(), offsetBytes, data);
  return transfer.End(written);
}

Status WindowsFile::Flush() {
  return ::FlushFileBuffers(Handle()) != 0 ? Status{} : LastError();
}

Status WindowsFile::DropCache() {
  return {};
}

Status WindowsFile::Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) {
  OverlappedTransfer transfer;
  if (Status status = transfer.Prepare(); !status.Ok()) return status;
  transfer.BeginRead(Handle(), offsetBytes, data);
  return transfer.End(got);
}

Status WindowsFile::ListStreams(std::vector<std::string>& names) {
  return ListStreamsOf(Handle(), *place_.volume, names);
}

Status WindowsFile::OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) {
  FileId own;
  if (Status status = Identity(own); !status.Ok()) return status;
  std::unique_ptr<File> opened;
  if (Status status = Open(place_, name_ + L':' + Wide(name), access, opened); !status.Ok()) return status;
  FileId its;
  if (Status status = opened->Identity(its); !status.Ok()) return status;
  if (its != own) return Status::Refusal("another file has come under this name");
  stream = std::move(opened);
  return {};
}

Status WindowsFile::SetLength(std::uint64_t lengthBytes) {
  FILE_END_OF_FILE_INFO info{};
  info.EndOfFile.QuadPart = static_cast<LONGLONG>(lengthBytes);
  if (::SetFileInformationByHandle(Handle(), FileEndOfFileInfo, &info, sizeof info) == 0) return LastError();
  places_.reset();
  return {};
}

Status WindowsFile::SetDates() {
  constexpr LONGLONG kMoment = 119'600'496'000'000'000;  // noon of the first day that FAT knows, 1980-01-01
  FILE_BASIC_INFO info{};                                // attributes 0: they stay
  info.CreationTime.QuadPart = kMoment;
  info.LastAccessTime.QuadPart = kMoment;
  info.LastWriteTime.QuadPart = kMoment;
  info.ChangeTime.QuadPart = kMoment;
  if (::SetFileInformationByHandle(Handle(), FileBasicInfo, &info, sizeof info) == 0) return LastError();
  return {};
}

Status WindowsFile::Rename(const std::string& newName) {
  std::wstring wide;
  if (Status status = WideName(newName, wide); !status.Ok()) return status;
  if (Status status = RenameByHandle(Handle(), JoinWide(place_.path, wide)); !status.Ok()) return status;
  name_ = std::move(wide);
  return {};
}

Status WindowsFile::FlushEntry() {
  return Flush();
}

Status WindowsFile::Remove() {
  return RemoveEntry(*place_.calls, opened_.handle, Path(), opened_.wasReadOnly && names_ > 1);
}

Status WindowsFile::Trim() {
  LARGE_INTEGER length{};
  if (::GetFileSizeEx(opened_.handle, &length) == 0) return LastError();
  return TrimFile(*place_.calls, opened_.handle, static_cast<std::uint64_t>(length.QuadPart));
}

}  // namespace zq::engine::win32
