#include "platform/Utf8.h"

namespace zq {

Character FirstCharacter(std::string_view text) {
  constexpr Character kInvalid{};
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {1, true, first};
  const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < size) return kInvalid;
  char32_t value = first & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if (!IsContinuation(text[i])) return kInvalid;
    value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
  }
  const bool isTooLong = (size == 3 && value < 0x800) || (size == 4 && value < 0x10000);
  const bool isSurrogate = value >= 0xD800 && value < 0xE000;
  if (isTooLong || isSurrogate || value > 0x10FFFF) return kInvalid;
  return {size, true, value};
}

std::size_t LastCharacterBytes(std::string_view text) {
  constexpr std::size_t kMostBytes = 4;
  for (std::size_t size = 1; size <= kMostBytes && size <= text.size(); ++size) {
    const Character character = FirstCharacter(text.substr(text.size() - size));
    if (character.isValid && character.sizeBytes == size) return size;
  }
  return 1;
}

}  // namespace zq
