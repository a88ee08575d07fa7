#include "cli/Safety.h"

#include <algorithm>

namespace zq::cli {
namespace {

bool Is(const Candidate& candidate, const Guarded& guarded, PathStyle style) {
  if (candidate.id.IsKnown() && candidate.id == guarded.id) return true;
  return !guarded.path.empty() && IsWithin(candidate.canonical, guarded.path, style) &&
         IsWithin(guarded.path, candidate.canonical, style);
}

bool Holds(const Candidate& candidate, const Guarded& guarded, PathStyle style) {
  if (candidate.id.IsKnown() && std::ranges::count(guarded.above, candidate.id) > 0) return true;
  return !guarded.path.empty() && IsWithin(guarded.path, candidate.canonical, style);
}

}  // namespace

std::string WhyProtected(const Candidate& candidate, const Surroundings& surroundings) {
  const PathStyle style = surroundings.style;
  const std::string_view name = LastName(candidate.given, style);
  if (name == "." || name == "..") return "'.' and '..' are not accepted; name the folder itself";

  if (IsRoot(candidate.given, style) || IsRoot(candidate.canonical, style)) return "it is a whole drive";
  for (const std::string& mountPoint : surroundings.mountPoints) {
    if (IsSame(candidate.canonical, mountPoint, style)) return "a file system is mounted there";
  }
  for (const Guarded& home : surroundings.homes) {
    if (Is(candidate, home, style)) return "it is a home folder";
  }
  for (const Guarded& home : surroundings.homes) {
    if (Holds(candidate, home, style)) return "a home folder is in it";
  }
  if (Is(candidate, surroundings.currentFolder, style)) return "it is the current folder";
  if (Holds(candidate, surroundings.currentFolder, style)) return "the current folder is in it";
  if (Is(candidate, surroundings.program, style)) return "it is the program that is running";
  if (Holds(candidate, surroundings.program, style)) return "the program that is running is in it";
  return {};
}

}  // namespace zq::cli
