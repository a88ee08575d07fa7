#include "controls/ToolBands.h"

#include <uxtheme.h>

#include <algorithm>
#include <string>

#include "controls/MenuBar.h"
#include "controls/Pictures.h"
#include "controls/WindowDc.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// In pixels at 96 dpi.
constexpr int kLargePicture = 32;
constexpr int kButtonMargin = 5;  // on either side of a caption

}  // namespace

void ToolBands::Create(HWND owner, std::span<const Tool> tools, std::span<const std::string_view> names,
                       UINT firstId) {
  owner_ = owner;
  firstId_ = firstId;
  rebar_ = ::CreateWindowExW(0, REBARCLASSNAMEW, nullptr,
                             WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | RBS_VARHEIGHT |
                                 RBS_BANDBORDERS | CCS_NODIVIDER | CCS_TOP,
                             0, 0, 0, 0, owner, nullptr, ::GetModuleHandleW(nullptr), nullptr);
  const auto createBand = [&] {
    return CreateBand(bands_.size() < names.size() ? names[bands_.size()] : std::string_view());
  };
  HWND band = createBand();
  for (const Tool& tool : tools) {
    if (tool.name.empty()) {
      band = createBand();
    } else {
      AddButton(band, tool);
    }
  }
}

// A window's text is what is read out for it.
HWND ToolBands::CreateBand(std::string_view name) {
  const HWND band = ::CreateWindowExW(0, TOOLBARCLASSNAMEW, ToWide(name).c_str(),
                                      WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS |
                                          CCS_NODIVIDER | CCS_NORESIZE | CCS_NOPARENTALIGN,
                                      0, 0, 0, 0, rebar_, nullptr, ::GetModuleHandleW(nullptr), nullptr);
  ::SendMessageW(band, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  ::SendMessageW(band, TB_SETUNICODEFORMAT, TRUE, 0);
  // What isn't whole on the band is in the chevron's menu.
  ::SendMessageW(band, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_HIDECLIPPEDBUTTONS);
  bands_.push_back(band);
  return band;
}

void ToolBands::AddButton(HWND band, const Tool& tool) {
  const std::wstring caption = ToWide(tool.caption);
  TBBUTTON button{};
  button.iBitmap = static_cast<int>(tools_.size());
  button.idCommand = static_cast<int>(firstId_ + tools_.size());
  button.fsState = TBSTATE_ENABLED;
  button.fsStyle = BTNS_BUTTON;
  button.iString = reinterpret_cast<INT_PTR>(caption.c_str());
  ::SendMessageW(band, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
  tools_.push_back(&tool);
  bandOfTool_.push_back(band);
}

void ToolBands::LoadPictures(int dpi) {
  dpi_ = dpi;
  const int large = ScaleForDpi(kLargePicture, dpi);
  const auto font = static_cast<WPARAM>(::SendMessageW(owner_, WM_GETFONT, 0, 0));
  ImageList former;  // shown until the bands have the new one
  former.Swap(pictures_);
  pictures_.Create(large);
  for (const Tool* tool : tools_) pictures_.AddPicture(std::string(tool->largePicture).c_str());
  for (const HWND band : bands_) {
    ::SendMessageW(band, WM_SETFONT, font, FALSE);
    ::SendMessageW(band, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(pictures_.Handle()));
    SizeButtons(band);
    ::SendMessageW(band, TB_AUTOSIZE, 0, 0);
  }
  menuPictures_.Load(tools_, firstId_, dpi, PresentMenuLook());
  SizeBands();
}

// A width for each, since the room that the system gives to captions doesn't grow with the resolution.
void ToolBands::SizeButtons(HWND band) {
  const WindowDc screen(band);
  const SelectedObject font(screen.Get(), reinterpret_cast<HFONT>(::SendMessageW(band, WM_GETFONT, 0, 0)));
  for (std::size_t i = 0; i < tools_.size(); ++i) {
    if (bandOfTool_[i] != band) continue;
    const std::wstring caption = ToWide(tools_[i]->caption);
    SIZE size{};
    ::GetTextExtentPoint32W(screen.Get(), caption.c_str(), static_cast<int>(caption.size()), &size);
    TBBUTTONINFOW button{};
    button.cbSize = sizeof button;
    button.dwMask = TBIF_SIZE;
    button.cx = static_cast<WORD>(std::max<int>(size.cx, ScaleForDpi(kLargePicture, dpi_)) +
                                  2 * ScaleForDpi(kButtonMargin, dpi_));
    ::SendMessageW(band, TB_SETBUTTONINFOW, firstId_ + i, reinterpret_cast<LPARAM>(&button));
  }
}

// Makes the bands where they are missing, and tells the bar how large each one's tools are now.
void ToolBands::SizeBands() {
  // At its width, or the bands would be squeezed as they come.
  RECT client{};
  ::GetClientRect(owner_, &client);
  ::SetWindowPos(rebar_, nullptr, 0, 0, client.right, 0, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  const bool exist = ::SendMessageW(rebar_, RB_GETBANDCOUNT, 0, 0) > 0;
  for (std::size_t i = 0; i < bands_.size(); ++i) {
    SIZE size{};
    ::SendMessageW(bands_[i], TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
    RECT firstButton{};
    ::SendMessageW(bands_[i], TB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&firstButton));
    REBARBANDINFOW band{};
    band.cbSize = sizeof band;
    band.fMask = RBBIM_CHILD | RBBIM_CHILDSIZE | RBBIM_IDEALSIZE | RBBIM_STYLE | RBBIM_ID;
    band.fStyle = RBBS_GRIPPERALWAYS | RBBS_USECHEVRON;
    band.hwndChild = bands_[i];
    band.cxMinChild = static_cast<UINT>(firstButton.right);
    band.cyMinChild = static_cast<UINT>(size.cy);
    band.cxIdeal = static_cast<UINT>(size.cx);
    band.wID = static_cast<UINT>(i + 1);
    if (exist) band.fMask &= ~static_cast<UINT>(RBBIM_STYLE);  // it holds where the user began a row
    const WPARAM place = exist ? IndexOfBand(static_cast<int>(i + 1)) : static_cast<WPARAM>(-1);
    ::SendMessageW(rebar_, exist ? RB_SETBANDINFOW : RB_INSERTBANDW, place, reinterpret_cast<LPARAM>(&band));
  }
  if (exist) return;
  for (WPARAM place = 0; place < bands_.size(); ++place) ShowWholeBand(place);
}

// As wide as its tools and what the bar draws around them, which only the bar itself knows.
void ToolBands::ShowWholeBand(WPARAM place) {
  REBARBANDINFOW band{};
  band.cbSize = sizeof band;
  band.fMask = RBBIM_IDEALSIZE | RBBIM_HEADERSIZE | RBBIM_CHILD;
  ::SendMessageW(rebar_, RB_GETBANDINFOW, place, reinterpret_cast<LPARAM>(&band));
  band.fMask = RBBIM_SIZE;
  band.cx = band.cxIdeal + band.cxHeader;
  ::SendMessageW(rebar_, RB_SETBANDINFOW, place, reinterpret_cast<LPARAM>(&band));
  RECT tools{};
  ::GetClientRect(band.hwndChild, &tools);
  const int missing = static_cast<int>(band.cxIdeal) - static_cast<int>(tools.right);
  if (missing <= 0) return;
  band.cx += static_cast<UINT>(missing);
  ::SendMessageW(rebar_, RB_SETBANDINFOW, place, reinterpret_cast<LPARAM>(&band));
}

WPARAM ToolBands::IndexOfBand(int band) const {
  return static_cast<WPARAM>(::SendMessageW(rebar_, RB_IDTOINDEX, static_cast<WPARAM>(band), 0));
}

void ToolBands::SetEnabled(UINT id, bool enabled) {
  ::SendMessageW(bandOfTool_[id - firstId_], TB_ENABLEBUTTON, id, MAKELPARAM(enabled, 0));
}

bool ToolBands::IsEnabled(UINT id) const {
  return ::SendMessageW(bandOfTool_[id - firstId_], TB_ISBUTTONENABLED, id, 0) != 0;
}

void ToolBands::SetChecked(UINT id, bool checked) {
  ::SendMessageW(bandOfTool_[id - firstId_], TB_CHECKBUTTON, id, MAKELPARAM(checked, 0));
}

void ToolBands::SetTheme(const wchar_t* theme) {
  ::SetWindowTheme(rebar_, theme, theme);
  for (const HWND band : bands_) ::SetWindowTheme(band, theme, theme);
}

bool ToolBands::OnTip(const NMHDR& header) const {
  if (header.code != static_cast<UINT>(TBN_GETINFOTIPW)) return false;
  const auto& asked = reinterpret_cast<const NMTBGETINFOTIPW&>(header);
  const auto id = static_cast<UINT>(asked.iItem);
  if (!Holds(id)) return false;
  const Tool& tool = *tools_[id - firstId_];
  std::string tip(tool.tip);
  if (tool.tipShortcut.key) tip += " (" + ShortcutText(tool.tipShortcut) + ")";
  ::lstrcpynW(asked.pszText, ToWide(tip).c_str(), asked.cchTextMax);
  return true;
}

void ToolBands::ShowHiddenTools(const NMREBARCHEVRON& chevron) {
  const HWND band = bands_[chevron.wID - 1];
  RECT shown{};
  ::GetClientRect(band, &shown);
  const UniqueMenu menu(::CreatePopupMenu());
  for (std::size_t i = 0; i < tools_.size(); ++i) {
    if (bandOfTool_[i] != band) continue;
    const auto id = static_cast<UINT>(firstId_ + i);
    RECT button{};
    ::SendMessageW(band, TB_GETRECT, id, reinterpret_cast<LPARAM>(&button));
    if (button.right <= shown.right) continue;
    std::wstring caption = ToWide(tools_[i]->caption);
    MENUITEMINFOW item{};
    item.cbSize = sizeof item;
    item.hbmpItem = menuPictures_.ForItem(id, !IsEnabled(id));
    item.fMask = MIIM_ID | MIIM_STRING | MIIM_STATE | (item.hbmpItem ? MIIM_BITMAP : 0u);
    item.wID = id;
    item.fState = IsEnabled(id) ? MFS_ENABLED : MFS_GRAYED;
    item.dwTypeData = caption.data();
    ::InsertMenuItemW(menu.Get(), static_cast<UINT>(::GetMenuItemCount(menu.Get())), TRUE, &item);
  }
  TPMPARAMS keepFree{sizeof keepFree, chevron.rc};
  ::MapWindowPoints(rebar_, HWND_DESKTOP, reinterpret_cast<POINT*>(&keepFree.rcExclude), 2);
  ::TrackPopupMenuEx(menu.Get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL, keepFree.rcExclude.left,
                     keepFree.rcExclude.bottom, owner_, &keepFree);
}

BarLayout ToolBands::Layout() const {
  BarLayout layout;
  const auto count = static_cast<WPARAM>(::SendMessageW(rebar_, RB_GETBANDCOUNT, 0, 0));
  for (WPARAM place = 0; place < count; ++place) {
    REBARBANDINFOW band{};
    band.cbSize = sizeof band;
    band.fMask = RBBIM_ID | RBBIM_SIZE | RBBIM_STYLE;
    ::SendMessageW(rebar_, RB_GETBANDINFOW, place, reinterpret_cast<LPARAM>(&band));
    layout.push_back({static_cast<int>(band.wID), (band.fStyle & RBBS_BREAK) != 0,
                      ::MulDiv(static_cast<int>(band.cx), 96, dpi_)});
  }
  return layout;
}

void ToolBands::Arrange(const BarLayout& layout) {
  WPARAM place = 0;
  for (const BandLayout& wanted : layout)
    ::SendMessageW(rebar_, RB_MOVEBAND, IndexOfBand(wanted.band), static_cast<LPARAM>(place++));
  place = 0;
  for (const BandLayout& wanted : layout) {
    REBARBANDINFOW band{};
    band.cbSize = sizeof band;
    band.fMask = RBBIM_SIZE | RBBIM_STYLE;
    band.fStyle = RBBS_GRIPPERALWAYS | RBBS_USECHEVRON | (wanted.newRow ? RBBS_BREAK : 0u);
    band.cx = static_cast<UINT>(ScaleForDpi(wanted.width, dpi_));
    ::SendMessageW(rebar_, RB_SETBANDINFOW, place++, reinterpret_cast<LPARAM>(&band));
  }
}

// Another width can make other rows of the bands, and so another height.
void ToolBands::LayOut() {
  RECT client{};
  ::GetClientRect(owner_, &client);
  for (int tries = 0; tries < 2; ++tries) {
    const auto height = static_cast<int>(::SendMessageW(rebar_, RB_GETBARHEIGHT, 0, 0));
    ::MoveWindow(rebar_, 0, 0, client.right, height, TRUE);
  }
}

}  // namespace zq
