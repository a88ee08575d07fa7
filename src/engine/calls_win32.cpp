#include "engine/calls_win32.h"

#include <windows.h>
#include <winioctl.h>
#include <winternl.h>

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include "debug/LiveCount.h"
#include "engine/system_win32.h"

namespace zq::engine::win32 {
namespace {

static_assert(kSuccess == ERROR_SUCCESS && kInvalidFunction == ERROR_INVALID_FUNCTION);
static_assert(kFileNotFound == ERROR_FILE_NOT_FOUND && kPathNotFound == ERROR_PATH_NOT_FOUND);
static_assert(kAccessDenied == ERROR_ACCESS_DENIED && kSharingViolation == ERROR_SHARING_VIOLATION);
static_assert(kEndOfFile == ERROR_HANDLE_EOF && kNotSupported == ERROR_NOT_SUPPORTED);
static_assert(kInvalidParameter == ERROR_INVALID_PARAMETER &&
              kCallNotImplemented == ERROR_CALL_NOT_IMPLEMENTED);
static_assert(kInsufficientBuffer == ERROR_INSUFFICIENT_BUFFER && kMoreData == ERROR_MORE_DATA);
static_assert(kDeletePending == ERROR_DELETE_PENDING);
static_assert(kReadAttributes == FILE_READ_ATTRIBUTES && kWriteAttributes == FILE_WRITE_ATTRIBUTES);
static_assert(kDelete == DELETE && kSynchronize == SYNCHRONIZE);
static_assert(kGenericRead == GENERIC_READ && kGenericWrite == GENERIC_WRITE);
static_assert(kShareRead == FILE_SHARE_READ && kShareWrite == FILE_SHARE_WRITE &&
              kShareDelete == FILE_SHARE_DELETE);
static_assert(kCreateNew == CREATE_NEW && kOpenExisting == OPEN_EXISTING);
static_assert(kOpenNoRecall == FILE_FLAG_OPEN_NO_RECALL && kOpenReparsePoint == FILE_FLAG_OPEN_REPARSE_POINT);
static_assert(kDeleteOnClose == FILE_FLAG_DELETE_ON_CLOSE);
static_assert(kBackupSemantics == FILE_FLAG_BACKUP_SEMANTICS && kNoBuffering == FILE_FLAG_NO_BUFFERING);
static_assert(kOverlapped == FILE_FLAG_OVERLAPPED && kWriteThrough == FILE_FLAG_WRITE_THROUGH);
static_assert(kAttributeReadOnly == FILE_ATTRIBUTE_READONLY && kAttributeFolder == FILE_ATTRIBUTE_DIRECTORY);
static_assert(kAttributeNormal == FILE_ATTRIBUTE_NORMAL && kAttributeSparse == FILE_ATTRIBUTE_SPARSE_FILE);
static_assert(kAttributeReparsePoint == FILE_ATTRIBUTE_REPARSE_POINT);
static_assert(kAttributeCompressed == FILE_ATTRIBUTE_COMPRESSED &&
              kAttributeOffline == FILE_ATTRIBUTE_OFFLINE);
static_assert(kAttributeEncrypted == FILE_ATTRIBUTE_ENCRYPTED);
static_assert(kPathForms[1] == VOLUME_NAME_NT && kPathForms[2] == FILE_NAME_OPENED);
static_assert(kGetRetrievalPointers == FSCTL_GET_RETRIEVAL_POINTERS && kMarkHandle == FSCTL_MARK_HANDLE);
static_assert(kQueryAllocatedRanges == FSCTL_QUERY_ALLOCATED_RANGES);
static_assert(kStorageQueryProperty == IOCTL_STORAGE_QUERY_PROPERTY);
static_assert(kGetVolumeDiskExtents == IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS);

Code CodeIf(BOOL failed) {
  return failed != 0 ? ::GetLastError() : kSuccess;
}

// The kind of entries that a process is shown of a cloud folder can't be left to the system, which disguises
// them to some (ntifs.h: RtlSetProcessPlaceholderCompatibilityMode, PHCM_EXPOSE_PLACEHOLDERS).
void ShowPlaceholders() {
  using SetMode = CHAR(NTAPI*)(CHAR);
  constexpr CHAR kExpose = 2;
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  if (ntdll == nullptr) return;
  const FARPROC address = ::GetProcAddress(ntdll, "RtlSetProcessPlaceholderCompatibilityMode");
  if (address == nullptr) return;  // before Windows 10 1803 there are none to be disguised
  SetMode setMode = nullptr;
  std::memcpy(&setMode, &address, sizeof setMode);
  setMode(kExpose);
}

// Where GetFinalPathNameByHandle ends at MAX_PATH, as that of Wine 8 does, the object's name is the path by
// its drive letter. On Windows it begins with a device, and is not taken: false.
bool NameOfObject(HANDLE handle, std::wstring& path) {
  constexpr auto kObjectName = static_cast<OBJECT_INFORMATION_CLASS>(1);  // ObjectNameInformation of the DDK
  constexpr std::wstring_view kDosDevices = L"\\??\\";
  std::vector<std::byte> buffer(sizeof(UNICODE_STRING) + 0x10000);
  ULONG size = 0;
  if (::NtQueryObject(handle, kObjectName, buffer.data(), static_cast<ULONG>(buffer.size()), &size) < 0) {
    return false;
  }
  const auto* const name = reinterpret_cast<const UNICODE_STRING*>(buffer.data());
  const std::wstring_view text(name->Buffer, name->Length / sizeof(wchar_t));
  if (!text.starts_with(kDosDevices)) return false;
  path = L"\\\\?\\";
  path += text.substr(kDosDevices.size());
  return true;
}

HANDLE Counted(HANDLE opened) {
  debug::Count(debug::Kind::File, 1);
  return opened;
}

class SystemCalls final : public WindowsCalls {
 public:
  SystemCalls() { ShowPlaceholders(); }

  Code Open(const std::wstring& path, const Opening& how, SystemHandle& handle) override {
    const HANDLE opened = ::CreateFileW(path.c_str(), how.access, how.share, nullptr, how.disposition,
                                        how.flags | FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return ::GetLastError();
    handle = Counted(opened);
    return kSuccess;
  }

  Code Reopen(SystemHandle handle, const Opening& how, SystemHandle& again) override {
    const HANDLE opened = ::ReOpenFile(handle, how.access, how.share, how.flags);
    if (opened == INVALID_HANDLE_VALUE) return ::GetLastError();
    again = Counted(opened);
    return kSuccess;
  }

  void Close(SystemHandle handle) override {
    debug::Count(debug::Kind::File, -1);
    ::CloseHandle(handle);
  }

  Code FinalPath(SystemHandle handle, std::uint32_t form, std::wstring& path) override {
    path.resize(MAX_PATH);
    for (;;) {
      const DWORD length =
          ::GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), form);
      if (length == 0) {
        const Code code = ::GetLastError();
        return form == VOLUME_NAME_DOS && NameOfObject(handle, path) ? kSuccess : code;
      }
      const bool fits = length < path.size();
      path.resize(length);
      if (fits) return kSuccess;
    }
  }

  // The 128 bits of ReFS where the system knows them, else the 64 of NTFS.
  Code Identity(SystemHandle handle, FileId& id) override {
    FILE_ID_INFO wide{};
    if (::GetFileInformationByHandleEx(handle, FileIdInfo, &wide, sizeof wide) != 0) {
      id.volume = wide.VolumeSerialNumber;
      static_assert(sizeof id.file == sizeof wide.FileId);
      std::memcpy(id.file.data(), &wide.FileId, sizeof wide.FileId);
      return kSuccess;
    }
    BY_HANDLE_FILE_INFORMATION narrow{};
    if (::GetFileInformationByHandle(handle, &narrow) == 0) return ::GetLastError();
    id.volume = narrow.dwVolumeSerialNumber;
    id.file = {std::uint64_t{narrow.nFileIndexHigh} << 32 | narrow.nFileIndexLow, 0};
    return kSuccess;
  }

  Code Look(SystemHandle handle, std::uint32_t& attributes, std::uint32_t& reparseTag) override {
    FILE_ATTRIBUTE_TAG_INFO info{};
    reparseTag = 0;
    if (::GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &info, sizeof info) != 0) {
      attributes = info.FileAttributes;
      reparseTag = info.ReparseTag;
      return kSuccess;
    }
    const Code code = ::GetLastError();
    // Some file systems know no tags, and so no reparse points.
    FILE_BASIC_INFO basic{};
    if (::GetFileInformationByHandleEx(handle, FileBasicInfo, &basic, sizeof basic) == 0) return code;
    if ((basic.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return code;
    attributes = basic.FileAttributes;
    return kSuccess;
  }

  Code SetAttributes(SystemHandle handle, std::uint32_t attributes) override {
    FILE_BASIC_INFO info{};  // dates 0: they stay
    info.FileAttributes = attributes;
    return CodeIf(::SetFileInformationByHandle(handle, FileBasicInfo, &info, sizeof info) == 0);
  }

  Code ExtendedAttributes(SystemHandle handle, std::uint32_t& sizeBytes) override {
    constexpr auto kFileEaInformation = static_cast<FILE_INFORMATION_CLASS>(7);
    ULONG size = 0;  // FILE_EA_INFORMATION
    IO_STATUS_BLOCK outcome{};
    const NTSTATUS status =
        ::NtQueryInformationFile(handle, &outcome, &size, sizeof size, kFileEaInformation);
    if (status < 0) return ::RtlNtStatusToDosError(status);
    sizeBytes = size;
    return kSuccess;
  }

  Code Control(SystemHandle handle, std::uint32_t control, std::span<const std::byte> input,
               std::span<std::byte> output, std::size_t& gotBytes) override {
    gotBytes = 0;
    if (!event_.IsOpen()) {
      const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
      if (event == nullptr) return ::GetLastError();
      event_ = UniqueHandle(event);
    }
    OVERLAPPED at{};  // the handle may be open for several transfers at once
    at.hEvent = event_.Get();
    DWORD got = 0;
    BOOL done = ::DeviceIoControl(handle, control, const_cast<std::byte*>(input.data()),
                                  static_cast<DWORD>(input.size()), output.data(),
                                  static_cast<DWORD>(output.size()), &got, &at);
    if (done == 0 && ::GetLastError() == ERROR_IO_PENDING)
      done = ::GetOverlappedResult(handle, &at, &got, TRUE);
    const Code code = CodeIf(done == 0);
    if (code == kSuccess || code == kMoreData) gotBytes = got;
    return code;
  }

  Code Remove(SystemHandle handle, bool atOnce) override {
    if (atOnce) {
      // Documented since Windows 10 1607, but not in every compiler's headers.
      constexpr auto kFileDispositionInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
      FILE_DISPOSITION_INFO_EX info{FILE_DISPOSITION_FLAG_DELETE | FILE_DISPOSITION_FLAG_POSIX_SEMANTICS};
      return CodeIf(::SetFileInformationByHandle(handle, kFileDispositionInfoEx, &info, sizeof info) == 0);
    }
    FILE_DISPOSITION_INFO info{TRUE};
    return CodeIf(::SetFileInformationByHandle(handle, FileDispositionInfo, &info, sizeof info) == 0);
  }

  Code Exists(const std::wstring& path) override {
    return CodeIf(::GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES);
  }

  void Wait(std::chrono::milliseconds time) override { ::Sleep(static_cast<DWORD>(time.count())); }

  Status StatusOf(Code code) override { return FromCode(code); }

 private:
  UniqueHandle event_;
};

}  // namespace

std::unique_ptr<WindowsCalls> MakeSystemCalls() {
  return std::make_unique<SystemCalls>();
}

}  // namespace zq::engine::win32
