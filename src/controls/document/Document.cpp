#include "controls/document/Document.h"

#include <algorithm>

namespace zq {

std::size_t RunAt(const Document& document, std::size_t at) {
  const auto behind =
      std::upper_bound(document.runs.begin(), document.runs.end(), at,
                       [](std::size_t place, const StyledRun& run) { return place < run.begin; });
  if (behind == document.runs.begin()) return 0;
  return static_cast<std::size_t>(behind - document.runs.begin()) - 1;
}

const TextStyle& StyleAt(const Document& document, std::size_t at) {
  static const TextStyle plain;
  return document.runs.empty() ? plain : document.runs[RunAt(document, at)].style;
}

std::string WithPageNumber(std::string_view text, int number) {
  std::string result;
  for (;;) {
    const std::size_t mark = text.find("%d");
    result += text.substr(0, mark);
    if (mark == std::string_view::npos) return result;
    result += std::to_string(number);
    text.remove_prefix(mark + 2);
  }
}

}  // namespace zq
