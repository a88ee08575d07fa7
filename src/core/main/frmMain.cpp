// The main window's life: start, placement, messages, shutdown.
#include "core/main/frmMain.h"

#include <windowsx.h>

#include <algorithm>

#include "ancillary/frmWelcome.h"
#include "core/main/CommandTable.h"
#include "core/main/Placement.h"
#include "core/main/StartUp.h"
#include "core/state/Settings.h"
#include "jobs/ToolNames.h"
#include "platform/Process.h"
#include "platform/Regional.h"
#include "platform/Twips.h"

namespace zq {
namespace {

// The arrangement of the bars, in the program's folder.
constexpr const char* kBarLayoutFile = "Zeroquill.dsl";

constexpr int kDesignWidthTwips = 10710;
constexpr int kDesignHeightTwips = 6930;

// The user can't make the client area narrower, nor the list lower: the list's headers can be read, some rows
// be seen, and each band has room for a tool.
constexpr int kLeastWidthTwips = 6900;
constexpr int kLeastListHeightTwips = 1800;

ScreenPlace PlaceFrom(const RECT& rect) {
  return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

// Where a minimised window comes back to, as the system tells it.
ScreenPlace RestoredPlace(const RECT& told) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  if (!::GetMonitorInfoW(::MonitorFromRect(&told, MONITOR_DEFAULTTONEAREST), &monitor))
    return PlaceFrom(told);
  return FromWorkArea(PlaceFrom(told), PlaceFrom(monitor.rcMonitor), PlaceFrom(monitor.rcWork));
}

int SystemDpi() {
  return static_cast<int>(::GetDpiForSystem());
}

}  // namespace

frmMain::frmMain(AppState& state, Platform& platform, Help* help)
    : Form(IDD_frmMain),
      state_(state),
      platform_(platform),
      dataFolder_(platform.files, state),
      jobList_(platform.regional),
      icons_(*this, platform.regional),
      addFiles_(state, jobList_, platform.files, icons_, platform.regional, this),
      jobLifecycle_(state, jobList_, platform, icons_, DockStudio1, *this),
      reportWindow_(*this),
      jobWipe_(state, jobList_, platform, *this, statusWindow_, &reportWindow_),
      freeSpaceWipe_(state, platform, *this, spaceStatusWindow_),
      wipeHandlers_(jobWipe_, freeSpaceWipe_),
      SFD1(wipeHandlers_),
      explorerManager_(state, platform),
      commands_({.state = state,
                 .jobList = jobList_,
                 .platform = platform,
                 .tools = DockStudio1,
                 .addFiles = addFiles_,
                 .jobLifecycle = jobLifecycle_,
                 .jobWipe = jobWipe_,
                 .freeSpaceWipe = freeSpaceWipe_,
                 .explorerManager = explorerManager_,
                 .mainWindow = *this,
                 .folderDialog = *this,
                 .windows = *this,
                 .reportViewer = &reportWindow_,
                 .help = help}) {
  jobWipe_.SetEngine(&SFD1, &SFD1);
  freeSpaceWipe_.SetEngine(&SFD1);
  jobList_.SetView(this);

  DockStudio1.ToolClick = [this](std::string_view tool) { commands_.Run(tool); };
  DockStudio1.MenuOpening = [this](std::string_view menu) { commands_.MenuOpening(menu); };
  DockStudio1.ClientAreaChanged = [this] { DockStudio1_ClientAreaChanged(); };
  ConnectList();
}

// The order of these steps is fixed: later ones read what earlier ones set.
void frmMain::Load() {
  // 512 is ICC_USEREX_CLASSES; a failure changes nothing.
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_USEREX_CLASSES};
  ::InitCommonControlsEx(&classes);

  windowIcons_.Show(Handle(), Dpi());
  LoadRowPictures();
  ShowColumns();
  DockStudio1.Create(Handle(), MainBars(), Dpi());
  SetDesignSize();

  if (platform_.process.EarlierInstanceRuns()) {
    state_.SecondInstance = true;
    Unload();
    return;
  }
  state_.SecondInstance = false;
  state_.AppFolder = AppFolderFrom(platform_.process.ApplicationPath());

  const LoadedSettings loaded = LoadSettings(dataFolder_, platform_.registry);
  state_.Settings = loaded.settings;
  state_.Placement = loaded.placement;
  FirstRun = loaded.firstRun;
  RestoreWindowPlacement();
  LoadBarLayout();

  if (state_.Settings.GridLines == 1) ListView1.SetGridLines(true);
  if (state_.Settings.Maximize == 1) maximiseAtShow_ = true;
  if (state_.Settings.ToolBars != 1) DockStudio1.SetVisualStyle(kVisualStyleOff);

  state_.CurrentJobName = "";
  state_.JobSaved = true;
  state_.LastWiping = "N/A";
  EnsureDataFolders(dataFolder_);
  commands_.UpdateTools();
  TakeDrops();
  ReadCommandLine();
}

void frmMain::ReadCommandLine() {
  const std::string commandLine = platform_.process.CommandLine();
  if (commandLine.empty()) return;
  // A job file is opened instead of being added, so its path never becomes a row.
  if (jobLifecycle_.OpenJobFromCommandLine(commandLine)) return;
  addFiles_.AddCommandLineItems(commandLine);
  commands_.UpdateTools();
}

// The list may be opened to what a lesser program posts: nothing of it is wiped before the user has been
// asked.
void frmMain::TakeDrops() {
  const auto dropped = [this](const DroppedPaths& paths) { ListView1_OLEDragDrop(paths); };
  if (platform_.shellDrops.HeldBack() &&
      postedDrops_.Register(ListView1.Handle(), platform_.shellDrops, dropped))
    return;
  dropTarget_.Register(ListView1.Handle(), dropped);
}

void frmMain::Show() {
  const bool again = shown_;
  shown_ = true;
  ShowAs(maximiseAtShow_ && !again ? SW_SHOWMAXIMIZED : SW_SHOW);
  // A cancelled wipe leaves the program without a window, and another one in front. Where the user has gone
  // on to that one by himself, the system only makes our button on the task bar flash.
  if (again) ::SetForegroundWindow(Handle());
}

void frmMain::LoadBarLayout() {
  if (dataFolder_.HasFile(kBarLayoutFile))
    DockStudio1.LoadLayout(platform_.files, dataFolder_.PathOf(kBarLayoutFile));
}

void frmMain::DpiChanged() {
  windowIcons_.Show(Handle(), Dpi());
  LoadRowPictures();
  DockStudio1.OnDpiChanged(Dpi());
}

// The window around a client area of this size, in pixels.
SIZE frmMain::WindowAround(int clientWidth, int clientHeight) const {
  RECT rect{0, 0, clientWidth, clientHeight};
  ::AdjustWindowRectExForDpi(&rect, static_cast<DWORD>(::GetWindowLongW(Handle(), GWL_STYLE)), TRUE,
                             static_cast<DWORD>(::GetWindowLongW(Handle(), GWL_EXSTYLE)),
                             static_cast<UINT>(Dpi()));
  return {rect.right - rect.left, rect.bottom - rect.top};
}

void frmMain::SetDesignSize() {
  const SIZE size =
      WindowAround(TwipsToPixels(kDesignWidthTwips, Dpi()), TwipsToPixels(kDesignHeightTwips, Dpi()));
  ::SetWindowPos(Handle(), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// A saved place is taken as it is, however small.
void frmMain::LimitSize(POINT& leastSize) const {
  if (restoringPlace_) return;
  const SIZE least = WindowAround(TwipsToPixels(kLeastWidthTwips, Dpi()),
                                  DockStudio1.Height() + TwipsToPixels(kLeastListHeightTwips, Dpi()));
  leastSize = {std::max(leastSize.x, least.cx), std::max(leastSize.y, least.cy)};
}

void frmMain::RestoreWindowPlacement() {
  if (state_.Settings.Maximize == 1) return;  // a later step maximises
  const WindowPlacement& placement = state_.Placement;
  if (OpensMaximised(placement)) {
    maximiseAtShow_ = true;
    return;
  }
  // Whether this lies on a screen isn't looked at.
  const ScreenPlace place = PlaceOf(placement, SystemDpi());
  // On a monitor of another resolution the first move has the window scaled to it: the second one gives it
  // its size again.
  restoringPlace_ = true;
  for (int move = 0; move < 2; ++move) {
    ::SetWindowPos(Handle(), nullptr, place.left, place.top, place.width, place.height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
  }
  restoringPlace_ = false;
}

WindowPlacement frmMain::CurrentPlacement() const {
  if (::IsZoomed(Handle()) || (maximiseAtShow_ && !shown_)) return {};
  if (::IsIconic(Handle())) {
    // A minimised window stands at a place off all screens; what is wanted is where it comes back to.
    WINDOWPLACEMENT system{};
    system.length = sizeof system;
    ::GetWindowPlacement(Handle(), &system);
    if (system.flags & WPF_RESTORETOMAXIMIZED) return {};
    return PlacementOf(RestoredPlace(system.rcNormalPosition), SystemDpi());
  }
  RECT rect{};
  ::GetWindowRect(Handle(), &rect);
  return PlacementOf(PlaceFrom(rect), SystemDpi());
}

bool frmMain::QueryUnload(CloseReason) {
  return commands_.CloseForExit();
}

void frmMain::Unloaded() {
  dropTarget_.Revoke();
  postedDrops_.Revoke();
  if (state_.Settings.Maximize != 1) state_.Placement = CurrentPlacement();
  if (!state_.SecondInstance) {
    WriteSettings(dataFolder_, state_.Settings);
    WritePlacement(dataFolder_, state_.Placement);
    DockStudio1.SaveLayout(platform_.files, dataFolder_.PathOf(kBarLayoutFile));
  }
  platform_.process.End();
}

void frmMain::Activated() {
  if (FirstRun && shown_) ::PostMessageW(Handle(), kShowWelcome, 0, 0);
}

std::optional<LRESULT> frmMain::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      if (HIWORD(wParam) > 1 || !DockStudio1.OnCommand(LOWORD(wParam))) return std::nullopt;
      return 0;
    case WM_NOTIFY:
      if (!DockStudio1.OnNotify(*reinterpret_cast<const NMHDR*>(lParam))) return std::nullopt;
      return 0;
    case WM_INITMENUPOPUP:
      DockStudio1.OnInitMenuPopup(reinterpret_cast<HMENU>(wParam));
      return std::nullopt;
    case WM_MEASUREITEM:
      if (!DockStudio1.OnMeasureItem(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam))) return std::nullopt;
      return TRUE;
    case WM_DRAWITEM:
      if (!DockStudio1.OnDrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam))) return std::nullopt;
      return TRUE;
    case WM_THEMECHANGED:
    case WM_SYSCOLORCHANGE:
      DockStudio1.OnLookChanged();
      return std::nullopt;
    case WM_GETMINMAXINFO:
      LimitSize(reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize);
      return 0;
    case WM_SIZE:
      DockStudio1.OnSize();
      return 0;
    case WM_CONTEXTMENU:
      if (reinterpret_cast<HWND>(wParam) != ListView1.Handle()) return std::nullopt;
      DockStudio1.PopupMenu(kActionsMenu, lParam == -1 ? ListView1.MenuPlace()
                                                       : POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_QUERYENDSESSION:
      return commands_.AllowSessionEnd() ? TRUE : FALSE;
    case WM_ENDSESSION:
      // Without a yes to it the session goes on after all, and so does the job.
      if (!wParam) return 0;
      commands_.SessionEnds();
      Unloaded();
      return 0;
    case kShowWelcome:
      if (FirstRun) {
        FirstRun = false;  // before the window runs: each activation asks again
        Default<frmWelcome>::Touch().ShowModal(Handle());
      }
      return 0;
    case kShowRows:
      ShowPendingRows();
      return 0;
    default:
      return std::nullopt;
  }
}

}  // namespace zq
