// Texts that are longer than the room for them: what is left out stands for itself as an ellipsis.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zq {

// Whether there is room for a text. Asked of shorter and shorter texts: if one fits, so do shorter ones.
using Fits = std::function<bool(const std::string& text)>;

// `text` as it is where it fits, else with an ellipsis in the place of its middle: as much of both ends as
// there is room for, never less than the first and the last character. Characters (code points) are never
// cut.
std::string MiddleEllipsis(std::string_view text, const Fits& fits);

// The same for a path: the ellipsis goes into the folders, and the name, which is what stands behind the last
// backslash, stays whole. Only a name that alone has no room is cut, in its middle. A backslash at the path's
// end belongs to the name.
std::string PathEllipsis(std::string_view path, const Fits& fits);

// `path` with line breaks (CR LF) behind backslashes, so that each line fits; a part that has no room by
// itself has a line of its own.
std::string FoldedPath(std::string_view path, const Fits& fits);

}  // namespace zq
