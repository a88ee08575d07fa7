#include "engine/folder_win32.h"

#include <winioctl.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "engine/WindowsStorage.h"
#include "engine/entries_win32.h"
#include "engine/file_win32.h"
#include "engine/paths_win32.h"
#include "engine/volume_win32.h"

namespace zq::engine::win32 {
namespace {

Status OpenFolderIn(const FolderPlace& above, const std::wstring& name, std::unique_ptr<Folder>& folder);

class Search {
 public:
  explicit Search(HANDLE search) : search_(search) {}
  ~Search() {
    if (search_ != INVALID_HANDLE_VALUE) ::FindClose(search_);
  }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;
  HANDLE Get() const { return search_; }

 private:
  HANDLE search_;
  [[no_unique_address]] debug::Alive<debug::Kind::Search> alive_;
};

class WindowsFolder final : public Folder {
 public:
  WindowsFolder(SystemHandle handle, FolderPlace place) : handle_(handle), place_(std::move(place)) {}
  ~WindowsFolder() override { place_.calls->Close(handle_); }

  Status Identity(EntryId& id) override {
    id = {};
    const Code code = place_.calls->Identity(handle_, id.file);
    return code == kSuccess ? Status{} : FromCode(code);
  }

  std::size_t NameLength(const std::string& name) const override {
    return std::max<std::size_t>(Wide(name).size(), 1);
  }

  bool NamesLieInRecords() const override { return place_.volume->NamesLieInRecords(); }

  Status List(std::vector<Entry>& entries) override {
    entries.clear();
    WIN32_FIND_DATAW data{};
    const Search search(::FindFirstFileExW(JoinWide(place_.path, L"*").c_str(), FindExInfoBasic, &data,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (search.Get() == INVALID_HANDLE_VALUE) {
      const DWORD code = ::GetLastError();
      return code == ERROR_FILE_NOT_FOUND ? Status{} : FromCode(code);  // an empty root
    }
    do {
      const std::wstring name = data.cFileName;
      if (name == L"." || name == L"..") continue;
      entries.push_back({Narrow(name), KindOf(FactsOf(data.dwFileAttributes, data.dwReserved0))});
    } while (::FindNextFileW(search.Get(), &data) != 0);
    const DWORD code = ::GetLastError();
    return code == ERROR_NO_MORE_FILES ? Status{} : FromCode(code);
  }

  Status OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    Status status = WindowsFile::Open(place_, wide, access, file);
    if (status.code != ERROR_ACCESS_DENIED) return status;
    // The system has one answer for both.
    const DWORD attributes = ::GetFileAttributesW(JoinWide(place_.path, wide).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 &&
        (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      return Status::Refusal("it is a folder");
    }
    return status;
  }

  Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    return WindowsFile::Add(place_, wide, access, NewFile::ToStay, file);
  }

  Status AddFiller(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    if (std::string why = WhyNotOn(*place_.volume); !why.empty()) {
      return Status::Refusal("files there can't be overwritten in place, since " + why);
    }
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    return WindowsFile::Add(place_, wide, access, NewFile::Filler, file);
  }
  bool FillersGoWhenClosed() const override { return true; }

  // The attribute is inherited from the folder above.
  void StoreAsIs() override {
    const UniqueHandle handle(::CreateFileW(
        place_.path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!handle.IsOpen()) return;
    USHORT none = COMPRESSION_FORMAT_NONE;
    DWORD got = 0;
    (void)::DeviceIoControl(handle.Get(), FSCTL_SET_COMPRESSION, &none, sizeof none, nullptr, 0, &got,
                            nullptr);
  }

  // The valid part of the master file table.
  bool RecordTable(std::uint64_t& bytes) override {
    const UniqueHandle handle(::CreateFileW(place_.volume->device.c_str(), FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                            nullptr));
    NTFS_VOLUME_DATA_BUFFER data{};
    DWORD got = 0;
    if (!handle.IsOpen() || ::DeviceIoControl(handle.Get(), FSCTL_GET_NTFS_VOLUME_DATA, nullptr, 0, &data,
                                              sizeof data, &got, nullptr) == 0) {
      return false;
    }
    bytes = static_cast<std::uint64_t>(data.MftValidDataLength.QuadPart);
    return true;
  }

  void Storage(StorageInfo& storage) override { storage = StorageOf(*place_.calls, *place_.volume); }

  Status OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    return OpenFolderIn(place_, wide, folder);
  }

  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    const std::wstring path = JoinWide(place_.path, wide);
    if (::CreateDirectoryW(path.c_str(), nullptr) == 0) return LastError();
    Status status = OpenFolderIn(place_, wide, folder);
    if (!status.Ok()) ::RemoveDirectoryW(path.c_str());
    return status;
  }

  Status ListStreams(std::vector<std::string>& names) override {
    return ListStreamsOf(handle_, *place_.volume, names);
  }

  Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) override {
    // The path of a root ends in a backslash, behind which a stream is one of the root folder too.
    const std::wstring& path = place_.path;
    const std::size_t slash = path.back() == L'\\' ? std::wstring::npos : path.rfind(L'\\');
    if (slash == std::wstring::npos) return Status::Refusal("it belongs to the root of a drive");
    const FolderPlace above{place_.calls, place_.volume, path.substr(0, slash), ParentPath(place_.finalPath)};
    std::unique_ptr<File> opened;
    if (Status status = WindowsFile::Open(above, path.substr(slash + 1) + L':' + Wide(name), access, opened);
        !status.Ok()) {
      return status;
    }
    FileId own;
    FileId its;
    if (const Code code = place_.calls->Identity(handle_, own); code != kSuccess) return FromCode(code);
    if (Status status = opened->Identity(its); !status.Ok()) return status;
    if (its != own) return Status::Refusal("another folder has come under this name");
    stream = std::move(opened);
    return {};
  }

  Status Rename(const Entry& entry, const std::string& newName) override {
    std::wstring wide;
    if (Status status = WideName(newName, wide); !status.Ok()) return status;
    Closing handle(*place_.calls);
    std::wstring path;
    if (Status status = OpenEntry(entry, handle.handle, path); !status.Ok()) return status;
    return RenameByHandle(handle.handle, JoinWide(place_.path, wide));
  }

  Status Remove(const Entry& entry) override {
    Closing handle(*place_.calls);
    std::wstring path;
    if (Status status = OpenEntry(entry, handle.handle, path); !status.Ok()) return status;
    return RemoveEntry(*place_.calls, handle.handle, path, false);
  }

  // Windows has no promise for the flush of a folder. Where it takes one, it is asked; where it doesn't,
  // the entries follow with the log of the volume.
  Status Flush() override {
    const UniqueHandle handle(::CreateFileW(place_.path.c_str(), FILE_ADD_FILE | SYNCHRONIZE,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!handle.IsOpen() || ::FlushFileBuffers(handle.Get()) != 0) return {};
    switch (const DWORD code = ::GetLastError()) {
      case ERROR_ACCESS_DENIED:
      case ERROR_INVALID_FUNCTION:
      case ERROR_INVALID_HANDLE:
      case ERROR_INVALID_PARAMETER:
      case ERROR_NOT_SUPPORTED:
        return {};
      default:
        return FromCode(code);
    }
  }

  Status Space(SpaceInfo& space) override {
    ULARGE_INTEGER available{};
    ULARGE_INTEGER free{};
    const std::wstring path = JoinWide(place_.path, L"");
    if (::GetDiskFreeSpaceExW(path.c_str(), &available, nullptr, &free) == 0) return LastError();
    space.freeBytes = available.QuadPart;
    space.keptBytes = free.QuadPart - std::min(free.QuadPart, available.QuadPart);
    space.keptByQuota = (place_.volume->flags & FILE_VOLUME_QUOTAS) != 0;
    space.clusterBytes = place_.volume->clusterBytes;
    return {};
  }

 private:
  Status OpenEntry(const Entry& entry, SystemHandle& handle, std::wstring& path) const {
    WindowsCalls& calls = *place_.calls;
    std::wstring wide;
    if (Status status = WideName(entry.name, wide); !status.Ok()) return status;
    path = JoinWide(place_.path, wide);
    constexpr Opening kToChange = {kDelete | kReadAttributes | kWriteAttributes | kSynchronize,
                                   kShareRead | kShareWrite | kShareDelete, kOpenExisting,
                                   kBackupSemantics | kOpenReparsePoint};
    if (const Code code = OpenPatiently(calls, *place_.volume, path, kToChange, handle); code != kSuccess) {
      return FromCode(code);
    }
    if (Status status = CheckPlace(calls, handle, *place_.volume, place_.finalPath); !status.Ok())
      return status;
    std::uint32_t attributes = 0;
    std::uint32_t tag = 0;
    if (const Code code = calls.Look(handle, attributes, tag); code != kSuccess) return FromCode(code);
    const Facts facts = FactsOf(attributes, tag);
    if (KindOf(facts) != entry.kind) return Status::Refusal("something else has come under this name");
    // Explorer marks a folder that has an icon of its own as read-only; here it would only keep an empty one.
    if ((attributes & kAttributeReadOnly) != 0) {
      const Code code = calls.SetAttributes(handle, facts.isFolder ? kAttributeFolder : kAttributeNormal);
      if (code != kSuccess) return FromCode(code);
    }
    return {};
  }

  SystemHandle handle_;
  FolderPlace place_;
};

Code OpenAsFolder(const FolderPlace& place, bool followLink, SystemHandle& handle) {
  const auto open = [&](std::uint32_t access) {
    const Opening how{access | kReadAttributes | kSynchronize, kShareRead | kShareWrite, kOpenExisting,
                      kBackupSemantics | (followLink ? 0 : kOpenReparsePoint)};
    return place.calls->Open(place.path, how, handle);
  };
  const Code code = open(FILE_LIST_DIRECTORY);
  // One may use what is in a folder without being allowed to list it.
  return code == kAccessDenied ? open(FILE_TRAVERSE) : code;
}

Status CheckIsFolder(const FolderPlace& place, bool followLink, SystemHandle handle) {
  std::uint32_t attributes = 0;
  std::uint32_t tag = 0;
  if (const Code code = place.calls->Look(handle, attributes, tag); code != kSuccess) return FromCode(code);
  const Facts facts = FactsOf(attributes, tag);
  if (!followLink && facts.isLink) return Status::Refusal("it is a link");
  if (!facts.isFolder) return Status::Refusal("it is not a folder");
  return {};
}

Status OpenFolderIn(const FolderPlace& above, const std::wstring& name, std::unique_ptr<Folder>& folder) {
  FolderPlace place{above.calls, above.volume, JoinWide(above.path, name), {}};
  Closing handle(*place.calls);
  if (const Code code = OpenAsFolder(place, false, handle.handle); code != kSuccess) return FromCode(code);
  if (Status status = CheckIsFolder(place, false, handle.handle); !status.Ok()) return status;
  if (Status status =
          CheckPlace(*place.calls, handle.handle, *place.volume, above.finalPath, place.finalPath);
      !status.Ok()) {
    return status;
  }
  folder = std::make_unique<WindowsFolder>(handle.handle, std::move(place));
  handle.Take();
  return {};
}

}  // namespace

Status OpenRootFolder(WindowsCalls& calls, const std::wstring& path, bool trustFileSystem,
                      std::unique_ptr<Folder>& folder) {
  FolderPlace place{&calls, std::make_shared<Volume>(), path, {}};
  Closing handle(calls);
  if (const Code code = OpenAsFolder(place, true, handle.handle); code != kSuccess) return FromCode(code);
  if (Status status = CheckIsFolder(place, true, handle.handle); !status.Ok()) return status;
  if (Status status = LookAtVolume(path, *place.volume); !status.Ok()) return status;
  place.volume->isTrusted = trustFileSystem;
  if (Status status = LearnFinalPath(calls, handle.handle, *place.volume, place.finalPath); !status.Ok()) {
    return status;
  }
  folder = std::make_unique<WindowsFolder>(handle.handle, std::move(place));
  handle.Take();
  return {};
}

}  // namespace zq::engine::win32
