#include "controls/document/LineBreaker.h"

#include "controls/document/Characters.h"

namespace zq {
namespace {

constexpr char32_t kZeroWidthJoiner = 0x200D;

// Scripts that are written without blanks, where a line may break anywhere.
bool IsIdeograph(char32_t c) {
  return (c >= 0x2E80 && c <= 0x9FFF) || (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFF01 && c <= 0xFF60) || (c >= 0x20000 && c <= 0x3FFFF);
}

// Signs that change the one before them.
bool IsModifier(char32_t c) {
  return c == kZeroWidthJoiner || (c >= 0x0300 && c <= 0x036F) || (c >= 0x1AB0 && c <= 0x1AFF) ||
         (c >= 0x1DC0 && c <= 0x1DFF) || (c >= 0x20D0 && c <= 0x20FF) || (c >= 0x3099 && c <= 0x309A) ||
         (c >= 0xFE00 && c <= 0xFE0F) || (c >= 0xFE20 && c <= 0xFE2F) || (c >= 0x1F3FB && c <= 0x1F3FF) ||
         (c >= 0xE0100 && c <= 0xE01EF);
}

}  // namespace

void BreakLines(std::string_view paragraph, const std::vector<Twips>& edges, Twips width,
                std::vector<std::size_t>& ends) {
  ends.clear();
  const auto edge = [&edges](std::size_t at) { return at == 0 ? 0 : edges[at - 1]; };
  std::size_t lineStart = 0;
  std::size_t lastPlace = 0;  // the latest place where this line may break; none if it isn't behind its start
  char32_t before = 0;
  std::size_t clusterStart = 0;  // of the character in work, without its marks
  for (std::size_t at = 0; at < paragraph.size();) {
    const std::size_t start = at;
    const char32_t c = NextCodePoint(paragraph, at);
    const bool joined = before == kZeroWidthJoiner || IsModifier(c) || edge(at) == edge(start);
    if (!joined) clusterStart = start;
    if (!joined && start > lineStart && (IsIdeograph(c) || IsIdeograph(before))) lastPlace = start;
    while (c != ' ' && edge(at) - edge(lineStart) > width) {
      std::size_t end = lastPlace > lineStart ? lastPlace : clusterStart;
      if (end <= lineStart) break;
      ends.push_back(end);
      lineStart = end;
    }
    if (c == ' ') lastPlace = at;
    before = c;
  }
  ends.push_back(paragraph.size());
}

}  // namespace zq
