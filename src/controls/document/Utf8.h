// Walking UTF-8 text by characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zq {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// The code point that begins at `at`, which is moved behind it. A byte that begins no valid sequence is one
// replacement character. `at` must be less than the text's size.
char32_t NextCodePoint(std::string_view text, std::size_t& at);

void AppendUtf8(std::string& text, char32_t codePoint);

// The start of the character in front of `at`; 0 at the beginning. The text must be valid.
inline std::size_t PreviousCharacter(std::string_view text, std::size_t at) {
  if (at == 0) return 0;
  do {
    --at;
  } while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
  return at;
}

}  // namespace zq
