// How Linux tells what a path leads to, and what was put in its place or over it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <memory>
#include <string>

#include "engine/calls_posix.h"
#include "engine/entry_posix.h"
#include "engine/file_posix.h"
#include "unit/engine/RealEngine.h"
#include "unit/engine/Scratch.h"

namespace zq::engine::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// One part of the tree, to be seen in another place as well.
class BindMount {
 public:
  BindMount(const fs::path& what, const fs::path& where) : where_(where) {
    mounted_ = ::mount(what.c_str(), where.c_str(), nullptr, MS_BIND, nullptr) == 0;
  }
  BindMount(const BindMount&) = delete;
  BindMount& operator=(const BindMount&) = delete;
  ~BindMount() {
    if (mounted_) ::umount2(where_.c_str(), MNT_DETACH);
  }
  bool IsMounted() const { return mounted_; }

 private:
  fs::path where_;
  bool mounted_ = false;
};

EntryId IdOf(const fs::path& path) {
  EntryId id;
  const Status status = MakeSystemDevice()->Identify(Utf8(path), id);
  EXPECT_TRUE(status.Ok()) << status.text;
  return id;
}

// Wipes a file by the ids that it and its folder had.
bool WipeNamed(RealEngine& real, const fs::path& path, const EntryId& meantFolder, const EntryId& meant) {
  const std::string name = Utf8(path.filename());
  const std::string whole = Utf8(path);
  const SecureDelete::NamedFile files[] = {{name, whole, meant}};
  return real.engine.WipeFiles(Utf8(path.parent_path()), files, 3, meantFolder);
}

TEST(PosixMeant, IsTheSameForAllNamesOfAFileAndForNoOther) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "text");
  WriteBytes(scratch / "b", "text");
  fs::create_hard_link(scratch / "a", scratch / "c");
  EXPECT_EQ(IdOf(scratch / "a"), IdOf(scratch / "c"));
  EXPECT_NE(IdOf(scratch / "a"), IdOf(scratch / "b"));
  EXPECT_NE(IdOf(scratch / "a"), IdOf(scratch.Path()));
}

TEST(PosixMeant, OfALinkIsTheLinkItself) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "text");
  fs::create_symlink("a", scratch / "link");
  EXPECT_NE(IdOf(scratch / "a"), IdOf(scratch / "link"));
}

// The folder of a call stays open for the next one, which may name another folder by then, also by a link on
// the way to it.
TEST(PosixMeant, OfAPathIsWhatItLeadsToAtEachCallOfAWhole) {
  const Scratch scratch;
  RealEngine real;
  for (const char* folder : {"first", "second"}) {
    fs::create_directory(scratch / folder);
    WriteBytes(scratch / folder / "a", "text");
    WriteBytes(scratch / folder / "b", "text");
  }
  fs::create_directory_symlink("first", scratch / "link");
  real.engine.BeginWhole();
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "link" / "a"), 3)) << real.engine.LastErrorText();
  fs::remove(scratch / "link");
  fs::create_directory_symlink("second", scratch / "link");
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "link" / "b"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(real.engine.EndWhole()) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "first" / "a"));
  EXPECT_TRUE(fs::exists(scratch / "first" / "b"));
  EXPECT_TRUE(fs::exists(scratch / "second" / "a"));
  EXPECT_FALSE(fs::exists(scratch / "second" / "b"));
}

TEST(PosixMeant, OfWhatIsNotThereIsAFailure) {
  const Scratch scratch;
  EntryId id;
  EXPECT_EQ(MakeSystemDevice()->Identify(Utf8(scratch / "none"), id).trouble, Trouble::NotFound);
}

// The inode's number can be given to the next file at once.
TEST(PosixMeant, IsNotAFileThatWasMadeInItsPlace) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "what was agreed to");
  const EntryId folder = IdOf(scratch.Path());
  const EntryId meant = IdOf(scratch / "a");
  fs::remove(scratch / "a");
  WriteBytes(scratch / "a", "another");
  RealEngine real;
  EXPECT_FALSE(WipeNamed(real, scratch / "a", folder, meant));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("something else is there now"));
  EXPECT_EQ(ReadBytes(scratch / "a"), "another");
}

// As long as what was agreed to is held its number is given to no other file.
TEST(PosixMeant, IsHeld) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "what was agreed to");
  const EntryId meant = IdOf(scratch / "a");
  EXPECT_NE(meant.hold, nullptr);
  fs::remove(scratch / "a");
  WriteBytes(scratch / "a", "another");
  EXPECT_NE(IdOf(scratch / "a").file.file[0], meant.file.file[0]);
}

timespec CoarseTime() {
  timespec time{};
  ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
  return time;
}

// Nothing holds the number, and ext4 gives it to the next file: the time of making differs.
TEST(PosixMeant, IsNotAFileOfTheSameNumber) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "what was agreed to");
  EntryId meant = IdOf(scratch / "a");
  meant.hold.reset();
  fs::remove(scratch / "a");
  const timespec then = CoarseTime();
  timespec now = then;
  while (now.tv_sec == then.tv_sec && now.tv_nsec == then.tv_nsec) now = CoarseTime();
  WriteBytes(scratch / "a", "another");
  EXPECT_NE(IdOf(scratch / "a"), meant);
}

// These two have the same number, and tell no time of making.
TEST(PosixMeant, IsNotTheEntryOfThatNumberInAnotherFileSystem) {
  EXPECT_NE(IdOf("/proc").file, IdOf("/sys").file);
}

TEST(PosixMeant, IsToldWhenTheProcessMayOpenNothingMore) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "text");
  const EntryId meant = IdOf(scratch / "a");
  const std::unique_ptr<Device> device = MakeSystemDevice();
  const std::string path = Utf8(scratch / "a");
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{0, limit.rlim_max};
  EntryId id;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const Status status = device->Identify(path, id);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_TRUE(status.Ok()) << status.text;
  EXPECT_EQ(id, meant);
  EXPECT_EQ(id.hold, nullptr);
}

EntryFacts FactsOf(const fs::path& path) {
  EntryFacts facts;
  EXPECT_TRUE(LookAt(AT_FDCWD, path.string(), facts).Ok());
  return facts;
}

TEST(PosixMeant, IsTheSameOnlyInTheSameMount) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "text");
  WriteBytes(scratch / "b", "text");
  const EntryFacts a = FactsOf(scratch / "a");
  EXPECT_TRUE(a.IsSameAs(FactsOf(scratch / "a")));
  EXPECT_FALSE(a.IsSameAs(FactsOf(scratch / "b")));
  EntryFacts elsewhere = a;
  ++elsewhere.mount;
  EXPECT_FALSE(a.IsSameAs(elsewhere));
}

// The right to write to a read-only file is given to no other one that has come under its name.
TEST(PosixMeant, AloneIsMadeWritable) {
  const Scratch scratch;
  const auto modeOf = [&] { return FactsOf(scratch / "a").mode & 0777; };
  WriteBytes(scratch / "a", "text");
  WriteBytes(scratch / "b", "text");
  ASSERT_EQ(::chmod((scratch / "a").c_str(), 0444), 0);
  ASSERT_EQ(::chmod((scratch / "b").c_str(), 0444), 0);
  const UniqueFd folder(::open(scratch.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  {
    GivenRight right;
    EXPECT_FALSE(right.Give(folder.Get(), "a", FactsOf(scratch / "b")));
    EXPECT_EQ(modeOf(), 0444u);
    EXPECT_TRUE(right.Give(folder.Get(), "a", FactsOf(scratch / "a")));
    EXPECT_EQ(modeOf(), 0644u);
  }
  EXPECT_EQ(modeOf(), 0444u) << "it is put back";
}

// What a folder's entry is looked at once more when it is renamed or removed.
TEST(PosixMeant, EntryOfAnotherKindStays) {
  const Scratch scratch;
  WriteBytes(scratch / "a", "text");
  std::unique_ptr<Folder> folder;
  ASSERT_TRUE(MakeSystemDevice()->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  EXPECT_FALSE(folder->Rename({"a", EntryKind::Link}, "b").Ok());
  EXPECT_FALSE(folder->Remove({"a", EntryKind::Link}).Ok());
  EXPECT_EQ(ReadBytes(scratch / "a"), "text");
}

TEST(PosixMeant, IsFoundAgainWhereItWasLeft) {
  const Scratch scratch;
  fs::create_directory(scratch / "top");
  WriteBytes(scratch / "top/a", "text");
  WriteBytes(scratch / "b", "text");
  const EntryId top = IdOf(scratch / "top");
  const EntryId b = IdOf(scratch / "b");
  const EntryId folder = IdOf(scratch.Path());
  RealEngine real;
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3, &top)) << real.engine.LastErrorText();
  EXPECT_TRUE(WipeNamed(real, scratch / "b", folder, b)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

// As in an attack: while the question stands, a folder on the way becomes a link to another one.
TEST(PosixMeant, IsNotWhatAFolderThatBecameALinkLeadsTo) {
  const Scratch scratch;
  fs::create_directories(scratch / "way/top");
  fs::create_directories(scratch / "other/top");
  WriteBytes(scratch / "way/top/file", "agreed to");
  WriteBytes(scratch / "other/top/file", "precious");
  const EntryId file = IdOf(scratch / "way/top/file");
  const EntryId folder = IdOf(scratch / "way/top");
  fs::rename(scratch / "way", scratch / "moved");
  fs::create_symlink("other", scratch / "way");
  RealEngine real;
  EXPECT_FALSE(WipeNamed(real, scratch / "way/top/file", folder, file));
  const EntryId folderThere = IdOf(scratch / "way/top");
  EXPECT_FALSE(WipeNamed(real, scratch / "way/top/file", folderThere, file)) << "nor is the file there";
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "way/top"), 3, &folder));
  EXPECT_FALSE(real.engine.WipeFolderFiles(Utf8(scratch / "way/top"), "*.*", true, 3, &folder));
  EXPECT_EQ(ReadBytes(scratch / "other/top/file"), "precious");
}

TEST(PosixMounts, OfTheSameFileSystemInsideATreeAreKept) {
  constexpr int kDeeperThanIsKeptOpen = 100;
  const Scratch scratch;
  fs::create_directories(scratch / "home");
  fs::create_directories(scratch / "top/home");
  WriteBytes(scratch / "home/file", "precious");
  WriteBytes(scratch / "top/file", "secret");
  // In whatever order they are listed, one of these two comes after the deep one, for which the walk closes
  // the folder that holds them.
  fs::create_directories(scratch / "top/one/before");
  fs::path deep = scratch / "top/one/deep";
  for (int i = 0; i < kDeeperThanIsKeptOpen; ++i) deep /= "d";
  fs::create_directories(deep);
  fs::create_directories(scratch / "top/one/after");
  const BindMount mount(scratch / "home", scratch / "top/home");
  const BindMount before(scratch / "home", scratch / "top/one/before");
  const BindMount after(scratch / "home", scratch / "top/one/after");
  if (!mount.IsMounted()) GTEST_SKIP() << "no right to mount";
  ASSERT_TRUE(before.IsMounted() && after.IsMounted());
  RealEngine real;
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "top"), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("a folder from elsewhere is mounted there"));
  EXPECT_EQ(ReadBytes(scratch / "home/file"), "precious");
  EXPECT_FALSE(fs::exists(scratch / "top/file"));
  EXPECT_FALSE(fs::exists(scratch / "top/one/deep"));
}

TEST(PosixMounts, OfAFileOverAnotherAreKept) {
  const Scratch scratch;
  fs::create_directories(scratch / "top");
  WriteBytes(scratch / "precious", "precious");
  WriteBytes(scratch / "top/file", "secret");
  {
    const BindMount mount(scratch / "precious", scratch / "top/file");
    if (!mount.IsMounted()) GTEST_SKIP() << "no right to mount";
    RealEngine real;
    EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "top"), 3));
    EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("another file is mounted over it"));
    EXPECT_FALSE(real.engine.WipeFile(Utf8(scratch / "top/file"), 3));
    EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("another file is mounted over it"));
  }
  EXPECT_EQ(ReadBytes(scratch / "precious"), "precious");
  EXPECT_EQ(ReadBytes(scratch / "top/file"), "secret");
}

}  // namespace
}  // namespace zq::engine::test
