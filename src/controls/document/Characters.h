// Walking a text by its characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Utf8.h"

namespace zq {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// The code point that begins at `at`, which is moved behind it. A byte that belongs to no character is one
// replacement character. `at` must be less than the text's size.
inline char32_t NextCodePoint(std::string_view text, std::size_t& at) {
  // Nearly all of a report is such, and goes through here a few times.
  if (const auto byte = static_cast<unsigned char>(text[at]); byte < 0x80) {
    ++at;
    return byte;
  }
  const Character character = FirstCharacter(text.substr(at));
  at += character.sizeBytes;
  return character.isValid ? character.value : kReplacementCharacter;
}

void AppendUtf8(std::string& text, char32_t codePoint);

// The start of the character in front of `at`; 0 at the beginning. The text must be valid.
inline std::size_t PreviousCharacter(std::string_view text, std::size_t at) {
  return at == 0 ? 0 : at - LastCharacterBytes(text.substr(0, at));
}

}  // namespace zq
