#include "controls/DockStudio.h"

#include <uxtheme.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr UINT kFirstCommandId = 0x4000;

}  // namespace

// The tools of the menus are the first commands, then those of the tool bar.
void DockStudio::Create(HWND owner, BarsDesign design, int dpi) {
  owner_ = owner;
  dpi_ = dpi;
  design_ = std::move(design);
  menuBar_.Create(owner, design_.menus, kFirstCommandId);
  toolBands_.Create(owner, design_.toolBar, design_.bandNames,
                    static_cast<UINT>(kFirstCommandId + menuBar_.Tools().size()));
  statusBar_.Create(owner, design_.panels, dpi);
  CreateShortcuts();
  LoadPictures();
  LayOut();
}

void DockStudio::CreateShortcuts() {
  std::vector<ACCEL> keys;
  for (UINT id = kFirstCommandId; const Tool* tool = ToolOf(id); ++id) {
    const Shortcut& shortcut = tool->shortcut;
    if (!shortcut.key) continue;
    keys.push_back(
        {static_cast<BYTE>(FVIRTKEY | (shortcut.ctrl ? FCONTROL : 0)), shortcut.key, static_cast<WORD>(id)});
  }
  shortcuts_.Reset(::CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size())));
}

void DockStudio::LoadPictures() {
  menuBar_.LoadPictures(dpi_);
  toolBands_.LoadPictures(dpi_);
}

void DockStudio::LoadLayout(Files& files, const std::string& path) {
  try {
    const std::optional<BarLayout> layout = DecodeBarLayout(files.Read(path), toolBands_.Count());
    if (!layout) return;
    toolBands_.Arrange(*layout);
    LayOut();
  } catch (const RunTimeError&) {
    // The bars stay as they are.
  }
}

void DockStudio::SaveLayout(Files& files, const std::string& path) const {
  try {
    files.Write(path, EncodeBarLayout(toolBands_.Layout()));
  } catch (const RunTimeError&) {
    // They come back at the next start as they did at this one.
  }
}

bool DockStudio::OnCommand(WORD commandId) {
  const Tool* tool = ToolOf(commandId);
  if (!tool) return false;
  if (ToolClick) ToolClick(tool->name);
  return true;
}

bool DockStudio::OnNotify(const NMHDR& header) {
  if (toolBands_.OnTip(header)) return true;
  if (header.hwndFrom != toolBands_.Handle()) return false;
  switch (header.code) {
    case static_cast<UINT>(RBN_HEIGHTCHANGE):
      LayOut();
      return true;
    case static_cast<UINT>(RBN_CHEVRONPUSHED):
      toolBands_.ShowHiddenTools(reinterpret_cast<const NMREBARCHEVRON&>(header));
      return true;
    default:
      return false;
  }
}

void DockStudio::OnInitMenuPopup(HMENU menu) {
  const std::string_view name = menuBar_.NameOf(menu);
  if (!name.empty() && MenuOpening) MenuOpening(name);
}

bool DockStudio::OnMeasureItem(MEASUREITEMSTRUCT& item) const {
  return menuBar_.OnMeasureItem(item) || toolBands_.OnMeasureItem(item);
}

bool DockStudio::OnDrawItem(const DRAWITEMSTRUCT& item) const {
  return menuBar_.OnDrawItem(item) || toolBands_.OnDrawItem(item);
}

void DockStudio::OnLookChanged() {
  LoadPictures();
}

void DockStudio::OnSize() {
  LayOut();
}

// The bars at the width of the owner, then the rest of its area. The tool bar tells of another height while
// it is being moved.
void DockStudio::LayOut() {
  if (std::exchange(layingOut_, true)) return;
  toolBands_.LayOut();
  statusBar_.LayOut(dpi_);
  layingOut_ = false;
  if (ClientAreaChanged) ClientAreaChanged();
}

void DockStudio::OnDpiChanged(int dpi) {
  const BarLayout layout = toolBands_.Layout();
  dpi_ = dpi;
  LoadPictures();
  toolBands_.Arrange(layout);
  LayOut();
}

bool DockStudio::TranslateShortcut(MSG& message) {
  return ::TranslateAcceleratorW(owner_, shortcuts_.Get(), &message) != 0;
}

const Tool* DockStudio::ToolOf(UINT commandId) const {
  if (commandId < kFirstCommandId) return nullptr;
  const std::size_t place = commandId - kFirstCommandId;
  const std::size_t onMenus = menuBar_.Tools().size();
  if (place < onMenus) return menuBar_.Tools()[place];
  if (place < onMenus + toolBands_.Tools().size()) return toolBands_.Tools()[place - onMenus];
  return nullptr;
}

UINT DockStudio::CommandIdOf(std::string_view toolName) const {
  for (UINT id = kFirstCommandId; const Tool* tool = ToolOf(id); ++id) {
    if (tool->name == toolName) return id;
  }
  return 0;
}

void DockStudio::SetEnabled(std::string_view toolName, bool enabled) {
  const UINT id = CommandIdOf(toolName);
  if (menuBar_.Holds(id)) menuBar_.SetEnabled(id, enabled);
  if (toolBands_.Holds(id)) toolBands_.SetEnabled(id, enabled);
}

bool DockStudio::IsEnabled(std::string_view toolName) const {
  const UINT id = CommandIdOf(toolName);
  if (menuBar_.Holds(id)) return menuBar_.IsEnabled(id);
  return toolBands_.Holds(id) && toolBands_.IsEnabled(id);
}

void DockStudio::SetChecked(std::string_view toolName, bool checked) {
  const UINT id = CommandIdOf(toolName);
  if (menuBar_.Holds(id)) menuBar_.SetChecked(id, checked);
  if (toolBands_.Holds(id)) toolBands_.SetChecked(id, checked);
}

void DockStudio::SetPanelText(std::string_view panelName, const std::string& text) {
  statusBar_.SetText(panelName, text);
}

void DockStudio::PopupMenu(std::string_view menuName, POINT place) {
  const HMENU menu = menuBar_.MenuOf(menuName);
  if (!menu) return;
  ::TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, place.x, place.y, 0, owner_,
                   nullptr);
}

void DockStudio::SetVisualStyle(int visualStyle) {
  // An empty theme name takes the theme off a window; null gives it back.
  const wchar_t* theme = visualStyle == kVisualStyleOff ? L" " : nullptr;
  toolBands_.SetTheme(theme);
  ::SetWindowTheme(statusBar_.Handle(), theme, theme);
  LayOut();
  // Not each of them draws its ground and its grippers anew by itself.
  for (const HWND bar : {toolBands_.Handle(), statusBar_.Handle()})
    ::RedrawWindow(bar, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

int DockStudio::Height() const {
  int height = 0;
  for (const HWND bar : {toolBands_.Handle(), statusBar_.Handle()}) {
    RECT rect{};
    if (::GetWindowRect(bar, &rect)) height += rect.bottom - rect.top;
  }
  return height;
}

RECT DockStudio::ClientArea() const {
  RECT area{};
  ::GetClientRect(owner_, &area);
  RECT bar{};
  ::GetWindowRect(toolBands_.Handle(), &bar);
  area.top += bar.bottom - bar.top;
  ::GetWindowRect(statusBar_.Handle(), &bar);
  area.bottom = std::max(area.top, area.bottom - (bar.bottom - bar.top));
  return area;
}

}  // namespace zq
