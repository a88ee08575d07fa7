// frmPrintReport: the report of the last job wipe, in a preview.
#pragma once

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/VSPrinter.h"
#include "controls/WindowIcons.h"
#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "reports/ReportViewer.h"
#include "resource.h"

namespace zq {

// The document is made in the load, from the report data as it stands then, and the rich text file is written
// with it. A window that is loaded keeps its document, hidden or shown, until it is closed.
class frmPrintReport final : public Form {
 public:
  frmPrintReport(AppState& state, Platform& platform);

  VSPrinter VS1;

 private:
  void Load() override;
  void DpiChanged() override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  bool TranslateShortcut(MSG& message) override;
  void ClearReportLists();

  AppState& state_;
  Platform& platform_;
  WindowIcons windowIcons_;
};

// The window as the driver and the main window's command see it.
class ReportWindow final : public ReportViewer {
 public:
  explicit ReportWindow(const Form& owner) : owner_(owner) {}
  void Load() override { Default<frmPrintReport>::Touch(); }
  void ShowModal() override { Default<frmPrintReport>::Touch().ShowModal(owner_.Handle()); }

 private:
  const Form& owner_;
};

}  // namespace zq
