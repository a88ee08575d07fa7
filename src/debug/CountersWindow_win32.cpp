#include "debug/CountersWindow_win32.h"

#ifdef ZQ_COUNTERS

#include <windows.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "debug/LiveCount.h"

namespace zq::debug {
namespace {

// What the system's own libraries have allocated for us is in there, too.
void CountHeaps(std::ptrdiff_t& blocks, std::ptrdiff_t& bytes) {
  std::array<HANDLE, 64> heaps{};
  const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  for (DWORD i = 0; i < std::min<DWORD>(count, static_cast<DWORD>(heaps.size())); ++i) {
    if (!::HeapLock(heaps[i])) continue;
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
      ++blocks;
      bytes += static_cast<std::ptrdiff_t>(entry.cbData);
    }
    ::HeapUnlock(heaps[i]);
  }
}

std::wstring Report() {
  std::ptrdiff_t blocks = 0;
  std::ptrdiff_t bytes = 0;
  CountHeaps(blocks, bytes);
  std::vector<Reading> readings = LiveCounts();
  readings.push_back({"all heaps' blocks", blocks});
  readings.push_back({"all heaps' bytes", bytes});
  const std::string lines = InLines(readings);
  return {lines.begin(), lines.end()};
}

LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(Report().size());
    case WM_GETTEXT: {
      if (wParam == 0) return 0;
      const std::wstring report = Report();
      const std::size_t length = std::min<std::size_t>(report.size(), wParam - 1);
      auto* const text = reinterpret_cast<wchar_t*>(lParam);
      std::copy_n(report.begin(), length, text);
      text[length] = L'\0';
      return static_cast<LRESULT>(length);
    }
    default:
      return ::DefWindowProcW(window, message, wParam, lParam);
  }
}

}  // namespace

void AnswerWithCounters() {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = &Answer;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.lpszClassName = kCountersClass;
  if (!::RegisterClassW(&windowClass)) return;
  ::CreateWindowExW(0, kCountersClass, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance,
                    nullptr);
}

}  // namespace zq::debug

#endif
