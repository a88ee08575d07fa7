#include "manager/ShellEntries.h"

#include "core/state/ManagerNames.h"

namespace zq {
namespace {

const std::string kClassKey = std::string("Software\\Classes\\CLSID\\") + kWipeVerbClassId;
const std::string kVerbKey = "Software\\Classes\\AllFilesystemObjects\\shell\\Zeroquill.Wipe";
// What is dropped on our program's file, or on a shortcut to it, goes to the class as well.
const std::string kProgramKey =
    std::string("Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\") + kManagerProgram;
// Others have theirs beneath these. Made beforehand, since in a key that goes with the session nobody could
// make one that stays; and removed only if nothing is left in them.
constexpr const char* kSharedKeys[] = {
    "Software\\Classes\\CLSID",
    "Software\\Classes\\AllFilesystemObjects\\shell",
    "Software\\Classes\\AllFilesystemObjects",
    "Software\\Microsoft\\Windows\\CurrentVersion\\App Paths",
};

std::string Quoted(const std::string& path) {
  return '"' + path + '"';
}

// Of a file name, plain letters alone: the name that it is compared with has no others.
bool IsManagerProgram(const std::string& path) {
  const std::string name = path.substr(path.rfind('\\') + 1);
  const std::string wanted = kManagerProgram;
  if (name.size() != wanted.size()) return false;
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (lower(name[i]) != lower(wanted[i])) return false;
  }
  return true;
}

}  // namespace

void ShellEntries::Write(const std::string& programPath) {
  const bool removed = RemoveAll();
  if (!shell_.IsElevated()) {
    written_ = WriteAll(programPath);
    if (!written_) RemoveAll();
  }
  if (removed || written_) shell_.TellChange();
}

void ShellEntries::Remove() {
  if (!written_) return;
  written_ = false;
  RemoveAll();
  shell_.TellChange();
}

// The class comes first, and what leads to it behind it.
bool ShellEntries::WriteAll(const std::string& programPath) {
  struct Text {
    std::string key;
    const char* valueName;
    std::string text;
  };
  const Text texts[] = {
      {kClassKey, "", kWipeVerbCaption},
      // COM puts its own argument behind the path.
      {kClassKey + "\\LocalServer32", "", Quoted(programPath)},
      {kClassKey + "\\LocalServer32", "ServerExecutable", programPath},
      {kVerbKey + "\\DropTarget", "CLSID", kWipeVerbClassId},
      {kVerbKey, "", kWipeVerbCaption},
      {kVerbKey, "Icon", Quoted(programPath)},
      // For selections of any size.
      {kVerbKey, "MultiSelectModel", "Player"},
      // Of files without a program of their own, the only verb would be what a double click does.
      {kVerbKey, "NeverDefault", ""},
      {kProgramKey, "", programPath},
      {kProgramKey, "DropTarget", kWipeVerbClassId},
  };
  for (const char* key : kSharedKeys) {
    if (!shell_.MakeKey(key)) return false;
  }
  for (const Text& text : texts) {
    if (!shell_.WriteText(text.key, text.valueName, text.text)) return false;
  }
  // What has our name and isn't ours stays as it is, and the menu's entry has to do.
  if (!shell_.SendToProgram(kWipeVerbCaption)) shell_.AddSendTo(kWipeVerbCaption, programPath);
  return true;
}

// In the other direction. True if there was anything.
bool ShellEntries::RemoveAll() {
  bool any = false;
  const auto sendTo = shell_.SendToProgram(kWipeVerbCaption);
  if (sendTo && IsManagerProgram(*sendTo)) {
    shell_.RemoveSendTo(kWipeVerbCaption);
    any = true;
  }
  for (const std::string& key : {kProgramKey, kVerbKey, kClassKey}) {
    if (shell_.RemoveKey(key)) any = true;
  }
  for (const char* key : kSharedKeys) shell_.RemoveKeyIfEmpty(key);
  return any;
}

}  // namespace zq
