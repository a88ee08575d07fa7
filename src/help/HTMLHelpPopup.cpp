// The popups of the help class.
#include "help/HTMLHelp.h"
#include "help/HelpText.h"

namespace zq {
namespace {

constexpr std::int32_t kNoPopup = 0;
constexpr std::int32_t kTextFile = 1;
constexpr std::int32_t kStringResource = 2;
constexpr std::int32_t kExplicitText = 4;

// Not the structure's size, which is larger; the figure that the viewer has always been given.
constexpr std::int32_t kSizeOfPopup = 50;

constexpr const char* kDefaultFont = "Arial";
constexpr const char* kDefaultSize = "10";

constexpr std::uint32_t kSysCommand = 274;      // WM_SYSCOMMAND
constexpr std::uintptr_t kContextHelp = 61824;  // SC_CONTEXTHELP

}  // namespace

void HTMLHelp::HHInvokeWhatsThisHelp(const WindowHandle& CallingForm) {
  parts_.desktop.DefaultMessage(CallingForm, kSysCommand, kContextHelp, 0);
}

void HTMLHelp::HHDisplayPopup(const WindowHandle& CallingForm) {
  if (HHPopupType_ == kNoPopup) return;
  if (HHPopupType_ == kTextFile && !FileIsReady()) return;

  std::optional<HelpPopup> popup = PopupContent();
  if (!popup) return;
  popup->clrForeground = HHPopupCustomColors_ ? HHPopupCustomTextColor_ : HHPopupTextColor_;
  popup->clrBackground = HHPopupCustomColors_ ? HHPopupCustomBackColor_ : HHPopupBackColor_;
  if (HHPopupTextFont_.empty()) HHPopupTextFont_ = kDefaultFont;
  if (HHPopupTextSize_.empty()) HHPopupTextSize_ = kDefaultSize;
  popup->pszFont = PopupFont();

  OptionalText target;
  if (HHPopupType_ == kTextFile) {
    if (!IsValidPopupName(HHPopupFile_)) return;
    target = CHMFile_ + "::/" + HHPopupFile_;
  } else if (HHPopupType_ != kStringResource && HHPopupType_ != kExplicitText) {
    return;  // a type that nothing is shown for, and that keeps its look
  }
  parts_.viewer.DisplayPopup(CallingForm, target, *popup);
  ForgetPopupLook();
}

// The popup at the mouse with its content; nothing if there is no text to show.
std::optional<HelpPopup> HTMLHelp::PopupContent() {
  HelpPopup popup;
  popup.cbStruct = kSizeOfPopup;
  popup.pt = parts_.desktop.CursorPosition();
  popup.rcMargins.fill(-1);
  if (HHPopupType_ == kStringResource) {
    popup.pszText = parts_.desktop.StringResource(HHPopupID_);
  } else if (HHPopupType_ == kExplicitText) {
    if (HHPopupText_.empty()) return std::nullopt;
    popup.pszText = HHPopupText_;
  } else {
    popup.idString = static_cast<std::uint32_t>(HHPopupID_);
  }
  return popup;
}

std::string HTMLHelp::PopupFont() const {
  std::string font = HHPopupTextFont_ + ", " + HHPopupTextSize_ + ", ascii, ";
  if (HHPopupTextBold_) font += "Bold ";
  if (HHPopupTextItalic_) font += "Italic ";
  if (HHPopupTextUnderline_) font += "Underline";
  return font;
}

void HTMLHelp::ForgetPopupLook() {
  HHPopupTextColor_ = 0;
  HHPopupBackColor_ = 0;
  HHPopupCustomTextColor_ = 0;
  HHPopupCustomBackColor_ = 0;
  HHPopupTextFont_ = kDefaultFont;
  HHPopupTextSize_ = kDefaultSize;
  HHPopupTextBold_ = false;
  HHPopupTextItalic_ = false;
  HHPopupTextUnderline_ = false;
}

bool HTMLHelp::IsValidPopupName(const std::string& name) {
  if (EndsInAnyCase(name, "txt")) return true;
  ShowClassError("The file specified as the text popup source, '" + name + "', is not a valid popup file.");
  return false;
}

}  // namespace zq
