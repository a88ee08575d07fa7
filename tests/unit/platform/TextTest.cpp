#include <gtest/gtest.h>

#include "platform/Text.h"

namespace zq {
namespace {

TEST(TrimBlanks, TakesBlanksAloneOffBothEnds) {
  EXPECT_EQ(TrimBlanks(""), "");
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(TrimBlanks("a"), "a");
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks("\ta\r\n"), "\ta\r\n");
  EXPECT_EQ(TrimBlanks(std::string(3, '\0')), std::string(3, '\0'));
  EXPECT_EQ(TrimBlanks(" \xC2\xA0 "), "\xC2\xA0");  // a no-break space is no blank
}

TEST(TrimAtNull, KeepsWhatStandsBeforeTheFirstNull) {
  using namespace std::string_view_literals;
  EXPECT_EQ(TrimAtNull(""sv), "");
  EXPECT_EQ(TrimAtNull("abc"sv), "abc");
  EXPECT_EQ(TrimAtNull("\0abc"sv), "");
  EXPECT_EQ(TrimAtNull("abc\0"sv), "abc");
  EXPECT_EQ(TrimAtNull("ab\0c\0d"sv), "ab");
}

TEST(CutAtCharacter, NeverEndsInsideACharacter) {
  struct Case {
    std::string_view text;
    std::size_t maxBytes;
    std::string_view kept;
  };
  constexpr Case kCases[] = {
      {"", 0, ""},
      {"abc", 0, ""},
      {"abc", 2, "ab"},
      {"abc", 3, "abc"},
      {"abc", 9, "abc"},
      {"aé", 2, "a"},
      {"aé", 3, "aé"},
      {"aéb", 3, "aé"},
      {"é", 1, ""},
      {"日本", 3, "日"},
      {"日本", 4, "日"},
      {"日本", 5, "日"},
      {"日", 2, ""},
      {"😀", 1, ""},
      {"😀", 2, ""},
      {"😀", 3, ""},
      {"😀", 4, "😀"},
      {"a😀", 4, "a"},
      // A run of trailing bytes that is too long for a character is cut where it is told.
      {"\x80\x80\x80\x80\x80\x80", 5, "\x80\x80\x80\x80\x80"},
      {"\x80\x80", 1, "\x80"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(CutAtCharacter(c.text, c.maxBytes), c.kept) << c.text << ' ' << c.maxBytes;
}

TEST(Characters, AreCodePointsWhateverTheirLengthInBytes) {
  EXPECT_EQ(CharacterCount(""), 0U);
  EXPECT_EQ(CharacterCount("C:\\"), 3U);
  EXPECT_EQ(CharacterCount("a\u00e9\u20ac\U0001F600"), 4U);
  EXPECT_EQ(CharacterCount("\x80\x80\x80\x80\x80\x80"), 6U);  // not UTF-8
  EXPECT_EQ(Utf16Length(""), 0U);
  EXPECT_EQ(Utf16Length("a\u00e9\u20ac\U0001F600"), 5U);
  EXPECT_EQ(CharacterCount(std::string(100000, 'x')), 100000U);
  EXPECT_EQ(WithoutLastCharacters("a\u00e9\u20ac\U0001F600", 0), "a\u00e9\u20ac\U0001F600");
  EXPECT_EQ(WithoutLastCharacters("a\u00e9\u20ac\U0001F600", 2), "a\u00e9");
  EXPECT_EQ(WithoutLastCharacters("a\u00e9\u20ac\U0001F600", 4), "");
  EXPECT_EQ(WithoutLastCharacters("ab", 5), "");
}

TEST(FixedText, StartsAsNullsAndTheseAreNoBlanks) {
  const FixedText<4> text;
  EXPECT_EQ(text.View(), std::string_view("\0\0\0\0", 4));
  EXPECT_EQ(text.Trimmed(), std::string(4, '\0'));
}

TEST(FixedText, PadsAShorterTextWithBlanks) {
  FixedText<4> text("ab");
  EXPECT_EQ(text.View(), "ab  ");
  EXPECT_EQ(text.Trimmed(), "ab");
  text = "";
  EXPECT_EQ(text.View(), "    ");
  EXPECT_EQ(text.Trimmed(), "");
}

TEST(FixedText, CutsALongerTextAtACharactersEnd) {
  EXPECT_EQ(FixedText<4>("abcdef").View(), "abcd");
  EXPECT_EQ(FixedText<4>("abcé").View(), "abc ");
  EXPECT_EQ(FixedText<4>("abé!").View(), "abé");
}

TEST(FixedText, TakesItsOwnLengthByteForByte) {
  const std::string_view bytes("\xA9\0 \xC3", 4);
  EXPECT_EQ(FixedText<4>(bytes).View(), bytes);
}

TEST(FixedText, LosesBlanksOnTheLeftWhenTrimmed) {
  EXPECT_EQ(FixedText<6>("  ab").Trimmed(), "ab");
}

}  // namespace
}  // namespace zq
