#include "platform/PathPlace.h"

#include <algorithm>
#include <string>

namespace zq {
namespace {

constexpr std::string_view kLongPath = "\\\\?\\";
constexpr std::string_view kLongNetworkPath = "\\\\?\\UNC\\";

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// "C:\" and what may follow.
bool BeginsAtADrive(std::string_view path) {
  return path.size() >= 3 && IsLetter(path[0]) && path[1] == ':' && path[2] == '\\';
}

// "server\share" and what may follow.
bool BeginsAtAShare(std::string_view path) {
  const std::size_t slash = path.find('\\');
  if (slash == 0 || slash == std::string_view::npos || path.size() == slash + 1) return false;
  const std::string_view server = path.substr(0, slash);
  return server != "?" && server != "." && path[slash + 1] != '\\';
}

// The system takes either slash, except behind the mark of a long path, where a wrong one leads nowhere.
std::string WithBackslashes(std::string_view path) {
  std::string result(path);
  std::replace(result.begin(), result.end(), '/', '\\');
  return result;
}

bool StartsWithIgnoringCase(std::string_view text, std::string_view start) {
  const auto same = [](char a, char b) { return a == b || (IsLetter(a) && IsLetter(b) && (a ^ b) == 0x20); };
  return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(), same);
}

}  // namespace

bool BeginsOnADriveOrShare(std::string_view path) {
  const std::string text = WithBackslashes(path);
  const std::string_view view = text;
  if (StartsWithIgnoringCase(view, kLongNetworkPath)) {
    return BeginsAtAShare(view.substr(kLongNetworkPath.size()));
  }
  if (view.starts_with(kLongPath)) return BeginsAtADrive(view.substr(kLongPath.size()));
  return BeginsAtADrive(view) || (view.starts_with("\\\\") && BeginsAtAShare(view.substr(2)));
}

bool BeginsInAnotherNameSpace(std::string_view path) {
  const std::string text = WithBackslashes(path);
  const std::string_view view = text;
  const bool inANameSpace =
      view.starts_with(kLongPath) || view.starts_with("\\\\.\\") || view.starts_with("\\??\\");
  return inANameSpace && !BeginsOnADriveOrShare(view);
}

}  // namespace zq
