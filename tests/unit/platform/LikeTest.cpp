#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <span>
#include <string>

#include "platform/Like.h"
#include "support/ReferenceLike.h"

namespace zq {
namespace {

struct Case {
  std::string_view text;
  std::string_view pattern;
  bool matches;
};

void Check(std::span<const Case> cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(Like(c.text, c.pattern), c.matches) << '"' << c.text << "\" like \"" << c.pattern << '"';
    EXPECT_EQ(test::ReferenceLike(c.text, c.pattern), c.matches)
        << "the reference, on \"" << c.text << "\" like \"" << c.pattern << '"';
  }
}

TEST(Like, MatchesTheWholeTextAndKeepsCaseApart) {
  constexpr Case kCases[] = {
      {"", "", true},
      {"", "a", false},
      {"a", "", false},
      {"abc", "abc", true},
      {"abc", "ab", false},
      {"ab", "abc", false},
      {"abc", "ABC", false},
      {"report.doc", "*.DOC", false},
      {"report.doc", "*.doc", true},
      {"report.doc", "*.do", false},
      {"é", "É", false},
  };
  Check(kCases);
}

TEST(Like, NeedsALiteralDotForTheMaskOfAllFiles) {
  constexpr Case kCases[] = {
      {"README", "*.*", false},  {"README", "*", true},  {"a.b", "*.*", true},   {".", "*.*", true},
      {".profile", "*.*", true}, {"name.", "*.*", true}, {"a.b.c", "*.*", true}, {"", "*.*", false},
  };
  Check(kCases);
}

TEST(Like, TakesAnyRunForAStar) {
  constexpr Case kCases[] = {
      {"", "*", true},
      {"", "***", true},
      {"abc", "*", true},
      {"abc", "a*", true},
      {"abc", "*c", true},
      {"abc", "*b*", true},
      {"abc", "*d*", false},
      {"aab", "*ab", true},
      {"aaa", "a*a", true},
      {"a", "a*a", false},
      {"abab", "*ab", true},
      {"abcabd", "*abd", true},
      {"mississippi", "m*iss*ip*", true},
      {"mississippi", "m*iss*ipx*", false},
      {"a\nb", "a*b", true},
      {"x*y", "x*y", true},
  };
  Check(kCases);
}

TEST(Like, TakesOneCharacterForAQuestionMarkAndOneDigitForANumberSign) {
  constexpr Case kCases[] = {
      {"", "?", false},  {"a", "?", true}, {"ab", "?", false},     {"ab", "??", true}, {"\n", "?", true},
      {"?", "?", true},  {"0", "#", true}, {"9", "#", true},       {"/", "#", false},  {":", "#", false},
      {"#", "#", false}, {"", "#", false}, {"a1b2", "a#b#", true}, {"٣", "#", false},
  };
  Check(kCases);
}

TEST(Like, TakesOneOfAListOrRange) {
  constexpr Case kCases[] = {
      {"b", "[abc]", true},      {"d", "[abc]", false}, {"", "[abc]", false},     {"ab", "[abc]", false},
      {"m", "[a-z]", true},      {"a", "[a-z]", true},  {"z", "[a-z]", true},     {"M", "[a-z]", false},
      {"`", "[a-z]", false},     {"{", "[a-z]", false}, {"5", "[a-c3-7x]", true}, {"x", "[a-c3-7x]", true},
      {"8", "[a-c3-7x]", false}, {"b", "[z-a]", false}, {"*", "[*]", true},       {"a", "[*]", false},
      {"?", "[?#]", true},       {"#", "[?#]", true},   {"[", "[[]", true},       {"a[b", "a[[]b", true},
      {"x1", "[a-z]#", true},
  };
  Check(kCases);
}

TEST(Like, TakesOneOutsideANegatedList) {
  constexpr Case kCases[] = {
      {"d", "[!abc]", true}, {"b", "[!abc]", false}, {"", "[!abc]", false}, {"m", "[!a-z]", false},
      {"M", "[!a-z]", true}, {"!", "[!!]", false},   {"a", "[!!]", true},   {"a", "[a!]", true},
      {"!", "[a!]", true},   {"b", "[a!]", false},   {"é", "[!a]", true},   {"ab", "[!a]", false},
  };
  Check(kCases);
}

TEST(Like, DecidesTheOddBrackets) {
  constexpr Case kCases[] = {
      // No character in brackets is no text.
      {"", "[]", true},
      {"ab", "a[]b", true},
      {"a]", "[]a]", true},
      {"]", "[]]", true},
      // `!` alone is itself, and so is `-` at either end.
      {"!", "[!]", true},
      {"a", "[!]", false},
      {"-", "[a-]", true},
      {"a", "[a-]", true},
      {"b", "[a-]", false},
      {"-", "[-a]", true},
      {"a", "[-a]", true},
      {"-", "[-]", true},
      {"-", "[a-c-e]", true},
      {"d", "[a-c-e]", false},
      {"e", "[a-c-e]", true},
      {"-", "[!-]", false},
      {"a", "[!-]", true},
      {".", "[--/]", true},
      {"0", "[--/]", false},
      // A bracket that isn't closed matches nothing, not even itself.
      {"[", "[", false},
      {"[a", "[a", false},
      {"a", "[a", false},
      {"", "[", false},
      {"x", "*[", false},
      // A closing bracket by itself is an ordinary character.
      {"]", "]", true},
      {"a]b", "a]b", true},
  };
  Check(kCases);
}

TEST(Like, CountsCodePointsOfUtf8) {
  constexpr Case kCases[] = {
      {"é", "?", true},       {"é", "??", false},
      {"日本", "??", true},   {"😀", "?", true},
      {"é", "[à-ï]", true},   {"e", "[à-ï]", false},
      {"日", "[!本]", true},  {"本", "[!本]", false},
      {"aé", "a*", true},     {"été.txt", "?t?.txt", true},
      {"😀", "[😀]", true},     {"\xC3\xA9", "\xC3?", false},  // half of a character isn't one
      {"日a", "*??a", false},                                // nor does a star end inside one
  };
  Check(kCases);
}

TEST(Like, TakesAByteThatIsNotUtf8AsOneCharacter) {
  constexpr Case kCases[] = {
      {"\xE9", "?", true},
      {"\xE9", "\xE9", true},
      {"\xE9", "\xEA", false},
      {"\xE9t\xE9", "?t?", true},
      {"\xC3", "?", true},
      {"\xE6\x97", "??", true},
      {"\xE9", "[\xE0-\xEF]", true},
      {"\xE9", "[!a]", true},
      // Longer forms than needed aren't UTF-8, so they are never taken for the character they hide.
      {"\xC0\xAF", "/", false},
      {"\xC0\xAF", "??", true},
      {"\xE0\x80\xAF", "???", true},
      {"\xF0\x80\x80\xAF", "????", true},
      {"\xC1\xA1", "a", false},
      // Nor are halves of surrogate pairs, and values beyond the last code point.
      {"\xED\xA0\x80", "???", true},
      {"\xED\x9F\xBF", "?", true},
      {"\xEE\x80\x80", "?", true},
      {"\xF4\x90\x80\x80", "????", true},
      {"\xF4\x8F\xBF\xBF", "?", true},
      {"\xF8\x88\x80\x80", "????", true},
  };
  Check(kCases);
}

// An unguarded backtracking matcher needs longer than the universe is old for these.
TEST(Like, StaysFastOnPatternsThatInviteBacktracking) {
  std::string pattern;
  for (int i = 0; i < 2000; ++i) pattern += "a*";
  std::string brackets = "*";
  for (int i = 0; i < 2000; ++i) brackets += "[a-z]*";
  const std::string text(4000, 'a');

  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Like(text, pattern + "b"));
  EXPECT_TRUE(Like(text, pattern));
  EXPECT_FALSE(Like(text, brackets + "0"));
  EXPECT_FALSE(Like(text, "*" + std::string(2000, 'a') + "b"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(Like, AgreesWithAnIndependentMatcherOnGeneratedTexts) {
  // Few letters, so that a good part of the pairs match.
  constexpr std::string_view kTextPieces[] = {"a", "b", "a", "b",  "-",    "!", "]",
                                              "[", "1", "é", "日", "\xE9", "*"};
  constexpr std::string_view kPatternPieces[] = {"a", "b",   "*",    "*",     "?",  "#", "[",     "]",   "!",
                                                 "-", "[a]", "[!a]", "[a-b]", "[]", "é", "[à-ï]", "\xE9"};
  std::mt19937 random(20261116);
  const auto build = [&](auto& pieces, unsigned maxPieces) {
    std::string text;
    for (unsigned n = static_cast<unsigned>(random() % (maxPieces + 1)); n > 0; --n) {
      text += pieces[random() % std::size(pieces)];
    }
    return text;
  };
  int matched = 0;
  for (int i = 0; i < 60000; ++i) {
    const std::string text = build(kTextPieces, 5);
    const std::string pattern = build(kPatternPieces, 6);
    const bool expected = test::ReferenceLike(text, pattern);
    ASSERT_EQ(Like(text, pattern), expected) << '"' << text << "\" like \"" << pattern << '"';
    matched += expected;
  }
  EXPECT_GT(matched, 1000);
  EXPECT_LT(matched, 59000);
}

}  // namespace
}  // namespace zq
