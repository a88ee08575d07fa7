// Helpers on text in UTF-8.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zq {

// Without the blanks (value 32 alone) at either end.
std::string TrimBlanks(std::string_view text);

// The part of `text` before its first null: nothing if the null stands first, all if it holds none.
std::string TrimAtNull(std::string_view text);

// At most `maxBytes` from the front of `text`, never ending inside a UTF-8 character.
std::string_view CutAtCharacter(std::string_view text, std::size_t maxBytes);

// `text` without its last `count` characters; nothing if it has no more than these. A character is a code
// point.
std::string_view WithoutLastCharacters(std::string_view text, int count);

// The number of such characters.
std::size_t CharacterCount(std::string_view text);

// The length of `text` in UTF-16 units, which is how the system measures paths.
std::size_t Utf16Length(std::string_view text);

// A text of exactly `kBytes` bytes, left-justified: a longer one is cut at a character's end when it
// is assigned, a shorter one is padded with blanks. It starts as all nulls.
template <std::size_t kBytes>
class FixedText {
 public:
  using Bytes = std::array<char, kBytes>;

  FixedText() = default;
  explicit FixedText(std::string_view text) { *this = text; }

  FixedText& operator=(std::string_view text) {
    const std::string_view kept = CutAtCharacter(text, kBytes);
    bytes_.fill(' ');
    kept.copy(bytes_.data(), kBytes);
    return *this;
  }

  std::string_view View() const { return {bytes_.data(), kBytes}; }

  // Without surrounding blanks. Nulls aren't blanks: an all-null text comes back whole.
  std::string Trimmed() const { return TrimBlanks(View()); }

  bool operator==(const FixedText&) const = default;

 private:
  Bytes bytes_{};
};

}  // namespace zq
