// What a path says by its text alone. Both systems' rules are parameters, so that each is tested everywhere.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq::cli {

enum class PathStyle { Posix, Windows };

bool IsSeparator(char c, PathStyle style);

// What follows the last separator, separators at the very end left out: "b" of "a/b/". Empty for a root.
std::string_view LastName(std::string_view path, PathStyle style);

// Whether nothing is above the path: "/", "C:\", "C:", "\\server\share", "\\?\Volume{...}\".
bool IsRoot(std::string_view path, PathStyle style);

// The two canonical paths are the same one. Windows' upper and lower case are told apart beyond ASCII only,
// which does no harm where both come from the system in the case that it keeps.
bool IsSame(std::string_view a, std::string_view b, PathStyle style);

// `path` is `folder` or lies in it, at any depth. Both are canonical.
bool IsWithin(std::string_view path, std::string_view folder, PathStyle style);

// The path and all folders above it, the root last. `path` is canonical and absolute.
std::vector<std::string> WithAllAbove(std::string_view path, PathStyle style);

}  // namespace zq::cli
