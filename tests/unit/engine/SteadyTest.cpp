// One engine, called hundreds of times as a program that stays open calls it, some of the calls cancelled:
// what it holds doesn't grow. What is lost for good, LeakSanitizer tells at the end of each test program;
// this is about what is still known and no longer needed.
#include <gtest/gtest.h>
#include <malloc.h>
#ifdef __SANITIZE_ADDRESS__
#define ZQ_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZQ_ADDRESS_SANITIZER
#endif
#endif
#ifdef ZQ_ADDRESS_SANITIZER
#include <sanitizer/allocator_interface.h>
#endif

#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "unit/engine/EngineRig.h"
#include "unit/engine/Scratch.h"

namespace zq::engine::test {
namespace {

namespace fs = std::filesystem;

std::size_t AllocatedBytes() {
#ifdef ZQ_ADDRESS_SANITIZER
  return __sanitizer_get_current_allocated_bytes();
#else
  return ::mallinfo2().uordblks;
#endif
}

// The one by which they are counted is among them each time.
std::size_t OpenDescriptors() {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

// Cancels at one event of a call, told by its number; 0 for never.
class Cancelling final : public EngineEvents {
 public:
  SecureDelete* engine = nullptr;
  int at = 0;
  int cancels = 0;

  void WipeProgress(std::int32_t, std::int32_t, std::int32_t, const Item&) override { Look(); }
  void ItemEnded(const Item&, const ItemEnd&) override { Look(); }
  void WipeError(std::int32_t, const std::string&) override {}
  void FreeSpaceProgress(const std::string&, std::int32_t, std::int32_t, std::int32_t) override {}

 private:
  void Look() {
    if (at == 0 || --at != 0) return;
    ++cancels;
    engine->CancelOperation();
  }
};

class Calls {
 public:
  Calls() { events_.engine = &engine_; }

  // A call of each kind in turn; every fourth one is cancelled at one of its first events.
  void Make(int number) {
    events_.at = number % 4 == 3 ? std::uniform_int_distribution<int>(1, 6)(random_) : 0;
    const int before = events_.cancels;
    const fs::path folder = scratch_ / "folder";
    fs::create_directories(folder / "inner");
    for (const char* name : {"a.txt", "b.txt", "c.doc", "inner/d.txt"}) {
      WriteBytes(folder / name, Secret(3'000));
    }
    bool wiped = false;
    switch (number % 3) {
      case 0:
        wiped = engine_.WipeFile(Utf8(folder / "a.txt"), 3);
        break;
      case 1:
        wiped = engine_.WipeFolder(Utf8(folder), 3);
        break;
      default:
        wiped = engine_.WipeFolderFiles(Utf8(folder), "*.txt", true, 3);
        break;
    }
    if (events_.cancels == before) {
      EXPECT_TRUE(wiped) << number << ": " << engine_.LastErrorText();
    }
  }

  void MakeAWhole(int calls) {
    engine_.BeginWhole();
    for (int i = 0; i < calls; ++i) Make(next_++);
    engine_.EndWhole();
  }

  int Cancels() const { return events_.cancels; }

 private:
  const Scratch scratch_;
  SteadyClock clock_;
  std::unique_ptr<Device> device_ = MakeSystemDevice();
  SystemSeed seeds_;
  Cancelling events_;
  SecureDelete engine_{*device_, seeds_, clock_, events_,
                       [](const std::string& name, const std::string& mask) {
                         return MatchesMask(name.c_str(), mask.c_str());
                       }};
  std::mt19937 random_{20261122};
  int next_ = 0;
};

// Where a flush takes no time, if there is such a place: Scratch looks elsewhere if not.
class InMemory {
 public:
  InMemory() {
    if (fs::is_directory("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
  }
  ~InMemory() {
    if (before_) {
      ::setenv("TMPDIR", before_->c_str(), 1);
    } else {
      ::unsetenv("TMPDIR");
    }
  }
  InMemory(const InMemory&) = delete;
  InMemory& operator=(const InMemory&) = delete;

 private:
  const std::optional<std::string> before_ =
      std::getenv("TMPDIR") ? std::optional<std::string>(std::getenv("TMPDIR")) : std::nullopt;
};

TEST(Steady, TwoHundredCallsWithCancelsLeaveNoDescriptorAndNoMemory) {
  const InMemory inMemory;
  Calls calls;
  calls.MakeAWhole(24);
  const std::size_t descriptors = OpenDescriptors();
  const std::size_t bytes = AllocatedBytes();
  constexpr int kWholes = 5;
  constexpr int kCalls = 40;
  for (int whole = 0; whole < kWholes; ++whole) {
    calls.MakeAWhole(kCalls);
    EXPECT_EQ(OpenDescriptors(), descriptors) << "after " << (whole + 1) * kCalls << " calls";
  }
  EXPECT_GT(calls.Cancels(), 24) << "of 56 calls";
  // Texts keep the room of the longest one that they have had. A block of the smallest kind for each call
  // would be more than this.
  constexpr std::size_t kRoom = 2048;
  EXPECT_LE(AllocatedBytes(), bytes + kRoom);
}

}  // namespace
}  // namespace zq::engine::test
