// The engine on real files, on each system.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/engine/RealEngine.h"
#include "unit/engine/Scratch.h"

namespace zq::engine::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(RealFile, IsGoneAfterAWipe) {
  for (const std::size_t size : {0u, 1u, 511u, 4096u, 4097u, 100'001u, 5'000'000u}) {
    Scratch scratch;
    RealEngine real;
    const fs::path path = scratch / "secret.txt";
    WriteBytes(path, Secret(size));
    EXPECT_TRUE(real.engine.WipeFile(Utf8(path), 3)) << real.engine.LastErrorText();
    EXPECT_TRUE(fs::is_empty(scratch.Path()));
    EXPECT_EQ(real.events.Of("wiped").size(), 1u);
  }
}

TEST(RealFile, MayHaveAnyName) {
  for (const std::string name :
       {"täglich", "日記 2024.txt", "a", "no dot", ".hidden", "üben.日", "long name 🙂.x"}) {
    Scratch scratch;
    RealEngine real;
    WriteBytes(scratch / name, Secret(100));
    EXPECT_TRUE(real.engine.WipeFile(Utf8(scratch / name), 5)) << real.engine.LastErrorText();
    EXPECT_TRUE(fs::is_empty(scratch.Path())) << name;
  }
}

// The content itself is looked at between two passes, where the file still has its name and length.
TEST(RealFile, HoldsNothingOfItsContentAfterTheFirstPassAndStaysWhenCancelled) {
  Scratch scratch;
  RealEngine real;
  const fs::path path = scratch / "secret";
  WriteBytes(path, Secret(3'000'001));
  real.events.onEvent = [&](const Event& event) {
    if (event.done > event.total / 2) real.engine.CancelOperation();
  };
  // A device that is done within one event's time leaves no moment to cancel in; then a larger file does.
  bool wiped = real.engine.WipeFile(Utf8(path), 7);
  if (wiped) {
    WriteBytes(path, Secret(60'000'000));
    wiped = real.engine.WipeFile(Utf8(path), 7);
  }
  ASSERT_FALSE(wiped);
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("Cancelled"));
  const std::string left = ReadBytes(path);
  EXPECT_GE(left.size(), 3'000'001u);
  EXPECT_EQ(left.size() % 512, 0u) << "the slack was written too";
  EXPECT_EQ(left.find("secret"), std::string::npos);
}

TEST(RealFile, ThatIsNotThereIsTold) {
  Scratch scratch;
  RealEngine real;
  const std::string path = Utf8(scratch / "none");
  EXPECT_FALSE(real.engine.WipeFile(path, 3));
  EXPECT_EQ(real.engine.LastErrorText().find("Opening "), 0u);
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("none: "));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr(" (2)"));
  EXPECT_FALSE(real.engine.WipeFile(Utf8(scratch.Path()), 3));
  EXPECT_THAT(real.engine.LastErrorText(), HasSubstr("it is a folder"));
  EXPECT_FALSE(real.engine.WipeFile("", 3));
  EXPECT_TRUE(fs::exists(scratch.Path()));
}

TEST(RealFile, MayLieDeeperThanTheOldLimitOfPaths) {
  Scratch scratch;
  RealEngine real;
  // Made through the device, since the C++ library of one of the systems ends at the limit too.
  std::string path = Utf8(scratch.Path());
  std::unique_ptr<Folder> folder;
  ASSERT_TRUE(real.device->OpenFolder(path, folder).Ok());
  for (int i = 0; i < 8; ++i) {
    const std::string name(60, static_cast<char>('a' + i));
    std::unique_ptr<Folder> next;
    ASSERT_TRUE(folder->AddFolder(name, next).Ok());
    folder = std::move(next);
    path = real.device->Join(path, name);
  }
  {
    std::unique_ptr<File> file;
    ASSERT_TRUE(folder->AddFile("deep", Access::Cached, file).Ok());
    std::size_t written = 0;
    const std::string secret = Secret(100);
    ASSERT_TRUE(file->Write(0, std::as_bytes(std::span(secret)), written).Ok());
  }
  folder.reset();
  ASSERT_GT(path.size(), 480u);
  EXPECT_TRUE(real.engine.WipeFile(real.device->Join(path, "deep"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / std::string(60, 'a')), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

TEST(RealFile, MayHaveANameOfTheGreatestLength) {
  Scratch scratch;
  RealEngine real;
  const std::string longest(255, 'n');
  fs::create_directory(scratch / "top");
  const std::string top = Utf8(scratch / "top");
  {
    // Made through the device, for paths beyond the old limit.
    std::unique_ptr<Folder> folder;
    std::unique_ptr<Folder> inner;
    std::unique_ptr<File> file;
    ASSERT_TRUE(real.device->OpenFolder(top, folder).Ok());
    ASSERT_TRUE(folder->AddFile(longest, Access::Cached, file).Ok());
    ASSERT_TRUE(folder->AddFolder("d" + longest.substr(1), inner).Ok());
    ASSERT_TRUE(inner->AddFile(longest, Access::Cached, file).Ok());
    EXPECT_FALSE(inner->AddFile(longest + 'n', Access::Cached, file).Ok());
  }
  EXPECT_TRUE(real.engine.WipeFile(real.device->Join(top, longest), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(real.engine.WipeFolder(top, 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
}

TEST(RealFolder, MayBeAsDeepAsPathsOfThirtyThousandCharacters) {
  Scratch scratch;
  RealEngine real;
  fs::create_directory(scratch / "top");
  const std::string top = Utf8(scratch / "top");
  std::string path = top;
  {
    std::unique_ptr<Folder> folder;
    ASSERT_TRUE(real.device->OpenFolder(path, folder).Ok());
    const std::string name(250, 'd');
    while (path.size() < 30'000) {
      std::unique_ptr<Folder> next;
      if (!folder->AddFolder(name, next).Ok()) break;
      folder = std::move(next);
      path = real.device->Join(path, name);
    }
    std::unique_ptr<File> file;
    ASSERT_TRUE(folder->AddFile("deep", Access::Cached, file).Ok());
    std::size_t written = 0;
    const std::string secret = Secret(100);
    ASSERT_TRUE(file->Write(0, std::as_bytes(std::span(secret)), written).Ok());
  }
#ifdef _WIN32
  EXPECT_GT(path.size(), 3'000u) << "Wine goes as far as its host's paths";
#else
  EXPECT_GE(path.size(), 30'000u);
#endif
  EXPECT_TRUE(real.engine.WipeFolder(top, 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
  EXPECT_EQ(real.events.Of("wiped").size(), 1u);
}

TEST(RealFolder, IsGoneWithAllThatIsInIt) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/sub/täglich");
  fs::create_directories(scratch / "top/empty");
  WriteBytes(scratch / "top/a.txt", Secret(10));
  WriteBytes(scratch / "top/sub/b", Secret(50'000));
  WriteBytes(scratch / "top/sub/täglich/日記", "");
  WriteBytes(scratch / "keep", "keep");
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "top"));
  EXPECT_EQ(ReadBytes(scratch / "keep"), "keep");
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.Path()), {}), 1);
  EXPECT_EQ(real.events.Of("wiped").size(), 3u);
}

// As where the system has no way to have several under way, or forbids it.
TEST(RealFolder, IsGoneTooWithOneTransferAtATime) {
  Scratch scratch;
  SteadyClock clock;
  const std::unique_ptr<Device> device = MakeSystemDevice({true});
  SystemSeed seeds;
  RecordedEvents events(clock);
  SecureDelete engine(*device, seeds, clock, events, nullptr);
  fs::create_directories(scratch / "top/sub");
  for (int i = 0; i < 20; ++i) WriteBytes(scratch / ("top/sub/" + std::to_string(i)), Secret(5'000));
  WriteBytes(scratch / "top/large", Secret(3'000'000));
  EXPECT_TRUE(engine.WipeFolder(Utf8(scratch / "top"), 3)) << engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
  EXPECT_EQ(events.Of("wiped").size(), 21u);
}

TEST(RealFolder, OfManyFilesIsGoneInBatches) {
  Scratch scratch;
  RealEngine real;
  for (const char* folder : {"top/one", "top/two", "top/one/deep"}) fs::create_directories(scratch / folder);
  for (int i = 0; i < 400; ++i) {
    const std::string folder = i % 3 == 0 ? "top/one/" : (i % 3 == 1 ? "top/two/" : "top/one/deep/");
    WriteBytes(scratch / (folder + std::to_string(i)), Secret(static_cast<std::size_t>(i) * 20));
  }
  EXPECT_TRUE(real.engine.WipeFolder(Utf8(scratch / "top"), 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_empty(scratch.Path()));
  EXPECT_EQ(real.events.Of("wiped").size(), 400u);
  EXPECT_THAT(real.events.Of("error"), IsEmpty());
}

TEST(RealFolder, KeepsItsFoldersWhenOnlyFilesAreAskedFor) {
  Scratch scratch;
  RealEngine real;
  fs::create_directories(scratch / "top/sub");
  WriteBytes(scratch / "top/a.txt", Secret(10));
  WriteBytes(scratch / "top/b.doc", Secret(10));
  WriteBytes(scratch / "top/sub/c.txt", Secret(10));
  const std::string top = Utf8(scratch / "top");
  EXPECT_TRUE(real.engine.WipeFolderFiles(top, "*.txt", false, 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "top/a.txt"));
  EXPECT_TRUE(fs::exists(scratch / "top/sub/c.txt"));
  EXPECT_TRUE(real.engine.WipeFolderFiles(top, "*.txt", true, 3)) << real.engine.LastErrorText();
  EXPECT_FALSE(fs::exists(scratch / "top/sub/c.txt"));
  EXPECT_EQ(ReadBytes(scratch / "top/b.doc"), Secret(10));
  EXPECT_TRUE(real.engine.WipeFolderFiles(top, "*.*", true, 3)) << real.engine.LastErrorText();
  EXPECT_TRUE(fs::is_directory(scratch / "top/sub"));
  EXPECT_FALSE(fs::exists(scratch / "top/b.doc"));
}

TEST(RealDevice, TakesTheLastPartOfAPathAsTheName) {
  const std::unique_ptr<Device> device = MakeSystemDevice();
  Scratch scratch;
  std::string folder;
  std::string name;
  ASSERT_TRUE(device->Split(Utf8(scratch / "x y.txt"), folder, name).Ok());
  EXPECT_EQ(name, "x y.txt");
  for (const std::string refused : {"", "..", "."}) {
    const Status status = device->Split(refused, folder, name);
    EXPECT_TRUE(!status.Ok() || (name != ".." && name != ".")) << refused;
  }
  EXPECT_FALSE(device->Split(std::string("a\0b", 3), folder, name).Ok());
}

TEST(RealDevice, KnowsTheSpaceAndTheClustersOfADrive) {
  Scratch scratch;
  RealEngine real;
  std::unique_ptr<Folder> folder;
  ASSERT_TRUE(real.device->OpenFolder(Utf8(scratch.Path()), folder).Ok());
  SpaceInfo space;
  ASSERT_TRUE(folder->Space(space).Ok());
  EXPECT_GE(space.clusterBytes, 512u);
  EXPECT_GT(space.freeBytes, 0u);
}

}  // namespace
}  // namespace zq::engine::test
