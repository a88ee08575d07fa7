#include "help/HelpFrontEnd.h"

#include "core/state/AppState.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/RunTimeError.h"
#include "platform/Shell.h"

namespace zq {
namespace {

constexpr const char* kHelpFile = "Zeroquill.chm";
constexpr const char* kHelpWindow = "main";  // defined in the help file

// What a search for plain files passes by.
constexpr std::uint32_t kNoPlainFile = kAttributeDirectory | kAttributeHidden | kAttributeSystem;

bool IsPlainFile(Files& files, const std::string& path) {
  try {
    const std::optional<FileEntry> entry = files.FindEntry(path);
    return entry && (entry->attributes & kNoPlainFile) == 0;
  } catch (const RunTimeError&) {
    return false;
  }
}

}  // namespace

bool HelpFrontEnd::HelpFileExists() {
  if (IsPlainFile(files_, HelpFile())) return true;
  messageBoxes_.Show(
      {"Unable to find the Zeroquill Help file.  Please reinstall Zeroquill to replace the Help system.",
       "Zeroquill Help", MessageIcon::Exclamation, MessageButtons::Ok});
  return false;
}

void HelpFrontEnd::ShowTopic(int topicId) {
  if (!HelpFileExists()) return;
  HTMLHelp& help = ReadyObject();
  help.HHTopicID(topicId);
  help.HHDisplayTopicID();
}

void HelpFrontEnd::ShowContents() {
  if (HelpFileExists()) ReadyObject().HHDisplayContents();
}

// The two texts are what the shell has always been given; a page has a use for neither.
void HelpFrontEnd::ShowWebPage() {
  shell_.Execute({.verb = "open", .file = kWebPage, .parameters = "0", .directory = "0"});
}

// The shared object, set anew: nothing depends on what the display before left in it.
HTMLHelp& HelpFrontEnd::ReadyObject() {
  if (!HelpObject_) HelpObject_ = std::make_unique<HTMLHelp>(parts_);
  HelpObject_->CHMFile(HelpFile());
  HelpObject_->HHWindow(kHelpWindow);
  return *HelpObject_;
}

std::string HelpFrontEnd::HelpFile() const {
  return state_.AppFolder + kHelpFile;
}

}  // namespace zq
