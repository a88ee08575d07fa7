#include "engine/folder_win32.h"

#include <utility>
#include <vector>

#include "engine/entries_win32.h"
#include "engine/file_win32.h"
#include "engine/paths_win32.h"

namespace zq::engine::win32 {
namespace {

class WindowsFolder final : public Folder {
 public:
  WindowsFolder(UniqueHandle handle, std::wstring path, const Volume& volume)
      : handle_(std::move(handle)), path_(std::move(path)), volume_(volume) {}

  Status Identity(EntryId& id) override {
    id = {};
    return IdentityOf(handle_.Get(), id.file);
  }

  Status List(std::vector<Entry>& entries) override {
    entries.clear();
    WIN32_FIND_DATAW data{};
    const HANDLE search = ::FindFirstFileExW(JoinWide(path_, L"*").c_str(), FindExInfoBasic, &data,
                                             FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) {
      const DWORD code = ::GetLastError();
      return code == ERROR_FILE_NOT_FOUND ? Status{} : FromCode(code);  // an empty root
    }
    do {
      const std::wstring name = data.cFileName;
      if (name == L"." || name == L"..") continue;
      Facts facts;
      facts.attributes = data.dwFileAttributes;
      facts.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      facts.isReparsePoint = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
      facts.isLink = facts.isReparsePoint && IsReparseTagNameSurrogate(data.dwReserved0);
      entries.push_back({Narrow(name), KindOf(facts)});
    } while (::FindNextFileW(search, &data) != 0);
    const DWORD code = ::GetLastError();
    ::FindClose(search);
    return code == ERROR_NO_MORE_FILES ? Status{} : FromCode(code);
  }

  Status OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    Status status = WindowsFile::Open(path_, wide, volume_, access, OPEN_EXISTING, file);
    if (status.code != ERROR_ACCESS_DENIED) return status;
    // The system has one answer for all these.
    const DWORD attributes = ::GetFileAttributesW(JoinWide(path_, wide).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
      if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return Status::Refusal("it is a folder");
      if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return Status::Refusal(kReadOnly);
    }
    return status;
  }

  Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    return WindowsFile::Open(path_, wide, volume_, access, CREATE_NEW, file);
  }

  Status OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    return OpenWindowsFolder(JoinWide(path_, wide), false, folder);
  }

  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    const std::wstring path = JoinWide(path_, wide);
    if (::CreateDirectoryW(path.c_str(), nullptr) == 0) return LastError();
    Status status = OpenWindowsFolder(path, false, folder);
    if (!status.Ok()) ::RemoveDirectoryW(path.c_str());
    return status;
  }

  Status ListStreams(std::vector<std::string>& names) override { return ListStreamsOf(path_, names); }

  Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) override {
    // The path of a root ends in a backslash, behind which a stream is one of the root folder too.
    const std::size_t slash = path_.back() == L'\\' ? std::wstring::npos : path_.rfind(L'\\');
    if (slash == std::wstring::npos) return Status::Refusal("it belongs to the root of a drive");
    return WindowsFile::Open(path_.substr(0, slash), path_.substr(slash + 1) + L':' + Wide(name), volume_,
                             access, OPEN_EXISTING, stream);
  }

  Status Rename(const Entry& entry, const std::string& newName) override {
    std::wstring wide;
    if (Status status = WideName(newName, wide); !status.Ok()) return status;
    UniqueHandle handle;
    std::wstring path;
    if (Status status = OpenEntry(entry, handle, path); !status.Ok()) return status;
    return RenameByHandle(handle.Get(), JoinWide(path_, wide));
  }

  Status Remove(const Entry& entry) override {
    UniqueHandle handle;
    std::wstring path;
    if (Status status = OpenEntry(entry, handle, path); !status.Ok()) return status;
    return RemoveByHandle(handle, path);
  }

  // Windows has no promise for the flush of a folder. Where it takes one, it is asked; where it doesn't,
  // the entries follow with the log of the volume.
  Status Flush() override {
    const UniqueHandle handle(::CreateFileW(path_.c_str(), FILE_ADD_FILE | SYNCHRONIZE,
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
    const std::wstring path = path_.back() == L'\\' ? path_ : path_ + L'\\';
    if (::GetDiskFreeSpaceExW(path.c_str(), &available, nullptr, nullptr) == 0) return LastError();
    space.freeBytes = available.QuadPart;
    space.clusterBytes = volume_.clusterBytes;
    return {};
  }

 private:
  Status OpenEntry(const Entry& entry, UniqueHandle& handle, std::wstring& path) const {
    std::wstring wide;
    if (Status status = WideName(entry.name, wide); !status.Ok()) return status;
    path = JoinWide(path_, wide);
    const auto open = [&path](DWORD access) {
      return UniqueHandle(::CreateFileW(
          path.c_str(), access | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    };
    handle = open(DELETE | FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES);
    if (!handle.IsOpen()) return LastError();
    Facts facts;
    if (Status status = LookAt(handle.Get(), facts); !status.Ok()) return status;
    if (KindOf(facts) != entry.kind) return Status::Refusal("something else has come under this name");
    // Explorer marks a folder that has an icon of its own as read-only. On a file the attribute is a will
    // to be respected; here it would only keep an empty folder.
    if ((facts.attributes & FILE_ATTRIBUTE_READONLY) != 0) {
      FILE_BASIC_INFO info{};
      info.FileAttributes = facts.isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
      if (::SetFileInformationByHandle(handle.Get(), FileBasicInfo, &info, sizeof info) == 0)
        return LastError();
    }
    return {};
  }

  UniqueHandle handle_;
  std::wstring path_;
  Volume volume_;
};

}  // namespace

Status OpenWindowsFolder(const std::wstring& path, bool followLink, std::unique_ptr<Folder>& folder) {
  const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS | (followLink ? 0 : FILE_FLAG_OPEN_REPARSE_POINT);
  const auto open = [&](DWORD access) {
    return UniqueHandle(::CreateFileW(path.c_str(), access | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, flags,
                                      nullptr));
  };
  UniqueHandle handle = open(FILE_LIST_DIRECTORY);
  // One may use what is in a folder without being allowed to list it.
  if (!handle.IsOpen() && ::GetLastError() == ERROR_ACCESS_DENIED) handle = open(FILE_TRAVERSE);
  if (!handle.IsOpen()) return LastError();
  Facts facts;
  if (Status status = LookAt(handle.Get(), facts); !status.Ok()) return status;
  if (!followLink && facts.isLink) return Status::Refusal("it is a link");
  if (!facts.isFolder) return Status::Refusal("it is not a folder");
  Volume volume;
  if (Status status = LookAtVolume(path, volume); !status.Ok()) return status;
  folder = std::make_unique<WindowsFolder>(std::move(handle), path, volume);
  return {};
}

}  // namespace zq::engine::win32
