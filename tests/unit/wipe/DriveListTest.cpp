#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fakes/FakeDrives.h"
#include "support/fakes/FakeRegional.h"
#include "wipe/DriveList.h"

namespace zq {
namespace {

using test::kDriveNoRoot;
using test::kDriveUnknown;
using testing::ElementsAre;
using testing::IsEmpty;

class DriveListTest : public testing::Test {
 protected:
  DriveList List(std::map<std::string, std::uint32_t> types) {
    drives.types = std::move(types);
    return ListDrives(SplitDriveNames(drives.LogicalDriveStrings()), drives, regional);
  }

  test::FakeDrives drives;
  test::FakeRegional regional;
};

std::string WithNulls(std::initializer_list<const char*> names) {
  std::string text;
  for (const char* name : names) text += std::string(name) + '\0';
  return text + '\0';
}

TEST(DriveNames, AreSplitAtEachNullAndTheTwoAtTheEndAreCut) {
  EXPECT_THAT(SplitDriveNames(WithNulls({"C:\\"})), ElementsAre("C:\\"));
  EXPECT_THAT(SplitDriveNames(WithNulls({"A:\\", "C:\\", "D:\\"})), ElementsAre("A:\\", "C:\\", "D:\\"));
}

TEST(DriveNames, AreNoneWhereTheSystemToldNone) {
  EXPECT_THAT(SplitDriveNames(std::string(1, '\0')), IsEmpty());
  EXPECT_THAT(SplitDriveNames(""), IsEmpty());
}

TEST_F(DriveListTest, OffersEachKindOfDriveWithItsPictureAndText) {
  const DriveList list = List({{"C:\\", kDriveFixed},
                               {"D:\\", kDriveRemovable},
                               {"E:\\", kDriveRemote},
                               {"F:\\", kDriveCdRom},
                               {"G:\\", kDriveRamDisk},
                               {"H:\\", kDriveFixed}});
  EXPECT_THAT(list.items,
              ElementsAre(DriveItem{"C:\\ - Hard Drive", 1}, DriveItem{"D:\\ - Removable Drive", 4},
                          DriveItem{"E:\\ - Remote Drive", 3}, DriveItem{"H:\\ - Hard Drive", 1}));
}

TEST_F(DriveListTest, DriveOfAnUntoldKindIsTreatedAsTheOneBeforeIt) {
  for (const std::uint32_t untold : {kDriveUnknown, kDriveNoRoot, std::uint32_t{7}}) {
    const DriveList list =
        List({{"C:\\", kDriveFixed}, {"D:\\", untold}, {"E:\\", kDriveRemote}, {"F:\\", untold}});
    EXPECT_THAT(list.items,
                ElementsAre(DriveItem{"C:\\ - Hard Drive", 1}, DriveItem{"D:\\ - Hard Drive", 1},
                            DriveItem{"E:\\ - Remote Drive", 3}, DriveItem{"F:\\ - Remote Drive", 3}));
  }
}

TEST_F(DriveListTest, DriveOfAnUntoldKindBehindOneThatIsNotOfferedIsNotOfferedEither) {
  const DriveList list = List({{"C:\\", kDriveFixed},
                               {"D:\\", kDriveCdRom},
                               {"E:\\", kDriveUnknown},
                               {"F:\\", kDriveRamDisk},
                               {"G:\\", kDriveUnknown}});
  EXPECT_THAT(list.items, ElementsAre(DriveItem{"C:\\ - Hard Drive", 1}));
}

TEST_F(DriveListTest, FirstDriveOfAnUntoldKindIsNotOffered) {
  const DriveList list = List({{"B:\\", kDriveUnknown}, {"C:\\", kDriveFixed}});
  EXPECT_THAT(list.items, ElementsAre(DriveItem{"C:\\ - Hard Drive", 1}));
}

TEST_F(DriveListTest, DriveAIsAFloppyDriveOfWhateverKindThatIsOffered) {
  for (const std::uint32_t kind : {kDriveRemovable, kDriveFixed, kDriveRemote}) {
    const DriveList list = List({{"A:\\", kind}, {"C:\\", kDriveFixed}});
    EXPECT_THAT(list.items,
                ElementsAre(DriveItem{"A:\\ - Floppy Drive", 2}, DriveItem{"C:\\ - Hard Drive", 1}));
  }
  EXPECT_THAT(List({{"a:\\", kDriveRemovable}}).items, ElementsAre(DriveItem{"a:\\ - Floppy Drive", 2}));
}

TEST_F(DriveListTest, DriveAIsOfferedOnlyIfItsKindIs) {
  for (const std::uint32_t kind : {kDriveCdRom, kDriveRamDisk, kDriveUnknown}) {
    EXPECT_THAT(List({{"A:\\", kind}, {"C:\\", kDriveFixed}}).items,
                ElementsAre(DriveItem{"C:\\ - Hard Drive", 1}));
  }
}

TEST_F(DriveListTest, DriveOfAnUntoldKindBehindTheFloppyDriveIsOneToo) {
  EXPECT_THAT(List({{"A:\\", kDriveRemovable}, {"B:\\", kDriveUnknown}, {"C:\\", kDriveFixed}}).items,
              ElementsAre(DriveItem{"A:\\ - Floppy Drive", 2}, DriveItem{"B:\\ - Floppy Drive", 2},
                          DriveItem{"C:\\ - Hard Drive", 1}));
}

TEST_F(DriveListTest, PreselectsThePositionOfC) {
  EXPECT_EQ(List({{"C:\\", kDriveFixed}, {"D:\\", kDriveFixed}}).preselection, 1);
  EXPECT_EQ(List({{"A:\\", kDriveRemovable}, {"C:\\", kDriveFixed}}).preselection, 2);
  EXPECT_EQ(List({{"c:\\", kDriveFixed}}).preselection, 1);
}

TEST_F(DriveListTest, PreselectionCountsDrivesThatAreNotOffered) {
  const DriveList list = List({{"A:\\", kDriveUnknown}, {"C:\\", kDriveFixed}, {"D:\\", kDriveRemote}});
  EXPECT_EQ(list.preselection, 2);
  EXPECT_EQ(list.items[1].text, "D:\\ - Remote Drive") << "one too far, as wanted";
  const DriveList past = List({{"A:\\", kDriveCdRom}, {"C:\\", kDriveFixed}});
  EXPECT_EQ(past.preselection, 2);
  EXPECT_EQ(past.items.size(), 1U);
}

TEST_F(DriveListTest, WithoutADriveCNothingIsPreselected) {
  EXPECT_EQ(List({{"D:\\", kDriveFixed}, {"E:\\", kDriveFixed}}).preselection, 0);
  EXPECT_EQ(List({}).preselection, 0);
}

TEST_F(DriveListTest, ItemStandsForItsFirstThreeCharactersInCapitals) {
  EXPECT_EQ(DriveOf("C:\\ - Hard Drive", regional), "C:\\");
  EXPECT_EQ(DriveOf("d:\\ - Remote Drive", regional), "D:\\");
}

}  // namespace
}  // namespace zq
