// The calls of Windows on which it hangs whether a file is the one that was meant, whether overwriting
// destroys what it holds, and whether it goes. They are apart from the device so that what it makes of the
// answers is tested with answers that no machine of a developer gives. Nothing here needs Windows' headers.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "engine/Device.h"

namespace zq::engine::win32 {

using Code = std::uint32_t;  // of the system
using SystemHandle = void*;

// The values are Windows' own (winerror.h, winnt.h, winioctl.h); the device holds them against its headers.
inline constexpr Code kSuccess = 0;
inline constexpr Code kInvalidFunction = 1;
inline constexpr Code kFileNotFound = 2;
inline constexpr Code kPathNotFound = 3;
inline constexpr Code kAccessDenied = 5;
inline constexpr Code kSharingViolation = 32;
inline constexpr Code kEndOfFile = 38;
inline constexpr Code kNotSupported = 50;
inline constexpr Code kInvalidParameter = 87;
inline constexpr Code kCallNotImplemented = 120;
inline constexpr Code kInsufficientBuffer = 122;
inline constexpr Code kMoreData = 234;
inline constexpr Code kDeletePending = 303;
inline constexpr Code kNotExternallyBacked = 342;

inline constexpr std::uint32_t kReadAttributes = 0x0080;
inline constexpr std::uint32_t kWriteAttributes = 0x0100;
inline constexpr std::uint32_t kDelete = 0x00010000;
inline constexpr std::uint32_t kSynchronize = 0x00100000;
inline constexpr std::uint32_t kGenericWrite = 0x40000000;
inline constexpr std::uint32_t kGenericRead = 0x80000000;

inline constexpr std::uint32_t kShareRead = 1;
inline constexpr std::uint32_t kShareWrite = 2;
inline constexpr std::uint32_t kShareDelete = 4;

inline constexpr std::uint32_t kCreateNew = 1;
inline constexpr std::uint32_t kOpenExisting = 3;

inline constexpr std::uint32_t kOpenNoRecall = 0x00100000;
inline constexpr std::uint32_t kOpenReparsePoint = 0x00200000;
inline constexpr std::uint32_t kBackupSemantics = 0x02000000;
inline constexpr std::uint32_t kDeleteOnClose = 0x04000000;
inline constexpr std::uint32_t kNoBuffering = 0x20000000;
inline constexpr std::uint32_t kOverlapped = 0x40000000;
inline constexpr std::uint32_t kWriteThrough = 0x80000000;

inline constexpr std::uint32_t kAttributeReadOnly = 0x0001;
inline constexpr std::uint32_t kAttributeFolder = 0x0010;
inline constexpr std::uint32_t kAttributeNormal = 0x0080;
inline constexpr std::uint32_t kAttributeSparse = 0x0200;
inline constexpr std::uint32_t kAttributeReparsePoint = 0x0400;
inline constexpr std::uint32_t kAttributeCompressed = 0x0800;
inline constexpr std::uint32_t kAttributeOffline = 0x1000;
inline constexpr std::uint32_t kAttributeEncrypted = 0x4000;
inline constexpr std::uint32_t kAttributeIntegrity = 0x8000;
inline constexpr std::uint32_t kAttributeRecallOnDataAccess = 0x00400000;

// FILE_NAME_NORMALIZED or FILE_NAME_OPENED, with VOLUME_NAME_DOS or VOLUME_NAME_NT.
inline constexpr std::uint32_t kPathForms[] = {0x0, 0x2, 0x8, 0xA};

inline constexpr std::uint32_t kGetRetrievalPointers = 0x00090073;
inline constexpr std::uint32_t kMarkHandle = 0x000900FC;
inline constexpr std::uint32_t kGetExternalBacking = 0x00090310;
inline constexpr std::uint32_t kQueryAllocatedRanges = 0x000940CF;
inline constexpr std::uint32_t kFileLevelTrim = 0x00098208;
inline constexpr std::uint32_t kStorageQueryProperty = 0x002D1400;
inline constexpr std::uint32_t kGetVolumeDiskExtents = 0x00560000;

// How a file is opened, in Windows' own values.
struct Opening {
  std::uint32_t access = 0;
  std::uint32_t share = 0;
  std::uint32_t disposition = kOpenExisting;
  std::uint32_t flags = 0;
};

// Each call returns kSuccess or the code that Windows gives.
class WindowsCalls {
 public:
  WindowsCalls() = default;
  WindowsCalls(const WindowsCalls&) = delete;
  WindowsCalls& operator=(const WindowsCalls&) = delete;
  virtual ~WindowsCalls() = default;

  virtual Code Open(const std::wstring& path, const Opening& how, SystemHandle& handle) = 0;
  // Opens the same file once more, whatever bears its name by now.
  virtual Code Reopen(SystemHandle handle, const Opening& how, SystemHandle& again) = 0;
  virtual void Close(SystemHandle handle) = 0;

  // Where the file lies, links on the way to it resolved. `form` is one of kPathForms.
  virtual Code FinalPath(SystemHandle handle, std::uint32_t form, std::wstring& path) = 0;
  virtual Code Identity(SystemHandle handle, FileId& id) = 0;
  virtual Code Look(SystemHandle handle, std::uint32_t& attributes, std::uint32_t& reparseTag) = 0;
  virtual Code SetAttributes(SystemHandle handle, std::uint32_t attributes) = 0;
  virtual Code ExtendedAttributes(SystemHandle handle, std::uint32_t& sizeBytes) = 0;
  // A control code of the file system; `gotBytes` of `output` are filled, by kMoreData too.
  virtual Code Control(SystemHandle handle, std::uint32_t control, std::span<const std::byte> input,
                       std::span<std::byte> output, std::size_t& gotBytes) = 0;

  // Has the entry removed, at once (Windows 10 on NTFS) or with its last handle.
  virtual Code Remove(SystemHandle handle, bool atOnce) = 0;
  // kSuccess if there is an entry, else why the system doesn't find it.
  virtual Code Exists(const std::wstring& path) = 0;

  virtual void Wait(std::chrono::milliseconds time) = 0;
  // What the system says of a code, with the trouble that it stands for.
  virtual Status StatusOf(Code code) = 0;
};

// Closes a handle that nobody has taken over.
class Closing {
 public:
  explicit Closing(WindowsCalls& calls) : calls_(calls) {}
  Closing(const Closing&) = delete;
  Closing& operator=(const Closing&) = delete;
  ~Closing() {
    if (handle != nullptr) calls_.Close(handle);
  }
  SystemHandle Take() {
    SystemHandle taken = handle;
    handle = nullptr;
    return taken;
  }

  SystemHandle handle = nullptr;

 private:
  WindowsCalls& calls_;
};

}  // namespace zq::engine::win32
