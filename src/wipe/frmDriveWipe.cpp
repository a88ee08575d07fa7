#include "wipe/frmDriveWipe.h"

#include "core/state/Help.h"
#include "platform/Drives.h"
#include "wipe/DriveList.h"

namespace zq {
namespace {

// In the order of their numbers.
constexpr const char* kDrivePictures[] = {"drivehard", "drivefloppy", "driveremote", "driveremovable"};

}  // namespace

frmDriveWipe::frmDriveWipe(AppState& state, Platform& platform, Drives& drives, Help* help)
    : Form(IDD_frmDriveWipe), state_(state), platform_(platform), drives_(drives), help_(help) {
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { cmdCancel_Click(); };
  cmdHelp.Click = [this] { cmdHelp_Click(); };
}

void frmDriveWipe::Load() {
  LoadPictures();
  FillDriveList();

  const std::int32_t level = state_.Settings.Passes;
  (level == 3 ? opt3 : level == 5 ? opt5 : opt7).SetValue(true);
  state_.FreeSpaceDrive = "";
}

void frmDriveWipe::LoadPictures() {
  ImageList former;  // shown until the control has the new ones
  former.Swap(ImageList1);
  ImageList1.Create(ScaleForDpi(16, Dpi()));
  for (const char* picture : kDrivePictures) ImageList1.AddPicture(picture);
  ICDrives.SetImageList(ImageList1.Handle());
}

void frmDriveWipe::DpiChanged() {
  LoadPictures();
  ICDrives.FitList();
}

std::vector<std::string> frmDriveWipe::GetDriveNames() {
  return SplitDriveNames(drives_.LogicalDriveStrings());
}

void frmDriveWipe::FillDriveList() {
  const DriveList list = ListDrives(GetDriveNames(), drives_, platform_.regional);
  for (const DriveItem& item : list.items) ICDrives.Add(item.text, item.image);
  ICDrives.FitList();
  ICDrives.Select(list.preselection);
}

void frmDriveWipe::cmdOK_Click() {
  state_.FreeSpacePasses = opt3.Value() ? 3 : opt5.Value() ? 5 : 7;
  state_.FreeSpaceDrive = DriveOf(ICDrives.ItemText(ICDrives.Selected()), platform_.regional);
  Unload();
}

void frmDriveWipe::cmdCancel_Click() {
  state_.FreeSpaceDrive = "";
  Unload();
}

void frmDriveWipe::cmdHelp_Click() {
  if (help_) help_->ShowTopic(kHelpOnDriveWipe);
}

}  // namespace zq
