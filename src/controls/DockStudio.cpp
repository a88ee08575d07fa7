#include "controls/DockStudio.h"

#include <uxtheme.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "controls/Pictures.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr UINT kFirstCommandId = 0x4000;
constexpr int kSmallPicture = 16;  // pixels at 96 dpi
constexpr int kLargePicture = 32;

struct Panel {
  std::string_view name;
  const char* text;
  int width;  // at 96 dpi; 0 takes what the others leave
};

constexpr Panel kPanels[] = {
    {"Static1", "Press F1 for Help", 150},
    {"Static2", "", 0},
    {"Static3", "0 Items", 130},
};

struct KeyName {
  std::uint16_t key;
  const char* name;
};

constexpr KeyName kKeyNames[] = {{VK_DELETE, "Delete"}, {VK_F1, "F1"}, {VK_F10, "F10"}};

// "Ctrl+N", as a menu shows it behind the caption.
std::string ShortcutText(const Shortcut& shortcut) {
  for (const KeyName& row : kKeyNames) {
    if (row.key == shortcut.key) return (shortcut.ctrl ? "Ctrl+" : "") + std::string(row.name);
  }
  return (shortcut.ctrl ? "Ctrl+" : "") + std::string(1, static_cast<char>(shortcut.key));
}

}  // namespace

void DockStudio::Create(HWND owner) {
  owner_ = owner;
  CreateMenuBar();
  CreateToolBar();
  CreateStatusBar();
  CreateShortcuts();
  LoadToolPictures();
  LayOut();
}

void DockStudio::CreateMenuBar() {
  menuBar_ = ::CreateMenu();
  for (const Menu& menu : Menus()) {
    const HMENU popup = ::CreatePopupMenu();
    for (const Tool& tool : menu.tools) {
      if (tool.name.empty()) {
        ::AppendMenuA(popup, MF_SEPARATOR, 0, nullptr);
        continue;
      }
      std::string text(tool.caption);
      if (tool.shortcut.key) text += "\t" + ShortcutText(tool.shortcut);
      ::AppendMenuA(popup, MF_STRING, kFirstCommandId + entries_.size(), text.c_str());
      entries_.push_back({&tool, popup, nullptr, {}});
    }
    menus_.push_back(popup);
    ::AppendMenuA(menuBar_, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), std::string(menu.caption).c_str());
  }
  ::SetMenu(owner_, menuBar_);
}

void DockStudio::CreateToolBar() {
  rebar_ = ::CreateWindowExA(0, REBARCLASSNAMEA, nullptr,
                             WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | RBS_VARHEIGHT |
                                 RBS_BANDBORDERS | CCS_NODIVIDER | CCS_TOP,
                             0, 0, 0, 0, owner_, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  HWND toolBar = CreateBand();
  int picture = 0;
  for (const Tool& tool : ToolBarTools()) {
    if (tool.name.empty()) {
      toolBar = CreateBand();
    } else {
      AddButton(toolBar, tool, picture++);
    }
  }
}

// The window of a further band, which a separator of the tool bar begins.
HWND DockStudio::CreateBand() {
  const HWND toolBar = ::CreateWindowExA(0, TOOLBARCLASSNAMEA, "ToolBar1",
                                         WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS |
                                             CCS_NODIVIDER | CCS_NORESIZE | CCS_NOPARENTALIGN,
                                         0, 0, 0, 0, rebar_, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  ::SendMessageA(toolBar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  // What isn't whole on the band is in the chevron's menu.
  ::SendMessageA(toolBar, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_HIDECLIPPEDBUTTONS);
  const auto font = ::SendMessageA(owner_, WM_GETFONT, 0, 0);
  ::SendMessageA(toolBar, WM_SETFONT, static_cast<WPARAM>(font), FALSE);
  toolBars_.push_back(toolBar);
  return toolBar;
}

void DockStudio::AddButton(HWND toolBar, const Tool& tool, int picture) {
  const std::string caption(tool.caption);
  TBBUTTON button{};
  button.iBitmap = picture;
  button.idCommand = static_cast<int>(kFirstCommandId + entries_.size());
  button.fsState = TBSTATE_ENABLED;
  button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE;
  button.iString = reinterpret_cast<INT_PTR>(caption.c_str());
  ::SendMessageA(toolBar, TB_ADDBUTTONSA, 1, reinterpret_cast<LPARAM>(&button));
  entries_.push_back({&tool, nullptr, toolBar, {}});
}

void DockStudio::CreateStatusBar() {
  statusBar_ = ::CreateWindowExA(0, STATUSCLASSNAMEA, nullptr, WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0,
                                 0, 0, owner_, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  LayOutPanels();
  for (const Panel& panel : kPanels) SetPanelText(panel.name, panel.text);
}

void DockStudio::CreateShortcuts() {
  std::vector<ACCEL> keys;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Shortcut& shortcut = entries_[i].tool->shortcut;
    if (!shortcut.key) continue;
    keys.push_back({static_cast<BYTE>(FVIRTKEY | (shortcut.ctrl ? FCONTROL : 0)), shortcut.key,
                    static_cast<WORD>(kFirstCommandId + i)});
  }
  shortcuts_.Reset(::CreateAcceleratorTableA(keys.data(), static_cast<int>(keys.size())));
}

// Pictures in the size of the owner's DPI, small ones for the menus and large ones for the tool bar.
void DockStudio::LoadToolPictures() {
  const int small = ScaleForDpi(kSmallPicture, Dpi());
  const int large = ScaleForDpi(kLargePicture, Dpi());
  const HIMAGELIST images = ::ImageList_Create(large, large, ILC_COLOR32 | ILC_MASK, 8, 4);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    ToolEntry& entry = entries_[i];
    if (!entry.menu) {
      const UniqueIcon icon = LoadPicture(std::string(entry.tool->largePicture).c_str(), large);
      ::ImageList_ReplaceIcon(images, -1, icon.Get());
      continue;
    }
    if (entry.tool->smallPicture.empty()) continue;
    entry.bitmap = LoadMenuPicture(std::string(entry.tool->smallPicture).c_str(), small);
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_BITMAP;
    item.hbmpItem = entry.bitmap.Get();
    ::SetMenuItemInfoA(entry.menu, static_cast<UINT>(kFirstCommandId + i), FALSE, &item);
  }
  for (const HWND toolBar : toolBars_) {
    ::SendMessageA(toolBar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
    ::SendMessageA(toolBar, TB_AUTOSIZE, 0, 0);
  }
  if (toolBarImages_) ::ImageList_Destroy(toolBarImages_);
  toolBarImages_ = images;
  SizeBands();
}

// Makes the bands where they are missing, and tells the bar how large each one's tools are now.
void DockStudio::SizeBands() {
  bandDpi_ = Dpi();
  // At its width, or the bands would be squeezed as they come.
  RECT client{};
  ::GetClientRect(owner_, &client);
  ::SetWindowPos(rebar_, nullptr, 0, 0, client.right, 0, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  const bool exist = ::SendMessageA(rebar_, RB_GETBANDCOUNT, 0, 0) > 0;
  for (std::size_t i = 0; i < toolBars_.size(); ++i) {
    SIZE size{};
    ::SendMessageA(toolBars_[i], TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
    RECT firstButton{};
    ::SendMessageA(toolBars_[i], TB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&firstButton));
    REBARBANDINFOA band{};
    band.cbSize = sizeof band;
    band.fMask = RBBIM_CHILD | RBBIM_CHILDSIZE | RBBIM_IDEALSIZE | RBBIM_STYLE | RBBIM_ID;
    band.fStyle = RBBS_GRIPPERALWAYS | RBBS_USECHEVRON;
    band.hwndChild = toolBars_[i];
    band.cxMinChild = static_cast<UINT>(firstButton.right);
    band.cyMinChild = static_cast<UINT>(size.cy);
    band.cxIdeal = static_cast<UINT>(size.cx);
    band.wID = static_cast<UINT>(i + 1);
    if (exist) band.fMask &= ~static_cast<UINT>(RBBIM_STYLE);  // it holds where the user began a row
    const WPARAM place = exist ? IndexOfBand(static_cast<int>(i + 1)) : static_cast<WPARAM>(-1);
    ::SendMessageA(rebar_, exist ? RB_SETBANDINFOA : RB_INSERTBANDA, place, reinterpret_cast<LPARAM>(&band));
  }
  if (exist) return;
  for (WPARAM place = 0; place < toolBars_.size(); ++place) ShowWholeBand(place);
}

WPARAM DockStudio::IndexOfBand(int band) const {
  return static_cast<WPARAM>(::SendMessageA(rebar_, RB_IDTOINDEX, static_cast<WPARAM>(band), 0));
}

// As wide as its tools and what the bar draws around them, which only the bar itself knows.
void DockStudio::ShowWholeBand(WPARAM place) {
  REBARBANDINFOA band{};
  band.cbSize = sizeof band;
  band.fMask = RBBIM_IDEALSIZE | RBBIM_HEADERSIZE | RBBIM_CHILD;
  ::SendMessageA(rebar_, RB_GETBANDINFOA, place, reinterpret_cast<LPARAM>(&band));
  band.fMask = RBBIM_SIZE;
  band.cx = band.cxIdeal + band.cxHeader;
  ::SendMessageA(rebar_, RB_SETBANDINFOA, place, reinterpret_cast<LPARAM>(&band));
  RECT tools{};
  ::GetClientRect(band.hwndChild, &tools);
  const int missing = static_cast<int>(band.cxIdeal) - static_cast<int>(tools.right);
  if (missing <= 0) return;
  band.cx += static_cast<UINT>(missing);
  ::SendMessageA(rebar_, RB_SETBANDINFOA, place, reinterpret_cast<LPARAM>(&band));
}

BarLayout DockStudio::CurrentLayout() const {
  BarLayout layout;
  const auto count = static_cast<WPARAM>(::SendMessageA(rebar_, RB_GETBANDCOUNT, 0, 0));
  for (WPARAM place = 0; place < count; ++place) {
    REBARBANDINFOA band{};
    band.cbSize = sizeof band;
    band.fMask = RBBIM_ID | RBBIM_SIZE | RBBIM_STYLE;
    ::SendMessageA(rebar_, RB_GETBANDINFOA, place, reinterpret_cast<LPARAM>(&band));
    layout.push_back({static_cast<int>(band.wID), (band.fStyle & RBBS_BREAK) != 0,
                      ::MulDiv(static_cast<int>(band.cx), 96, bandDpi_)});
  }
  return layout;
}

void DockStudio::ArrangeBands(const BarLayout& layout) {
  WPARAM place = 0;
  for (const BandLayout& wanted : layout)
    ::SendMessageA(rebar_, RB_MOVEBAND, IndexOfBand(wanted.band), static_cast<LPARAM>(place++));
  place = 0;
  for (const BandLayout& wanted : layout) {
    REBARBANDINFOA band{};
    band.cbSize = sizeof band;
    band.fMask = RBBIM_SIZE | RBBIM_STYLE;
    band.fStyle = RBBS_GRIPPERALWAYS | RBBS_USECHEVRON | (wanted.newRow ? RBBS_BREAK : 0u);
    band.cx = static_cast<UINT>(ScaleForDpi(wanted.width, bandDpi_));
    ::SendMessageA(rebar_, RB_SETBANDINFOA, place++, reinterpret_cast<LPARAM>(&band));
  }
}

void DockStudio::LoadLayout(Files& files, const std::string& path) {
  try {
    const std::optional<BarLayout> layout =
        DecodeBarLayout(files.Read(path), static_cast<int>(toolBars_.size()));
    if (!layout) return;
    ArrangeBands(*layout);
    LayOut();
  } catch (const RunTimeError&) {
    // The bars stay as they are.
  }
}

void DockStudio::SaveLayout(Files& files, const std::string& path) const {
  try {
    files.Write(path, EncodeBarLayout(CurrentLayout()));
  } catch (const RunTimeError&) {
    // They come back at the next start as they did at this one.
  }
}

// The tools that a narrow band doesn't show whole, as a menu under its chevron.
void DockStudio::ShowHiddenTools(const NMREBARCHEVRON& chevron) {
  const HWND toolBar = toolBars_[chevron.wID - 1];
  RECT shown{};
  ::GetClientRect(toolBar, &shown);
  const UniqueMenu menu(::CreatePopupMenu());
  std::vector<UniqueBitmap> bitmaps;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].toolBar != toolBar) continue;
    const auto id = static_cast<UINT>(kFirstCommandId + i);
    RECT button{};
    ::SendMessageA(toolBar, TB_GETRECT, id, reinterpret_cast<LPARAM>(&button));
    if (button.right <= shown.right) continue;
    std::string caption(entries_[i].tool->caption);
    bitmaps.push_back(LoadMenuPicture(std::string(entries_[i].tool->smallPicture).c_str(),
                                      ScaleForDpi(kSmallPicture, Dpi())));
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_ID | MIIM_STRING | MIIM_STATE | MIIM_BITMAP;
    item.wID = id;
    item.fState = ::SendMessageA(toolBar, TB_ISBUTTONENABLED, id, 0) ? MFS_ENABLED : MFS_GRAYED;
    item.hbmpItem = bitmaps.back().Get();
    item.dwTypeData = caption.data();
    ::InsertMenuItemA(menu.Get(), static_cast<UINT>(::GetMenuItemCount(menu.Get())), TRUE, &item);
  }
  TPMPARAMS keepFree{sizeof keepFree, chevron.rc};
  ::MapWindowPoints(rebar_, HWND_DESKTOP, reinterpret_cast<POINT*>(&keepFree.rcExclude), 2);
  ::TrackPopupMenuEx(menu.Get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL, keepFree.rcExclude.left,
                     keepFree.rcExclude.bottom, owner_, &keepFree);
}

void DockStudio::LayOutPanels() {
  RECT client{};
  ::GetClientRect(owner_, &client);
  int fixed = 0;
  for (const Panel& panel : kPanels) fixed += ScaleForDpi(panel.width, Dpi());
  std::array<int, std::size(kPanels)> rights{};
  int right = 0;
  for (std::size_t i = 0; i < std::size(kPanels); ++i) {
    const int width = kPanels[i].width ? ScaleForDpi(kPanels[i].width, Dpi())
                                       : std::max(0, static_cast<int>(client.right) - fixed);
    right += width;
    rights[i] = i + 1 < std::size(kPanels) ? right : -1;
  }
  ::SendMessageA(statusBar_, SB_SETPARTS, rights.size(), reinterpret_cast<LPARAM>(rights.data()));
}

bool DockStudio::OnCommand(WORD commandId) {
  if (commandId < kFirstCommandId || commandId >= kFirstCommandId + entries_.size()) return false;
  if (ToolClick) ToolClick(entries_[commandId - kFirstCommandId].tool->name);
  return true;
}

bool DockStudio::OnNotify(const NMHDR& header) {
  if (header.hwndFrom != rebar_) return false;
  switch (header.code) {
    case static_cast<UINT>(RBN_HEIGHTCHANGE):
      LayOut();
      return true;
    case static_cast<UINT>(RBN_CHEVRONPUSHED):
      ShowHiddenTools(reinterpret_cast<const NMREBARCHEVRON&>(header));
      return true;
    default:
      return false;
  }
}

void DockStudio::OnInitMenuPopup(HMENU menu) {
  for (std::size_t i = 0; i < menus_.size(); ++i) {
    if (menus_[i] == menu && MenuOpening) MenuOpening(Menus()[i].name);
  }
}

void DockStudio::OnSize() {
  LayOut();
}

// The bars at the width of the owner, then the rest of its area. Another width can make other rows of the
// bands, and so another height, of which the bar tells while it is being moved.
void DockStudio::LayOut() {
  if (std::exchange(layingOut_, true)) return;
  RECT client{};
  ::GetClientRect(owner_, &client);
  for (int tries = 0; tries < 2; ++tries) {
    const auto height = static_cast<int>(::SendMessageA(rebar_, RB_GETBARHEIGHT, 0, 0));
    ::MoveWindow(rebar_, 0, 0, client.right, height, TRUE);
  }
  ::SendMessageA(statusBar_, WM_SIZE, 0, 0);
  LayOutPanels();
  layingOut_ = false;
  if (ClientAreaChanged) ClientAreaChanged();
}

void DockStudio::OnDpiChanged() {
  const BarLayout layout = CurrentLayout();
  LoadToolPictures();
  ArrangeBands(layout);
  LayOut();
}

bool DockStudio::TranslateShortcut(MSG& message) {
  return ::TranslateAcceleratorA(owner_, shortcuts_.Get(), &message) != 0;
}

UINT DockStudio::CommandIdOf(std::string_view toolName) const {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].tool->name == toolName) return static_cast<UINT>(kFirstCommandId + i);
  }
  return 0;
}

void DockStudio::SetEnabled(std::string_view toolName, bool enabled) {
  const UINT id = CommandIdOf(toolName);
  if (!id) return;
  if (const HMENU menu = entries_[id - kFirstCommandId].menu) {
    ::EnableMenuItem(menu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
  } else {
    ::SendMessageA(entries_[id - kFirstCommandId].toolBar, TB_ENABLEBUTTON, id, MAKELPARAM(enabled, 0));
  }
}

bool DockStudio::IsEnabled(std::string_view toolName) const {
  const UINT id = CommandIdOf(toolName);
  if (!id) return false;
  if (const HMENU menu = entries_[id - kFirstCommandId].menu)
    return (::GetMenuState(menu, id, MF_BYCOMMAND) & MF_GRAYED) == 0;
  return ::SendMessageA(entries_[id - kFirstCommandId].toolBar, TB_ISBUTTONENABLED, id, 0) != 0;
}

void DockStudio::SetChecked(std::string_view toolName, bool checked) {
  const UINT id = CommandIdOf(toolName);
  if (!id) return;
  if (const HMENU menu = entries_[id - kFirstCommandId].menu) {
    ::CheckMenuItem(menu, id, MF_BYCOMMAND | static_cast<UINT>(checked ? MF_CHECKED : MF_UNCHECKED));
  } else {
    ::SendMessageA(entries_[id - kFirstCommandId].toolBar, TB_CHECKBUTTON, id, MAKELPARAM(checked, 0));
  }
}

void DockStudio::SetPanelText(std::string_view panelName, const std::string& text) {
  for (std::size_t i = 0; i < std::size(kPanels); ++i) {
    if (kPanels[i].name == panelName)
      ::SendMessageA(statusBar_, SB_SETTEXTA, i, reinterpret_cast<LPARAM>(text.c_str()));
  }
}

void DockStudio::PopupMenu(std::string_view menuName, POINT place) {
  for (std::size_t i = 0; i < menus_.size(); ++i) {
    if (Menus()[i].name != menuName) continue;
    ::TrackPopupMenu(menus_[i], TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, place.x, place.y, 0, owner_,
                     nullptr);
  }
}

void DockStudio::SetVisualStyle(int visualStyle) {
  // An empty theme name takes the theme off a window; null gives it back.
  const wchar_t* theme = visualStyle == kVisualStyleOff ? L" " : nullptr;
  for (const HWND bar : {rebar_, statusBar_}) ::SetWindowTheme(bar, theme, theme);
  for (const HWND bar : toolBars_) ::SetWindowTheme(bar, theme, theme);
  LayOut();
}

RECT DockStudio::ClientArea() const {
  RECT area{};
  ::GetClientRect(owner_, &area);
  RECT bar{};
  ::GetWindowRect(rebar_, &bar);
  area.top += bar.bottom - bar.top;
  ::GetWindowRect(statusBar_, &bar);
  area.bottom = std::max(area.top, area.bottom - (bar.bottom - bar.top));
  return area;
}

}  // namespace zq
