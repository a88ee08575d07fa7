// What only Linux has: links of both kinds, pipes, mounts; and the free-space wipe on a small mount.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "engine/calls_posix.h"
#include "unit/engine/EngineRig.h"
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

TEST(PosixXfs, MayKeepNamesForAWhileWhichIsTold) {
  Scratch scratch;
  const ImageMount mount(scratch, "mkfs.xfs -q -f --unsupported", "noatime");
  if (!mount.IsMounted()) GTEST_SKIP() << "no xfs to test on: " << mount.WhyNot();
  RealEngine real;
  WriteBytes(mount / kName, Secret(5'000));
  ASSERT_TRUE(real.engine.WipeFile(Utf8(mount / kName), 3)) << real.engine.LastErrorText();
  EXPECT_THAT(real.engine.Note(), HasSubstr("may stay"));
  EXPECT_TRUE(fs::is_empty(mount / "")) << "nothing that was made for it stays";
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

TEST(PosixDevice, EndsWhereLinksToFoldersMakeALoop) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/a/b");
  WriteBytes(scratch / "top/a/b/file", Secret(100));
  fs::create_directory_symlink("..", scratch / "top/a/b/up");
  fs::create_directory_symlink(scratch / "top", scratch / "top/a/round");
  fs::create_directory_symlink("itself", scratch / "top/itself");
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
  EXPECT_EQ(real.events.Of("wiped").size(), 1u);
}

TEST(PosixDevice, DestroysTheContentUnderAllItsHardLinks) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "one", Secret(5'000));
  fs::create_hard_link(scratch / "one", scratch / "two");
  EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / "one"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "one"));
  EXPECT_EQ(fs::file_size(scratch / "two"), 0u);
  EXPECT_THAT(real.engine.Note(), HasSubstr("1 file has other names, too. Under these it is now empty."));
}

TEST(PosixDevice, RemovesAllNamesOfAFileThatLieInTheFolder) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/sub");
  WriteBytes(scratch / "top/one", Secret(50'000));
  fs::create_hard_link(scratch / "top/one", scratch / "top/two");
  fs::create_hard_link(scratch / "top/one", scratch / "top/sub/three");
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
  EXPECT_EQ(real.engine.Note().find("other names"), std::string::npos) << real.engine.Note();
}

// --- What other programs do meanwhile -------------------------------------------------------------------

// The event comes when the file is open and before its first pass.
bool WipeWhile(RealEngine& real, const fs::path& path, const std::function<void()>& act) {
  bool acted = false;
  real.events.onEvent = [&](const Event& event) {
    if (acted || event.kind != "progress") return;
    acted = true;
    act();
  };
  const bool result = real.engine.WipeFile(Utf8(path), 3);
  EXPECT_TRUE(acted);
  return result;
}

TEST(PosixDevice, KeepsAFileThatIsMadeLongerOrShorterMeanwhile) {
  for (const std::uintmax_t size : {100u, 50'000u, 100'001u, 500'000u}) {
    Scratch scratch;
    RealEngine real;
    const fs::path path = scratch / "x";
    WriteBytes(path, Secret(100'000));
    EXPECT_FALSE(WipeWhile(real, path, [&] { fs::resize_file(path, size); }));
    EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("another program has changed its length"));
    EXPECT_TRUE(fs::exists(path));
  }
}

TEST(PosixDevice, KeepsAFileThatIsWrittenToAfterItsLastPass) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(8'192));
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Cached, file).Ok());
  FileInfo info;
  ASSERT_TRUE(file->Info(info).Ok());
  if (!info.notInPlace.empty()) GTEST_SKIP() << "no wipe in this folder: " << info.notInPlace;
  const std::string data(8'192, 'w');
  std::size_t written = 0;
  ASSERT_TRUE(file->Write(0, std::as_bytes(std::span(data)), written).Ok());
  ASSERT_TRUE(file->Flush().Ok());
  ASSERT_TRUE(file->DropCache().Ok());
  ASSERT_TRUE(file->Info(info).Ok());
  EXPECT_EQ(info.notInPlace, "");
  struct stat facts {};
  ASSERT_EQ(::stat(path.c_str(), &facts), 0);
  const timespec later[2] = {facts.st_atim, {facts.st_mtim.tv_sec + 1, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), later, 0), 0);
  ASSERT_TRUE(file->Info(info).Ok());
  struct statfs system {};
  ASSERT_EQ(::statfs(path.c_str(), &system), 0);
  if (system.f_type == 0x01021994) GTEST_SKIP() << "a file system in memory, of whose dates nothing is asked";
  EXPECT_EQ(info.notInPlace, "another program has written to it during the wipe");
}

TEST(PosixDevice, DoesNotRemoveAFileThatHasContentAgain) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  WriteBytes(scratch / "x", "old");
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Cached, file).Ok());
  ASSERT_TRUE(file->SetLength(0).Ok());
  WriteBytes(scratch / "x", "new");
  EXPECT_EQ(file->Remove().text, "another program has written to it again");
  EXPECT_EQ(ReadBytes(scratch / "x"), "new");
  ASSERT_TRUE(file->SetLength(0).Ok());
  EXPECT_TRUE(file->Remove().Ok());
}

// Looks on while files are wiped by the system's device.
class WatchedDevice final : public Device {
 public:
  std::function<void()> whenEmptied = [] {};  // before their entries are made durable, and removed
  std::function<void()> whenFlushed = [] {};  // a pass

  Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) override {
    return real_->OpenFolder(path, folder);
  }
  Status Split(const std::string& path, std::string& folderPath, std::string& name) const override {
    return real_->Split(path, folderPath, name);
  }
  std::string Join(const std::string& folderPath, const std::string& name) const override {
    return real_->Join(folderPath, name);
  }
  bool RenamesOpenFolders() const override { return real_->RenamesOpenFolders(); }
  std::unique_ptr<TransferQueue> MakeQueue() override { return real_->MakeQueue(); }
  void FlushMany(std::span<File* const> files, std::span<Status> outcomes) override {
    real_->FlushMany(files, outcomes);
    whenFlushed();
  }
  void FlushEntries(std::span<File* const> files, std::span<Status> outcomes) override {
    whenEmptied();
    real_->FlushEntries(files, outcomes);
  }
  void FlushFolders(std::span<Folder* const> folders, std::span<Status> outcomes) override {
    real_->FlushFolders(folders, outcomes);
  }
  Status ClearTraces(Folder& folder, const std::function<bool()>& mayGoOn, std::string& note) override {
    return real_->ClearTraces(folder, mayGoOn, note);
  }

 private:
  const std::unique_ptr<Device> real_ = MakeSystemDevice();
};

// The date of such a write comes before the first of the reading back, and so it doesn't tell.
TEST(PosixDevice, TellsOfAProgramThatHasMappedTheFileAndNotOfTheDevice) {
  // Too small for the image of a device, which can't be told from any open file where the system hides its
  // devices.
  constexpr std::size_t kBytes = 12'000;
  constexpr std::size_t kPlace = 4'000;
  constexpr int kPasses = 9;
  Scratch scratch;
  WriteBytes(scratch / "file", Secret(kBytes));
  const UniqueFd fd(::open((scratch / "file").c_str(), O_RDWR | O_CLOEXEC));
  void* const mapped = ::mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd.Get(), 0);
  ASSERT_NE(mapped, MAP_FAILED);
  FakeClock clock;
  SystemSeed seeds;
  RecordedEvents events(clock);
  WatchedDevice device;
  int passes = 0;
  device.whenFlushed = [&] {
    if (++passes == kPasses) std::memcpy(static_cast<char*>(mapped) + kPlace, "new text", 8);
  };
  SecureDelete engine(device, seeds, clock, events,
                      [](const std::string&, const std::string&) { return true; });
  EXPECT_FALSE(engine.WipeFile(Utf8(scratch / "file"), 3));
  EXPECT_THAT(engine.LastErrorText(), HasSubstr("another program has it open, and has written to it"));
  EXPECT_EQ(passes, kPasses);
  EXPECT_EQ(ReadBytes(scratch / "file").substr(kPlace, 8), "new text");
  ::munmap(mapped, kBytes);
}

TEST(PosixDevice, RemovesNoneOfManyFilesThatAreWrittenToOnceTheyAreEmpty) {
  constexpr int kFiles = 20;
  Scratch scratch;
  fs::create_directory(scratch / "top");
  std::vector<std::ofstream> writers;
  for (int i = 0; i < kFiles; ++i) {
    const fs::path path = scratch / "top" / std::to_string(i);
    WriteBytes(path, Secret(9'000));
    writers.emplace_back(path, std::ios::binary | std::ios::app);
  }
  FakeClock clock;
  SystemSeed seeds;
  RecordedEvents events(clock);
  WatchedDevice device;
  device.whenEmptied = [&] {
    for (std::ofstream& writer : writers) writer << Secret(4'000) << std::flush;
  };
  SecureDelete engine(device, seeds, clock, events,
                      [](const std::string&, const std::string&) { return true; });
  EXPECT_FALSE(engine.WipeFolder(Utf8(scratch / "top"), 3));
  EXPECT_THAT(engine.LastErrorText(), HasSubstr("another program has written to it again"));
  EXPECT_THAT(events.Of("wiped"), IsEmpty());
  int left = 0;
  for (const auto& entry : fs::directory_iterator(scratch / "top")) {
    EXPECT_EQ(ReadBytes(entry.path()), Secret(4'000));
    ++left;
  }
  EXPECT_EQ(left, kFiles);
}

TEST(PosixDevice, FailsOnAFileThatVanishesMeanwhile) {
  Scratch scratch;
  RealEngine real;
  WriteBytes(scratch / "x", Secret(5'000));
  EXPECT_FALSE(WipeWhile(real, scratch / "x", [&] { fs::remove(scratch / "x"); }));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("No such file"));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("(already overwritten)"));
}

// --- Extended attributes --------------------------------------------------------------------------------

void SetAttribute(const fs::path& path, const char* name, const std::string& value) {
  ASSERT_EQ(::setxattr(path.c_str(), name, value.data(), value.size(), 0), 0) << std::strerror(errno);
}

TEST(PosixDevice, ShowsExtendedAttributesAsStreamsThatAreOverwrittenInPlace) {
  Scratch scratch;
  const std::unique_ptr<Device> device = MakeSystemDevice();
  const fs::path path = scratch / "x";
  WriteBytes(path, "x");
  if (::setxattr(path.c_str(), "user.one", "secret", 6, 0) != 0) {
    GTEST_SKIP() << "no extended attributes here: " << std::strerror(errno);
  }
  SetAttribute(path, "user.two", Secret(1'000));
  SetAttribute(scratch.Path(), "user.three", "of the folder");
  std::unique_ptr<Folder> folder;
  std::unique_ptr<File> file;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  ASSERT_TRUE(folder->OpenFile("x", Access::Cached, file).Ok());
  std::vector<std::string> names;
  ASSERT_TRUE(folder->ListStreams(names).Ok());
  EXPECT_THAT(names, ::testing::ElementsAre("user.three"));
  ASSERT_TRUE(file->ListStreams(names).Ok());
  EXPECT_THAT(names, ::testing::UnorderedElementsAre("user.one", "user.two"));

  std::unique_ptr<File> stream;
  ASSERT_TRUE(file->OpenStream("user.two", Access::Direct, stream).Ok());
  FileInfo info;
  ASSERT_TRUE(stream->Info(info).Ok());
  EXPECT_EQ(info.lengthBytes, 1'000u);
  EXPECT_TRUE(info.inRecord) << "never more than its own length may be written";
  EXPECT_TRUE(info.mergesEqual);
  const std::string data(400, 'w');
  std::size_t written = 0;
  ASSERT_TRUE(stream->Write(600, std::as_bytes(std::span(data)), written).Ok());
  EXPECT_EQ(written, 400u);
  EXPECT_FALSE(stream->Write(601, std::as_bytes(std::span(data)), written).Ok()) << "behind its end";
  std::string read(1'000, ' ');
  std::size_t got = 0;
  ASSERT_TRUE(stream->Read(0, std::as_writable_bytes(std::span(read)), got).Ok());
  EXPECT_EQ(read, Secret(1'000).substr(0, 600) + data);
  EXPECT_TRUE(stream->Flush().Ok());
  EXPECT_TRUE(stream->Remove().Ok());
  EXPECT_LT(::getxattr(path.c_str(), "user.two", nullptr, 0), 0);
  EXPECT_FALSE(stream->Remove().Ok());
}

TEST(PosixDevice, WipesAttributesWithTheirFilesAndFoldersOrLeavesBoth) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/sub");
  WriteBytes(scratch / "top/x", Secret(5'000));
  if (::setxattr((scratch / "top/x").c_str(), "user.one", "secret", 6, 0) != 0) {
    GTEST_SKIP() << "no extended attributes here: " << std::strerror(errno);
  }
  SetAttribute(scratch / "top/sub", "user.two", Secret(100));
  if (real.engine.WipeFolder(Utf8(scratch / "top"), 3)) {
    EXPECT_TRUE(fs::is_empty(scratch.Path()));
    return;
  }
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it can't be overwritten in place, since"));
  EXPECT_EQ(ReadBytes(scratch / "top/x"), Secret(5'000));
  EXPECT_TRUE(fs::exists(scratch / "top/sub"));
}

// What gives rights is none of our business, and not everybody may change it.
TEST(PosixDevice, LeavesAttributesThatHoldNoContentAlone) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "x";
  WriteBytes(path, Secret(5'000));
  // An access list with one more user: version 2, owner rw, user 12345 r, group r, mask r, others none.
  static constexpr unsigned char kList[] = {
      2, 0, 0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,   4,  0, 0x39, 0x30, 0,   0,   4,   0,
      4, 0, 255, 255, 255, 255, 16, 0, 4,   0,   255, 255, 255, 255, 32, 0, 0,    0,    255, 255, 255, 255};
  if (::setxattr(path.c_str(), "system.posix_acl_access", kList, sizeof kList, 0) != 0) {
    GTEST_SKIP() << "no access lists here: " << std::strerror(errno);
  }
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::unique_ptr<Folder> folder;
  ASSERT_TRUE(device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  {
    std::unique_ptr<File> file;
    ASSERT_TRUE(folder->OpenFile("x", Access::Cached, file).Ok());
    std::vector<std::string> names;
    ASSERT_TRUE(file->ListStreams(names).Ok());
    EXPECT_THAT(names, IsEmpty());
  }
  EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
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
