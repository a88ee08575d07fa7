#include "debug/LiveCount.h"

#ifdef ZQ_COUNTERS

#include <array>
#include <atomic>
#include <cstdio>

namespace zq::debug {
namespace {

constexpr std::size_t kKinds = static_cast<std::size_t>(Kind::Count);

constexpr std::array<const char*, kKinds> kNames{
    "files",
    "searches",
    "kernel handles",
    "registry keys",
    "icons",
    "menus",
    "accelerator tables",
    "device contexts",
    "window contexts",
    "bitmaps",
    "brushes",
    "fonts",
    "image lists",
    "themes",
    "global memory",
    "transfer buffers",
    "held references",
    "references to our objects",
    "our objects",
    "forms",
    "controls",
    "heap blocks",
    "heap bytes",
};

// Needs no constructor: the heap is counted from before the first one runs.
constinit std::array<std::atomic<std::ptrdiff_t>, kKinds> live{};

}  // namespace

void Count(Kind kind, std::ptrdiff_t change) noexcept {
  live[static_cast<std::size_t>(kind)].fetch_add(change, std::memory_order_relaxed);
}

std::vector<Reading> LiveCounts() {
  std::array<std::ptrdiff_t, kKinds> now{};
  for (std::size_t i = 0; i < kKinds; ++i) now[i] = live[i].load(std::memory_order_relaxed);
  std::vector<Reading> readings;
  for (std::size_t i = 0; i < kKinds; ++i) readings.push_back({kNames[i], now[i]});
  return readings;
}

std::string InLines(const std::vector<Reading>& readings) {
  std::string lines;
  for (const Reading& reading : readings) {
    char line[80];
    std::snprintf(line, sizeof line, "%s: %15lld\n", reading.name, static_cast<long long>(reading.live));
    lines += line;
  }
  return lines;
}

}  // namespace zq::debug

#endif
