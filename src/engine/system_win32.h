// What all of the Windows device is made of: texts, error codes, handles.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <utility>

#include "debug/LiveCount.h"
#include "engine/Device.h"

namespace zq::engine::win32 {

// Empty if `text` isn't UTF-8, which no existing path is.
std::wstring Wide(const std::string& text);

// A name that isn't UTF-16 (NTFS allows half a surrogate pair) comes out as another name, which doesn't
// exist: its file is then told as not found, and stays.
std::string Narrow(const wchar_t* text, std::size_t count);
std::string Narrow(const std::wstring& text);

Status FromCode(DWORD code);
Status LastError();

class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(HANDLE handle) : handle_(handle) { Count(1); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  void Reset() {
    if (IsOpen()) ::CloseHandle(handle_);
    Count(-1);
    handle_ = INVALID_HANDLE_VALUE;
  }
  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

 private:
  void Count(int change) const {
    if (IsOpen()) debug::Count(debug::Kind::KernelHandle, change);
  }

  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace zq::engine::win32
