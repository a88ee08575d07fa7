#include <gtest/gtest.h>

#include <string>

#include "controls/document/Characters.h"

namespace zq::test {
namespace {

TEST(Characters, TakesEachCodePointAndRefusesEachSurrogate) {
  for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 61) {
    std::string text;
    AppendUtf8(text, c);
    std::size_t at = 0;
    const char32_t read = NextCodePoint(text, at);
    if (c >= 0xD800 && c <= 0xDFFF) {
      EXPECT_EQ(read, kReplacementCharacter);
      EXPECT_EQ(at, 1U);
    } else {
      EXPECT_EQ(read, c);
      EXPECT_EQ(at, text.size());
    }
  }
}

TEST(Characters, FindsTheCharacterBefore) {
  const std::string text = "a\xC3\xA4\xF0\x9F\x98\x80";
  EXPECT_EQ(PreviousCharacter(text, text.size()), 3U);
  EXPECT_EQ(PreviousCharacter(text, 3), 1U);
  EXPECT_EQ(PreviousCharacter(text, 1), 0U);
  EXPECT_EQ(PreviousCharacter(text, 0), 0U);
}

}  // namespace
}  // namespace zq::test
