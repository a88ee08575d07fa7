// What only Linux has: links of both kinds, pipes, mounts; and the free-space wipe on a small mount.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "unit/engine/RealEngine.h"
#include "unit/engine/Scratch.h"

namespace zq::engine::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A file system in memory, of a size that may be filled.
class SmallMount {
 public:
  explicit SmallMount(fs::path path) : path_(std::move(path)) {
    fs::create_directory(path_);
    mounted_ = ::mount("zq-test", path_.c_str(), "tmpfs", 0, "size=8m") == 0;
    if (!mounted_) whyNot_ = std::strerror(errno);
  }
  SmallMount(const SmallMount&) = delete;
  SmallMount& operator=(const SmallMount&) = delete;
  ~SmallMount() {
    if (mounted_) ::umount2(path_.c_str(), MNT_DETACH);
  }

  bool IsMounted() const { return mounted_; }
  const std::string& WhyNot() const { return whyNot_; }
  const fs::path& Path() const { return path_; }

  // The guard of every test that fills: nothing that could be this machine's disc.
  bool MayBeFilled() const {
    struct statvfs facts {};
    return mounted_ && ::statvfs(path_.c_str(), &facts) == 0 &&
           static_cast<std::uint64_t>(facts.f_blocks) * facts.f_frsize <= std::uint64_t{64} << 20;
  }

 private:
  fs::path path_;
  bool mounted_ = false;
  std::string whyNot_;
};

TEST(PosixDevice, RefusesALinkNamedByItself) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "target", "keep");
  fs::create_directory(scratch / "folder");
  WriteBytes(scratch / "folder/inside", "keep");
  fs::create_symlink(scratch / "target", scratch / "link");
  fs::create_directory_symlink(scratch / "folder", scratch / "folderlink");
  EXPECT_FALSE(real.engine.WipeFile(Utf8(scratch / "link"), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it is a link"));
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "folderlink"), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it is a link"));
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "folderlink") + "/", 3));
  EXPECT_FALSE(real.engine.WipeFolderFiles(Utf8(scratch / "folderlink"), "*.*", true, 3));
  EXPECT_TRUE(fs::is_symlink(scratch / "link"));
  EXPECT_TRUE(fs::is_symlink(scratch / "folderlink"));
  EXPECT_EQ(ReadBytes(scratch / "target"), "keep");
  EXPECT_EQ(ReadBytes(scratch / "folder/inside"), "keep");
}

TEST(PosixDevice, RemovesLinksInsideAFolderAndLeavesTheirTargets) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "outside");
  WriteBytes(scratch / "outside/file", "keep");
  fs::create_directories(scratch / "top/sub");
  fs::create_symlink(scratch / "outside/file", scratch / "top/link");
  fs::create_directory_symlink(scratch / "outside", scratch / "top/sub/folderlink");
  fs::create_symlink("nowhere", scratch / "top/dangling");
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "top"));
  EXPECT_EQ(ReadBytes(scratch / "outside/file"), "keep");
}

TEST(PosixDevice, DestroysTheContentUnderAllItsHardLinks) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "one", Secret(5'000));
  fs::create_hard_link(scratch / "one", scratch / "two");
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "one"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "one"));
  EXPECT_EQ(fs::file_size(scratch / "two"), 0u);
}

TEST(PosixDevice, RefusesPipesAndDevicesWithoutWaiting) {
  Scratch scratch;
  RealEngine real;
  const fs::path pipe = scratch / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_FALSE(real.engine.WipeFile(Utf8(pipe), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it is not a regular file"));
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch.Path()), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("pipe: it is not a regular file"));
  EXPECT_TRUE(fs::is_fifo(pipe));
  EXPECT_FALSE(real.engine.WipeFile("/dev/null", 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it is not a regular file"));
}

TEST(PosixDevice, RefusesTheRootOfTheSystem) {
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::string folder;
  std::string name;
  for (const std::string path : {"/", "//", "///"}) EXPECT_FALSE(device->Split(path, folder, name).Ok());
}

TEST(PosixDevice, SetsOneMomentForAllDates) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  WriteBytes(scratch / "x", "x");
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Direct, file).Ok());
  ASSERT_TRUE(file->SetDates().Ok());
  struct stat facts {};
  ASSERT_EQ(::stat((scratch / "x").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mtim.tv_sec, 315'576'000);
  EXPECT_EQ(facts.st_atim.tv_sec, 315'576'000);
}

TEST(PosixDevice, RenamesOverNothing) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  WriteBytes(scratch / "x", "x");
  WriteBytes(scratch / "taken", "keep");
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Direct, file).Ok());
  EXPECT_EQ(file->Rename("taken").trouble, Trouble::Exists);
  EXPECT_FALSE(file->Rename("../out").Ok());
  EXPECT_EQ(ReadBytes(scratch / "taken"), "keep");
  EXPECT_TRUE(file->Rename("free").Ok());
  WriteBytes(scratch / "y", "other");
  fs::rename(scratch / "y", scratch / "free");
  EXPECT_EQ(file->Remove().trouble, Trouble::Refused) << "another file has come under the name";
  EXPECT_EQ(ReadBytes(scratch / "free"), "other");
}

// The flags of this process's descriptors for the file, as the system tells them.
std::vector<int> FlagsOfDescriptorsFor(const fs::path& path) {
  std::vector<int> all;
  std::error_code ignored;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
    if (fs::read_symlink(entry.path(), ignored) != path) continue;
    std::ifstream info("/proc/self/fdinfo/" + entry.path().filename().string());
    for (std::string word; info >> word;) {
      if (word == "flags:" && info >> word) all.push_back(std::stoi(word, nullptr, 8));
    }
  }
  return all;
}

TEST(PosixDevice, ReadsAndWritesPastTheCacheWhereItCan) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = fs::canonical(scratch.Path()) / "x";
  WriteBytes(path, Secret(100'000));
  const int direct = ::open(path.c_str(), O_RDWR | O_DIRECT | O_CLOEXEC);
  if (direct < 0)
    GTEST_SKIP() << "this file system has no transfers past the cache: " << std::strerror(errno);
  ::close(direct);
  std::size_t looks = 0;
  real.events.onEvent = [&](const Event& event) {
    if (event.kind != "progress" || event.done == event.total) return;
    ++looks;
    const std::vector<int> flags = FlagsOfDescriptorsFor(path);
    ASSERT_EQ(flags.size(), 1u);
    EXPECT_NE(flags[0] & O_DIRECT, 0);
  };
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
  EXPECT_GT(looks, 0u);
}

TEST(PosixDevice, WipesASparseFileWithItsHoles) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "x", Secret(100));
  fs::resize_file(scratch / "x", 3'000'000);
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "x"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

TEST(PosixDevice, StaysOutOfAFileSystemThatIsMountedInsideAFolder) {
  Scratch scratch;
  RealEngine real;
  fs::create_directory(scratch / "top");
  SmallMount mount(scratch / "top/mount");
  if (!mount.IsMounted()) GTEST_SKIP() << "can't mount here: " << mount.WhyNot();
  WriteBytes(mount.Path() / "file", "keep");
  EXPECT_FALSE(real.engine.WipeFolder(Utf8(scratch / "top"), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("another file system is mounted there"));
  EXPECT_EQ(ReadBytes(mount.Path() / "file"), "keep");
}

TEST(PosixFreeSpace, IsOverwrittenOnASmallMountAndGivenBack) {
  Scratch scratch;
  RealEngine real;
  SmallMount mount(scratch / "mount");
  if (!mount.IsMounted()) GTEST_SKIP() << "can't mount here: " << mount.WhyNot();
  ASSERT_TRUE(mount.MayBeFilled());
  WriteBytes(mount.Path() / "file", "keep");
  struct statvfs before {};
  ASSERT_EQ(::statvfs(mount.Path().c_str(), &before), 0);

  EXPECT_TRUE(real.engine.WipeFreeSpace(Utf8(mount.Path()), 3)) << real.engine.LastErrorText();
  struct statvfs after {};
  ASSERT_EQ(::statvfs(mount.Path().c_str(), &after), 0);
  EXPECT_EQ(after.f_bfree, before.f_bfree);
  EXPECT_EQ(ReadBytes(mount.Path() / "file"), "keep");
  EXPECT_EQ(std::distance(fs::directory_iterator(mount.Path()), {}), 1);
  EXPECT_THAT(real.events.Of("error"), IsEmpty());
  EXPECT_EQ(real.events.Of("space").back().percent, 100);
  EXPECT_EQ(real.events.Of("space").back().total, static_cast<int>(before.f_bfree * before.f_frsize / 1024));
}

TEST(PosixFreeSpace, IsGivenBackWhenCancelled) {
  Scratch scratch;
  RealEngine real;
  SmallMount mount(scratch / "mount");
  if (!mount.IsMounted()) GTEST_SKIP() << "can't mount here: " << mount.WhyNot();
  ASSERT_TRUE(mount.MayBeFilled());
  real.events.onEvent = [&](const Event&) { real.engine.CancelOperation(); };
  EXPECT_FALSE(real.engine.WipeFreeSpace(Utf8(mount.Path()), 3));
  EXPECT_TRUE(fs::is_empty(mount.Path()));
  EXPECT_THAT(real.events.Of("error"), IsEmpty());
}

TEST(PosixFreeSpace, OfAFolderThatIsNotThereIsAnError) {
  Scratch scratch;
  RealEngine real;
  EXPECT_FALSE(real.engine.WipeFreeSpace(Utf8(scratch / "none"), 3));
  ASSERT_EQ(real.events.Of("error").size(), 1u);
  EXPECT_EQ(real.events.Of("error")[0].percent, ENOENT);
}

}  // namespace
}  // namespace zq::engine::test
