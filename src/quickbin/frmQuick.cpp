#include "quickbin/frmQuick.h"

#include <utility>

#include "controls/ScreenReaderName.h"
#include "quickbin/frmQuickErrors.h"

namespace zq {
namespace {

constexpr std::string_view kMessagePanel = "1";
constexpr int kMessageIndex = 0;
constexpr int kProgressIndex = 1;
constexpr Panel kPanels[] = {{kMessagePanel, "", 0}, {"2", "", 110}};

constexpr const char* kNothingReachesUs =
    "Nothing can be dropped here: Zeroquill runs with administrator rights.  The Bin wipes without a "
    "question, so "
    "it takes nothing from programs with lesser rights, Windows Explorer among them.  Start Zeroquill "
    "without "
    "administrator rights to use the Bin.";

// Where the system puts a window that leaves the place to it, which only overlapped ones can.
POINT SystemPlace(int width, int height) {
  const HWND probe = ::CreateWindowExW(0, WC_STATICW, nullptr, WS_OVERLAPPED, CW_USEDEFAULT, CW_USEDEFAULT,
                                       width, height, nullptr, nullptr, nullptr, nullptr);
  RECT place{};
  ::GetWindowRect(probe, &place);
  ::DestroyWindow(probe);
  return {place.left, place.top};
}

}  // namespace

frmQuick::frmQuick(AppState& state, Platform& platform, MainWindow& mainWindow, ToolStates& tools,
                   std::function<HWND()> mainHandle)
    : Form(IDD_frmQuick),
      state_(state),
      platform_(platform),
      mainWindow_(mainWindow),
      tools_(tools),
      mainHandle_(std::move(mainHandle)),
      dropWipe_(state, platform, *this),
      SFD1(dropWipe_) {
  dropWipe_.SetEngine(&SFD1, &SFD1);
  cmdCancel.Click = [this] { Unload(); };
}

void frmQuick::Load() {
  windowIcons_.Show(Handle(), Dpi());
  StatusBar1.Create(Handle(), kPanels, Dpi());
  LeavePlaceToSystem();
  SetTopmost(true);
  if (state_.Settings.ProgressBars != 1) pb1.UsePlainLook();
  NameForScreenReaders(imgDrop.Handle(), "Drop files here");
  NameForScreenReaders(pb1.Handle(), "Progress");
  TakeDrops();
  state_.QuickBinOpen = true;
}

// No way round is opened here as it is for the job list: what comes in is wiped without a question, and a
// lesser program could post it. Without a drop target the pointer shows that nothing can be dropped.
void frmQuick::TakeDrops() {
  if (platform_.shellDrops.HeldBack()) {
    imgDropTip_.Create(imgDrop.Handle(), kNothingReachesUs, Dpi());
    return;
  }
  dropTarget_.Register(
      imgDrop.Handle(), [this](const DroppedPaths& paths) { imgDrop_OLEDragDrop(paths); },
      DropTarget::When::Inside);
  dropTarget_.Hover = [this](bool over) { FrameThePicture(over); };
}

// Painted at once: behind the hover's end comes the wipe, and what the frame leaves would be blank as long.
void frmQuick::FrameThePicture(bool framed) {
  dropFrame.SetVisible(framed);
  ::RedrawWindow(Handle(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void frmQuick::DpiChanged() {
  windowIcons_.Show(Handle(), Dpi());
  StatusBar1.LayOut(Dpi());
  imgDropTip_.SetDpi(Dpi());
}

void frmQuick::LeavePlaceToSystem() {
  RECT rect{};
  ::GetWindowRect(Handle(), &rect);
  const POINT place = SystemPlace(rect.right - rect.left, rect.bottom - rect.top);
  ::SetWindowPos(Handle(), nullptr, place.x, place.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void frmQuick::SetTopmost(bool topmost) {
  ::SetWindowPos(Handle(), topmost ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
}

// While a wipe runs, the button is disabled, and the close box does as little as it.
bool frmQuick::QueryUnload(CloseReason reason) {
  return reason != CloseReason::User || cmdCancel.IsEnabled();
}

void frmQuick::Unloaded() {
  dropTarget_.Revoke();
  SetTopmost(false);
  LeaveQuickBin(state_, mainWindow_, tools_);
  // After a drop it lies in the main window, and wouldn't go with this one.
  ::DestroyWindow(pb1.Handle());
}

std::optional<LRESULT> frmQuick::OnMessage(UINT message, WPARAM, LPARAM lParam) {
  if (message != WM_NOTIFY) return std::nullopt;
  const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
  if (header.hwndFrom != StatusBar1.Handle() || header.code != NM_CLICK) return std::nullopt;
  StatusBar1_PanelClick(static_cast<int>(reinterpret_cast<const NMMOUSE*>(lParam)->dwItemSpec));
  return TRUE;
}

// For who has no mouse: the status bar doesn't take the focus.
bool frmQuick::TranslateShortcut(MSG& message) {
  if (message.message != WM_KEYDOWN || message.wParam != 'E') return false;
  if (::GetKeyState(VK_CONTROL) >= 0 || ::GetKeyState(VK_MENU) < 0) return false;
  StatusBar1_PanelClick(kMessageIndex);
  return true;
}

void frmQuick::StatusBar1_PanelClick(int panel) {
  if (panel != kMessageIndex || StatusBar1.Text(panel) != kLastOperationErrors) return;
  frmQuickErrors& errors = Default<frmQuickErrors>::Touch();
  errors.AddLines(dropWipe_.Errors());
  errors.ShowModal(Handle());
}

void frmQuick::SetCancelEnabled(bool enabled) {
  cmdCancel.SetEnabled(enabled);
  ::UpdateWindow(cmdCancel.Handle());
}

void frmQuick::ShowStatusProgress(bool show) {
  if (!show) {
    ::SetParent(pb1.Handle(), mainHandle_());
    pb1.SetVisible(false);
    ::UpdateWindow(StatusBar1.Handle());
    return;
  }
  const RECT panel = StatusBar1.PanelPlace(kProgressIndex);
  ::SetParent(pb1.Handle(), StatusBar1.Handle());
  pb1.Move(panel);
  pb1.SetVisible(true);
  pb1.SetValue(0);
  ::UpdateWindow(pb1.Handle());
}

void frmQuick::SetMessage(const std::string& text) {
  StatusBar1.SetText(kMessagePanel, text);
  ::UpdateWindow(StatusBar1.Handle());
}

void frmQuick::SetProgress(int percent) {
  pb1.SetValue(percent);
  ::UpdateWindow(pb1.Handle());
}

}  // namespace zq
