// frmQuick: the QuickWipe Bin, a small window that stays in front and wipes what is dropped on its picture.
#pragma once

#include <functional>

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/DropTarget.h"
#include "controls/ProgressBarEx.h"
#include "controls/StatusBar.h"
#include "controls/ToolTip.h"
#include "controls/WindowIcons.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "quickbin/DropWipe.h"
#include "resource.h"
#include "wipe/SFD1.h"

namespace zq {

class frmQuick final : public Form, private QuickBinWindow {
 public:
  // `mainHandle`: the main window's, to which the progress bar goes when it isn't shown.
  frmQuick(AppState& state, Platform& platform, MainWindow& mainWindow, ToolStates& tools,
           std::function<HWND()> mainHandle);

  ProgressBarEx pb1{*this, IDC_frmQuick_pb1};
  Image imgDrop{*this, IDC_frmQuick_imgDrop, "imgdrop"};
  StatusBar StatusBar1;

  // A drop on the picture. It returns when the last file is done.
  void imgDrop_OLEDragDrop(const DroppedPaths& paths) { dropWipe_.Drop(paths); }

 private:
  Image Image1{*this, IDC_frmQuick_Image1, "imgquick"};
  Control dropFrame{*this, IDC_frmQuick_dropFrame};
  Button cmdCancel{*this, IDC_frmQuick_cmdCancel};

  void Load() override;
  bool QueryUnload(CloseReason reason) override;
  void Unloaded() override;
  void DpiChanged() override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  bool TranslateShortcut(MSG& message) override;
  void StatusBar1_PanelClick(int panel);
  void LeavePlaceToSystem();
  void SetTopmost(bool topmost);
  void TakeDrops();
  void FrameThePicture(bool framed);

  // QuickBinWindow
  void SetCancelEnabled(bool enabled) override;
  void SetDropEnabled(bool enabled) override { dropTarget_.SetAccepting(enabled); }
  void ShowStatusProgress(bool show) override;
  void SetMessage(const std::string& text) override;
  void SetProgress(int percent) override;

  AppState& state_;
  Platform& platform_;
  MainWindow& mainWindow_;
  ToolStates& tools_;
  std::function<HWND()> mainHandle_;
  DropWipe dropWipe_;
  zq::SFD1 SFD1;
  DropTarget dropTarget_;
  ToolTip imgDropTip_;
  WindowIcons windowIcons_;
};

}  // namespace zq
