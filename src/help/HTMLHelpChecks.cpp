// What the help class finds out about the machine: the table of help files, the versions of help control and
// browser.
#include "help/HTMLHelp.h"
#include "help/HelpText.h"
#include "help/HelpVersions.h"
#include "help/RegistryText.h"
#include "help/ToLongPath.h"
#include "platform/Regional.h"
#include "platform/Text.h"

namespace zq {
namespace {

constexpr const char* kHelpTable = "Software\\Microsoft\\Windows\\HTML Help";
constexpr const char* kHelpTypeLibrary = "SOFTWARE\\Classes\\TypeLib\\{ADB880A2-D8FF-11CF-9377-00AA003B7A11}";
constexpr int kMaxPath = 256;
constexpr int kMaxKeyText = 256;
constexpr const char* kUnknown = "unknown";

std::string BareName(const std::string& path) {
  return path.substr(path.rfind('\\') + 1);
}

// What stands before the bare name, its backslash included.
std::string FolderPart(const std::string& path) {
  return path.substr(0, path.rfind('\\') + 1);
}

// The folder in "name=folder", behind which stand the null of the stored value and the carriage return. Of a
// value that was stored without its null, a letter goes.
std::string FolderOf(const std::string& text) {
  return std::string(WithoutLastCharacters(std::string_view(text).substr(text.find('=') + 1), 2));
}

}  // namespace

std::optional<bool> HTMLHelp::HHCheckRegistry(const std::string& FileToCheck) {
  if (FileToCheck.empty()) return std::nullopt;
  HHRegFileExists_ = false;
  if (!IsValidChmName(FileToCheck)) return false;

  const std::string name = BareName(FileToCheck);
  std::string list;
  const RegValueInfo info =
      ReadRegistryValue(parts_.registry, parts_.files, parts_.regional, "HKLM", kHelpTable, name, list);
  if (parts_.regional.UpperCase(info.Name) != parts_.regional.UpperCase(name)) {
    HHRegFileName_.clear();
    HHRegFilePath_.clear();
    return false;
  }
  HHRegFileName_ = info.Name;
  HHRegFilePath_ = FolderOf(info.Text);
  LengthenPath(HHRegFilePath_);
  // HHRegister writes the folder with its backslash, so that there are two here. The system takes that.
  std::string path = HHRegFilePath_ + "\\" + HHRegFileName_;
  HHRegFileExists_ = EnsureFileExists(path);
  return false;
}

void HTMLHelp::HHRegister(std::string& FileToRegister) {
  if (FileToRegister.empty() || !IsValidChmName(FileToRegister)) return;
  if (FindInTable(FileToRegister)) {
    ShowClassInfo("The file " + FileToRegister +
                  " is already registered.  HHRegister will not be run as no action need be taken.");
    return;
  }
  std::string fullPath = FileToRegister;
  if (!IsValidChmName(FileToRegister) || !EnsureFileExists(fullPath)) return;
  if (FileToRegister.find('\\') == std::string::npos) {
    // The quote at the end was never opened.
    ShowClassError("Cannot register " + FileToRegister + " without having a supplied path.\"");
    return;
  }
  FileToRegister = BareName(FileToRegister);
  const std::string folder = FolderPart(fullPath);

  const std::optional<RegistryKey> key =
      parts_.registry.Create(kHiveLocalMachine, kHelpTable, kKeySetValue | kKeyCreateSubKey);
  if (!key) {
    ShowClassError("HTML Help Class: HHRegister Error");
    return;
  }
  if (parts_.registry.SetText(*key, FileToRegister, folder, CharacterCount(folder) + 1)) {
    parts_.registry.Close(*key);
  } else {
    HHCheckRegistry(FileToRegister);  // the key stays open until the program ends
  }
}

void HTMLHelp::HHUnRegister(std::string& FileToUnRegister) {
  if (FileToUnRegister.empty() || !IsValidChmName(FileToUnRegister)) return;
  if (!FindInTable(FileToUnRegister)) {
    ShowClassInfo("The file " + FileToUnRegister +
                  " is not registered.  HHUnRegister will not be run as no action need be taken.");
    return;
  }
  FileToUnRegister = BareName(FileToUnRegister);
  // The key stays open until the program ends.
  if (const std::optional<RegistryKey> key =
          parts_.registry.Open(kHiveLocalMachine, kHelpTable, kKeySetValue))
    parts_.registry.DeleteValue(*key, FileToUnRegister);
  HHCheckRegistry(FileToUnRegister);
}

// Whether the table has the file, whose path becomes the long one.
bool HTMLHelp::FindInTable(std::string& file) {
  LengthenPath(file);
  HHCheckRegistry(file);
  return !HHRegFileName_.empty();
}

void HTMLHelp::LengthenPath(std::string& path) {
  ToLongPath(parts_.files, GetWindowsVersion(), path, path, kMaxPath);
}

bool HTMLHelp::HHInstalled() {
  installed_ = GetKeyInfo(kHelpTypeLibrary, 0);
  return installed_;
}

// With all rights, which an ordinary user hasn't got there: to such a user every key is missing.
bool HTMLHelp::GetKeyInfo(const std::string& key_name, std::int16_t /*indent*/) {
  HelpRegistry& registry = parts_.registry;
  const std::optional<RegistryKey> key = registry.Open(kHiveLocalMachine, key_name, kKeyAllAccess);
  if (!key) return false;
  std::string pairs;  // for whoever looks with a debugger: nothing of it leaves
  std::uint32_t index = 0;
  while (const std::optional<std::string> subKey = registry.EnumKey(*key, index++, kMaxKeyText)) {
    const std::string name = TrimAtNull(*subKey);
    const std::optional<std::string> value = registry.DefaultText(*key, name, kMaxKeyText);
    pairs += name + ": " + (value ? std::string(WithoutLastCharacters(*value, 1)) : "Error") + "\r\n";
  }
  return registry.Close(*key);
}

std::int32_t HTMLHelp::GetWindowsVersion() {
  return WindowsVersionOf(parts_.system.Version());
}

// A part of the system with its file's place in the registry.
struct HTMLHelp::Component {
  const char* key;
  const char* notRegistered;
  const char* notInItsPlace;
};

void HTMLHelp::ReadComponentVersion(const Component& component, std::string& version) {
  std::string list;
  const RegValueInfo info =
      ReadRegistryValue(parts_.registry, parts_.files, parts_.regional, "HKCR", component.key, "", list);
  if (info.Text.empty()) {
    ShowClassError(component.notRegistered);
    return;
  }
  std::string path = TrimAtNull(info.Text.substr(1));
  LengthenPath(path);
  // The search stays open until the program ends.
  if (parts_.files.FindFirst(path).end != FileSearchResult::End::Found) {
    ShowClassError(component.notInItsPlace);
    return;
  }
  // A file without version information has no version, whatever an earlier one had.
  version = GetFileVersionText(parts_.versions, path).value_or("");
}

void HTMLHelp::ReadHelpVersion() {
  static constexpr Component kHelpControl{
      "CLSID\\{4662DAB0-D393-11D0-9A56-00C04FB68B66}\\InprocServer32",
      "Hhctrl.ocx is not registered.  Please install HTML Help.",
      "Hhctrl.ocx is not in its registered location.  Please reinstall HTML Help."};
  ReadComponentVersion(kHelpControl, helpVersion_);
}

void HTMLHelp::ReadBrowserVersion() {
  static constexpr Component kBrowser{
      "CLSID\\{0A89A860-D7B1-11CE-8350-444553540000}\\InProcServer32",
      "Shdocvw.dll is not registered.  Please install Internet Explorer.",
      "Internet Explorer is not in its registered location.  Please reinstall Internet Explorer."};
  ReadComponentVersion(kBrowser, browserVersion_);
}

std::string HTMLHelp::HHVersion() {
  ReadHelpVersion();
  return helpVersion_;
}

std::string HTMLHelp::IEVersion() {
  ReadBrowserVersion();
  return browserVersion_;
}

void HTMLHelp::ResolveHelpFriendlyName() {
  if (helpVersion_.empty()) ReadHelpVersion();
  helpFriendlyName_ = HelpFriendlyName(helpVersion_);
}

void HTMLHelp::ResolveBrowserFriendlyName() {
  if (browserVersion_.empty()) ReadBrowserVersion();
  browserFriendlyName_ = BrowserFriendlyName(browserVersion_);
}

std::string HTMLHelp::HHFriendlyName() {
  ResolveHelpFriendlyName();
  return helpFriendlyName_;
}

std::string HTMLHelp::IEFriendlyName() {
  ResolveBrowserFriendlyName();
  return browserFriendlyName_;
}

bool HTMLHelp::HHVerifyMinConfig(std::int32_t MinHHVersion, std::int32_t MinIEVersion) {
  // "unknown" replaces the version itself for a number that isn't in the table.
  const auto meets = [](std::optional<std::string_view> least, std::string& version) {
    if (!least) {
      version = kUnknown;
      return false;
    }
    return !LessInAnyCase(version, *least);
  };
  ReadHelpVersion();
  ReadBrowserVersion();
  const bool helpMeets = meets(LeastHelpVersion(MinHHVersion), helpVersion_);
  const bool browserMeets = meets(LeastBrowserVersion(MinIEVersion), browserVersion_);
  ResolveHelpFriendlyName();
  ResolveBrowserFriendlyName();
  return helpMeets && browserMeets;
}

}  // namespace zq
