// Reads and writes that Windows has under way, one or several.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "engine/system_win32.h"

namespace zq::engine::win32 {

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
  // It ends all the same, sooner: with whatever the system says then.
  void GiveUp() {
    if (IsUnderWay()) ::CancelIoEx(file_, &at_);
  }
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

// Several overlapped transfers under way. Null if the system has no events to give.
std::unique_ptr<TransferQueue> MakeWindowsQueue();

}  // namespace zq::engine::win32
