// frmOpenJob: lists the saved jobs, and chooses one of them.
#pragma once

#include <string>
#include <vector>

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/ImageList.h"
#include "controls/ListView.h"
#include "core/state/AppState.h"
#include "jobs/JobFile.h"
#include "platform/Platform.h"
#include "resource.h"

namespace zq {

class Help;

class frmOpenJob final : public Form {
 public:
  // `help` may be null: the Help button then does nothing.
  frmOpenJob(AppState& state, Platform& platform, Help* help = nullptr);

  ListView ListView1{*this, IDC_frmOpenJob_ListView1};

 private:
  Image Image1{*this, IDC_frmOpenJob_Image1, "imgopenjob"};
  Button cmdOK{*this, IDC_frmOpenJob_cmdOK};
  Button cmdCancel{*this, IDC_frmOpenJob_cmdCancel};
  Button cmdHelp{*this, IDC_frmOpenJob_cmdHelp};

  void Load() override;
  void DpiChanged() override;
  void LoadPictures();
  void SizeColumns();
  int FindJob(const std::string& prefix, int start) const;
  void ListView1_DblClick();
  void cmdOK_Click();
  void cmdHelp_Click();

  AppState& state_;
  Platform& platform_;
  Help* help_;
  ImageList ImageList1;
  std::vector<SavedJob> jobs_;  // the rows
};

}  // namespace zq
