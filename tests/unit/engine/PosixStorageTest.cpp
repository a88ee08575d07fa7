// What a drive lies on, found out from a tree of devices as the kernel shows it, made up for each test.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <filesystem>
#include <string>

#include "engine/storage_posix.h"
#include "unit/engine/Scratch.h"

namespace zq::engine::test {
namespace {

namespace fs = std::filesystem;
using Kind = StorageInfo::Kind;

class PosixStorage : public testing::Test {
 protected:
  // A device with its number and the two facts that decide about it.
  fs::path Add(const std::string& name, dev_t number, const std::string& rotational,
               const std::string& discardBytes) {
    const fs::path path = scratch_ / "devices" / name;
    fs::create_directories(path / "queue");
    if (!rotational.empty()) WriteBytes(path / "queue/rotational", rotational + '\n');
    if (!discardBytes.empty()) WriteBytes(path / "queue/discard_max_bytes", discardBytes + '\n');
    Number(path, number);
    return path;
  }
  fs::path AddPartition(const fs::path& disk, const std::string& name, dev_t number) {
    fs::create_directories(disk / name);
    WriteBytes(disk / name / "partition", "1\n");
    Number(disk / name, number);
    return disk / name;
  }
  void LieOn(const fs::path& device, const fs::path& below) {
    fs::create_directories(device / "slaves");
    fs::create_directory_symlink(below, device / "slaves" / below.filename());
  }
  void Name(const fs::path& device, const std::string& model, const std::string& serial) {
    fs::create_directories(device / "device");
    WriteBytes(device / "device/model", model + '\n');
    WriteBytes(device / "device/serial", serial + '\n');
  }
  StorageInfo Of(dev_t number) { return StorageOf(number, false, Utf8(scratch_.Path())); }

  Scratch scratch_;

 private:
  void Number(const fs::path& path, dev_t number) {
    fs::create_directories(scratch_ / "dev/block");
    fs::create_directory_symlink(
        path, scratch_ / "dev/block" / (std::to_string(major(number)) + ':' + std::to_string(minor(number))));
  }
};

const dev_t kTop = makedev(253, 7);
const dev_t kDisk = makedev(8, 0);
const dev_t kOther = makedev(8, 16);

TEST_F(PosixStorage, TellsADiskFromFlash) {
  Name(Add("sda", kDisk, "1", "0"), "Turner 4000  ", "T1");
  Name(Add("nvme0n1", kOther, "0", "2147483648"), "Brand 500", "S42");
  const StorageInfo disk = Of(kDisk);
  EXPECT_EQ(disk.kind, Kind::Rotating);
  EXPECT_FALSE(disk.trims);
  EXPECT_EQ(disk.model, "Turner 4000");
  EXPECT_EQ(disk.serial, "T1");
  EXPECT_FALSE(disk.ChoosesPlaces());
  const StorageInfo flash = Of(kOther);
  EXPECT_EQ(flash.kind, Kind::Flash);
  EXPECT_TRUE(flash.trims);
  EXPECT_EQ(flash.model + flash.serial, "Brand 500S42");
  EXPECT_TRUE(flash.ChoosesPlaces());
}

TEST_F(PosixStorage, AsksTheDiskOfAPartition) {
  const fs::path disk = Add("sda", kDisk, "0", "4096");
  AddPartition(disk, "sda1", kTop);
  EXPECT_EQ(Of(kTop).kind, Kind::Flash);
  EXPECT_TRUE(Of(kTop).trims);
}

TEST_F(PosixStorage, DoesNotBelieveADiskThatTakesDiscards) {
  Add("sda", kDisk, "1", "4096");
  EXPECT_EQ(Of(kDisk).kind, Kind::Unknown);
  EXPECT_TRUE(Of(kDisk).ChoosesPlaces());
}

TEST_F(PosixStorage, DoesNotBelieveTheDisksOfAVirtualMachine) {
  for (const char* name : {"vda", "xvda", "nbd0", "ram0", "zram0"}) {
    SCOPED_TRACE(name);
    Add(name, kDisk, "1", "0");
    EXPECT_EQ(Of(kDisk).kind, Kind::Unknown);
    fs::remove_all(scratch_ / "dev");
  }
  Name(Add("sda", kDisk, "1", "0"), "QEMU HARDDISK", "1");
  EXPECT_EQ(Of(kDisk).kind, Kind::Unknown);
}

TEST_F(PosixStorage, CountsTheWorstDiskOfSeveral) {
  const fs::path raid = Add("md0", kTop, "1", "0");
  LieOn(raid, Add("sda", kDisk, "1", "0"));
  EXPECT_EQ(Of(kTop).kind, Kind::Rotating);
  const fs::path odd = Add("sdc", makedev(8, 32), "", "");
  LieOn(raid, odd);
  EXPECT_EQ(Of(kTop).kind, Kind::Unknown);
  LieOn(raid, Add("sdb", kOther, "0", "0"));
  EXPECT_EQ(Of(kTop).kind, Kind::Flash);
}

// An encrypted volume on a logical one on a partition.
TEST_F(PosixStorage, GoesThroughAllLayers) {
  const fs::path disk = Add("sda", kDisk, "0", "4096");
  Name(disk, "Brand 500", "S42");
  const fs::path logical = Add("dm-0", kOther, "1", "4096");
  LieOn(logical, AddPartition(disk, "sda1", makedev(8, 1)));
  LieOn(Add("dm-1", kTop, "1", "0"), logical);
  const StorageInfo storage = Of(kTop);
  EXPECT_EQ(storage.kind, Kind::Flash);
  EXPECT_EQ(storage.model, "Brand 500");
  EXPECT_FALSE(storage.trims) << "the uppermost takes no discards";
}

TEST_F(PosixStorage, AsksWhatTheImageOfALoopDeviceLiesOn) {
  WriteBytes(scratch_ / "image", "x");
  struct stat facts {};
  ASSERT_EQ(::stat(Utf8(scratch_ / "image").c_str(), &facts), 0);
  const fs::path loop = Add("loop0", kTop, "1", "4096");
  fs::create_directories(loop / "loop");
  WriteBytes(loop / "loop/backing_file", Utf8(scratch_ / "image") + '\n');
  EXPECT_EQ(Of(kTop).kind, Kind::Unknown) << "nothing is known of the image's own device";
  Add("sda", facts.st_dev, "1", "0");
  EXPECT_EQ(Of(kTop).kind, Kind::Rotating);
  WriteBytes(loop / "loop/backing_file", Utf8(scratch_ / "gone") + '\n');
  EXPECT_EQ(Of(kTop).kind, Kind::Unknown);
}

TEST_F(PosixStorage, EndsInACircle) {
  const fs::path a = Add("dm-0", kTop, "1", "0");
  const fs::path b = Add("dm-1", kOther, "1", "0");
  LieOn(a, b);
  LieOn(b, a);
  EXPECT_EQ(Of(kTop).kind, Kind::Unknown);
}

TEST_F(PosixStorage, KnowsNothingWithoutAnEntry) {
  EXPECT_EQ(Of(kTop).kind, Kind::Unknown);
  EXPECT_FALSE(Of(kTop).trims);
  EXPECT_EQ(StorageOf(kTop, true, Utf8(scratch_.Path())).kind, Kind::Memory);
}

}  // namespace
}  // namespace zq::engine::test
