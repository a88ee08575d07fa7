#include "manager/Selection.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "platform/Files.h"
#include "platform/PathPlace.h"
#include "platform/Process.h"
#include "platform/Regional.h"

namespace zq {
namespace {

constexpr const char* kNoPlace = "It lies neither on a drive with a letter nor in a share of a server.";
constexpr const char* kNotThere = "It could not be found.";
constexpr const char* kNotKnown = "Where it leads to could not be found out.";
constexpr const char* kRoot = "It is a whole drive or share.";
constexpr const char* kWindows = "It belongs to Windows.";
constexpr const char* kSystem = "It is or holds a folder that Windows needs.";
constexpr const char* kProgram = "It is or holds the folder that Zeroquill runs from.";
constexpr const char* kBin = "It belongs to the Recycle Bin.  Use Wipe Recycle Bin instead.";

std::string_view WithoutMark(std::string_view path, std::string& scratch) {
  constexpr std::string_view kLong = "\\\\?\\";
  constexpr std::string_view kNetwork = "UNC\\";
  if (!path.starts_with(kLong)) return path;
  path.remove_prefix(kLong.size());
  if (!path.starts_with(kNetwork)) return path;
  scratch = "\\\\" + std::string(path.substr(kNetwork.size()));
  return scratch;
}

// One form for paths that are compared: upper case, backslashes, one of them at the end.
std::string Key(Regional& regional, std::string_view path) {
  std::string text(path);
  std::replace(text.begin(), text.end(), '/', '\\');
  text = regional.UpperCase(text);
  std::string scratch;
  text = std::string(WithoutMark(text, scratch));
  while (text.ends_with('\\')) text.pop_back();
  return text + '\\';
}

bool IsRoot(std::string_view key) {
  if (!key.starts_with("\\\\")) return key.size() <= 3;
  // "\\server\share\": no more than two names.
  return std::count(key.begin() + 2, key.end(), '\\') <= 2;
}

// "X:\NAME\..." or "\\server\share\NAME\...".
bool LiesInAtTheRoot(std::string_view key, std::string_view name) {
  std::size_t start = 0;
  if (key.starts_with("\\\\")) {
    start = key.find('\\', 2);
    if (start != std::string_view::npos) start = key.find('\\', start + 1);
  } else {
    start = key.find('\\');
  }
  return start != std::string_view::npos && key.substr(start + 1).starts_with(name);
}

class Look {
 public:
  Look(Files& files, Process& process, Regional& regional, const SystemPlaces& places)
      : files_(files), process_(process), regional_(regional), places_(places) {}

  Selection At(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) Check(path);
    if (!selection_.refusals.empty()) return std::move(selection_);
    TakeOnce();
    return std::move(selection_);
  }

 private:
  struct Candidate {
    std::string path;
    std::string key;
    FileEntry entry;
  };

  void Refuse(const std::string& path, const char* reason) {
    selection_.refusals.push_back(path + " - " + reason);
  }

  void Check(const std::string& given) {
    process_.LookAtMessages();
    if (!BeginsOnADriveOrShare(given)) return Refuse(given, kNoPlace);
    std::string path = given;
    std::replace(path.begin(), path.end(), '/', '\\');
    while (path.ends_with('\\')) path.pop_back();
    if (IsRoot(Key(regional_, path))) return Refuse(given, kRoot);
    const std::optional<std::uint32_t> attributes = files_.Attributes(path);
    // A name with wildcards would find another file.
    const std::string name = path.substr(path.rfind('\\') + 1);
    if (!attributes || name.find_first_of("*?") != std::string::npos) return Refuse(given, kNotThere);
    const std::optional<FileEntry> entry = files_.FindEntry(path);
    if (!entry) return Refuse(given, kNotThere);
    // A link is what stands here, not what it leads to.
    const bool isFolder =
        (*attributes & (kAttributeDirectory | kAttributeReparsePoint)) == kAttributeDirectory;
    const std::string real = RealKey(path, isFolder);
    if (real.empty()) return Refuse(given, kNotKnown);
    if (const char* reason = WhyNot(real)) return Refuse(given, reason);
    candidates_.push_back({path, real, *entry});
  }

  // A file is where its folder is; a selection has many files in few folders.
  std::string RealKey(const std::string& path, bool isFolder) {
    const std::size_t slash = path.rfind('\\');
    const std::string folder = isFolder ? path : path.substr(0, slash);
    auto known = real_.find(folder);
    if (known == real_.end()) {
      // A drive's root needs its backslash, or it is the drive's current folder.
      const std::string real = places_.real(folder.ends_with(':') ? folder + "\\" : folder);
      known = real_.emplace(folder, real.empty() ? "" : Key(regional_, real)).first;
    }
    if (known->second.empty() || isFolder) return known->second;
    return known->second + regional_.UpperCase(path.substr(slash + 1)) + '\\';
  }

  const char* WhyNot(const std::string& key) {
    const auto holds = [&](const std::string& place) {
      return !place.empty() && Key(regional_, place).starts_with(key);
    };
    if (IsRoot(key)) return kRoot;
    if (holds(places_.windows)) return kSystem;
    if (!places_.windows.empty() && key.starts_with(Key(regional_, places_.windows))) return kWindows;
    if (std::any_of(places_.folders.begin(), places_.folders.end(), holds)) return kSystem;
    if (holds(places_.program)) return kProgram;
    if (LiesInAtTheRoot(key, "$RECYCLE.BIN\\")) return kBin;
    if (LiesInAtTheRoot(key, "SYSTEM VOLUME INFORMATION\\")) return kWindows;
    return nullptr;
  }

  // Each once: what is gone with its folder couldn't be found afterwards.
  void TakeOnce() {
    std::set<std::string> folders;
    std::set<std::string> taken;
    for (const Candidate& candidate : candidates_) {
      if (candidate.entry.attributes & kAttributeDirectory) folders.insert(candidate.key);
    }
    for (const Candidate& candidate : candidates_) {
      if (LiesInOneOf(folders, candidate.key) || !taken.insert(candidate.key).second) continue;
      const bool isFolder = (candidate.entry.attributes & kAttributeDirectory) != 0;
      selection_.items.push_back({candidate.path, isFolder, {}, candidate.path});
      MeasureEntry(candidate.entry, selection_.measured);
      if (isFolder && !(candidate.entry.attributes & kAttributeReparsePoint))
        MeasureFolder(files_, process_, candidate.path, selection_.measured);
    }
  }

  // In a folder above it, that is.
  static bool LiesInOneOf(const std::set<std::string>& folders, const std::string& key) {
    for (std::size_t slash = key.find('\\'); slash != std::string::npos && slash + 1 < key.size();
         slash = key.find('\\', slash + 1)) {
      if (folders.contains(key.substr(0, slash + 1))) return true;
    }
    return false;
  }

  Files& files_;
  Process& process_;
  Regional& regional_;
  const SystemPlaces& places_;
  std::map<std::string, std::string> real_;
  std::vector<Candidate> candidates_;
  Selection selection_;
};

}  // namespace

Selection LookAtSelection(Files& files, Process& process, Regional& regional, const SystemPlaces& places,
                          const std::vector<std::string>& paths) {
  return Look(files, process, regional, places).At(paths);
}

}  // namespace zq
