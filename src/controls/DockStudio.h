// DockStudio: the bars of a window. Menu bar, tool bar and status bar hold named tools; one event tells which
// tool was activated, whether by menu, tool bar or shortcut.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <string>
#include <string_view>

#include "controls/MenuBar.h"
#include "controls/StatusBar.h"
#include "controls/ToolBands.h"
#include "controls/ToolStates.h"
#include "controls/Tools.h"
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

  // Makes the bars in `owner`, whose client area they share with whatever fills the rest, for `dpi`.
  void Create(HWND owner, BarsDesign design, int dpi);

  // The owner hands over what arrives for the bars; true: taken.
  bool OnCommand(WORD commandId);
  bool OnNotify(const NMHDR& header);
  void OnInitMenuPopup(HMENU menu);
  bool OnMeasureItem(MEASUREITEMSTRUCT& item) const;
  bool OnDrawItem(const DRAWITEMSTRUCT& item) const;
  void OnLookChanged();  // other colours or another theme
  void OnSize();
  void OnDpiChanged(int dpi);
  bool TranslateShortcut(MSG& message);

  // By name; a name that no tool or panel has does nothing.
  void SetEnabled(std::string_view toolName, bool enabled) override;
  bool IsEnabled(std::string_view toolName) const;
  void SetChecked(std::string_view toolName, bool checked) override;
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

  // Of tool bar and status bar together, in pixels.
  int Height() const;

 private:
  void CreateShortcuts();
  void LoadPictures();
  void LayOut();
  const Tool* ToolOf(UINT commandId) const;           // null for a command of somebody else's
  UINT CommandIdOf(std::string_view toolName) const;  // 0 for an unknown name

  BarsDesign design_;
  HWND owner_ = nullptr;
  int dpi_ = 96;  // that the bars are sized for
  MenuBar menuBar_;
  ToolBands toolBands_;
  StatusBar statusBar_;
  UniqueAcceleratorTable shortcuts_;
  bool layingOut_ = false;
};

}  // namespace zq
