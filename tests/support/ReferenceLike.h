// ReferenceLike: the rules of `Like` written down a second time, as plainly as possible and with nothing
// of the first in common: both texts are split first, then a table over all pairs of positions is filled.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace zq::test {

// The characters of `text`. A byte that isn't part of valid UTF-8 is a negative number.
inline std::vector<std::int32_t> CharactersOf(std::string_view text) {
  std::vector<std::int32_t> characters;
  const auto byteAt = [&](std::size_t i) -> int {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : -1;
  };
  const auto tail = [&](std::size_t i, int low = 0x80, int high = 0xBF) {
    return byteAt(i) >= low && byteAt(i) <= high;
  };
  for (std::size_t i = 0; i < text.size();) {
    const int b = byteAt(i);
    // The table of well-formed byte sequences of the Unicode standard, row by row.
    std::size_t length = 0;
    if (b <= 0x7F) length = 1;
    if (b >= 0xC2 && b <= 0xDF && tail(i + 1)) length = 2;
    if (b == 0xE0 && tail(i + 1, 0xA0, 0xBF) && tail(i + 2)) length = 3;
    if (b >= 0xE1 && b <= 0xEC && tail(i + 1) && tail(i + 2)) length = 3;
    if (b == 0xED && tail(i + 1, 0x80, 0x9F) && tail(i + 2)) length = 3;
    if (b >= 0xEE && b <= 0xEF && tail(i + 1) && tail(i + 2)) length = 3;
    if (b == 0xF0 && tail(i + 1, 0x90, 0xBF) && tail(i + 2) && tail(i + 3)) length = 4;
    if (b >= 0xF1 && b <= 0xF3 && tail(i + 1) && tail(i + 2) && tail(i + 3)) length = 4;
    if (b == 0xF4 && tail(i + 1, 0x80, 0x8F) && tail(i + 2) && tail(i + 3)) length = 4;
    switch (length) {
      case 0:
        characters.push_back(-b);
        break;
      case 1:
        characters.push_back(b);
        break;
      default:
        std::int32_t value = b & (0x7F >> length);
        for (std::size_t k = 1; k < length; ++k) value = value * 64 + (byteAt(i + k) & 0x3F);
        characters.push_back(value);
    }
    i += length == 0 ? 1 : length;
  }
  return characters;
}

// One element of a pattern. Ranges rank bytes that aren't UTF-8 above all characters.
struct PatternElement {
  enum class Kind { AnyRun, AnyOne, OneOf, Never } kind = Kind::Never;
  bool outside = false;
  std::vector<std::pair<std::int32_t, std::int32_t>> ranges;

  bool Takes(std::int32_t character) const {
    if (kind == Kind::AnyOne) return true;
    if (kind != Kind::OneOf) return false;
    const auto rank = [](std::int32_t c) { return c < 0 ? 0x200000 - c : c; };
    bool inside = false;
    for (const auto& [low, high] : ranges) {
      if (rank(low) <= rank(character) && rank(character) <= rank(high)) inside = true;
    }
    return inside != outside;
  }
};

inline std::vector<PatternElement> ElementsOf(std::string_view pattern) {
  using Kind = PatternElement::Kind;
  const std::vector<std::int32_t> p = CharactersOf(pattern);
  std::vector<PatternElement> elements;
  for (std::size_t i = 0; i < p.size(); ++i) {
    if (p[i] == '*') {
      elements.push_back({Kind::AnyRun, false, {}});
    } else if (p[i] == '?') {
      elements.push_back({Kind::AnyOne, false, {}});
    } else if (p[i] == '#') {
      elements.push_back({Kind::OneOf, false, {{'0', '9'}}});
    } else if (p[i] == '[') {
      std::size_t close = i + 1;
      while (close < p.size() && p[close] != ']') ++close;
      if (close == p.size()) {
        elements.push_back({Kind::Never, false, {}});
        break;
      }
      if (close == i + 1) {  // no character at all
        i = close;
        continue;
      }
      PatternElement element{Kind::OneOf, false, {}};
      std::size_t k = i + 1;
      if (p[k] == '!' && close - k > 1) {
        element.outside = true;
        ++k;
      }
      while (k < close) {
        if (k + 2 < close && p[k + 1] == '-') {
          element.ranges.emplace_back(p[k], p[k + 2]);
          k += 3;
        } else {
          element.ranges.emplace_back(p[k], p[k]);
          ++k;
        }
      }
      elements.push_back(element);
      i = close;
    } else {
      elements.push_back({Kind::OneOf, false, {{p[i], p[i]}}});
    }
  }
  return elements;
}

inline bool ReferenceLike(std::string_view text, std::string_view pattern) {
  const std::vector<std::int32_t> t = CharactersOf(text);
  const std::vector<PatternElement> p = ElementsOf(pattern);
  // matches[i][j]: what follows position i of the text is matched by what follows element j.
  std::vector<std::vector<bool>> matches(t.size() + 1, std::vector<bool>(p.size() + 1, false));
  for (std::size_t i = t.size() + 1; i-- > 0;) {
    for (std::size_t j = p.size() + 1; j-- > 0;) {
      if (j == p.size()) {
        matches[i][j] = i == t.size();
      } else if (p[j].kind == PatternElement::Kind::AnyRun) {
        matches[i][j] = matches[i][j + 1] || (i < t.size() && matches[i + 1][j]);
      } else {
        matches[i][j] = i < t.size() && p[j].Takes(t[i]) && matches[i + 1][j + 1];
      }
    }
  }
  return matches[0][0];
}

}  // namespace zq::test
