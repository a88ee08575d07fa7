#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Driving.h"
#include "NameService.h"
#include "controls/MessageLoop.h"
#include "platform/RunTimeError.h"
#include "platform/win32/Win32Drives.h"
#include "support/ExpectRaises.h"
#include "support/driver/Driver.h"
#include "support/fakes/FakeDrives.h"
#include "support/fakes/FakeHelp.h"
#include "support/fakes/FakePlatform.h"
#include "wipe/DriveList.h"
#include "wipe/frmDriveWipe.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

class frmDriveWipeTest : public testing::Test {
 protected:
  void SetUp() override {
    drives_.types = {{"C:\\", kDriveFixed}, {"D:\\", kDriveRemovable}, {"E:\\", kDriveRemote}};
    Default<frmDriveWipe>::SetFactory(
        [this] { return std::make_unique<frmDriveWipe>(state_, fake_.platform, drives_, &help_); });
  }
  void TearDown() override {
    if (Default<frmDriveWipe>::IsLoaded()) Default<frmDriveWipe>::Touch().Unload();
    Form::DestroyClosed();
  }

  frmDriveWipe& Open() { return Default<frmDriveWipe>::Touch(); }
  std::vector<std::string> Offered() {
    std::vector<std::string> texts;
    for (int item = 1; item <= Open().ICDrives.Count(); ++item)
      texts.push_back(Open().ICDrives.ItemText(item));
    return texts;
  }
  int ImageOf(int item) {
    COMBOBOXEXITEMW wanted{};
    wanted.mask = CBEIF_IMAGE | CBEIF_SELECTEDIMAGE;
    wanted.iItem = item - 1;
    ::SendMessageW(Open().ICDrives.Handle(), CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&wanted));
    EXPECT_EQ(wanted.iImage, wanted.iSelectedImage);
    return wanted.iImage + 1;
  }
  HWND DropDown() {
    return reinterpret_cast<HWND>(::SendMessageW(Open().ICDrives.Handle(), CBEM_GETCOMBOCONTROL, 0, 0));
  }

  FakePlatform fake_;
  FakeDrives drives_;
  EventLog asked_;
  FakeHelp help_{asked_};
  AppState state_;
};

TEST_F(frmDriveWipeTest, OpensWithItsTexts) {
  Form& form = Open();
  EXPECT_EQ(CaptionOf(form), "Wipe Drive Free Space");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_Label1),
            "Choose the options for wiping the free space on a selected hard drive.  Note that large drives "
            "and a high wipe security level can take some time.");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_Frame1), "Options");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_Label2), "Drive:");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_Label3), "Security Level:");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_opt3), "Level 3 Wiping (9 data writes per byte) - Strong Security");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_opt5),
            "Level 5 Wiping (15 data writes per byte)- Stronger Security");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_opt7),
            "Level 7 Wiping (21 data writes per byte) - Strongest Security");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_Label4),
            "It is strongly suggested that you do not perform other actions on the selected drive while a "
            "wipe procedure is in progress.");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_cmdOK), "&OK");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_cmdCancel), "&Cancel");
  EXPECT_EQ(TextOf(form, IDC_frmDriveWipe_cmdHelp), "&Help");
  EXPECT_EQ(DefaultButtonOf(form), IDC_frmDriveWipe_cmdOK);
}

TEST_F(frmDriveWipeTest, OffersTheDrivesWithTheirPictures) {
  drives_.types = {{"A:\\", kDriveRemovable}, {"C:\\", kDriveFixed},    {"D:\\", kDriveCdRom},
                   {"E:\\", kDriveUnknown},   {"F:\\", kDriveRemote},   {"G:\\", kDriveUnknown},
                   {"H:\\", kDriveRamDisk},   {"I:\\", kDriveRemovable}};
  EXPECT_THAT(Offered(), ElementsAre("A:\\ - Floppy Drive", "C:\\ - Hard Drive", "F:\\ - Remote Drive",
                                     "G:\\ - Remote Drive", "I:\\ - Removable Drive"));
  const int images[] = {kFloppyDriveImage, kHardDriveImage, kRemoteDriveImage, kRemoteDriveImage,
                        kRemovableDriveImage};
  for (int item = 1; item <= 5; ++item) EXPECT_EQ(ImageOf(item), images[item - 1]) << item;
  const auto list =
      reinterpret_cast<HIMAGELIST>(::SendMessageW(Open().ICDrives.Handle(), CBEM_GETIMAGELIST, 0, 0));
  EXPECT_EQ(::ImageList_GetImageCount(list), 4);
  EXPECT_EQ(Open().ICDrives.Selected(), 2) << "drive C";
}

TEST_F(frmDriveWipeTest, PreselectsByThePositionAmongAllDrives) {
  drives_.types = {{"A:\\", kDriveUnknown}, {"C:\\", kDriveFixed}, {"D:\\", kDriveFixed}};
  EXPECT_EQ(Open().ICDrives.Selected(), 2);
  Press(Open(), IDC_frmDriveWipe_cmdOK);
  EXPECT_EQ(state_.FreeSpaceDrive, "D:\\");
}

TEST_F(frmDriveWipeTest, WithoutADriveCTheLoadFails) {
  drives_.types = {{"D:\\", kDriveFixed}, {"E:\\", kDriveFixed}};
  ExpectRaises(ErrorNumber::ElementNotFound, [this] { Open(); });
  EXPECT_FALSE(Default<frmDriveWipe>::IsLoaded());
}

TEST_F(frmDriveWipeTest, PreselectionPastTheLastItemFailsTheSame) {
  drives_.types = {{"A:\\", kDriveCdRom}, {"C:\\", kDriveFixed}};
  ExpectRaises(ErrorNumber::ElementNotFound, [this] { Open(); });
  drives_.types = {};
  ExpectRaises(ErrorNumber::ElementNotFound, [this] { Open(); });
}

TEST_F(frmDriveWipeTest, LevelStartsFromTheSettingsEachTime) {
  const std::pair<int, int> kCases[] = {{3, IDC_frmDriveWipe_opt3}, {5, IDC_frmDriveWipe_opt5},
                                        {7, IDC_frmDriveWipe_opt7}, {0, IDC_frmDriveWipe_opt7},
                                        {4, IDC_frmDriveWipe_opt7}, {-1, IDC_frmDriveWipe_opt7}};
  for (const auto& [passes, option] : kCases) {
    state_.Settings.Passes = passes;
    for (const int id : {IDC_frmDriveWipe_opt3, IDC_frmDriveWipe_opt5, IDC_frmDriveWipe_opt7})
      EXPECT_EQ(IsTicked(Open(), id), id == option) << passes;
    Press(Open(), IDC_frmDriveWipe_opt3);
    Press(Open(), IDC_frmDriveWipe_cmdOK);
    EXPECT_EQ(state_.FreeSpacePasses, 3);
    EXPECT_EQ(state_.Settings.Passes, passes) << "it isn't the default from now on";
  }
}

TEST_F(frmDriveWipeTest, OkTakesTheDriveAndTheLevel) {
  const std::pair<int, int> kLevels[] = {
      {IDC_frmDriveWipe_opt3, 3}, {IDC_frmDriveWipe_opt5, 5}, {IDC_frmDriveWipe_opt7, 7}};
  for (const auto& [option, level] : kLevels) {
    Press(Open(), option);
    Open().ICDrives.Select(3);
    Press(Open(), IDC_frmDriveWipe_cmdOK);
    EXPECT_FALSE(Default<frmDriveWipe>::IsLoaded());
    EXPECT_EQ(state_.FreeSpaceDrive, "E:\\");
    EXPECT_EQ(state_.FreeSpacePasses, level);
  }
}

TEST_F(frmDriveWipeTest, DriveIsGivenInCapitals) {
  drives_.types = {{"c:\\", kDriveFixed}};
  Press(Open(), IDC_frmDriveWipe_cmdOK);
  EXPECT_EQ(state_.FreeSpaceDrive, "C:\\");
}

TEST_F(frmDriveWipeTest, LoadCancelAndTheCloseBoxLeaveNoDrive) {
  state_.FreeSpaceDrive = "D:\\";
  Open();
  EXPECT_EQ(state_.FreeSpaceDrive, "") << "after the load";
  state_.FreeSpaceDrive = "D:\\";
  Press(Open(), IDC_frmDriveWipe_cmdCancel);
  EXPECT_FALSE(Default<frmDriveWipe>::IsLoaded());
  EXPECT_EQ(state_.FreeSpaceDrive, "") << "after Cancel";
  Close(Open());
  EXPECT_FALSE(Default<frmDriveWipe>::IsLoaded());
  EXPECT_EQ(state_.FreeSpaceDrive, "") << "after the close box";
}

TEST_F(frmDriveWipeTest, HelpAsksForItsTopicAndLeavesTheDialogOpen) {
  Press(Open(), IDC_frmDriveWipe_cmdHelp);
  Press(Open(), IDC_frmDriveWipe_cmdHelp);
  EXPECT_THAT(asked_, ElementsAre("help: topic 10", "help: topic 10"));
  EXPECT_TRUE(Default<frmDriveWipe>::IsLoaded());
}

TEST_F(frmDriveWipeTest, TabGoesFromTheDriveOverTheLevelToTheButtons) {
  Open().Show();
  EXPECT_THAT(TabOrder(Open()),
              ElementsAre(IDC_frmDriveWipe_ICDrives, IDC_frmDriveWipe_opt3, IDC_frmDriveWipe_cmdOK,
                          IDC_frmDriveWipe_cmdCancel, IDC_frmDriveWipe_cmdHelp));
  state_.Settings.Passes = 7;
  Open().Unload();
  Open().Show();
  EXPECT_THAT(TabOrder(Open()), Contains(IDC_frmDriveWipe_opt7)) << "the chosen one is the group's stop";
}

// The focus goes to the list inside, which has no label of its own.
TEST_F(frmDriveWipeTest, ListOfDrivesIsNamedForScreenReaders) {
  const NameService service;
  const HWND drives = Item(Open(), IDC_frmDriveWipe_ICDrives);
  const auto inside = reinterpret_cast<HWND>(::SendMessageW(drives, CBEM_GETCOMBOCONTROL, 0, 0));
  EXPECT_EQ(service.NameOf(inside), "Drive:");
  Open().Unload();
  EXPECT_TRUE(service.IsEmpty());
}

TEST_F(frmDriveWipeTest, FocusStartsOnTheDrives) {
  Open().Show();
  PumpMessages();
  EXPECT_EQ(::GetFocus(), DropDown());
}

TEST_F(frmDriveWipeTest, ArrowKeyChoosesTheNextDrive) {
  Open().Show();
  ::SendMessageW(DropDown(), WM_KEYDOWN, VK_DOWN, 0);
  EXPECT_EQ(Open().ICDrives.Selected(), 2);
}

TEST_F(frmDriveWipeTest, LettersChooseTheirDrive) {
  Open().Show();
  for (const auto& [letter, item] : {std::pair{L'e', 3}, {L'C', 1}, {L'd', 2}, {L'x', 2}}) {
    ::SendMessageW(DropDown(), WM_CHAR, static_cast<WPARAM>(letter), 0);
    EXPECT_EQ(Open().ICDrives.Selected(), item) << static_cast<char>(letter);
  }
}

TEST_F(frmDriveWipeTest, DropDownShowsAllItems) {
  drives_.types = {{"A:\\", kDriveRemovable},
                   {"C:\\", kDriveFixed},
                   {"D:\\", kDriveRemote},
                   {"E:\\", kDriveRemovable},
                   {"F:\\", kDriveUnknown}};
  Open().Show();
  ::SendMessageW(Open().ICDrives.Handle(), CB_SHOWDROPDOWN, TRUE, 0);
  PumpMessages();
  EXPECT_TRUE(::SendMessageW(Open().ICDrives.Handle(), CB_GETDROPPEDSTATE, 0, 0));
  COMBOBOXINFO info{};
  info.cbSize = sizeof info;
  ASSERT_TRUE(::GetComboBoxInfo(DropDown(), &info));
  RECT list{};
  ::GetClientRect(info.hwndList, &list);
  const auto height = ::SendMessageW(info.hwndList, LB_GETITEMHEIGHT, 0, 0);
  EXPECT_GE(list.bottom, height * 5);
  EXPECT_LT(list.bottom, height * 6);
  const RECT place = Window(Open().ICDrives.Handle()).ScreenRect();
  EXPECT_LT(place.bottom - place.top, height * 2) << "closed it is one line high";
  TakePicture(Window(Open().Handle()), "frmDriveWipe-open");
}

TEST(Win32DrivesTest, TellsTheDrivesOfTheSystem) {
  Win32Drives drives;
  const std::vector<std::string> names = SplitDriveNames(drives.LogicalDriveStrings());
  EXPECT_THAT(names, ElementsAre("C:\\"));
  EXPECT_EQ(drives.DriveType("C:\\"), kDriveFixed);
  EXPECT_EQ(drives.DriveType("Q:\\"), kDriveNoRoot);
}

}  // namespace
}  // namespace zq::test
