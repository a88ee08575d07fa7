#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "manager/RecycleBin.h"
#include "platform/Drives.h"
#include "support/BinBytes.h"
#include "support/fakes/FakeDrives.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FakeOwner final : public BinOwner {
 public:
  std::string id = "S-1-5-21-1-2-3-1001";
  std::set<std::string> withoutOwners;

  std::string UserId() override { return id; }
  bool KeepsOwners(const std::string& root) override { return !withoutOwners.contains(root); }
};

class RecycleBin : public ::testing::Test, protected FakePlatform {
 protected:
  RecycleBin() { drives.types = {{"C:\\", kDriveFixed}}; }

  BinContents Look() { return LookIntoRecycleBin(files, process, drives, owner); }

  const std::string bin = "C:\\$Recycle.Bin\\S-1-5-21-1-2-3-1001\\";
  FakeDrives drives;
  FakeOwner owner;
};

TEST_F(RecycleBin, HasItemsWithTheRecordsOfBothVersions) {
  files.AddFile(bin + "$RAB12CD.txt", "secret");
  files.AddFile(bin + "$IAB12CD.txt", FirstVersionRecord(u"C:\\Papers\\old.txt", 6));
  files.AddFile(bin + "$RXY34ZW.doc", "more");
  files.AddFile(bin + "$IXY34ZW.doc", SecondVersionRecord(u"C:\\Papers\\new.doc", 4));
  files.AddFile(bin + "desktop.ini", "[.ShellClassInfo]");
  const BinContents contents = Look();
  EXPECT_THAT(contents.folders, ElementsAre(bin));
  EXPECT_THAT(
      contents.items,
      ElementsAre(WipeItem{bin + "$RAB12CD.txt", false, bin + "$IAB12CD.txt", "C:\\Papers\\old.txt"},
                  WipeItem{bin + "$RXY34ZW.doc", false, bin + "$IXY34ZW.doc", "C:\\Papers\\new.doc"}));
  EXPECT_EQ(contents.measured, (Measured{FixedPoint(2), FixedPoint(0), 10, true}));
  EXPECT_THAT(contents.refusals, IsEmpty());
  EXPECT_THAT(log, IsEmpty()) << "nothing is changed";
}

TEST_F(RecycleBin, HasFoldersWithAllThatIsInThem) {
  files.AddFile(bin + "$RF\\deep\\a.txt", "12345");
  files.AddFile(bin + "$RF\\$Rb.txt", "678");
  files.AddFile(bin + "$IF", SecondVersionRecord(u"C:\\Papers", 8));
  const BinContents contents = Look();
  EXPECT_THAT(contents.items, ElementsAre(WipeItem{bin + "$RF", true, bin + "$IF", "C:\\Papers"}));
  EXPECT_EQ(contents.measured, (Measured{FixedPoint(2), FixedPoint(2), 8, true}));
}

TEST_F(RecycleBin, HasOrphansOfBothKinds) {
  files.AddFile(bin + "$R111111.txt", "secret");
  files.AddFile(bin + "$I222222.txt", SecondVersionRecord(u"C:\\b.txt", 1));
  EXPECT_THAT(Look().items, ElementsAre(WipeItem{bin + "$R111111.txt", false, "", bin + "$R111111.txt"},
                                        WipeItem{bin + "$I222222.txt", false, "", "C:\\b.txt"}));
}

TEST_F(RecycleBin, TakesADamagedRecordForOneWithoutAName) {
  for (const char* name : {"1", "2", "3", "4"}) files.AddFile(bin + "$R" + name, "x");
  files.AddFile(bin + "$I1", "not a record");
  files.AddFile(bin + "$I2", SecondVersionRecord(u"C:\\locked.txt", 1));
  files.unreadable.insert(bin + "$I2");
  files.AddFileOfLength(bin + "$I3", std::uint64_t{1} << 40);  // never read into memory
  files.AddFile(bin + "$I4", SecondVersionRecord(u"C:\\d.txt", 1), kAttributeReparsePoint);
  EXPECT_THAT(Look().items, ElementsAre(WipeItem{bin + "$R1", false, bin + "$I1", bin + "$R1"},
                                        WipeItem{bin + "$R2", false, bin + "$I2", bin + "$R2"},
                                        WipeItem{bin + "$R3", false, bin + "$I3", bin + "$R3"},
                                        WipeItem{bin + "$R4", false, bin + "$I4", bin + "$R4"}));
}

TEST_F(RecycleBin, LeavesWhatIsNoItem) {
  for (const char* name : {"desktop.ini", "$R", "$X123456", "R123456", "$", "notes.txt"})
    files.AddFile(bin + name, "x");
  files.AddFolder(bin + "$I123456");  // a record is never a folder
  EXPECT_THAT(Look().items, IsEmpty());
}

TEST_F(RecycleBin, OfAnotherUserIsNotLookedInto) {
  files.AddFile("C:\\$Recycle.Bin\\S-1-5-21-1-2-3-1002\\$R1", "theirs");
  files.AddFile("C:\\$Recycle.Bin\\S-1-5-21-1-2-3-10011\\$R1", "theirs");
  files.AddFile("C:\\$Recycle.Bin\\$R1", "nobody's: the file system keeps owners");
  const BinContents contents = Look();
  EXPECT_THAT(contents.items, IsEmpty());
  EXPECT_THAT(contents.folders, IsEmpty());
}

TEST_F(RecycleBin, OfADriveWithoutOwnersIsTheCommonOneToo) {
  drives.types = {{"E:\\", kDriveRemovable}};
  owner.withoutOwners = {"E:\\"};
  files.AddFile("E:\\$Recycle.Bin\\$R1", "a");
  files.AddFile("E:\\$Recycle.Bin\\S-1-5-21-1-2-3-1001\\$R2", "b");
  files.AddFile("E:\\$Recycle.Bin\\S-1-5-21-1-2-3-1002\\$R3", "theirs");
  const BinContents contents = Look();
  EXPECT_THAT(contents.folders, ElementsAre("E:\\$Recycle.Bin\\", "E:\\$Recycle.Bin\\S-1-5-21-1-2-3-1001\\"));
  ASSERT_EQ(contents.items.size(), 2u);
  EXPECT_EQ(contents.items[0].path, "E:\\$Recycle.Bin\\$R1");
  EXPECT_EQ(contents.items[1].path, "E:\\$Recycle.Bin\\S-1-5-21-1-2-3-1001\\$R2");
}

TEST_F(RecycleBin, IsLookedForOnLocalDrivesAlone) {
  drives.types = {{"A:\\", kDriveUnknown}, {"B:\\", kDriveNoRoot},  {"C:\\", kDriveFixed},
                  {"D:\\", kDriveCdRom},   {"E:\\", kDriveRamDisk}, {"N:\\", kDriveRemote}};
  for (const char* drive : {"A", "B", "C", "D", "E", "N"}) files.AddFile(drive + bin.substr(1) + "$R1", "x");
  EXPECT_THAT(Look().folders, ElementsAre(bin, "E" + bin.substr(1)));
}

TEST_F(RecycleBin, ThatIsALinkIsRefused) {
  files.AddFolder("C:\\$Recycle.Bin");
  files.AddFolder(bin.substr(0, bin.size() - 1), kAttributeDirectory | kAttributeReparsePoint);
  files.AddFile(bin + "$R1", "never deleted");
  BinContents contents = Look();
  EXPECT_THAT(contents.items, IsEmpty());
  EXPECT_FALSE(contents.measured.isComplete);
  EXPECT_THAT(contents.refusals,
              ElementsAre(bin.substr(0, bin.size() - 1) +
                          " - It is a link, which may lead to files that were never deleted, and was not "
                          "looked into."));
  files.Find("C:\\$Recycle.Bin")->attributes |= kAttributeReparsePoint;
  contents = Look();
  EXPECT_THAT(contents.items, IsEmpty());
  EXPECT_EQ(contents.refusals.size(), 1u);
}

TEST_F(RecycleBin, OfNobodyIsNone) {
  owner.id.clear();
  files.AddFile("C:\\$Recycle.Bin\\$R1", "x");
  const BinContents contents = Look();
  EXPECT_THAT(contents.items, IsEmpty());
  EXPECT_EQ(contents.refusals.size(), 1u);
}

TEST_F(RecycleBin, DoesNotFollowALinkAmongItsItems) {
  files.AddFolder(bin + "$R1", kAttributeDirectory | kAttributeReparsePoint);
  files.AddFile(bin + "$R1\\a.txt", "elsewhere");
  files.AddFolder(bin + "$R2");
  files.AddFolder(bin + "$R2\\link", kAttributeDirectory | kAttributeReparsePoint);
  files.AddFile(bin + "$R2\\link\\a.txt", "elsewhere");
  EXPECT_EQ(Look().measured, (Measured{FixedPoint(0), FixedPoint(3), 0, true}));
}

TEST_F(RecycleBin, TellsThatItsListingBrokeOff) {
  files.AddFile(bin + "$R1", "x");
  files.AddFile(bin + "$R2", "x");
  files.listingBreaksAfter = 3;  // two are the folder itself and the one above
  const BinContents contents = Look();
  EXPECT_EQ(contents.items.size(), 1u);
  EXPECT_FALSE(contents.measured.isComplete);
  EXPECT_EQ(contents.refusals.size(), 1u);
}

}  // namespace
}  // namespace zq::test
