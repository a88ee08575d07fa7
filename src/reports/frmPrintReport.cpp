#include "reports/frmPrintReport.h"

#include "controls/Pictures.h"
#include "core/state/DataFolder.h"
#include "platform/MessageBoxes.h"
#include "platform/Regional.h"
#include "reports/ReportData.h"
#include "reports/ReportDocument.h"

namespace zq {
namespace {

// The logo's size on paper: 3 1/8 by 5/8 inches, so that it stands above the page header. The picture is fine
// enough for printers.
constexpr const char* kLogo = "logo192";
constexpr Twips kLogoWidth = 4500;
constexpr Twips kLogoHeight = 900;

}  // namespace

frmPrintReport::frmPrintReport(AppState& state, Platform& platform)
    : Form(IDD_frmPrintReport),
      VS1(*this, IDC_frmPrintReport_VS1,
          [&platform](std::string_view text) { return platform.regional.UpperCase(text); }),
      state_(state),
      platform_(platform) {
  const auto tell = [this](const char* title) {
    return [this, title](const std::string& text) {
      platform_.messageBoxes.Show({.text = text, .title = title, .icon = MessageIcon::Exclamation});
    };
  };
  VS1.PrintFailed = tell("Print");
  VS1.CopyFailed = tell("Copy");
}

void frmPrintReport::Load() {
  windowIcons_.Show(Handle(), Dpi());
  ClearReportLists();
  const ReportData report = DecodeReport(DataFolder(platform_.files, state_).Read(kReportFile));
  BuildReportDocument(VS1, report, state_.Settings.ReportFontSize, state_.AppFolder,
                      LoadDocumentPicture(kLogo, kLogoWidth, kLogoHeight));
  VS1.SetZoom(100);
  ClearReportLists();
}

void frmPrintReport::DpiChanged() {
  windowIcons_.Show(Handle(), Dpi());
}

void frmPrintReport::ClearReportLists() {
  state_.ReportFolders.Clear();
  state_.ReportFiles.Clear();
  state_.ReportErrors.Clear();
}

std::optional<LRESULT> frmPrintReport::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      if (wParam != SIZE_MINIMIZED && VS1.Handle()) VS1.Move({0, 0, LOWORD(lParam), HIWORD(lParam)});
      return 0;
    case WM_GETMINMAXINFO: {
      // No narrower than the tool bar.
      RECT least{0, 0, VS1.LeastWidth(), VS1.LeastWidth() / 2};
      ::AdjustWindowRectExForDpi(&least, static_cast<DWORD>(::GetWindowLongW(Handle(), GWL_STYLE)), FALSE,
                                 static_cast<DWORD>(::GetWindowLongW(Handle(), GWL_EXSTYLE)),
                                 ::GetDpiForWindow(Handle()));
      auto* info = reinterpret_cast<MINMAXINFO*>(lParam);
      info->ptMinTrackSize = {least.right - least.left, least.bottom - least.top};
      return 0;
    }
    default:
      return std::nullopt;
  }
}

bool frmPrintReport::TranslateShortcut(MSG& message) {
  return ::IsChild(VS1.Handle(), message.hwnd) && VS1.TranslateKey(message);
}

}  // namespace zq
