// frmQuickErrors: the lines of what the Bin's last drop left undone.
#pragma once

#include <string>
#include <vector>

#include "controls/Control.h"
#include "controls/Default.h"
#include "resource.h"

namespace zq {

class frmQuickErrors final : public Form {
 public:
  frmQuickErrors();

  void AddLines(const std::vector<std::string>& lines);

 private:
  Control List1{*this, IDC_frmQuickErrors_List1};
  Button cmdOK{*this, IDC_frmQuickErrors_cmdOK};

  void DpiChanged() override { FitWidth(); }
  void FitWidth();

  std::vector<std::string> lines_;
};

}  // namespace zq
