// WaitCursor: the hourglass, for as long as it lives.
#pragma once

#include <windows.h>

namespace zq {

class WaitCursor {
 public:
  WaitCursor() : before_(::SetCursor(::LoadCursorW(nullptr, IDC_WAIT))) {}
  ~WaitCursor() { ::SetCursor(before_); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  HCURSOR before_;
};

}  // namespace zq
