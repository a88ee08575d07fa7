#include "help/HelpViewer_win32.h"

#include <htmlhelp.h>

#include <cstddef>
#include <cstring>

#include "platform/RunTimeError.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// The header has the viewer's structures for the narrow calls; these are the wide ones, field by field.
struct WideSearchQuery {
  int cbStruct;
  BOOL fUniCodeStrings;
  LPCWSTR pszSearchQuery;
  LONG iProximity;
  BOOL fStemmedSearch;
  BOOL fTitleOnly;
  BOOL fExecute;
  LPCWSTR pszWindow;
};
static_assert(sizeof(WideSearchQuery) == sizeof(HH_FTS_QUERY));
static_assert(offsetof(WideSearchQuery, cbStruct) == offsetof(HH_FTS_QUERY, cbStruct));
static_assert(offsetof(WideSearchQuery, fUniCodeStrings) == offsetof(HH_FTS_QUERY, fUniCodeStrings));
static_assert(offsetof(WideSearchQuery, pszSearchQuery) == offsetof(HH_FTS_QUERY, pszSearchQuery));
static_assert(offsetof(WideSearchQuery, iProximity) == offsetof(HH_FTS_QUERY, iProximity));
static_assert(offsetof(WideSearchQuery, fStemmedSearch) == offsetof(HH_FTS_QUERY, fStemmedSearch));
static_assert(offsetof(WideSearchQuery, fTitleOnly) == offsetof(HH_FTS_QUERY, fTitleOnly));
static_assert(offsetof(WideSearchQuery, fExecute) == offsetof(HH_FTS_QUERY, fExecute));
static_assert(offsetof(WideSearchQuery, pszWindow) == offsetof(HH_FTS_QUERY, pszWindow));

struct WideLink {
  int cbStruct;
  BOOL fReserved;
  LPCWSTR pszKeywords;
  LPCWSTR pszUrl;
  LPCWSTR pszMsgText;
  LPCWSTR pszMsgTitle;
  LPCWSTR pszWindow;
  BOOL fIndexOnFail;
};
static_assert(sizeof(WideLink) == sizeof(HH_AKLINK));
static_assert(offsetof(WideLink, cbStruct) == offsetof(HH_AKLINK, cbStruct));
static_assert(offsetof(WideLink, fReserved) == offsetof(HH_AKLINK, fReserved));
static_assert(offsetof(WideLink, pszKeywords) == offsetof(HH_AKLINK, pszKeywords));
static_assert(offsetof(WideLink, pszUrl) == offsetof(HH_AKLINK, pszUrl));
static_assert(offsetof(WideLink, pszMsgText) == offsetof(HH_AKLINK, pszMsgText));
static_assert(offsetof(WideLink, pszMsgTitle) == offsetof(HH_AKLINK, pszMsgTitle));
static_assert(offsetof(WideLink, pszWindow) == offsetof(HH_AKLINK, pszWindow));
static_assert(offsetof(WideLink, fIndexOnFail) == offsetof(HH_AKLINK, fIndexOnFail));

struct WidePopup {
  int cbStruct;
  HINSTANCE hinst;
  UINT idString;
  LPCWSTR pszText;
  POINT pt;
  COLORREF clrForeground;
  COLORREF clrBackground;
  RECT rcMargins;
  LPCWSTR pszFont;
};
static_assert(sizeof(WidePopup) == sizeof(HH_POPUP));
static_assert(offsetof(WidePopup, cbStruct) == offsetof(HH_POPUP, cbStruct));
static_assert(offsetof(WidePopup, hinst) == offsetof(HH_POPUP, hinst));
static_assert(offsetof(WidePopup, idString) == offsetof(HH_POPUP, idString));
static_assert(offsetof(WidePopup, pszText) == offsetof(HH_POPUP, pszText));
static_assert(offsetof(WidePopup, pt) == offsetof(HH_POPUP, pt));
static_assert(offsetof(WidePopup, clrForeground) == offsetof(HH_POPUP, clrForeground));
static_assert(offsetof(WidePopup, clrBackground) == offsetof(HH_POPUP, clrBackground));
static_assert(offsetof(WidePopup, rcMargins) == offsetof(HH_POPUP, rcMargins));
static_assert(offsetof(WidePopup, pszFont) == offsetof(HH_POPUP, pszFont));

HtmlHelpCall LoadViewer() {
  const HMODULE viewer = ::LoadLibraryExW(L"hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  const FARPROC found = viewer ? ::GetProcAddress(viewer, "HtmlHelpW") : nullptr;
  HtmlHelpCall call = nullptr;
  static_assert(sizeof call == sizeof found);
  std::memcpy(&call, &found, sizeof call);
  return call;
}

// A text for the viewer, or a null for one that is absent.
class WideText {
 public:
  explicit WideText(const OptionalText& text)
      : present_(text.has_value()), text_(ToWide(text.value_or(""))) {}
  LPCWSTR Get() const { return present_ ? text_.c_str() : nullptr; }

 private:
  bool present_;
  std::wstring text_;
};

HWND WindowOf(WindowHandle handle) {
  return reinterpret_cast<HWND>(handle);
}

DWORD_PTR DataOf(const void* data) {
  return reinterpret_cast<DWORD_PTR>(data);
}

}  // namespace

void Win32HelpViewer::DisplayTopic(WindowHandle owner, const std::string& target,
                                   const OptionalText& topicUrl) {
  const WideText url(topicUrl);
  Call(owner, target, HH_DISPLAY_TOPIC, DataOf(url.Get()));
}

void Win32HelpViewer::DisplayContext(WindowHandle owner, const std::string& target, std::int32_t mapId) {
  Call(owner, target, HH_HELP_CONTEXT, static_cast<std::uint32_t>(mapId));
}

void Win32HelpViewer::DisplayContents(WindowHandle owner, const std::string& target) {
  Call(owner, target, HH_DISPLAY_TOC, 0);
}

void Win32HelpViewer::DisplayIndex(WindowHandle owner, const std::string& target) {
  Call(owner, target, HH_DISPLAY_INDEX, 0);
}

void Win32HelpViewer::DisplaySearch(WindowHandle owner, const std::string& target,
                                    const HelpSearchQuery& query) {
  const std::wstring text = ToWide(query.pszSearchQuery);
  const std::wstring window = ToWide(query.pszWindow);
  const WideSearchQuery data{query.cbStruct,       query.fUniCodeStrings, text.c_str(),   query.iProximity,
                             query.fStemmedSearch, query.fTitleOnly,      query.fExecute, window.c_str()};
  Call(owner, target, HH_DISPLAY_SEARCH, DataOf(&data));
}

void Win32HelpViewer::LookUpKeyword(WindowHandle owner, const std::string& file, const HelpLink& link) {
  LookUp(owner, file, HH_KEYWORD_LOOKUP, link);
}

void Win32HelpViewer::LookUpALink(WindowHandle owner, const std::string& file, const HelpLink& link) {
  LookUp(owner, file, HH_ALINK_LOOKUP, link);
}

void Win32HelpViewer::LookUp(WindowHandle owner, const std::string& file, UINT command,
                             const HelpLink& link) {
  const std::wstring keywords = ToWide(link.pszKeywords);
  const WideText url(link.pszUrl);
  const WideText text(link.pszMsgText);
  const WideText title(link.pszMsgTitle);
  const WideText window(link.pszWindow);
  const WideLink data{link.cbStruct, link.fReserved, keywords.c_str(), url.Get(),
                      text.Get(),    title.Get(),    window.Get(),     link.fIndexOnFail};
  Call(owner, file, command, DataOf(&data));
}

void Win32HelpViewer::DisplayPopup(WindowHandle owner, const OptionalText& target, const HelpPopup& popup) {
  const WideText text(popup.pszText);
  const std::wstring font = ToWide(popup.pszFont);
  const auto& [left, top, right, bottom] = popup.rcMargins;
  const WidePopup data{popup.cbStruct,
                       reinterpret_cast<HINSTANCE>(popup.hinst),
                       popup.idString,
                       text.Get(),
                       {popup.pt.x, popup.pt.y},
                       static_cast<COLORREF>(popup.clrForeground),
                       static_cast<COLORREF>(popup.clrBackground),
                       {left, top, right, bottom},
                       font.c_str()};
  Call(owner, target, HH_DISPLAY_TEXT_POPUP, DataOf(&data));
}

void Win32HelpViewer::CloseAll(const std::string& file) {
  Call(0, file, HH_CLOSE_ALL, 0);
}

void Win32HelpViewer::Call(WindowHandle owner, const OptionalText& target, UINT command, DWORD_PTR data) {
  if (!call_) call_ = LoadViewer();
  if (!call_) throw RunTimeError(ErrorNumber::FileNotFound);
  const WideText file(target);
  call_(WindowOf(owner), file.Get(), command, data);
}

ScreenPoint Win32HelpDesktop::CursorPosition() {
  POINT point{};
  if (!::GetCursorPos(&point)) return {};
  return {point.x, point.y};
}

std::string Win32HelpDesktop::StringResource(std::int32_t id) {
  // With a length of 0 the call gives the place of the text itself, which has no null at its end.
  LPCWSTR text = nullptr;
  const int length =
      ::LoadStringW(::GetModuleHandleW(nullptr), static_cast<UINT>(id), reinterpret_cast<LPWSTR>(&text), 0);
  if (length <= 0) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
  return FromWide({text, static_cast<std::size_t>(length)});
}

void Win32HelpDesktop::DefaultMessage(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                      std::intptr_t lParam) {
  ::DefWindowProcW(WindowOf(window), message, wParam, lParam);
}

void Win32HelpBoxes::Show(const std::string& text, const std::string& caption, std::uint32_t style) {
  const std::wstring wideText = ToWide(text);
  const std::wstring wideCaption = ToWide(caption);
  MSGBOXPARAMSW box{};
  box.cbSize = sizeof box;
  box.lpszText = wideText.c_str();
  box.lpszCaption = wideCaption.c_str();
  box.dwStyle = style;
  ::MessageBoxIndirectW(&box);
}

}  // namespace zq
