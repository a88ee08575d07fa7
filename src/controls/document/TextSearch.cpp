#include "controls/document/TextSearch.h"

#include <algorithm>
#include <vector>

#include "controls/document/Characters.h"

namespace zq {
namespace {

std::u32string CodePointsOf(std::string_view text) {
  std::u32string points;
  points.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) points += NextCodePoint(text, at);
  return points;
}

// Moves `at` on by `count` characters.
std::size_t Advance(std::string_view text, std::size_t at, std::size_t count) {
  for (; count > 0 && at < text.size(); --count) NextCodePoint(text, at);
  return at;
}

class Search {
 public:
  Search(const Document& document, std::string_view needle, bool backwards, const FoldCase& fold)
      : document_(document), needle_(CodePointsOf(fold(needle))), backwards_(backwards), fold_(fold) {}

  // The nearest occurrence in the block that lies within [low, high).
  std::optional<TextRange> InBlock(const Block& block, std::size_t low, std::size_t high) const {
    const std::size_t begin = std::max(block.begin, low);
    const std::size_t end = std::min(block.end, high);
    if (begin >= end) return std::nullopt;
    const std::string_view text = std::string_view(document_.text).substr(begin, end - begin);
    const std::u32string folded = CodePointsOf(fold_(text));
    const std::size_t found = backwards_ ? folded.rfind(needle_) : folded.find(needle_);
    if (found == std::u32string::npos) return std::nullopt;
    const std::size_t from = Advance(text, 0, found);
    return TextRange{begin + from, begin + Advance(text, from, needle_.size())};
  }

  std::optional<TextRange> Within(std::size_t low, std::size_t high) const {
    const std::vector<Block>& blocks = document_.blocks;
    const auto isBefore = [](const Block& block, std::size_t place) { return block.end < place; };
    const auto first = std::lower_bound(blocks.begin(), blocks.end(), low, isBefore);
    auto last = std::lower_bound(first, blocks.end(), high, isBefore);
    if (last != blocks.end()) ++last;
    if (backwards_) {
      for (auto block = last; block != first;) {
        if (const auto range = InBlock(*--block, low, high)) return range;
      }
    } else {
      for (auto block = first; block != last; ++block) {
        if (const auto range = InBlock(*block, low, high)) return range;
      }
    }
    return std::nullopt;
  }

 private:
  const Document& document_;
  const std::u32string needle_;
  const bool backwards_;
  const FoldCase& fold_;
};

}  // namespace

std::optional<TextRange> FindText(const Document& document, std::string_view needle, std::size_t from,
                                  bool backwards, const FoldCase& fold) {
  if (needle.empty()) return std::nullopt;
  const Search search(document, needle, backwards, fold);
  const std::size_t end = document.text.size();
  from = std::min(from, end);
  const auto near = backwards ? search.Within(0, from) : search.Within(from, end);
  return near ? near : search.Within(0, end);
}

std::string TextToCopy(const Document& document, TextRange range) {
  range.end = std::min(range.end, document.text.size());
  std::string copy;
  for (std::size_t at = range.begin; at < range.end; ++at) {
    if (document.text[at] == '\n') copy += '\r';
    copy += document.text[at];
  }
  return copy;
}

}  // namespace zq
