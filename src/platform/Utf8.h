// Utf8: the one place that knows how a character stands in UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace zq {

// One character at the front of a text that may not be UTF-8.
struct Character {
  std::size_t sizeBytes = 1;
  bool isValid = false;  // not valid: one byte that belongs to no character
  char32_t value = 0;
};

// `text` must not be empty. A form longer than needed, half of a surrogate pair and what lies beyond the last
// code point aren't valid.
Character FirstCharacter(std::string_view text);

// The number of bytes of the character at the end of `text`, which must not be empty: 1 for a byte that isn't
// valid there.
std::size_t LastCharacterBytes(std::string_view text);

// Whether a byte is one of those that follow a character's first.
constexpr bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace zq
