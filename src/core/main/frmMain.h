// frmMain: the main window. It owns the job list, the bars and the engine, hands what the user asks for to
// the commands, and opens the windows that they need.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Control.h"
#include "controls/Default.h"
#include "controls/DockStudio.h"
#include "controls/DropTarget.h"
#include "controls/ImageList.h"
#include "controls/ListView.h"
#include "controls/PostedDrops.h"
#include "controls/WindowIcons.h"
#include "core/main/Commands.h"
#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/MainWindow.h"
#include "jobs/AddFiles.h"
#include "jobs/FileIcons.h"
#include "jobs/JobLifecycle.h"
#include "jobs/JobList.h"
#include "platform/Platform.h"
#include "preferences/ExplorerManager.h"
#include "reports/frmPrintReport.h"
#include "resource.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/JobWipe.h"
#include "wipe/SFD1.h"
#include "wipe/WipeHandlers.h"
#include "wipe/frmSpaceStatus.h"
#include "wipe/frmStatus.h"

namespace zq {

class Help;

class frmMain final : public Form,
                      public MainWindow,
                      private JobListView,
                      private FolderDialog,
                      private JobDialogs,
                      private CommandWindows,
                      private IconPainter {
 public:
  // `SFD1` stands for the engine; tests pass one of their own.
  // `help` may be null: the Help menu's commands then do nothing.
  frmMain(AppState& state, Platform& platform, Help* help = nullptr);

  void Show() override;
  void Hide() override { Form::Hide(); }
  void SetGridLines(bool gridLines) override { ListView1.SetGridLines(gridLines); }
  void SetVisualStyle(int visualStyle) override { DockStudio1.SetVisualStyle(visualStyle); }
  std::int16_t WindowState() const override;
  void SetWindowState(std::int16_t windowState) override;

  JobWipe& Driver() { return jobWipe_; }
  FreeSpaceWipe& FreeSpaceDriver() { return freeSpaceWipe_; }

  // The main list and its bars, as tests look at them.
  JobList& Jobs() { return jobList_; }
  DockStudio DockStudio1;
  ListView ListView1{*this, IDC_frmMain_ListView1};

 private:
  // Posted to ourselves: work that must not run inside the message that asked for it.
  static constexpr UINT kShowWelcome = WM_APP + 1;
  static constexpr UINT kShowRows = WM_APP + 2;

  // Life of the window.
  void Load() override;
  bool QueryUnload(CloseReason reason) override;
  void Unloaded() override;
  void Activated() override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  bool TranslateShortcut(MSG& message) override { return DockStudio1.TranslateShortcut(message); }
  void ReadCommandLine();
  void LoadBarLayout();
  void TakeDrops();

  void DpiChanged() override;

  // The window's size and place, in twips outside, in pixels inside.
  SIZE WindowAround(int clientWidth, int clientHeight) const;
  void SetDesignSize();
  void LimitSize(POINT& leastSize) const;
  void RestoreWindowPlacement();
  WindowPlacement CurrentPlacement() const;

  // The list: how it asks for its rows, its columns, the rows' pictures as large as the resolution wants.
  void ConnectList();
  void ShowColumns();
  void LoadRowPictures();
  void DockStudio1_ClientAreaChanged();
  void ListView1_OLEDragDrop(const DroppedPaths& paths);

  // JobListView
  void RowsChanged() override;
  void RowChanged(int row) override;
  void SelectionChanged(int row) override;
  void RevealRows(int first) override;
  void ShowPendingRows() override;

  // FolderDialog
  void ShowFor(const std::string& path) override;

  // JobDialogs
  void ShowSave() override;
  void ShowNew() override;
  void ShowOpenJob() override;

  // CommandWindows
  AddFilesChoice ShowAddFiles(const std::string& initialFolder) override;
  void ShowEdit(const JobRow& row) override;
  void ShowDriveWipe() override;
  void ShowPreferences() override;
  void ShowQuickBin() override;
  void CloseQuickBin() override;
  void ShowAbout() override;
  void CloseMainWindow() override;
  void DoBusily(const std::function<void()>& work) override;

  // IconPainter
  std::string WindowsFolder() override;
  void MeasureSmallIcon(const std::string& key, std::uint32_t flags) override;
  void DrawFileIcon(const std::string& key, std::uint32_t flags) override;
  void AddDrawnPicture() override;

  AppState& state_;
  Platform& platform_;
  DataFolder dataFolder_;
  JobList jobList_;
  FileIcons icons_;
  AddFiles addFiles_;
  JobLifecycle jobLifecycle_;
  StatusWindow statusWindow_;
  ReportWindow reportWindow_;
  JobWipe jobWipe_;
  SpaceStatusWindow spaceStatusWindow_;
  FreeSpaceWipe freeSpaceWipe_;
  WipeHandlers wipeHandlers_;
  zq::SFD1 SFD1;
  ExplorerManager explorerManager_;
  Commands commands_;
  ImageList ImageList3;
  struct DrawnIcon {
    std::string key;
    std::uint32_t flags;
  };
  std::vector<DrawnIcon> drawnIcons_;  // of the pictures behind the built-in two
  UniqueIcon drawnIcon_;               // what Picture2, the drawing surface of the icon cache, holds
  int IconWidth = 0;
  int IconHeight = 0;
  DropTarget dropTarget_;
  PostedDrops postedDrops_;
  WindowIcons windowIcons_;
  bool FirstRun = false;  // the welcome is still owed
  bool maximiseAtShow_ = false;
  bool shown_ = false;
  bool restoringPlace_ = false;
  bool rowsPending_ = false;  // the list control hasn't been told the number of rows yet
};

}  // namespace zq
