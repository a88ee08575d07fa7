// HelpRig: an HTMLHelp between fakes of all that it looks at. What it does to them is in one log.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "help/HTMLHelp.h"
#include "help/RegistryText.h"
#include "platform/RunTimeError.h"
#include "support/fakes/EventLog.h"
#include "support/fakes/FakeProcess.h"
#include "support/fakes/FakeRegional.h"

namespace zq::test {

inline std::string Shown(const OptionalText& text) {
  return text ? "'" + *text + "'" : "null";
}

class FakeHelpViewer final : public HelpViewer {
 public:
  explicit FakeHelpViewer(EventLog& log) : log_(log) {}

  std::optional<ErrorNumber> raises;  // by each call, after it was logged
  std::vector<HelpSearchQuery> queries;
  std::vector<HelpLink> links;
  std::vector<HelpPopup> popups;

  void DisplayTopic(WindowHandle owner, const std::string& target, const OptionalText& url) override {
    Called("HH_DISPLAY_TOPIC", owner, target, Shown(url));
  }
  void DisplayContext(WindowHandle owner, const std::string& target, std::int32_t mapId) override {
    Called("HH_HELP_CONTEXT", owner, target, std::to_string(mapId));
  }
  void DisplayContents(WindowHandle owner, const std::string& target) override {
    Called("HH_DISPLAY_TOC", owner, target, "0");
  }
  void DisplayIndex(WindowHandle owner, const std::string& target) override {
    Called("HH_DISPLAY_INDEX", owner, target, "0");
  }
  void DisplaySearch(WindowHandle owner, const std::string& target, const HelpSearchQuery& query) override {
    queries.push_back(query);
    Called("HH_DISPLAY_SEARCH", owner, target, "query");
  }
  void LookUpKeyword(WindowHandle owner, const std::string& file, const HelpLink& link) override {
    links.push_back(link);
    Called("HH_KEYWORD_LOOKUP", owner, file, "link");
  }
  void LookUpALink(WindowHandle owner, const std::string& file, const HelpLink& link) override {
    links.push_back(link);
    Called("HH_ALINK_LOOKUP", owner, file, "link");
  }
  void DisplayPopup(WindowHandle owner, const OptionalText& target, const HelpPopup& popup) override {
    popups.push_back(popup);
    Called("HH_DISPLAY_TEXT_POPUP", owner, Shown(target), "popup");
  }
  void CloseAll(const std::string& file) override { Called("HH_CLOSE_ALL", 0, file, "0"); }

 private:
  void Called(const std::string& command, WindowHandle owner, const std::string& target,
              const std::string& data) {
    log_.push_back(command + " " + std::to_string(owner) + " " + target + " " + data);
    if (raises) throw RunTimeError(*raises);
  }
  EventLog& log_;
};

class FakeHelpDesktop final : public HelpDesktop {
 public:
  explicit FakeHelpDesktop(EventLog& log) : log_(log) {}

  ScreenPoint cursor{120, 340};
  std::map<std::int32_t, std::string> strings;

  ScreenPoint CursorPosition() override { return cursor; }
  std::string StringResource(std::int32_t id) override {
    const auto found = strings.find(id);
    if (found == strings.end()) throw RunTimeError(ErrorNumber::InvalidProcedureCall);
    return found->second;
  }
  void DefaultMessage(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                      std::intptr_t lParam) override {
    log_.push_back("message " + std::to_string(window) + " " + std::to_string(message) + " " +
                   std::to_string(wParam) + " " + std::to_string(lParam));
  }

 private:
  EventLog& log_;
};

// Logs "error TEXT" or "info TEXT"; a box of another caption or style is told whole.
class FakeHelpBoxes final : public HelpBoxes {
 public:
  explicit FakeHelpBoxes(EventLog& log) : log_(log) {}
  void Show(const std::string& text, const std::string& caption, std::uint32_t style) override {
    if (caption == "Tarnwick! Error" && (style == 16 || style == 64)) {
      log_.push_back((style == 16 ? "error " : "info ") + text);
    } else {
      log_.push_back("box " + caption + " " + std::to_string(style) + " " + text);
    }
  }

 private:
  EventLog& log_;
};

class FakeHelpFileSearch final : public HelpFileSearch {
 public:
  explicit FakeHelpFileSearch(EventLog& log) : log_(log) {}

  std::map<std::string, std::string> found;      // path as asked for -> name as the file system has it
  std::string badName;                           // a path that is no name at all
  std::map<std::string, std::string> longPaths;  // the system's own answers
  int open = 0;                                  // searches that nobody closed yet

  FileSearchResult FindFirst(const std::string& path) override {
    log_.push_back("find " + path);
    if (!badName.empty() && path == badName) return {FileSearchResult::End::BadName, 0, {}};
    const auto entry = found.find(path);
    if (entry == found.end()) return {};
    ++open;
    return {FileSearchResult::End::Found, ++handles_, entry->second};
  }
  void Close(SearchHandle handle) override {
    if (handle == 0 || handle > handles_) log_.push_back("closes what it never opened");
    --open;
  }
  std::optional<std::string> LongPathName(const std::string& path, int maxLength) override {
    log_.push_back("long " + path);
    const auto entry = longPaths.find(path);
    if (entry == longPaths.end() || static_cast<int>(entry->second.size()) >= maxLength) return std::nullopt;
    return entry->second;
  }

 private:
  EventLog& log_;
  SearchHandle handles_ = 0;
};

class FakeHelpRegistry final : public HelpRegistry {
 public:
  struct Value {
    std::string name;
    std::uint32_t type = kTypeString;
    std::string text;  // with its null
  };
  struct Key {
    std::vector<Value> values;
    std::vector<std::pair<std::string, std::optional<std::string>>> subKeys;  // name, default text
  };

  explicit FakeHelpRegistry(EventLog& log) : log_(log) {}

  std::map<std::pair<std::uint32_t, std::string>, Key> keys;
  std::map<std::string, std::string> variables;  // "%X%" -> its value
  bool refuseCreate = false;
  bool refuseSet = false;
  bool refuseQuery = false;
  bool refuseClose = false;
  int open = 0;  // keys that nobody closed yet

  std::optional<RegistryKey> Open(std::uint32_t hive, const std::string& key, std::uint32_t access) override {
    log_.push_back("open " + Number(hive) + " " + key + " " + Number(access));
    if (!keys.contains({hive, key})) return std::nullopt;
    return Opened(hive, key);
  }
  std::optional<RegistryKey> Create(std::uint32_t hive, const std::string& key,
                                    std::uint32_t access) override {
    log_.push_back("create " + Number(hive) + " " + key + " " + Number(access));
    if (refuseCreate) return std::nullopt;
    keys[{hive, key}];
    return Opened(hive, key);
  }
  bool Close(RegistryKey) override {
    --open;
    return !refuseClose;
  }
  std::optional<RegistryValueHead> EnumValue(RegistryKey key, std::uint32_t index, int maxName) override {
    const std::vector<Value>& values = Of(key).values;
    if (index >= values.size() || static_cast<int>(values[index].name.size()) >= maxName) return std::nullopt;
    return RegistryValueHead{values[index].name, values[index].type,
                             static_cast<std::uint32_t>(values[index].text.size())};
  }
  std::optional<std::string> QueryText(RegistryKey key, const std::string& name,
                                       std::uint32_t bytes) override {
    if (refuseQuery) return std::nullopt;
    for (const Value& value : Of(key).values) {
      if (Folded(value.name) == Folded(name) && value.text.size() <= bytes) return value.text;
    }
    return std::nullopt;
  }
  bool SetText(RegistryKey key, const std::string& name, const std::string& text,
               std::size_t characters) override {
    log_.push_back("set " + name + "=" + text + " " + std::to_string(characters));
    if (refuseSet) return false;
    Of(key).values.push_back({name, kTypeString, (text + '\0').substr(0, characters)});
    return true;
  }
  bool DeleteValue(RegistryKey key, const std::string& name) override {
    log_.push_back("delete " + name);
    std::erase_if(Of(key).values, [&](const Value& value) { return Folded(value.name) == Folded(name); });
    return true;
  }
  std::optional<std::string> EnumKey(RegistryKey key, std::uint32_t index, int maxName) override {
    const auto& subKeys = Of(key).subKeys;
    if (index >= subKeys.size() || static_cast<int>(subKeys[index].first.size()) >= maxName)
      return std::nullopt;
    return subKeys[index].first;
  }
  std::optional<std::string> DefaultText(RegistryKey key, const std::string& subKey, int) override {
    log_.push_back("default of " + subKey);
    for (const auto& [name, text] : Of(key).subKeys) {
      if (name.substr(0, name.find('\0')) == subKey) return text;
    }
    return std::nullopt;
  }
  std::optional<std::string> Expand(const std::string& text, int maxText) override {
    std::string expanded = text;
    for (const auto& [variable, value] : variables) {
      const std::size_t at = expanded.find(variable);
      if (at != std::string::npos) expanded.replace(at, variable.size(), value);
    }
    if (static_cast<int>(expanded.size()) > maxText) return std::nullopt;
    return expanded;
  }

 private:
  static std::string Number(std::uint32_t number) {
    for (const auto& [hive, name] : {std::pair{kHiveLocalMachine, "HKLM"}, {kHiveClassesRoot, "HKCR"}}) {
      if (number == hive) return name;
    }
    return std::to_string(number);
  }
  static std::string Folded(const std::string& text) { return FakeRegional().UpperCase(text); }
  RegistryKey Opened(std::uint32_t hive, const std::string& key) {
    ++open;
    opened_.push_back({hive, key});
    return opened_.size();
  }
  Key& Of(RegistryKey key) { return keys.at(opened_.at(key - 1)); }

  EventLog& log_;
  std::vector<std::pair<std::uint32_t, std::string>> opened_;
};

// Each file's version information: its size, and the fixed part.
class FakeFileVersions final : public FileVersions {
 public:
  explicit FakeFileVersions(EventLog& log) : log_(log) {}

  std::map<std::string, std::string> fixed;
  std::uint32_t size = 1500;

  void Set(const std::string& file, std::uint32_t major, std::uint32_t minor, std::uint32_t high,
           std::uint32_t low) {
    std::string bytes(kFixedVersionBytes, '\xEE');
    const std::uint32_t words[] = {minor, major, low, high};
    for (std::size_t i = 0; i < 4; ++i) {
      bytes[8 + 2 * i] = static_cast<char>(words[i] & 0xFF);
      bytes[9 + 2 * i] = static_cast<char>(words[i] >> 8);
    }
    fixed[file] = bytes;
  }
  std::uint32_t InformationSize(const std::string& file) override {
    log_.push_back("version of " + file);
    return fixed.contains(file) ? size : 0;
  }
  std::optional<std::string> FixedInformation(const std::string& file, std::uint32_t bufferBytes) override {
    bufferSize = bufferBytes;
    const auto found = fixed.find(file);
    if (found == fixed.end()) return std::nullopt;
    return found->second;
  }
  std::uint32_t bufferSize = 0;

 private:
  EventLog& log_;
};

struct FakeSystemVersion final : SystemVersionSource {
  SystemVersion version{2, 5, 1};
  SystemVersion Version() override { return version; }
};

constexpr const char* kTableKey = "Software\\Microsoft\\Windows\\HTML Help";
constexpr const char* kControlKey = "CLSID\\{4662DAB0-D393-11D0-9A56-00C04FB68B66}\\InprocServer32";
constexpr const char* kBrowserKey = "CLSID\\{0A89A860-D7B1-11CE-8350-444553540000}\\InProcServer32";
constexpr const char* kOpensTable = "open HKLM Software\\Microsoft\\Windows\\HTML Help 1";

struct HelpRig {
  EventLog log;
  FakeHelpViewer viewer{log};
  FakeHelpDesktop desktop{log};
  FakeHelpBoxes boxes{log};
  FakeHelpFileSearch files{log};
  FakeHelpRegistry registry{log};
  FakeFileVersions versions{log};
  FakeSystemVersion system;
  FakeProcess process{log};
  FakeRegional regional;
  HelpParts parts{viewer, desktop, boxes, files, registry, versions, system, process, regional};
  HTMLHelp help{parts};

  // A help file that stands where the properties say.
  void SetHelpFile(const std::string& path) {
    files.found[path] = path.substr(path.rfind('\\') + 1);
    help.CHMFile(path);
  }
  void EnterInTable(const std::string& name, const std::string& folder) {
    registry.keys[{kHiveLocalMachine, kTableKey}].values.push_back({name, kTypeString, folder + '\0'});
  }
  // A component whose file is there, with a version.
  void Install(const char* key, const std::string& file) {
    registry.keys[{kHiveClassesRoot, key}].values.push_back({"", kTypeString, file + '\0'});
    files.found[file] = file.substr(file.rfind('\\') + 1);
    files.longPaths[file] = file;
  }
};

}  // namespace zq::test
