#include "ancillary/frmWelcome.h"

#include "core/state/DataFolder.h"
#include "core/state/Settings.h"
#include "platform/RunTimeError.h"

namespace zq {

frmWelcome::frmWelcome(AppState& state, Platform& platform)
    : Form(IDD_frmWelcome), state_(state), platform_(platform) {
  CloseOnEsc();
  cmdOK.Click = [this] { Unload(); };
}

void frmWelcome::Load() {
  Label1.SetBold();
  CentrePicture();
}

void frmWelcome::CentrePicture() {
  RECT client{};
  ::GetClientRect(Handle(), &client);
  RECT picture = Image1.Place();
  const LONG width = picture.right - picture.left;
  picture.left = (client.right - width) / 2;
  picture.right = picture.left + width;
  Image1.Move(picture);
}

void frmWelcome::Unloaded() {
  try {
    DataFolder(platform_.files, state_).Write(kFirstRunMarker, "");
  } catch (const RunTimeError&) {
    // Where the folder can't be written, the welcome comes back at each start.
  }
}

}  // namespace zq
