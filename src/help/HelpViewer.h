// HelpViewer: what the help class asks of the system's help viewer, one operation for each of its commands.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace zq {

// A window of the system as a number; 0 is no window.
using WindowHandle = std::uintptr_t;

// A text that is absent goes to the viewer as a null pointer, an empty one as a pointer to no characters.
using OptionalText = std::optional<std::string>;

// HH_FTS_QUERY: what the search tab is opened with.
struct HelpSearchQuery {
  std::int32_t cbStruct = 0;
  bool fUniCodeStrings = false;
  std::string pszSearchQuery;
  std::int32_t iProximity = 0;
  bool fStemmedSearch = false;
  bool fTitleOnly = false;
  bool fExecute = false;
  std::string pszWindow;

  bool operator==(const HelpSearchQuery&) const = default;
};

// HH_AKLINK: a lookup by keyword or by ALink name.
struct HelpLink {
  std::int32_t cbStruct = 0;
  bool fReserved = false;
  std::string pszKeywords;
  OptionalText pszUrl;
  OptionalText pszMsgText;
  OptionalText pszMsgTitle;
  OptionalText pszWindow;
  bool fIndexOnFail = false;

  bool operator==(const HelpLink&) const = default;
};

struct ScreenPoint {
  std::int32_t x = 0;
  std::int32_t y = 0;

  bool operator==(const ScreenPoint&) const = default;
};

// HH_POPUP: a small window with a text. Colours have blue in the high byte, -1 is the system's own.
struct HelpPopup {
  std::int32_t cbStruct = 0;
  std::uintptr_t hinst = 0;
  std::uint32_t idString = 0;
  OptionalText pszText;
  ScreenPoint pt;
  std::int32_t clrForeground = 0;
  std::int32_t clrBackground = 0;
  std::array<std::int32_t, 4> rcMargins{};  // left, top, right, bottom
  std::string pszFont;

  bool operator==(const HelpPopup&) const = default;
};

// `target` is a help file, or a help file, ">" and a window type of it. Nothing tells how a call ended: the
// viewer shows what it has to say.
class HelpViewer {
 public:
  virtual ~HelpViewer() = default;

  virtual void DisplayTopic(WindowHandle owner, const std::string& target, const OptionalText& topicUrl) = 0;
  virtual void DisplayContext(WindowHandle owner, const std::string& target, std::int32_t mapId) = 0;
  virtual void DisplayContents(WindowHandle owner, const std::string& target) = 0;
  virtual void DisplayIndex(WindowHandle owner, const std::string& target) = 0;
  virtual void DisplaySearch(WindowHandle owner, const std::string& target, const HelpSearchQuery& query) = 0;
  virtual void LookUpKeyword(WindowHandle owner, const std::string& file, const HelpLink& link) = 0;
  virtual void LookUpALink(WindowHandle owner, const std::string& file, const HelpLink& link) = 0;
  virtual void DisplayPopup(WindowHandle owner, const OptionalText& target, const HelpPopup& popup) = 0;
  virtual void CloseAll(const std::string& file) = 0;
};

// What the popups need of the desktop.
class HelpDesktop {
 public:
  virtual ~HelpDesktop() = default;

  virtual ScreenPoint CursorPosition() = 0;

  // A string resource of the program. Raises InvalidProcedureCall where there is none of this number.
  virtual std::string StringResource(std::int32_t id) = 0;

  // Hands a message to the system's own handling of a window.
  virtual void DefaultMessage(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                              std::intptr_t lParam) = 0;
};

// Message boxes of the help class: an OK button, and no owner. `style` is the system's icon flag.
class HelpBoxes {
 public:
  virtual ~HelpBoxes() = default;
  virtual void Show(const std::string& text, const std::string& caption, std::uint32_t style) = 0;
};

}  // namespace zq
