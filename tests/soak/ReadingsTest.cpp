// That the counters tell the truth: each is tried on things that this process makes and gives back.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <vector>

#include "platform/win32/UniqueHandle.h"
#include "soak/Readings.h"

namespace zq::test {
namespace {

constexpr int kMany = 50;

TEST(Readings, SeeEachHandleOfTheSystem) {
  const long long before = ReadSystem(::GetCurrentProcess())[kSystemHandles];
  std::vector<UniqueKernelHandle> events;
  for (int i = 0; i < kMany; ++i) events.emplace_back(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
  EXPECT_EQ(ReadSystem(::GetCurrentProcess())[kSystemHandles], before + kMany);
  events.clear();
  EXPECT_EQ(ReadSystem(::GetCurrentProcess())[kSystemHandles], before);
}

TEST(Readings, SeeEachGdiObject) {
  const long long before = ReadSystem(::GetCurrentProcess())[kSystemGdi];
  std::vector<UniqueBrush> brushes;
  for (int i = 0; i < kMany; ++i) brushes.emplace_back(::CreateSolidBrush(static_cast<COLORREF>(i + 1)));
  EXPECT_EQ(ReadSystem(::GetCurrentProcess())[kSystemGdi], before + kMany);
  brushes.clear();
  EXPECT_EQ(ReadSystem(::GetCurrentProcess())[kSystemGdi], before);
}

TEST(Readings, SeeEachWindow) {
  const auto make = [](DWORD style, HWND parent) {
    return ::CreateWindowExW(0, L"STATIC", nullptr, style, 0, 0, 9, 9, parent, nullptr, nullptr, nullptr);
  };
  // Which brings others of the system's with it.
  const HWND parent = make(WS_POPUP, nullptr);
  ASSERT_NE(parent, nullptr);
  const long long before = ReadSystem(::GetCurrentProcess())[kSystemWindows];
  std::vector<HWND> children;
  for (int i = 0; i < kMany; ++i) children.push_back(make(WS_CHILD, parent));
  EXPECT_EQ(ReadSystem(::GetCurrentProcess())[kSystemWindows], before + kMany);
  for (const HWND child : children) ::DestroyWindow(child);
  EXPECT_EQ(ReadSystem(::GetCurrentProcess())[kSystemWindows], before);
  ::DestroyWindow(parent);
}

TEST(Readings, SeeMemoryThatIsTaken) {
  constexpr std::size_t kBytes = 32u << 20;
  const long long before = ReadSystem(::GetCurrentProcess())[kCommittedKb];
  void* const memory = ::VirtualAlloc(nullptr, kBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  ASSERT_NE(memory, nullptr);
  std::memset(memory, 1, kBytes);
  EXPECT_GE(ReadSystem(::GetCurrentProcess())[kCommittedKb], before + (30 << 10));
  ::VirtualFree(memory, 0, MEM_RELEASE);
  EXPECT_LE(ReadSystem(::GetCurrentProcess())[kCommittedKb], before + (2 << 10));
}

TEST(Readings, TellWhatDiffers) {
  EXPECT_EQ(Differences({{"a", 1}, {"b", 2}}, {{"a", 1}, {"b", 3}}), "b: 2 -> 3\n");
}

#ifdef ZQ_COUNTERS

long long Live(const char* name) {
  for (const debug::Reading& reading : debug::LiveCounts()) {
    if (reading.name == std::string_view(name)) return reading.live;
  }
  return -1;
}

TEST(OwnCounters, FollowAHandleThroughItsOwners) {
  const long long before = Live("brushes");
  UniqueBrush first(::CreateSolidBrush(1));
  EXPECT_EQ(Live("brushes"), before + 1);
  UniqueBrush second(std::move(first));
  EXPECT_EQ(Live("brushes"), before + 1) << "moved";
  first = std::move(second);
  EXPECT_EQ(Live("brushes"), before + 1) << "moved by assignment";
  first.Reset(::CreateSolidBrush(2));
  EXPECT_EQ(Live("brushes"), before + 1) << "another in its place";
  const HBRUSH released = first.Release();
  EXPECT_EQ(Live("brushes"), before) << "nobody's";
  ::DeleteObject(released);
  {
    const UniqueBrush none;
    const UniqueBrush failed(nullptr);
    EXPECT_EQ(Live("brushes"), before) << "nothing is owned";
    const UniqueBrush third(::CreateSolidBrush(3));
    EXPECT_EQ(Live("brushes"), before + 1);
  }
  EXPECT_EQ(Live("brushes"), before);
}

#endif

}  // namespace
}  // namespace zq::test
