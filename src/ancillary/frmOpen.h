// frmOpen: the splash, and the start-up object of the program. It turns away a second instance, and
// brings up the main window after two seconds.
#pragma once

#include <functional>

#include "controls/Control.h"
#include "controls/Default.h"
#include "platform/Platform.h"
#include "platform/win32/UniqueHandle.h"
#include "resource.h"

namespace zq {

class frmOpen final : public Form {
 public:
  // `showMain` creates the main window and shows it.
  frmOpen(Platform& platform, std::function<void()> showMain);

 private:
  Control Picture1{*this, IDC_frmOpen_Picture1};

  void Load() override;
  void DpiChanged() override { ShowPicture(); }
  void Unloaded() override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void Timer1_Timer();
  void ShowPicture();

  Platform& platform_;
  std::function<void()> showMain_;
  UniqueBitmap picture_;
  bool PrevInstanceFound = false;
  bool timerFired_ = false;
};

}  // namespace zq
