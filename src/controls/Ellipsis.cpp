#include "controls/Ellipsis.h"

#include <cstddef>
#include <vector>

namespace zq {
namespace {

constexpr std::string_view kEllipsis = "\u2026";

// Where each character of a UTF-8 text begins, and its end.
std::vector<std::size_t> CharacterStarts(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
  }
  starts.push_back(text.size());
  return starts;
}

std::string Joined(std::string_view front, std::string_view back) {
  std::string joined(front);
  joined += kEllipsis;
  joined += back;
  return joined;
}

// The largest number from `least` to `most` that is good; `least` if none is. What is good stays so for less.
template <class Good>
std::size_t Largest(std::size_t least, std::size_t most, const Good& good) {
  while (least < most) {
    const std::size_t middle = least + (most - least + 1) / 2;
    if (good(middle)) {
      least = middle;
    } else {
      most = middle - 1;
    }
  }
  return least;
}

// `front` with its middle left out, as far as there is no room for it before `back`. At the least its first
// character stays.
std::string CutBefore(std::string_view front, std::string_view back, const Fits& fits) {
  const std::vector<std::size_t> starts = CharacterStarts(front);
  const std::size_t count = starts.size() - 1;
  const auto keeping = [&](std::size_t characters) {
    // The end is what lies nearest to the name, the beginning is the drive: of an odd number the end has
    // more.
    const std::size_t before = characters / 2 == 0 ? characters : characters / 2;
    const std::size_t behind = characters - before;
    return Joined(front.substr(0, starts[before]),
                  std::string(front.substr(starts[count - behind])) + std::string(back));
  };
  if (count <= 1) return std::string(front) + std::string(back);
  return keeping(Largest(1, count - 1, [&](std::size_t characters) { return fits(keeping(characters)); }));
}

// Where the name of a path begins.
std::size_t NameStart(std::string_view path) {
  if (path.size() < 2) return 0;
  const std::size_t slash = path.rfind('\\', path.size() - 2);
  return slash == std::string_view::npos ? 0 : slash + 1;
}

}  // namespace

std::string MiddleEllipsis(std::string_view text, const Fits& fits) {
  std::string whole(text);
  const std::vector<std::size_t> starts = CharacterStarts(text);
  const std::size_t count = starts.size() - 1;
  if (count <= 2 || fits(whole)) return whole;
  const auto keeping = [&](std::size_t characters) {
    const std::size_t behind = characters / 2;
    return Joined(text.substr(0, starts[characters - behind]), text.substr(starts[count - behind]));
  };
  return keeping(Largest(2, count - 1, [&](std::size_t characters) { return fits(keeping(characters)); }));
}

std::string PathEllipsis(std::string_view path, const Fits& fits) {
  std::string whole(path);
  if (fits(whole)) return whole;
  const std::size_t nameStart = NameStart(path);
  if (nameStart == 0) return MiddleEllipsis(path, fits);
  // The backslash before the name goes with it: "C:\…\name".
  const std::string_view folders = path.substr(0, nameStart - 1);
  const std::string_view name = path.substr(nameStart - 1);
  std::string shortened = CutBefore(folders, name, fits);
  if (fits(shortened)) return shortened;
  shortened = Joined("", name);
  if (fits(shortened)) return shortened;
  return MiddleEllipsis(path.substr(nameStart), fits);
}

std::string FoldedPath(std::string_view path, const Fits& fits) {
  std::string folded;
  std::string line;
  while (!path.empty()) {
    const std::size_t slash = path.find('\\');
    const std::string_view part = path.substr(0, slash == std::string_view::npos ? slash : slash + 1);
    path.remove_prefix(part.size());
    if (!line.empty() && !fits(line + std::string(part))) {
      folded += line + "\r\n";
      line.clear();
    }
    line += part;
  }
  return folded + line;
}

}  // namespace zq
