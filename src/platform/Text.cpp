#include "platform/Text.h"

#include <algorithm>

#include "platform/Utf8.h"

namespace zq {

std::string TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string TrimAtNull(std::string_view text) {
  return std::string(text.substr(0, text.find('\0')));
}

std::string_view CutAtCharacter(std::string_view text, std::size_t maxBytes) {
  if (text.size() <= maxBytes) return text;
  std::size_t end = maxBytes;
  // A UTF-8 character has at most three continuation bytes; a longer run isn't one, and is cut hard.
  while (end > 0 && maxBytes - end < 3 && IsContinuation(text[end])) --end;
  return text.substr(0, IsContinuation(text[end]) ? maxBytes : end);
}

std::string_view WithoutLastCharacters(std::string_view text, int count) {
  for (; count > 0 && !text.empty(); --count) {
    text.remove_suffix(LastCharacterBytes(text));
  }
  return text;
}

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) text = WithoutLastCharacters(text, 1);
  return count;
}

std::size_t Utf16Length(std::string_view text) {
  // A character of four bytes takes two units.
  const auto pairs =
      std::count_if(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xF0; });
  return CharacterCount(text) + static_cast<std::size_t>(pairs);
}

}  // namespace zq
