#include "cli/Paths.h"

#include <algorithm>
#include <cstddef>

namespace zq::cli {
namespace {

char Folded(char c, PathStyle style) {
  if (style == PathStyle::Posix) return c;
  if (c == '/') return '\\';
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string_view WithoutTail(std::string_view path, PathStyle style) {
  while (!path.empty() && IsSeparator(path.back(), style)) path.remove_suffix(1);
  return path;
}

// The length of the part of a Windows path that names the drive or the share, without the separator behind.
std::size_t DriveLength(std::string_view path) {
  const auto separator = [&](std::size_t at) {
    return at < path.size() && IsSeparator(path[at], PathStyle::Windows);
  };
  const auto partEnd = [&](std::size_t at) {
    while (at < path.size() && !separator(at)) ++at;
    return at;
  };
  if (path.size() >= 2 && IsLetter(path[0]) && path[1] == ':') return 2;
  if (!separator(0) || !separator(1)) return 0;

  const std::size_t server = partEnd(2);
  const std::string_view first = path.substr(2, server - 2);
  if (first != "?" && first != ".") return server == path.size() ? server : partEnd(server + 1);
  // \\?\C:  \\?\Volume{...}  \\?\UNC\server\share
  const std::size_t second = server == path.size() ? server : partEnd(server + 1);
  if (!IsSame(path.substr(0, second).substr(std::min(server + 1, second)), "UNC", PathStyle::Windows)) {
    return second;
  }
  const std::size_t host = second == path.size() ? second : partEnd(second + 1);
  return host == path.size() ? host : partEnd(host + 1);
}

std::size_t RootLength(std::string_view path, PathStyle style) {
  return style == PathStyle::Windows ? DriveLength(path) : 0;
}

}  // namespace

bool IsSeparator(char c, PathStyle style) {
  return c == '/' || (style == PathStyle::Windows && c == '\\');
}

std::string_view LastName(std::string_view path, PathStyle style) {
  const std::size_t root = RootLength(path, style);
  path = WithoutTail(path, style);
  if (path.size() <= root) return {};
  std::size_t start = path.size();
  while (start > root && !IsSeparator(path[start - 1], style)) --start;
  return path.substr(start);
}

bool IsRoot(std::string_view path, PathStyle style) {
  return !path.empty() && LastName(path, style).empty();
}

bool IsSame(std::string_view a, std::string_view b, PathStyle style) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [style](char x, char y) { return Folded(x, style) == Folded(y, style); });
}

bool IsWithin(std::string_view path, std::string_view folder, PathStyle style) {
  if (path.empty() || folder.empty()) return false;  // not a root, which becomes empty only here
  path = WithoutTail(path, style);
  folder = WithoutTail(folder, style);
  if (path.size() < folder.size() || !IsSame(path.substr(0, folder.size()), folder, style)) return false;
  return path.size() == folder.size() || IsSeparator(path[folder.size()], style);
}

std::vector<std::string> WithAllAbove(std::string_view path, PathStyle style) {
  std::vector<std::string> all;
  while (!IsRoot(path, style) && !path.empty()) {
    path = WithoutTail(path, style);
    all.emplace_back(path);
    path.remove_suffix(LastName(path, style).size());
  }
  if (!path.empty()) all.emplace_back(path);
  return all;
}

}  // namespace zq::cli
