// The device on Windows. All calls are W calls with \\?\ paths: the A calls end at 259 characters.
//
// A folder is kept open without FILE_SHARE_DELETE for as long as something in it is worked on, so nobody
// can move it away and put a link in its place. Renaming and removing go by handle: the entry that goes is
// the file that was overwritten.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <cwchar>
#include <numeric>
#include <optional>
#include <utility>

#include "engine/Device.h"

namespace zq::engine {
namespace {

// --- Text and errors ------------------------------------------------------------------------------------

// Empty if `text` isn't UTF-8, which no existing path is.
std::wstring Wide(const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int length = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
  if (length > 0) {
    ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), length);
  }
  return wide;
}

// A name that isn't UTF-16 (NTFS allows half a surrogate pair) comes out as another name, which doesn't
// exist: its file is then told as not found, and stays.
std::string Narrow(const wchar_t* text, std::size_t count) {
  const int size = static_cast<int>(count);
  const int length = ::WideCharToMultiByte(CP_UTF8, 0, text, size, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(std::max(length, 0)), '\0');
  if (length > 0) ::WideCharToMultiByte(CP_UTF8, 0, text, size, narrow.data(), length, nullptr, nullptr);
  return narrow;
}

std::string Narrow(const std::wstring& text) {
  return Narrow(text.data(), text.size());
}

Status FromCode(DWORD code) {
  Trouble trouble = Trouble::Other;
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      trouble = Trouble::NotFound;
      break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      trouble = Trouble::Exists;
      break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      trouble = Trouble::NoSpace;
      break;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      // What the system says of it, in whatever language, helps nobody to find the culprit.
      return {trouble, static_cast<std::int32_t>(code), "another program has it open"};
    default:
      break;
  }
  wchar_t text[512];
  const DWORD length = ::FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
      code, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
  return {trouble, static_cast<std::int32_t>(code), Narrow(text, length)};
}

Status LastError() {
  return FromCode(::GetLastError());
}

class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(HANDLE handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  void Reset() {
    if (IsOpen()) ::CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }
  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

// --- Paths ----------------------------------------------------------------------------------------------

constexpr wchar_t kLongPrefix[] = L"\\\\?\\";
constexpr wchar_t kLongNetworkPrefix[] = L"\\\\?\\UNC\\";

bool StartsWith(const std::wstring& text, const wchar_t* start) {
  return text.compare(0, std::wcslen(start), start) == 0;
}

// The full path as Windows understands it, with the prefix that lifts the limit on its length.
Status LongPath(const std::string& path, std::wstring& longPath) {
  if (path.empty()) return Status::Refusal("the path is empty");
  if (path.find('\0') != std::string::npos) return Status::Refusal("it is not a path");
  const std::wstring wide = Wide(path);
  if (wide.empty()) return Status::Refusal("it is not a path");
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0) return LastError();
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) break;
  }
  if (StartsWith(full, L"\\\\.\\")) return Status::Refusal("it is a device");
  if (!StartsWith(full, kLongPrefix)) {
    full = StartsWith(full, L"\\\\") ? kLongNetworkPrefix + full.substr(2) : kLongPrefix + full;
  }
  longPath = std::move(full);
  return {};
}

// The length of the part that has no folder above it: \\?\C:\ or \\?\UNC\server\share\.
std::size_t RootLength(const std::wstring& longPath) {
  std::size_t backslashes = 1;
  std::size_t at = std::wcslen(kLongPrefix);
  if (StartsWith(longPath, kLongNetworkPrefix)) {
    at = std::wcslen(kLongNetworkPrefix);
    backslashes = 2;
  }
  while (at < longPath.size() && backslashes > 0) {
    if (longPath[at++] == L'\\') --backslashes;
  }
  return at;
}

std::wstring JoinWide(const std::wstring& folderPath, const std::wstring& name) {
  return folderPath.back() == L'\\' ? folderPath + name : folderPath + L'\\' + name;
}

// A colon would name a stream of a file, or of a folder, and be wiped without the rest of it.
Status WideName(const std::string& name, std::wstring& wide) {
  wide = Wide(name);
  if (wide.empty() || wide == L"." || wide == L".." ||
      wide.find_first_of(std::wstring_view(L"\\/:*?\"<>|\0", 10)) != std::wstring::npos) {
    return Status::Refusal("it is not the name of a file");
  }
  return {};
}

// --- Handles --------------------------------------------------------------------------------------------

struct Facts {
  DWORD attributes = 0;
  bool isFolder = false;
  bool isReparsePoint = false;
  bool isLink = false;  // a reparse point that stands for something in another place
};

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

// The 128 bits of ReFS where the system knows them, else the 64 of NTFS.
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

// Closes the handle in any case of success: an entry goes with its last handle.
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

// --- Files ----------------------------------------------------------------------------------------------

// Wine takes unbuffered and write-through transfers into the cache of the system beneath it, from which only
// the flush of that very file gets them to the device.
bool RunsInWine() {
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  return ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

// What is the same for all files of a volume.
struct Volume {
  std::uint32_t clusterBytes = 0;
  std::uint32_t sectorBytes = 0;
  bool isNtfs = false;
  std::wstring root;
  bool isLocal = false;  // a drive of this machine, whose flush of one file is a flush of the device
};

Status LookAtVolume(const std::wstring& path, Volume& volume) {
  std::wstring root(path.size() + MAX_PATH, L'\0');
  if (::GetVolumePathNameW(path.c_str(), root.data(), static_cast<DWORD>(root.size())) == 0)
    return LastError();
  root.resize(std::wcslen(root.c_str()));
  DWORD sectorsPerCluster = 0;
  DWORD sectorBytes = 0;
  DWORD freeClusters = 0;
  DWORD clusters = 0;
  if (::GetDiskFreeSpaceW(root.c_str(), &sectorsPerCluster, &sectorBytes, &freeClusters, &clusters) == 0) {
    return LastError();
  }
  volume.sectorBytes = std::max<DWORD>(sectorBytes, 1);
  volume.clusterBytes = std::max<DWORD>(sectorsPerCluster, 1) * volume.sectorBytes;
  wchar_t fileSystem[MAX_PATH] = L"";
  if (::GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, fileSystem, MAX_PATH) !=
      0) {
    volume.isNtfs = std::wcscmp(fileSystem, L"NTFS") == 0;
  }
  const UINT kind = ::GetDriveTypeW(root.c_str());
  volume.isLocal = (kind == DRIVE_FIXED || kind == DRIVE_REMOVABLE) && !RunsInWine();
  volume.root = std::move(root);
  return {};
}

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

// One read or write of a file that is open for several at once. It has to be ended before it goes.
class OverlappedTransfer {
 public:
  OverlappedTransfer() = default;
  OverlappedTransfer(const OverlappedTransfer&) = delete;
  OverlappedTransfer& operator=(const OverlappedTransfer&) = delete;

  // Makes the event by which its end is known: the file's own handle tells of any transfer.
  Status Prepare() {
    if (event_.IsOpen()) return {};
    const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (event == nullptr) return LastError();
    event_ = UniqueHandle(event);
    return {};
  }

  void BeginWrite(HANDLE file, std::uint64_t offsetBytes, std::span<const std::byte> data) {
    Place(file, offsetBytes);
    Note(::WriteFile(file, data.data(), static_cast<DWORD>(data.size()), nullptr, &at_));
  }
  void BeginRead(HANDLE file, std::uint64_t offsetBytes, std::span<std::byte> data) {
    Place(file, offsetBytes);
    Note(::ReadFile(file, data.data(), static_cast<DWORD>(data.size()), nullptr, &at_));
  }

  // Waits for the end. Reading behind the end of the file is no failure: it gives nothing.
  Status End(std::size_t& bytes) {
    bytes = 0;
    DWORD code = refused_;
    if (code == ERROR_SUCCESS) {
      DWORD count = 0;
      if (::GetOverlappedResult(file_, &at_, &count, TRUE) == 0) code = ::GetLastError();
      bytes = count;
    }
    return code == ERROR_SUCCESS || code == ERROR_HANDLE_EOF ? Status{} : FromCode(code);
  }

  // Without asking the system: what it has done at once needs no waiting for its event.
  bool IsUnderWay() const { return refused_ == ERROR_SUCCESS && !HasOverlappedIoCompleted(&at_); }
  HANDLE Event() const { return event_.Get(); }

 private:
  void Place(HANDLE file, std::uint64_t offsetBytes) {
    file_ = file;
    refused_ = ERROR_SUCCESS;
    at_ = {};
    at_.Offset = static_cast<DWORD>(offsetBytes);
    at_.OffsetHigh = static_cast<DWORD>(offsetBytes >> 32);
    // The lowest bit says that nobody waits for it at a completion port (GetQueuedCompletionStatus).
    at_.hEvent = reinterpret_cast<HANDLE>(reinterpret_cast<std::uintptr_t>(event_.Get()) | 1);
  }
  void Note(BOOL begun) {
    if (begun != 0) return;
    const DWORD code = ::GetLastError();
    if (code != ERROR_IO_PENDING) refused_ = code;
  }

  UniqueHandle event_;
  HANDLE file_ = INVALID_HANDLE_VALUE;
  OVERLAPPED at_{};
  DWORD refused_ = ERROR_SUCCESS;  // what it has failed with at once
};

constexpr char kReadOnly[] = "it is read-only";

class WindowsFile final : public File {
 public:
  WindowsFile(UniqueHandle handle, std::wstring folderPath, std::wstring name, const Volume& volume,
              bool direct)
      : handle_(std::move(handle)),
        folderPath_(std::move(folderPath)),
        name_(std::move(name)),
        volume_(volume),
        direct_(direct) {}

  // Opens a file, or a stream when `name` has a colon in it, for all that the engine does with it.
  static Status Open(const std::wstring& folderPath, const std::wstring& name, const Volume& volume,
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

  Status Info(FileInfo& info) override {
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

  Status Identity(FileId& id) override { return IdentityOf(handle_.Get(), id); }

  std::size_t Alignment() const override { return direct_ ? volume_.sectorBytes : 1; }

  Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) override {
    OverlappedTransfer transfer;
    if (Status status = transfer.Prepare(); !status.Ok()) return status;
    transfer.BeginWrite(handle_.Get(), offsetBytes, data);
    return transfer.End(written);
  }

  Status Flush() override { return ::FlushFileBuffers(handle_.Get()) != 0 ? Status{} : LastError(); }

  // Unbuffered reads don't know the cache. For the others there is no way past it.
  Status DropCache() override { return {}; }

  Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) override {
    OverlappedTransfer transfer;
    if (Status status = transfer.Prepare(); !status.Ok()) return status;
    transfer.BeginRead(handle_.Get(), offsetBytes, data);
    return transfer.End(got);
  }

  HANDLE Handle() const { return handle_.Get(); }
  bool IsDirect() const { return direct_; }
  const Volume& OnVolume() const { return volume_; }

  Status ListStreams(std::vector<std::string>& names) override { return ListStreamsOf(Path(), names); }

  Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) override {
    return Open(folderPath_, name_ + L':' + Wide(name), volume_, access, OPEN_EXISTING, stream);
  }

  Status SetLength(std::uint64_t lengthBytes) override {
    FILE_END_OF_FILE_INFO info{};
    info.EndOfFile.QuadPart = static_cast<LONGLONG>(lengthBytes);
    if (::SetFileInformationByHandle(handle_.Get(), FileEndOfFileInfo, &info, sizeof info) == 0) {
      return LastError();
    }
    return {};
  }

  Status SetDates() override {
    constexpr LONGLONG kMoment = 119'600'496'000'000'000;  // noon of the first day that FAT knows, 1980-01-01
    FILE_BASIC_INFO info{};                                // attributes 0: they stay
    info.CreationTime.QuadPart = kMoment;
    info.LastAccessTime.QuadPart = kMoment;
    info.LastWriteTime.QuadPart = kMoment;
    info.ChangeTime.QuadPart = kMoment;
    if (::SetFileInformationByHandle(handle_.Get(), FileBasicInfo, &info, sizeof info) == 0)
      return LastError();
    return {};
  }

  Status Rename(const std::string& newName) override {
    std::wstring wide;
    if (Status status = WideName(newName, wide); !status.Ok()) return status;
    if (Status status = RenameByHandle(handle_.Get(), JoinWide(folderPath_, wide)); !status.Ok())
      return status;
    name_ = std::move(wide);
    return {};
  }

  // The file's own flush writes the log of its volume, and so its entry.
  Status FlushEntry() override { return Flush(); }

  Status Remove() override { return RemoveByHandle(handle_, Path()); }

 private:
  std::wstring Path() const { return JoinWide(folderPath_, name_); }

  UniqueHandle handle_;
  std::wstring folderPath_;
  std::wstring name_;
  Volume volume_;
  bool direct_;
};

// --- Folders --------------------------------------------------------------------------------------------

class WindowsFolder final : public Folder {
 public:
  WindowsFolder(UniqueHandle handle, std::wstring path, const Volume& volume)
      : handle_(std::move(handle)), path_(std::move(path)), volume_(volume) {}

  static Status Open(const std::wstring& path, bool followLink, std::unique_ptr<Folder>& folder) {
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
    return Open(JoinWide(path_, wide), false, folder);
  }

  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    std::wstring wide;
    if (Status status = WideName(name, wide); !status.Ok()) return status;
    const std::wstring path = JoinWide(path_, wide);
    if (::CreateDirectoryW(path.c_str(), nullptr) == 0) return LastError();
    Status status = Open(path, false, folder);
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

// Several overlapped transfers under way.
// Flushes files of which each has to be flushed by itself, as over a network, where a flush is a journey of
// its own: threads of the system's pool make several side by side, and nothing else.
class Flushes {
 public:
  void Add(HANDLE file) { files_.push_back(file); }

  // The outcomes, in the order of the files: a system code for each, or ERROR_SUCCESS.
  const std::vector<DWORD>& Run() {
    constexpr std::size_t kFew = 4;
    constexpr int kHelpers = 7;
    codes_.assign(files_.size(), ERROR_SUCCESS);
    const PTP_WORK work =
        files_.size() > kFew ? ::CreateThreadpoolWork(&Flushes::Help, this, nullptr) : nullptr;
    if (work != nullptr) {
      for (int i = 0; i < kHelpers; ++i) ::SubmitThreadpoolWork(work);
    }
    TakeAll();
    if (work != nullptr) {
      // Those that haven't begun have nothing left to do.
      ::WaitForThreadpoolWorkCallbacks(work, TRUE);
      ::CloseThreadpoolWork(work);
    }
    return codes_;
  }

 private:
  static void CALLBACK Help(PTP_CALLBACK_INSTANCE, void* flushes, PTP_WORK) {
    static_cast<Flushes*>(flushes)->TakeAll();
  }
  void TakeAll() {
    for (std::size_t i = next_++; i < files_.size(); i = next_++) {
      if (::FlushFileBuffers(files_[i]) == 0) codes_[i] = ::GetLastError();
    }
  }

  std::vector<HANDLE> files_;
  std::vector<DWORD> codes_;
  std::atomic<std::size_t> next_ = 0;
};

class WindowsQueue final : public TransferQueue {
 public:
  static constexpr std::size_t kDepth = 32;
  static_assert(kDepth <= MAXIMUM_WAIT_OBJECTS);

  // Null if the system has no events to give.
  static std::unique_ptr<TransferQueue> Make() {
    auto queue = std::make_unique<WindowsQueue>();
    for (OverlappedTransfer& transfer : queue->transfers_) {
      if (!transfer.Prepare().Ok()) return nullptr;
    }
    return queue;
  }

  std::size_t Depth() const override { return kDepth; }

  void BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                  std::size_t tag) override {
    order_[count_++] = tag;
    transfers_[tag].BeginWrite(static_cast<WindowsFile&>(file).Handle(), offsetBytes, data);
  }
  void BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t tag) override {
    order_[count_++] = tag;
    transfers_[tag].BeginRead(static_cast<WindowsFile&>(file).Handle(), offsetBytes, data);
  }

  Ended Wait() override {
    const std::size_t index = FirstEnded();
    Ended ended;
    ended.tag = order_[index];
    std::copy(order_ + index + 1, order_ + count_, order_ + index);
    --count_;
    ended.status = transfers_[ended.tag].End(ended.bytes);
    return ended;
  }

 private:
  // The index in order_ of one that needs no more waiting, or of the oldest.
  std::size_t FirstEnded() const {
    HANDLE events[kDepth];
    for (std::size_t i = 0; i < count_; ++i) {
      if (!transfers_[order_[i]].IsUnderWay()) return i;
      events[i] = transfers_[order_[i]].Event();
    }
    const DWORD result = ::WaitForMultipleObjects(static_cast<DWORD>(count_), events, FALSE, INFINITE);
    return result < WAIT_OBJECT_0 + count_ ? result - WAIT_OBJECT_0 : 0;
  }

  OverlappedTransfer transfers_[kDepth];
  std::size_t order_[kDepth] = {};  // the tags of those under way, the oldest first
  std::size_t count_ = 0;
};

class WindowsDevice final : public Device {
 public:
  explicit WindowsDevice(const DeviceOptions& options) : options_(options) {}

  Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) override {
    std::wstring longPath;
    if (Status status = LongPath(path, longPath); !status.Ok()) return status;
    return WindowsFolder::Open(longPath, true, folder);
  }

  Status Split(const std::string& path, std::string& folderPath, std::string& name) const override {
    std::wstring longPath;
    if (Status status = LongPath(path, longPath); !status.Ok()) return status;
    const std::size_t root = RootLength(longPath);
    while (longPath.size() > root && longPath.back() == L'\\') longPath.pop_back();
    if (longPath.size() <= root) {
      folderPath = path;
      name.clear();
      return {};
    }
    const std::size_t slash = longPath.rfind(L'\\');
    name = Narrow(longPath.substr(slash + 1));
    folderPath = Narrow(longPath.substr(0, slash + 1));
    std::wstring wide;
    return WideName(name, wide);
  }

  std::string Join(const std::string& folderPath, const std::string& name) const override {
    if (folderPath.empty() || folderPath.back() == '\\') return folderPath + name;
    return folderPath + '\\' + name;
  }

  std::size_t NameLength(const std::string& name) const override {
    return std::max<std::size_t>(Wide(name).size(), 1);
  }

  std::unique_ptr<TransferQueue> MakeQueue() override {
    if (!options_.oneTransferAtATime) {
      if (std::unique_ptr<TransferQueue> queue = WindowsQueue::Make()) return queue;
    }
    return Device::MakeQueue();
  }

  // What was written unbuffered and through has left the system's cache when the write ends. What a flush
  // adds is that of the device's own cache, and one file's is as good as another's for that.
  void FlushMany(std::span<File* const> files, std::span<Status> outcomes) override {
    std::vector<std::wstring> flushed;
    std::vector<std::size_t> apart;
    for (std::size_t i = files.size(); i > 0; --i) {
      auto& file = static_cast<WindowsFile&>(*files[i - 1]);
      const Volume& volume = file.OnVolume();
      if (!file.IsDirect() || !volume.isLocal) {
        apart.push_back(i - 1);
        continue;
      }
      if (std::find(flushed.begin(), flushed.end(), volume.root) != flushed.end()) continue;
      flushed.push_back(volume.root);
      const Status status = file.Flush();
      if (status.Ok()) continue;
      for (std::size_t other = 0; other < files.size(); ++other) {
        const auto& same = static_cast<WindowsFile&>(*files[other]);
        if (same.IsDirect() && same.OnVolume().root == volume.root) outcomes[other] = status;
      }
    }
    FlushApart(files, apart, outcomes);
  }

  void FlushEntries(std::span<File* const> files, std::span<Status> outcomes) override {
    std::vector<std::size_t> all(files.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    FlushApart(files, all, outcomes);
  }

 private:
  static void FlushApart(std::span<File* const> files, std::span<const std::size_t> which,
                         std::span<Status> outcomes) {
    Flushes flushes;
    for (const std::size_t i : which) flushes.Add(static_cast<WindowsFile&>(*files[i]).Handle());
    const std::vector<DWORD>& codes = flushes.Run();
    for (std::size_t i = 0; i < which.size(); ++i) {
      outcomes[which[i]] = codes[i] == ERROR_SUCCESS ? Status{} : FromCode(codes[i]);
    }
  }

  DeviceOptions options_;
};

}  // namespace

std::unique_ptr<Device> MakeSystemDevice(const DeviceOptions& options) {
  return std::make_unique<WindowsDevice>(options);
}

}  // namespace zq::engine
