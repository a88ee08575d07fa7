// frmDriveWipe: asks for the drive whose free space is to be wiped, and for the security level.
#pragma once

#include <string>
#include <vector>

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/ImageCombo.h"
#include "controls/ImageList.h"
#include "controls/OptionButton.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "resource.h"

namespace zq {

class Drives;
class Help;

// What was chosen is in FreeSpaceDrive and FreeSpacePasses; the drive is empty if nothing was.
class frmDriveWipe final : public Form {
 public:
  // `help` may be null: the Help button then does nothing.
  frmDriveWipe(AppState& state, Platform& platform, Drives& drives, Help* help = nullptr);

  ImageCombo ICDrives{*this, IDC_frmDriveWipe_ICDrives};

 private:
  Image Image1{*this, IDC_frmDriveWipe_Image1, "imgdrivewipe"};
  OptionButton opt3{*this, IDC_frmDriveWipe_opt3};
  OptionButton opt5{*this, IDC_frmDriveWipe_opt5};
  OptionButton opt7{*this, IDC_frmDriveWipe_opt7};
  Button cmdOK{*this, IDC_frmDriveWipe_cmdOK};
  Button cmdCancel{*this, IDC_frmDriveWipe_cmdCancel};
  Button cmdHelp{*this, IDC_frmDriveWipe_cmdHelp};

  // Raises ElementNotFound if there is no item to preselect, as on a system without a drive C.
  void Load() override;
  void DpiChanged() override;
  void LoadPictures();
  std::vector<std::string> GetDriveNames();
  void FillDriveList();
  void cmdOK_Click();
  void cmdCancel_Click();
  void cmdHelp_Click();

  AppState& state_;
  Platform& platform_;
  Drives& drives_;
  Help* help_;
  ImageList ImageList1;
};

}  // namespace zq
