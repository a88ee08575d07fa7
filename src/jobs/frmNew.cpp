#include "jobs/frmNew.h"

namespace zq {

frmNew::frmNew(AppState& state) : Form(IDD_frmNew), state_(state) {
  StartAt(cmdOK);  // and not at the box that is first in the order
  CloseOnEsc();
  cmdOK.Click = [this] { cmdOK_Click(); };
}

// A tick is lost where the window is closed in any other way.
void frmNew::cmdOK_Click() {
  state_.Settings.SkipNewJobNote = static_cast<std::int16_t>(chkShow.Value());
  Unload();
}

}  // namespace zq
