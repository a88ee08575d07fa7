// The display methods, and what all of the class shares.
#include "help/HTMLHelp.h"

#include "help/HelpText.h"
#include "platform/Process.h"
#include "platform/RunTimeError.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr const char* kBoxCaption = "Tarnwick! Error";
constexpr std::uint32_t kStopIcon = 16;
constexpr std::uint32_t kInformationIcon = 64;

// Sizes as the viewer has been given them from the first; on a 64-bit system the structures are larger.
constexpr std::int32_t kSizeOfSearchQuery = 32;
constexpr std::int32_t kSizeOfLink = 28;

OptionalText NullIfEmpty(const std::string& text) {
  return text.empty() ? OptionalText() : OptionalText(text);
}

}  // namespace

void HTMLHelp::HHDisplayTopicURL(const WindowHandle* CallingForm) {
  DisplayFile([&] { parts_.viewer.DisplayTopic(Owner(CallingForm), Target(), HHTopicURL_); });
}

void HTMLHelp::HHDisplayTopicID(const WindowHandle* CallingForm) {
  DisplayFile([&] { parts_.viewer.DisplayContext(Owner(CallingForm), Target(), HHTopicID_); });
}

void HTMLHelp::HHDisplaySearch(const WindowHandle* CallingForm) {
  HelpSearchQuery query;
  query.cbStruct = kSizeOfSearchQuery;
  query.fExecute = true;
  DisplayFile([&] { parts_.viewer.DisplaySearch(Owner(CallingForm), Target(), query); });
}

void HTMLHelp::HHDisplayKeyword(const WindowHandle* CallingForm) {
  if (!FileIsReady()) return;
  // The lookup needs a viewer that is open.
  if (!Shown([&] { parts_.viewer.DisplayTopic(Owner(CallingForm), CHMFile_, {}); })) return;
  Shown([&] { parts_.viewer.LookUpKeyword(Owner(CallingForm), CHMFile_, LinkOf(HHKeyword_)); });
}

void HTMLHelp::HHDisplayIndex(const WindowHandle* CallingForm) {
  DisplayFile([&] { parts_.viewer.DisplayIndex(Owner(CallingForm), Target()); });
}

void HTMLHelp::HHDisplayContents(const WindowHandle* CallingForm) {
  DisplayFile([&] { parts_.viewer.DisplayContents(Owner(CallingForm), Target()); });
}

void HTMLHelp::HHDisplayALink(const WindowHandle* CallingForm) {
  DisplayFile([&] { parts_.viewer.LookUpALink(Owner(CallingForm), CHMFile_, LinkOf(HHALink_)); });
}

void HTMLHelp::HHClose() {
  try {
    parts_.viewer.CloseAll(CHMFile_);
  } catch (const RunTimeError&) {  // there is nothing to be done about it
  }
}

std::string HTMLHelp::HHSetHelpFile(std::int16_t intSelHelpFile) {
  switch (intSelHelpFile) {
    case 1:
      return parts_.process.ApplicationPath() + "\\Library.chm";
    case 2:
      return "Library.txt";
    default:
      return {};
  }
}

bool HTMLHelp::EnsureFileExists(std::string& FileToFind) {
  if (FileToFind.find('\\') == std::string::npos) {
    HHCheckRegistry(FileToFind);
    FileToFind = HHRegFileName_.empty() ? parts_.process.ApplicationPath() + "\\" + FileToFind
                                        : HHRegFilePath_ + HHRegFileName_;
  }
  const FileSearchResult found = parts_.files.FindFirst(FileToFind);
  if (found.end == FileSearchResult::End::Found) {
    parts_.files.Close(found.handle);
    return true;
  }
  // The product's name is that of the program which the class was first made for.
  ShowClassError("The file " + FileToFind +
                 " does not exist.\nPlease make sure that you have installed KLMB Help files");
  return false;
}

// What comes before each display.
bool HTMLHelp::FileIsReady() {
  return IsValidChmName(CHMFile_) && EnsureFileExists(CHMFile_);
}

void HTMLHelp::DisplayFile(const Display& display) {
  if (FileIsReady()) Shown(display);
}

// False if the method ends here: there is no calling form. Any other failure is ignored.
bool HTMLHelp::Shown(const Display& display) {
  try {
    display();
  } catch (const RunTimeError& error) {
    if (error.Number() != ErrorNumber::ObjectVariableNotSet) return true;
    // The text names this one method for all of them.
    ShowClassError(
        "The HHDisplayContents method was called without a form being specified, while HHShowOnTop was set "
        "to "
        "True.");
    return false;
  }
  return true;
}

WindowHandle HTMLHelp::Owner(const WindowHandle* CallingForm) const {
  if (!HHShowOnTop_) return 0;
  if (!CallingForm) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);
  return *CallingForm;
}

std::string HTMLHelp::Target() const {
  return TrimBlanks(HHWindow_).empty() ? CHMFile_ : CHMFile_ + ">" + HHWindow_;
}

HelpLink HTMLHelp::LinkOf(const std::string& keywords) const {
  HelpLink link;
  link.cbStruct = kSizeOfLink;
  link.pszKeywords = keywords;
  link.pszUrl = NullIfEmpty(HHDefaultURL_);
  link.pszMsgText = NullIfEmpty(HHMsgText_);
  link.pszMsgTitle = NullIfEmpty(HHMsgTitle_);
  if (!TrimBlanks(HHWindow_).empty()) link.pszWindow = HHWindow_;
  return link;
}

bool HTMLHelp::IsValidChmName(const std::string& name) {
  if (EndsInAnyCase(name, "chm")) return true;
  ShowClassError(name + " is not a valid HTML Help file.");
  return false;
}

void HTMLHelp::ShowClassError(const std::string& text) {
  parts_.boxes.Show(text, kBoxCaption, kStopIcon);
}

void HTMLHelp::ShowClassInfo(const std::string& text) {
  parts_.boxes.Show(text, kBoxCaption, kInformationIcon);
}

}  // namespace zq
