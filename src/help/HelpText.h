// Comparing texts whose letters of interest are ASCII: extensions, version texts, names of keys.
#pragma once

#include <algorithm>
#include <string_view>

namespace zq {

constexpr char LowerAscii(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

constexpr bool EqualInAnyCase(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, LowerAscii, LowerAscii);
}

// Whether `text` stands before `other`, character by character and not by the numbers in them.
constexpr bool LessInAnyCase(std::string_view text, std::string_view other) {
  return std::ranges::lexicographical_compare(text, other, {}, LowerAscii, LowerAscii);
}

// Whether the last characters of `text` are `end`.
constexpr bool EndsInAnyCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && EqualInAnyCase(text.substr(text.size() - end.size()), end);
}

}  // namespace zq
