// Runs one operation of the engine, for bench.sh: prints what it has taken, and how much memory.
//   engine_bench file|folder|files|each PATH [LEVEL] [--one-at-a-time] [--quiet]
//                                    each: one call for each file beneath, as a job of file rows has it
//   engine_bench floor PATH          the least that overwrites the files beneath one by one: nine writes past
//   the
//                                    cache with a flush each, one reading back, the removal (Linux)
//   engine_bench random [MIB]        the speed of the random data alone
#ifdef _WIN32
#include <windows.h>
// After windows.h, which it needs.
#include <psapi.h>
#else
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/KeyStream.h"
#include "engine/SecureDelete.h"

namespace {

using namespace zq::engine;

class CountedEvents final : public EngineEvents {
 public:
  void WipeProgress(std::int32_t, std::int32_t, std::int32_t, const Item&) override { ++progress; }
  void WipeError(std::int32_t, const std::string& text) override {
    std::fprintf(stderr, "%s\n", text.c_str());
  }
  void ItemEnded(const Item& item, const ItemEnd& end) override {
    if (end.errorCode != 0) WipeError(end.errorCode, end.text);
    wiped += end.outcome == Outcome::Wiped && item.kind == ItemKind::File;
  }
  void FreeSpaceProgress(const std::string&, std::int32_t, std::int32_t, std::int32_t) override {}

  std::size_t progress = 0;
  std::size_t wiped = 0;
};

double Seconds(std::chrono::steady_clock::time_point from) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - from).count();
}

// The most memory that this process has had.
double MostMebibytes() {
#ifdef _WIN32
  PROCESS_MEMORY_COUNTERS counters{};
  if (::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters) == 0) return 0;
  return static_cast<double>(counters.PeakWorkingSetSize) / 1048576;
#else
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
#endif
}

int BenchRandom(std::size_t mebibytes) {
  SystemSeed seeds;
  KeyStream stream;
  if (!stream.Seed(seeds).Ok()) return 1;
  std::vector<std::byte> unit(std::size_t{1} << 20);
  for (std::size_t lanes = 4; lanes <= KeyStream::WidestLanes(); lanes *= 2) {
    const auto started = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < mebibytes; ++i) {
      stream.ReadWith(lanes, stream.Take(BlockCount(unit.size())), unit);
    }
    std::printf("%2zu blocks side by side: %.2f GB/s\n", lanes,
                static_cast<double>(mebibytes) * 1048576e-9 / Seconds(started));
  }
  return 0;
}

std::vector<std::string> FilesBeneath(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) paths.push_back(entry.path().string());
  }
  return paths;
}

#ifndef _WIN32
bool DoTheLeast(const std::vector<std::string>& paths) {
  constexpr int kPasses = 9;
  constexpr std::size_t kBytes = 4096;
  alignas(kBytes) static std::array<char, kBytes> unit;
  for (const std::string& path : paths) {
    const int fd = ::open(path.c_str(), O_RDWR | O_DIRECT | O_CLOEXEC);
    bool done = fd >= 0;
    for (int pass = 0; done && pass < kPasses; ++pass) {
      unit.fill(static_cast<char>(pass));
      done = ::pwrite(fd, unit.data(), kBytes, 0) == static_cast<ssize_t>(kBytes) && ::fdatasync(fd) == 0;
    }
    done = done && ::pread(fd, unit.data(), kBytes, 0) == static_cast<ssize_t>(kBytes);
    if (fd >= 0) ::close(fd);
    if (!done || ::unlink(path.c_str()) != 0) return false;
  }
  return true;
}
#endif

bool WipeEach(SecureDelete& engine, const std::vector<std::string>& paths, std::int32_t level) {
  bool done = true;
  engine.BeginWhole();
  for (const std::string& path : paths) done = engine.WipeFile(path, level) && done;
  return engine.EndWhole() && done;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> words;
  DeviceOptions options;
  bool quiet = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--one-at-a-time") == 0) {
      options.oneTransferAtATime = true;
    } else if (std::strcmp(argv[i], "--quiet") == 0) {
      quiet = true;
    } else {
      words.emplace_back(argv[i]);
    }
  }
  if (!words.empty() && words[0] == "random") {
    return BenchRandom(words.size() > 1 ? std::strtoul(words[1].c_str(), nullptr, 10) : 2048);
  }
#ifndef _WIN32
  if (words.size() == 2 && words[0] == "floor") return DoTheLeast(FilesBeneath(words[1])) ? 0 : 1;
#endif
  if (words.size() < 2) {
    std::fputs("usage: engine_bench file|folder|files|each|floor PATH [LEVEL] [--one-at-a-time] [--quiet]\n",
               stderr);
    return 2;
  }
  const std::int32_t level = words.size() > 2 ? static_cast<std::int32_t>(std::atoi(words[2].c_str())) : 3;

  const std::unique_ptr<Device> device = MakeSystemDevice(options);
  SystemSeed seeds;
  SteadyClock clock;
  CountedEvents events;
  SecureDelete engine(*device, seeds, clock, events,
                      [](const std::string&, const std::string&) { return true; });
  std::vector<std::string> paths;
  if (words[0] == "each") paths = FilesBeneath(words[1]);
  const auto started = std::chrono::steady_clock::now();
  bool done = false;
  if (words[0] == "file") done = engine.WipeFile(words[1], level);
  if (words[0] == "folder") done = engine.WipeFolder(words[1], level);
  if (words[0] == "files") done = engine.WipeFolderFiles(words[1], "*.*", true, level);
  if (words[0] == "each") done = WipeEach(engine, paths, level);
  const double seconds = Seconds(started);
  if (!done) {
    std::fprintf(stderr, "failed: %s\n", engine.LastErrorText().c_str());
    return 1;
  }
  if (!quiet) {
    std::printf("%.3f s, %.1f MiB, %zu items, %zu progress events\n", seconds, MostMebibytes(), events.wiped,
                events.progress);
  }
  return 0;
}
