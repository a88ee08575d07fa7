#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "controls/document/Utf8.h"
#include "support/ReferenceLike.h"

namespace zq::test {
namespace {

TEST(Utf8, TakesEachCodePointAndRefusesEachSurrogate) {
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

TEST(Utf8, TakesEachPairAndTripleOfBytesAsTheStandardsTableDoes) {
  const auto points = [](const std::string& text) {
    std::vector<std::int32_t> found;
    for (std::size_t at = 0; at < text.size();)
      found.push_back(static_cast<std::int32_t>(NextCodePoint(text, at)));
    return found;
  };
  const auto expected = [](const std::string& text) {
    std::vector<std::int32_t> found = CharactersOf(text);
    for (std::int32_t& c : found) c = c < 0 ? static_cast<std::int32_t>(kReplacementCharacter) : c;
    return found;
  };
  for (int a = 0x70; a < 0x100; ++a) {
    for (int b = 0x70; b < 0x100; ++b) {
      for (const int c : {0x00, 0x7F, 0x80, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF}) {
        const std::string text{static_cast<char>(a), static_cast<char>(b), static_cast<char>(c), '\x80'};
        ASSERT_EQ(points(text), expected(text)) << a << ' ' << b << ' ' << c;
      }
    }
  }
}

TEST(Utf8, FindsTheCharacterBefore) {
  const std::string text = "a\xC3\xA4\xF0\x9F\x98\x80";
  EXPECT_EQ(PreviousCharacter(text, text.size()), 3U);
  EXPECT_EQ(PreviousCharacter(text, 3), 1U);
  EXPECT_EQ(PreviousCharacter(text, 1), 0U);
  EXPECT_EQ(PreviousCharacter(text, 0), 0U);
}

}  // namespace
}  // namespace zq::test
