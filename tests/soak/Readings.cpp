#include "soak/Readings.h"

#include <windows.h>
#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "debug/CountersWindow_win32.h"
#include "support/driver/Wait.h"

namespace zq::test {
namespace {

// Of an answer whose size nobody knows before.
std::vector<std::byte> SystemList(int which) {
  std::vector<std::byte> list(0x20000);
  for (;;) {
    ULONG needed = 0;
    const NTSTATUS status = ::NtQuerySystemInformation(static_cast<SYSTEM_INFORMATION_CLASS>(which),
                                                       list.data(), static_cast<ULONG>(list.size()), &needed);
    if (status >= 0) return list;
    constexpr std::size_t kMost = 16u << 20;
    if (list.size() > kMost) throw DriverError("the system doesn't tell list " + std::to_string(which));
    list.resize(list.size() * 2);
  }
}

// Wine 8 answers GetProcessHandleCount with 0, and its list of processes has the room for handles in place of
// their number. The list of all handles is true.
long long HandlesOf(DWORD processId) {
  struct Handle {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR value;
    ULONG access;
    USHORT traceIndex;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
  };
  constexpr int kSystemExtendedHandleInformation = 64;
  const std::vector<std::byte> list = SystemList(kSystemExtendedHandleInformation);
  const ULONG_PTR count = *reinterpret_cast<const ULONG_PTR*>(list.data());
  const auto* const handles = reinterpret_cast<const Handle*>(list.data() + 2 * sizeof(ULONG_PTR));
  return std::count_if(handles, handles + count,
                       [processId](const Handle& handle) { return handle.processId == processId; });
}

long long ThreadsOf(DWORD processId) {
  const std::vector<std::byte> list = SystemList(SystemProcessInformation);
  for (std::size_t at = 0;;) {
    const auto* const entry = reinterpret_cast<const SYSTEM_PROCESS_INFORMATION*>(list.data() + at);
    if (reinterpret_cast<std::uintptr_t>(entry->UniqueProcessId) == processId) return entry->NumberOfThreads;
    if (entry->NextEntryOffset == 0) throw DriverError("the process is not in the system's list");
    at += entry->NextEntryOffset;
  }
}

// Wine 8 answers GetGuiResources with 0. Its table of GDI objects stands where that of Windows does.
long long EntriesOfTheGdiTable(HANDLE process) {
  struct Entry {
    std::uint64_t object;
    std::uint32_t owner;
    std::uint16_t unique;
    std::uint8_t type;  // 0 for a free one
    std::uint8_t flags;
    std::uint64_t userPointer;
  };
  constexpr std::size_t kEntries = 0x10000;
  constexpr std::size_t kTableInPeb = 0xF8;
  PROCESS_BASIC_INFORMATION info{};
  std::vector<Entry> entries(kEntries);
  void* table = nullptr;
  if (::NtQueryInformationProcess(process, ProcessBasicInformation, &info, sizeof info, nullptr) < 0 ||
      !::ReadProcessMemory(process, reinterpret_cast<std::byte*>(info.PebBaseAddress) + kTableInPeb, &table,
                           sizeof table, nullptr) ||
      !::ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(Entry), nullptr)) {
    throw DriverError("the table of GDI objects can't be read");
  }
  long long used = 0;
  for (const Entry& entry : entries) used += entry.type != 0 ? 1 : 0;
  return used;
}

long long GdiObjects(HANDLE process) {
  const DWORD told = ::GetGuiResources(process, GR_GDIOBJECTS);
  return told != 0 ? told : EntriesOfTheGdiTable(process);
}

long long WindowsOf(DWORD processId) {
  const std::vector<Window> topLevel =
      TopLevelWindows([processId](Window window) { return window.ProcessId() == processId; });
  auto count = static_cast<long long>(topLevel.size());
  for (const Window window : topLevel) count += static_cast<long long>(window.Children().size());
  return count;
}

}  // namespace

Readings ReadSystem(HANDLE process) {
  const DWORD id = ::GetProcessId(process);
  PROCESS_MEMORY_COUNTERS memory{};
  if (!::GetProcessMemoryInfo(process, &memory, sizeof memory)) {
    throw DriverError("the memory of the process can't be told");
  }
  return {
      {kSystemHandles, HandlesOf(id)},
      {kSystemThreads, ThreadsOf(id)},
      {kSystemGdi, GdiObjects(process)},
      {kSystemWindows, WindowsOf(id)},
      {kCommittedKb, static_cast<long long>(memory.PagefileUsage / 1024)},
      {kWorkingSetKb, static_cast<long long>(memory.WorkingSetSize / 1024)},
  };
}

Window FindCounters(DWORD processId) {
  HWND window = nullptr;
  while ((window = ::FindWindowExW(HWND_MESSAGE, window, debug::kCountersClass, nullptr)) != nullptr) {
    if (Window(window).ProcessId() == processId) return Window(window);
  }
  return {};
}

Readings ReadCounters(DWORD processId) {
  const Window counters = FindCounters(processId);
  if (!counters) return {};
  Readings readings;
  const std::string text = counters.Text();
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t colon = text.find(": ", at);
    const std::size_t end = text.find('\n', at);
    if (colon == std::string::npos || end == std::string::npos || colon > end) {
      throw DriverError("counters that can't be read: " + text);
    }
    readings["own: " + text.substr(at, colon - at)] =
        std::strtoll(text.substr(colon + 2, end - colon - 2).c_str(), nullptr, 10);
    at = end + 1;
  }
  return readings;
}

std::string Differences(const Readings& before, const Readings& now) {
  std::string lines;
  for (const auto& [name, value] : now) {
    const auto former = before.find(name);
    const long long was = former == before.end() ? 0 : former->second;
    if (was != value) lines += name + ": " + std::to_string(was) + " -> " + std::to_string(value) + "\n";
  }
  return lines;
}

}  // namespace zq::test
