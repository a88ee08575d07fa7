#include "controls/PreviewBar.h"

#include <commctrl.h>

#include <algorithm>
#include <cmath>

#include "controls/Control.h"
#include "controls/Pictures.h"
#include "controls/WindowDc.h"
#include "platform/RunTimeError.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// One row of controls, in pixels at 96 dpi: width and the gap in front of it.
struct BarItem {
  PreviewBarId id;
  int gap;
  int width;
};

constexpr BarItem kItems[] = {
    {kBarPrint, 6, 64},        {kBarFirst, 12, 26},     {kBarPrevious, 2, 26}, {kBarPageLabel, 8, 32},
    {kBarPage, 2, 44},         {kBarPageCount, 4, 52},  {kBarNext, 4, 26},     {kBarLast, 2, 26},
    {kBarZoom, 12, 94},        {kBarFindLabel, 12, 28}, {kBarFind, 2, 130},    {kBarFindNext, 4, 46},
    {kBarFindPrevious, 2, 58}, {kBarFound, 6, 70},
};
constexpr int kBarHeight = 38;
constexpr int kItemHeight = 26;
constexpr int kTextHeight = 15;

struct BarIcon {
  PreviewBarId id;
  const char* picture;
};

constexpr BarIcon kIcons[] = {
    {kBarFirst, "pagefirst"},
    {kBarPrevious, "pageprevious"},
    {kBarNext, "pagenext"},
    {kBarLast, "pagelast"},
};

bool IsLabel(PreviewBarId id) {
  return id == kBarPageLabel || id == kBarPageCount || id == kBarFindLabel || id == kBarFound;
}

bool IsEdit(PreviewBarId id) {
  return id == kBarPage || id == kBarFind;
}

void SetTextIfOther(HWND window, const std::wstring& text) {
  wchar_t before[64] = {};
  ::GetWindowTextW(window, before, static_cast<int>(std::size(before)));
  if (text != before) ::SetWindowTextW(window, text.c_str());
}

// The height of a line in the font, in pixels.
int LineHeight(HWND window, HFONT font) {
  const WindowDc context(window);
  const SelectedObject selected(context.Get(), font);
  TEXTMETRICW metrics{};
  ::GetTextMetricsW(context.Get(), &metrics);
  return static_cast<int>(metrics.tmHeight);
}

}  // namespace

HWND PreviewBar::Add(PreviewBarId id, const wchar_t* windowClass, const wchar_t* caption, DWORD style,
                     DWORD extended) {
  const HWND item = ::CreateWindowExW(extended, windowClass, caption, WS_CHILD | WS_VISIBLE | style, 0, 0, 0,
                                      0, parent_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                      ::GetModuleHandleW(nullptr), nullptr);
  if (!item) throw RunTimeError(ErrorNumber::OutOfMemory);
  ::SendMessageW(item, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
  return item;
}

void PreviewBar::AddTip(PreviewBarId id, const wchar_t* tip) const {
  TOOLINFOW info{};
  info.cbSize = sizeof info;
  info.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  info.hwnd = parent_;
  info.uId = reinterpret_cast<UINT_PTR>(Item(id));
  info.lpszText = const_cast<wchar_t*>(tip);
  ::SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
}

void PreviewBar::Create(HWND parent, HFONT font) {
  parent_ = parent;
  font_ = font;
  // In the order of Tab. A label stands in front of the box that its access key leads to.
  constexpr DWORD kButton = BS_PUSHBUTTON | WS_TABSTOP;
  constexpr DWORD kEdit = ES_AUTOHSCROLL | WS_TABSTOP;
  Add(kBarPrint, WC_BUTTONW, L"&Print...", kButton | WS_GROUP);
  Add(kBarFirst, WC_BUTTONW, L"First Page", kButton | BS_ICON);
  Add(kBarPrevious, WC_BUTTONW, L"Previous Page", kButton | BS_ICON);
  Add(kBarPageLabel, WC_STATICW, L"Pa&ge", SS_RIGHT);
  ::SendMessageW(Add(kBarPage, WC_EDITW, L"1", kEdit | ES_NUMBER | ES_RIGHT, WS_EX_CLIENTEDGE), EM_LIMITTEXT,
                 6, 0);
  Add(kBarPageCount, WC_STATICW, L"of 1", SS_LEFT | SS_NOPREFIX);
  Add(kBarNext, WC_BUTTONW, L"Next Page", kButton | BS_ICON);
  Add(kBarLast, WC_BUTTONW, L"Last Page", kButton | BS_ICON);
  Add(kBarZoom, WC_BUTTONW, L"&Zoom: 100%", kButton);
  Add(kBarFindLabel, WC_STATICW, L"&Find", SS_RIGHT);
  ::SendMessageW(Add(kBarFind, WC_EDITW, L"", kEdit, WS_EX_CLIENTEDGE), EM_LIMITTEXT, 300, 0);
  Add(kBarFindNext, WC_BUTTONW, L"&Next", kButton);
  Add(kBarFindPrevious, WC_BUTTONW, L"P&revious", kButton);
  Add(kBarFound, WC_STATICW, L"", SS_LEFT | SS_NOPREFIX);

  tips_ = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                            0, 0, 0, 0, parent, nullptr, ::GetModuleHandleW(nullptr), nullptr);
  if (!tips_) return;  // the bar works without
  AddTip(kBarPrint, L"Print (Ctrl+P)");
  AddTip(kBarFirst, L"First page (Home)");
  AddTip(kBarPrevious, L"Previous page (Ctrl+Page Up)");
  AddTip(kBarPage, L"Type a page's number and press Enter (Ctrl+G)");
  AddTip(kBarNext, L"Next page (Ctrl+Page Down)");
  AddTip(kBarLast, L"Last page (End)");
  AddTip(kBarZoom, L"Zoom (Ctrl+Plus, Ctrl+Minus, Ctrl+0)");
  AddTip(kBarFind, L"Find text in the report (Ctrl+F)");
  AddTip(kBarFindNext, L"Find next (F3)");
  AddTip(kBarFindPrevious, L"Find previous (Shift+F3)");
}

void PreviewBar::SetFont(HFONT font) {
  font_ = font;
  for (const BarItem& item : kItems)
    ::SendMessageW(Item(item.id), WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}

int PreviewBar::Arrange() {
  const int dpi = static_cast<int>(::GetDpiForWindow(parent_));
  std::vector<UniqueIcon> icons;
  for (const BarIcon& icon : kIcons) {
    icons.push_back(LoadPicture(icon.picture, ScaleForDpi(16, dpi)));
    ::SendMessageW(Item(icon.id), BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icons.back().Get()));
  }
  icons_ = std::move(icons);  // the ones before are in use until here

  const int height = ScaleForDpi(kBarHeight, dpi);
  // A box of one line puts its text at its top, so that it is only as high as the text needs.
  const int editHeight = LineHeight(parent_, font_) +
                         2 * ::GetSystemMetricsForDpi(SM_CYEDGE, static_cast<UINT>(dpi)) +
                         ScaleForDpi(3, dpi);
  int left = 0;
  for (const BarItem& item : kItems) {
    left += ScaleForDpi(item.gap, dpi);
    int itemHeight = kItemHeight;
    if (IsLabel(item.id)) itemHeight = kTextHeight;
    itemHeight = ScaleForDpi(itemHeight, dpi);
    if (IsEdit(item.id)) itemHeight = editHeight;
    const int width = ScaleForDpi(item.width, dpi);
    ::SetWindowPos(Item(item.id), nullptr, left, (height - itemHeight) / 2, width, itemHeight,
                   SWP_NOZORDER | SWP_NOACTIVATE);
    left += width;
  }
  width_ = left + ScaleForDpi(6, dpi);
  return height;
}

void PreviewBar::ShowPage(int page, int count) const {
  SetTextIfOther(Item(kBarPage), std::to_wstring(page));
  SetTextIfOther(Item(kBarPageCount), L"of " + std::to_wstring(count));
}

void PreviewBar::EnablePaging(bool backwards, bool forwards) const {
  const auto enable = [this](PreviewBarId id, bool enabled) {
    const HWND item = Item(id);
    // The focus must not stay on a disabled button: the keyboard would be dead.
    if (!enabled && ::GetFocus() == item) ::SetFocus(Item(kBarPage));
    ::EnableWindow(item, enabled);
  };
  enable(kBarFirst, backwards);
  enable(kBarPrevious, backwards);
  enable(kBarNext, forwards);
  enable(kBarLast, forwards);
}

void PreviewBar::ShowZoom(double percent) {
  SetTextIfOther(Item(kBarZoom), L"&Zoom: " + std::to_wstring(std::lround(percent)) + L"%");
}

void PreviewBar::ShowFound(const std::string& text) const {
  SetTextIfOther(Item(kBarFound), ToWide(text));
}

std::string PreviewBar::Text(PreviewBarId id) const {
  return WindowText(Item(id));
}

}  // namespace zq
