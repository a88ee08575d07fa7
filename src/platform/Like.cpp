#include "platform/Like.h"

#include <cstdint>
#include <optional>

#include "platform/Utf8.h"

namespace zq {
namespace {

// Takes one character off the front of `text`: a code point, or a single byte that isn't valid UTF-8
// (told apart from code points by a value above them all). `text` isn't empty.
std::uint32_t TakeCharacter(std::string_view& text) {
  constexpr std::uint32_t kInvalidByte = 0x110000;
  const Character character = FirstCharacter(text);
  // cppcheck-suppress containerOutOfBounds
  const auto first = static_cast<unsigned char>(text.front());
  text.remove_prefix(character.sizeBytes);
  return character.isValid ? character.value : kInvalidByte + first;
}

// The content of a bracket at the front of `pattern`, taken off with its brackets; nothing if the
// bracket isn't closed.
std::optional<std::string_view> TakeList(std::string_view& pattern) {
  const std::size_t end = pattern.find(']', 1);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view list = pattern.substr(1, end - 1);
  pattern.remove_prefix(end + 1);
  return list;
}

bool ListHolds(std::string_view list, std::uint32_t character) {
  const bool outside = list.size() > 1 && list.front() == '!';
  if (outside) list.remove_prefix(1);
  bool found = false;
  while (!list.empty()) {
    const std::uint32_t low = TakeCharacter(list);
    std::uint32_t high = low;
    if (list.size() > 1 && list.front() == '-') {
      list.remove_prefix(1);
      high = TakeCharacter(list);
    }
    found = found || (low <= character && character <= high);
  }
  return found != outside;
}

enum class Step { Matched, Failed };

// Matches the front of `pattern`, which isn't a `*`, with the front of `text`, and takes both off.
Step MatchOne(std::string_view& text, std::string_view& pattern) {
  if (pattern.front() == '[') {
    const std::optional<std::string_view> list = TakeList(pattern);
    if (!list) return Step::Failed;
    if (list->empty()) return Step::Matched;  // `[]` is the empty text
    if (text.empty()) return Step::Failed;
    return ListHolds(*list, TakeCharacter(text)) ? Step::Matched : Step::Failed;
  }
  if (text.empty()) return Step::Failed;
  const std::uint32_t wanted = TakeCharacter(pattern);
  const std::uint32_t character = TakeCharacter(text);
  if (wanted == '?') return Step::Matched;
  if (wanted == '#') return character >= '0' && character <= '9' ? Step::Matched : Step::Failed;
  return wanted == character ? Step::Matched : Step::Failed;
}

}  // namespace

bool Like(std::string_view text, std::string_view pattern) {
  // Only the last `*` can need another try: what stood before it is matched as early as possible, and
  // that is never worse. So the time is the product of the two lengths at the most.
  std::optional<std::string_view> patternBehindStar;
  std::string_view textAtStar;
  while (!text.empty() || !pattern.empty()) {
    if (!pattern.empty() && pattern.front() == '*') {
      pattern.remove_prefix(1);
      patternBehindStar = pattern;
      textAtStar = text;
      continue;
    }
    if (!pattern.empty() && MatchOne(text, pattern) == Step::Matched) continue;
    if (!patternBehindStar || textAtStar.empty()) return false;
    TakeCharacter(textAtStar);
    text = textAtStar;
    pattern = *patternBehindStar;
  }
  return true;
}

}  // namespace zq
