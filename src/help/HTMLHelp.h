// HTMLHelp: one object around the system's help viewer. Its properties hold what a display needs, its methods
// show it; more of them look at the help files and versions that the machine has. It serves more programs
// than this one, which calls few of its members.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "help/HelpMachine.h"
#include "help/HelpViewer.h"

namespace zq {

class Process;
class Regional;

// What the class works on; all of it outlives the object.
struct HelpParts {
  HelpViewer& viewer;
  HelpDesktop& desktop;
  HelpBoxes& boxes;
  HelpFileSearch& files;
  HelpRegistry& registry;
  FileVersions& versions;
  SystemVersionSource& system;
  Process& process;
  Regional& regional;
};

class HTMLHelp {
 public:
  explicit HTMLHelp(const HelpParts& parts) : parts_(parts) {}

  // Each shows CHMFile, or says in a box why not. `CallingForm` is read only while HHShowOnTop is set, and
  // then owns the help window; without one the box says so.
  void HHDisplayTopicURL(const WindowHandle* CallingForm = nullptr);
  void HHDisplayTopicID(const WindowHandle* CallingForm = nullptr);
  void HHDisplaySearch(const WindowHandle* CallingForm = nullptr);
  void HHDisplayKeyword(const WindowHandle* CallingForm = nullptr);
  void HHDisplayIndex(const WindowHandle* CallingForm = nullptr);
  void HHDisplayContents(const WindowHandle* CallingForm = nullptr);
  void HHDisplayALink(const WindowHandle* CallingForm = nullptr);

  // Enter a help file in the machine's table of help files, and take it out. The argument is left holding the
  // file's bare name. They need the right to write for all users; a refused HHUnRegister is silent.
  void HHRegister(std::string& FileToRegister);
  void HHUnRegister(std::string& FileToUnRegister);

  // Looks a help file up in that table. The answers are in the three HHReg properties; what it returns is
  // false, or nothing for an argument that is empty.
  std::optional<bool> HHCheckRegistry(const std::string& FileToCheck);

  void HHClose();

  // The path of a help file (1), the name of a popup file (2), or nothing.
  std::string HHSetHelpFile(std::int16_t intSelHelpFile);

  // A popup at the mouse. Its colours, font and style count for one popup.
  void HHDisplayPopup(const WindowHandle& CallingForm);
  void HHInvokeWhatsThisHelp(const WindowHandle& CallingForm);

  // Whether help control and browser are at least of these versions, given by their numbers. Versions are
  // compared as texts.
  bool HHVerifyMinConfig(std::int32_t MinHHVersion, std::int32_t MinIEVersion);

  // Whether a help file is there. One without a folder is looked for in the machine's table and beside the
  // program, and the argument becomes the path that was tried. A box tells of a missing file.
  bool EnsureFileExists(std::string& FileToFind);

  // Whether a key under HKEY_LOCAL_MACHINE can be opened with all rights, walked and closed.
  bool GetKeyInfo(const std::string& key_name, std::int16_t indent);

  std::int32_t GetWindowsVersion();

  // clang-format off
  const std::string& HHWindow() const { return HHWindow_; }
  void HHWindow(const std::string& value) { HHWindow_ = value; }
  const std::string& HHTopicURL() const { return HHTopicURL_; }
  void HHTopicURL(const std::string& value) { HHTopicURL_ = value; }
  std::int32_t HHTopicID() const { return HHTopicID_; }
  void HHTopicID(std::int32_t value) { HHTopicID_ = value; }
  const std::string& HHMsgTitle() const { return HHMsgTitle_; }
  void HHMsgTitle(const std::string& value) { HHMsgTitle_ = value; }
  const std::string& HHMsgText() const { return HHMsgText_; }
  void HHMsgText(const std::string& value) { HHMsgText_ = value; }
  const std::string& HHKeyword() const { return HHKeyword_; }
  void HHKeyword(const std::string& value) { HHKeyword_ = value; }
  const std::string& HHDefaultURL() const { return HHDefaultURL_; }
  void HHDefaultURL(const std::string& value) { HHDefaultURL_ = value; }
  const std::string& HHALink() const { return HHALink_; }
  void HHALink(const std::string& value) { HHALink_ = value; }
  const std::string& CHMFile() const { return CHMFile_; }
  void CHMFile(const std::string& value) { CHMFile_ = value; }
  bool HHShowOnTop() const { return HHShowOnTop_; }
  void HHShowOnTop(bool value) { HHShowOnTop_ = value; }
  const std::string& HHRegFileName() const { return HHRegFileName_; }
  const std::string& HHRegFilePath() const { return HHRegFilePath_; }
  bool HHRegFileExists() const { return HHRegFileExists_; }
  void HHPopupFile(const std::string& value) { HHPopupFile_ = value; }
  void HHPopupID(std::int32_t value) { HHPopupID_ = value; }
  void HHPopupText(const std::string& value) { HHPopupText_ = value; }
  void HHPopupType(std::int32_t value) { HHPopupType_ = value; }
  void HHPopupTextColor(std::int32_t value) { HHPopupTextColor_ = value; }
  void HHPopupBackColor(std::int32_t value) { HHPopupBackColor_ = value; }
  void HHPopupCustomTextColor(std::int32_t value) { HHPopupCustomTextColor_ = value; }
  void HHPopupCustomBackColor(std::int32_t value) { HHPopupCustomBackColor_ = value; }
  bool HHPopupCustomColors() const { return HHPopupCustomColors_; }
  void HHPopupCustomColors(bool value) { HHPopupCustomColors_ = value; }
  void HHPopupTextFont(const std::string& value) { HHPopupTextFont_ = value; }
  void HHPopupTextSize(const std::string& value) { HHPopupTextSize_ = value; }
  void HHPopupTextBold(bool value) { HHPopupTextBold_ = value; }
  void HHPopupTextItalic(bool value) { HHPopupTextItalic_ = value; }
  void HHPopupTextUnderline(bool value) { HHPopupTextUnderline_ = value; }
  // clang-format on

  // What these tell is looked up anew at each reading; a friendly name, as long as the version isn't known.
  bool HHInstalled();
  std::string HHVersion();
  std::string IEVersion();
  std::string HHFriendlyName();
  std::string IEFriendlyName();

 private:
  bool IsValidChmName(const std::string& name);
  bool IsValidPopupName(const std::string& name);
  void ShowClassError(const std::string& text);
  void ShowClassInfo(const std::string& text);

  using Display = std::function<void()>;
  bool FileIsReady();
  bool Shown(const Display& display);
  void DisplayFile(const Display& display);
  WindowHandle Owner(const WindowHandle* CallingForm) const;
  std::string Target() const;
  HelpLink LinkOf(const std::string& keywords) const;

  std::optional<HelpPopup> PopupContent();
  std::string PopupFont() const;
  void ForgetPopupLook();

  bool FindInTable(std::string& file);
  void LengthenPath(std::string& path);
  struct Component;
  void ReadComponentVersion(const Component& component, std::string& version);
  void ReadHelpVersion();
  void ReadBrowserVersion();
  void ResolveHelpFriendlyName();
  void ResolveBrowserFriendlyName();

  const HelpParts parts_;

  std::string CHMFile_;
  std::string HHALink_;
  std::string HHDefaultURL_;
  bool installed_ = false;
  std::string HHKeyword_;
  std::string HHMsgText_;
  std::string HHMsgTitle_;
  bool HHShowOnTop_ = false;
  std::int32_t HHTopicID_ = 0;
  std::string HHTopicURL_;
  std::string HHWindow_;
  std::string HHRegFileName_;
  std::string HHRegFilePath_;
  bool HHRegFileExists_ = false;
  std::string HHPopupFile_;
  std::int32_t HHPopupType_ = 0;
  std::string HHPopupText_;
  std::int32_t HHPopupID_ = 0;
  std::int32_t HHPopupTextColor_ = 0;
  std::int32_t HHPopupBackColor_ = 0;
  std::int32_t HHPopupCustomTextColor_ = 0;
  std::int32_t HHPopupCustomBackColor_ = 0;
  bool HHPopupCustomColors_ = false;
  std::string HHPopupTextFont_;
  std::string HHPopupTextSize_;
  bool HHPopupTextBold_ = false;
  bool HHPopupTextItalic_ = false;
  bool HHPopupTextUnderline_ = false;
  std::string helpVersion_;
  std::string browserVersion_;
  std::string helpFriendlyName_;
  std::string browserFriendlyName_;
};

}  // namespace zq
