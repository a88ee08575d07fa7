#include "ancillary/frmAbout.h"

namespace zq {

frmAbout::frmAbout() : Form(IDD_frmAbout) {
  cmdOK.Click = [this] { Unload(); };
}

}  // namespace zq
