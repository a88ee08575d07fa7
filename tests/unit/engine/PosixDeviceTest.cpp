// What only Linux has: links of both kinds, pipes, mounts; and the free-space wipe on a small mount.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

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

// A real file system in a file, on a loop device that goes with the mount.
class ImageMount {
 public:
  ImageMount(const Scratch& scratch, const std::string& make, const std::string& options)
      : image_(scratch / "image"), path_(scratch / "mnt") {
    fs::create_directory(path_);
    std::ofstream(image_).close();
    fs::resize_file(image_, std::uintmax_t{64} << 20);
    const std::string quiet = " >/dev/null 2>&1";
    if (::geteuid() != 0) {
      whyNot_ = "that needs root";
    } else if (std::system((make + " '" + image_.string() + "'" + quiet).c_str()) != 0) {
      whyNot_ = "'" + make + "' makes no file system";
    } else if (std::system(("mount -o loop," + options + " '" + image_.string() + "' '" + path_.string() +
                            "'" + quiet)
                               .c_str()) != 0) {
      whyNot_ = "there is no loop device, or the kernel has no such file system";
    } else {
      mounted_ = true;
      fs::permissions(path_, fs::perms::all);
    }
  }
  ImageMount(const ImageMount&) = delete;
  ImageMount& operator=(const ImageMount&) = delete;
  ~ImageMount() {
    if (mounted_ && ::umount2(path_.c_str(), 0) != 0) ::umount2(path_.c_str(), MNT_DETACH);
  }

  bool IsMounted() const { return mounted_; }
  const std::string& WhyNot() const { return whyNot_; }
  fs::path operator/(const std::string& name) const { return path_ / name; }

  // Writes what waits in the system's cache, as every system does after a while.
  void Sync() const {
    const int fd = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    EXPECT_EQ(::syncfs(fd), 0);
    ::close(fd);
  }
  bool Holds(const std::string& text) const {
    std::string bytes(fs::file_size(image_), '\0');
    std::ifstream file(image_, std::ios::binary);
    EXPECT_TRUE(file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())));
    return ::memmem(bytes.data(), bytes.size(), text.data(), text.size()) != nullptr;
  }

 private:
  fs::path image_;
  fs::path path_;
  bool mounted_ = false;
  std::string whyNot_;
};

// As a user without privileges, for as long as this lives.
class WithoutPrivileges {
 public:
  WithoutPrivileges() : done_(::seteuid(65534) == 0) {}
  WithoutPrivileges(const WithoutPrivileges&) = delete;
  WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
  ~WithoutPrivileges() {
    if (done_ && ::seteuid(0) != 0) std::abort();
  }

 private:
  const bool done_;
};

constexpr char kName[] = "marked-name-of-a-letter";

TEST(PosixJournal, IsClearedOfNamesByAnAdministrator) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.ext4 -q -F", "data=ordered");
  if (!mount.IsMounted()) GTEST_SKIP() << "no ext4 to test on: " << mount.WhyNot();
  RealEngine real;
  WriteBytes(mount / kName, Secret(5'000));
  mount.Sync();
  ASSERT_TRUE(mount.Holds(kName));
  ASSERT_TRUE(real.engine.WipeFile(Utf8(mount / kName), 3)) << real.engine.LastErrorText();
  EXPECT_EQ(real.engine.Note(), "");
  mount.Sync();
  EXPECT_FALSE(mount.Holds(kName));
  EXPECT_FALSE(mount.Holds(Secret(100)));
}

TEST(PosixJournal, MayKeepNamesWithoutPrivilegesWhichIsTold) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.ext4 -q -F", "data=ordered");
  if (!mount.IsMounted()) GTEST_SKIP() << "no ext4 to test on: " << mount.WhyNot();
  fs::permissions(scratch.Path(), fs::perms::all);
  RealEngine real;
  const WithoutPrivileges user;
  WriteBytes(mount / kName, Secret(5'000));
  ASSERT_TRUE(real.engine.WipeFile(Utf8(mount / kName), 3)) << real.engine.LastErrorText();
  EXPECT_THAT(real.engine.Note(), HasSubstr("only an administrator may clear"));
  std::vector<std::string> left;
  for (const auto& entry : fs::directory_iterator(mount / ""))
    left.push_back(entry.path().filename().string());
  EXPECT_THAT(left, ::testing::ElementsAre("lost+found")) << "nothing that was made for it stays";
}

TEST(PosixJournal, OfDataIsWrittenHomeAndCleared) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.ext4 -q -F", "data=journal");
  if (!mount.IsMounted()) GTEST_SKIP() << "no ext4 to test on: " << mount.WhyNot();
  RealEngine real;
  WriteBytes(mount / kName, Secret(50'000));
  mount.Sync();
  ASSERT_TRUE(mount.Holds(Secret(100)));
  ASSERT_TRUE(real.engine.WipeFile(Utf8(mount / kName), 3)) << real.engine.LastErrorText();
  EXPECT_EQ(real.engine.Note(), "");
  EXPECT_FALSE(mount.Holds(Secret(100)));
  EXPECT_FALSE(mount.Holds(kName));
}

TEST(PosixJournal, OfDataMakesTheWipeARefusalWithoutPrivileges) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.ext4 -q -F", "data=journal");
  if (!mount.IsMounted()) GTEST_SKIP() << "no ext4 to test on: " << mount.WhyNot();
  fs::permissions(scratch.Path(), fs::perms::all);
  RealEngine real;
  const WithoutPrivileges user;
  WriteBytes(mount / kName, Secret(5'000));
  EXPECT_FALSE(real.engine.WipeFile(Utf8(mount / kName), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("only an administrator may clear"));
  EXPECT_EQ(ReadBytes(mount / kName), Secret(5'000));
}

TEST(PosixXfs, IsClearedOfNamesAndThawedAgain) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.xfs -q -f --unsupported", "noatime");
  if (!mount.IsMounted()) GTEST_SKIP() << "no xfs to test on: " << mount.WhyNot();
  RealEngine real;
  for (const char* number : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
    WriteBytes(mount / (kName + std::string(number)), Secret(5'000));
  }
  WriteBytes(mount / "neighbour", "keep");
  mount.Sync();
  ASSERT_TRUE(mount.Holds(kName));
  ASSERT_TRUE(real.engine.WipeFolderFiles(Utf8(mount / ""), std::string(kName) + "*", false, 3))
      << real.engine.LastErrorText();
  // Would wait for good on a frozen file system.
  WriteBytes(mount / "neighbour", "changed");
  mount.Sync();
  if (!real.engine.Note().empty()) GTEST_SKIP() << "this machine was too slow for it: " << real.engine.Note();
  EXPECT_FALSE(mount.Holds(kName));
  EXPECT_EQ(std::distance(fs::directory_iterator(mount / ""), fs::directory_iterator()), 1);
}

TEST(PosixXfs, KeepsNamesForAWhileWithoutPrivilegesWhichIsTold) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.xfs -q -f --unsupported", "noatime");
  if (!mount.IsMounted()) GTEST_SKIP() << "no xfs to test on: " << mount.WhyNot();
  fs::permissions(scratch.Path(), fs::perms::all);
  RealEngine real;
  const WithoutPrivileges user;
  WriteBytes(mount / kName, Secret(5'000));
  ASSERT_TRUE(real.engine.WipeFile(Utf8(mount / kName), 3)) << real.engine.LastErrorText();
  EXPECT_THAT(real.engine.Note(), HasSubstr("may stay"));
  EXPECT_TRUE(fs::is_empty(mount / ""));
}

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
