// How much memory a wipe takes, counted at every allocation of this program.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "engine/SecureDelete.h"

namespace {

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> mostBytes{0};

// The size stands in front of what is handed out, in a room that keeps the alignment.
void* Allocate(std::size_t sizeBytes, std::size_t alignment) {
  const std::size_t room = std::max<std::size_t>(alignment, alignof(std::max_align_t));
  const std::size_t whole = (room + sizeBytes + room - 1) / room * room;
  auto* const memory = static_cast<std::byte*>(std::aligned_alloc(room, whole));
  if (memory == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(memory + room - sizeof(std::size_t)) = sizeBytes;
  const std::size_t live = liveBytes += sizeBytes;
  mostBytes = std::max(mostBytes.load(), live);
  return memory + room;
}

void Free(void* memory, std::size_t alignment) {
  if (memory == nullptr) return;
  const std::size_t room = std::max<std::size_t>(alignment, alignof(std::max_align_t));
  auto* const whole = static_cast<std::byte*>(memory) - room;
  liveBytes -= *reinterpret_cast<std::size_t*>(whole + room - sizeof(std::size_t));
  std::free(whole);
}

}  // namespace

void* operator new(std::size_t size) {
  return Allocate(size, 1);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
  Free(memory, 1);
}
void operator delete(void* memory, std::size_t) noexcept {
  Free(memory, 1);
}
void operator delete(void* memory, std::align_val_t alignment) noexcept {
  Free(memory, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory, std::size_t, std::align_val_t alignment) noexcept {
  Free(memory, static_cast<std::size_t>(alignment));
}

namespace zq::engine::test {
namespace {

// A tree that is nowhere: each folder is made up when it is listed. Its files are empty.
class EmptyFile final : public File {
 public:
  Status Info(FileInfo& info) override {
    info = {};
    return {};
  }
  std::size_t Alignment() const override { return 1; }
  Status Write(std::uint64_t, std::span<const std::byte> data, std::size_t& written) override {
    written = data.size();
    return {};
  }
  Status Flush() override { return {}; }
  Status DropCache() override { return {}; }
  Status Read(std::uint64_t, std::span<std::byte>, std::size_t& got) override {
    got = 0;
    return {};
  }
  Status ListStreams(std::vector<std::string>& names) override {
    names.clear();
    return {};
  }
  Status OpenStream(const std::string&, Access, std::unique_ptr<File>&) override {
    return Status::Refusal("there is none");
  }
  Status SetLength(std::uint64_t) override { return {}; }
  Status SetDates() override { return {}; }
  Status Rename(const std::string&) override { return {}; }
  Status FlushEntry() override { return {}; }
  Status Remove() override { return {}; }
};

struct Shape {
  int levels;
  int folders;  // in each folder that is no lowest one
  int files;    // in each folder
};

class MadeUpFolder final : public Folder {
 public:
  MadeUpFolder(const Shape& shape, int level) : shape_(shape), level_(level) {}

  Status List(std::vector<Entry>& entries) override {
    entries.clear();
    for (int i = 0; i < shape_.files; ++i) {
      entries.push_back({"a file name of the usual length " + std::to_string(i), EntryKind::File});
    }
    for (int i = 0; level_ + 1 < shape_.levels && i < shape_.folders; ++i) {
      entries.push_back({"a folder's name of the usual length " + std::to_string(i), EntryKind::Folder});
    }
    return {};
  }
  Status OpenFile(const std::string&, Access, std::unique_ptr<File>& file) override {
    file = std::make_unique<EmptyFile>();
    return {};
  }
  Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    return OpenFile(name, access, file);
  }
  Status OpenFolder(const std::string&, std::unique_ptr<Folder>& folder) override {
    folder = std::make_unique<MadeUpFolder>(shape_, level_ + 1);
    return {};
  }
  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    return OpenFolder(name, folder);
  }
  Status ListStreams(std::vector<std::string>& names) override {
    names.clear();
    return {};
  }
  Status OpenStream(const std::string&, Access, std::unique_ptr<File>&) override {
    return Status::Refusal("there is none");
  }
  Status Rename(const Entry&, const std::string&) override { return {}; }
  Status Remove(const Entry&) override { return {}; }
  Status Flush() override { return {}; }
  Status Space(SpaceInfo& space) override {
    space = {};
    return {};
  }

 private:
  const Shape& shape_;
  int level_;
};

class MadeUpDevice final : public Device {
 public:
  explicit MadeUpDevice(const Shape& shape) : shape_(shape) {}

  Status OpenFolder(const std::string&, std::unique_ptr<Folder>& folder) override {
    folder = std::make_unique<MadeUpFolder>(shape_, -1);
    return {};
  }
  Status Split(const std::string&, std::string& folderPath, std::string& name) const override {
    folderPath = "/";
    name = "top";
    return {};
  }
  std::string Join(const std::string& folderPath, const std::string& name) const override {
    return folderPath + '/' + name;
  }

 private:
  const Shape shape_;
};

struct CountedEvents final : EngineEvents {
  void WipeProgress(std::int32_t, std::int32_t, std::int32_t, const Item&) override {}
  void WipeError(std::int32_t, const std::string&) override {}
  void ItemEnded(const Item& item, const ItemEnd&) override { wiped += item.kind == ItemKind::File; }
  void FreeSpaceProgress(const std::string&, std::int32_t, std::int32_t, std::int32_t) override {}
  int wiped = 0;
};

struct Taken {
  int files = 0;
  std::size_t bytes = 0;  // at the most
};

Taken Wipe(const Shape& shape) {
  const std::size_t before = liveBytes;
  mostBytes = before;
  Taken taken;
  {
    MadeUpDevice device(shape);
    SystemSeed seeds;
    SteadyClock clock;
    CountedEvents events;
    SecureDelete engine(device, seeds, clock, events, nullptr);
    EXPECT_TRUE(engine.WipeFolder("/top", 3)) << engine.LastErrorText();
    taken.files = events.wiped;
  }
  taken.bytes = mostBytes - before;
  EXPECT_EQ(liveBytes, before);
  return taken;
}

TEST(Memory, StaysFlatHoweverManyFilesTheTreeHas) {
  const Taken small = Wipe({2, 20, 20});
  const Taken large = Wipe({3, 50, 20});
  std::printf("%d files: %zu KiB; %d files: %zu KiB\n", small.files, small.bytes / 1024, large.files,
              large.bytes / 1024);
  EXPECT_EQ(small.files, (1 + 20) * 20);
  EXPECT_EQ(large.files, (1 + 50 + 50 * 50) * 20);
  EXPECT_LT(large.bytes, std::size_t{64} << 20);
  EXPECT_LT(large.bytes, small.bytes + (std::size_t{1} << 20));
}

// What is listed of one folder is in memory at once.
TEST(Memory, TakesTheNamesOfOneFolder) {
  const Taken taken = Wipe({1, 0, 100'000});
  std::printf("%d files in one folder: %zu KiB\n", taken.files, taken.bytes / 1024);
  EXPECT_EQ(taken.files, 100'000);
  EXPECT_LT(taken.bytes, std::size_t{64} << 20);
}

}  // namespace
}  // namespace zq::engine::test
