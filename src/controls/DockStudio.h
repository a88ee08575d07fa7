// DockStudio: the bars of the main window. Menu bar, tool bar and status bar hold named tools; one event
// tells which tool was activated, whether by menu, tool bar or shortcut. The tool bar stands in bands, one
// for each group of tools, which the user can move, put into rows and make wider; what doesn't fit a band
// is behind its chevron.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/BarLayout.h"
#include "core/main/CommandTable.h"
#include "jobs/CommandState.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

class Files;

inline constexpr int kVisualStyleOff = 0;
inline constexpr int kVisualStyleThemed = 1;

class DockStudio final : public ToolStates {
 public:
  std::function<void(std::string_view toolName)> ToolClick;
  std::function<void(std::string_view menuName)> MenuOpening;
  std::function<void()> ClientAreaChanged;

  // Makes the bars in `owner`, whose client area they share with whatever fills the rest.
  void Create(HWND owner);

  // The owner hands over what arrives for the bars; true: taken.
  bool OnCommand(WORD commandId);
  bool OnNotify(const NMHDR& header);
  void OnInitMenuPopup(HMENU menu);
  void OnSize();
  void OnDpiChanged();
  bool TranslateShortcut(MSG& message);

  void SetEnabled(std::string_view toolName, bool enabled) override;
  bool IsEnabled(std::string_view toolName) const;
  void SetChecked(std::string_view toolName, bool checked);
  void SetPanelText(std::string_view panelName, const std::string& text) override;

  // Opens a menu of the menu bar at a place on the screen. Its tool, if one is chosen, comes by ToolClick.
  void PopupMenu(std::string_view menuName, POINT place);

  // Bars with visual styles, or without (kVisualStyleOff).
  void SetVisualStyle(int visualStyle);

  // The arrangement of the bands, from and to a file. A file that is missing, damaged or foreign changes
  // nothing; a file that can't be written is left alone.
  void LoadLayout(Files& files, const std::string& path);
  void SaveLayout(Files& files, const std::string& path) const;

  // What the bars leave, in pixels of the owner's client area.
  RECT ClientArea() const;

 private:
  struct ToolEntry {
    const Tool* tool = nullptr;
    HMENU menu = nullptr;    // null for a tool of the tool bar
    HWND toolBar = nullptr;  // the band's window; null for a tool of a menu
    UniqueBitmap bitmap;
  };

  void CreateMenuBar();
  void CreateToolBar();
  HWND CreateBand();
  void AddButton(HWND toolBar, const Tool& tool, int picture);
  void CreateStatusBar();
  void CreateShortcuts();
  void LoadToolPictures();
  void SizeBands();
  WPARAM IndexOfBand(int band) const;
  void ShowWholeBand(WPARAM place);
  BarLayout CurrentLayout() const;
  void ArrangeBands(const BarLayout& layout);
  void ShowHiddenTools(const NMREBARCHEVRON& chevron);
  void LayOut();
  void LayOutPanels();
  UINT CommandIdOf(std::string_view toolName) const;  // 0 for an unknown name
  int Dpi() const { return static_cast<int>(::GetDpiForWindow(owner_)); }

  HWND owner_ = nullptr;
  HMENU menuBar_ = nullptr;
  std::vector<HMENU> menus_;        // in the order of Menus()
  std::vector<ToolEntry> entries_;  // the command id is the place here plus the first id
  HWND rebar_ = nullptr;
  std::vector<HWND> toolBars_;  // the windows of the bands; band 1 is the first
  HWND statusBar_ = nullptr;
  HIMAGELIST toolBarImages_ = nullptr;
  UniqueAcceleratorTable shortcuts_;
  int bandDpi_ = 96;  // that the bands are sized for
  bool layingOut_ = false;
};

}  // namespace zq
