#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controls/document/LineBreaker.h"
#include "support/document/FakeMeasure.h"

namespace zq::test {
namespace {

using testing::ElementsAre;

// The lines of a text in a width of so many characters.
std::vector<std::string> Lines(const std::string& text, int characters) {
  FakeMeasure measure;
  std::vector<Twips> edges;
  measure.Edges({"", 10, false}, text, edges);
  std::vector<std::size_t> ends;
  BreakLines(text, edges, characters * FakeMeasure::CharacterWidth(10), ends);
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (const std::size_t end : ends) {
    lines.push_back(text.substr(begin, end - begin));
    begin = end;
  }
  return lines;
}

TEST(LineBreaker, LeavesWhatFits) {
  EXPECT_THAT(Lines("", 5), ElementsAre(""));
  EXPECT_THAT(Lines("abcde", 5), ElementsAre("abcde"));
}

TEST(LineBreaker, BreaksBehindABlank) {
  EXPECT_THAT(Lines("one two three", 8), ElementsAre("one two ", "three"));
  EXPECT_THAT(Lines("one two three", 7), ElementsAre("one two ", "three")) << "the blank hangs over";
  EXPECT_THAT(Lines("a     b", 3), ElementsAre("a     ", "b"));
}

TEST(LineBreaker, BreaksAWordThatIsLongerThanALine) {
  EXPECT_THAT(Lines("C:\\abcdefgh", 4), ElementsAre("C:\\a", "bcde", "fgh"));
  EXPECT_THAT(Lines("to abcdefgh", 4), ElementsAre("to ", "abcd", "efgh"));
  EXPECT_THAT(Lines("abcdefgh to", 4), ElementsAre("abcd", "efgh ", "to"));
}

TEST(LineBreaker, BreaksBesideAnIdeograph) {
  EXPECT_THAT(Lines("ab\xE6\xBC\xA2\xE5\xAD\x97"
                    "cd",
                    3),
              ElementsAre("ab\xE6\xBC\xA2",
                          "\xE5\xAD\x97"
                          "cd"));
  EXPECT_THAT(Lines("\xE6\xBC\xA2"
                    "abc",
                    3),
              ElementsAre("\xE6\xBC\xA2", "abc"));
  EXPECT_THAT(Lines("x ab\xE6\xBC\xA2", 4), ElementsAre("x ab", "\xE6\xBC\xA2"));
}

TEST(LineBreaker, KeepsMarksWithTheirCharacter) {
  EXPECT_THAT(Lines("abe\xCC\x81"
                    "d",
                    3),
              ElementsAre("abe\xCC\x81", "d"));
  EXPECT_THAT(Lines("aae\xCC\x81\xCC\x82", 2), ElementsAre("aa", "e\xCC\x81\xCC\x82"));
  // A skin colour and a joined sign belong to the sign before.
  EXPECT_THAT(Lines("a\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD", 2),
              ElementsAre("a", "\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD"));
  EXPECT_THAT(Lines("a\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9", 3),
              ElementsAre("a", "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9"));
}

// As the system shapes some scripts: the second letter is a part of the first.
TEST(LineBreaker, KeepsTogetherWhatHasOneWidth) {
  std::vector<std::size_t> ends;
  BreakLines("xab", {100, 200, 200}, 50, ends);
  EXPECT_THAT(ends, ElementsAre(1, 3));
}

TEST(LineBreaker, PutsACharacterOnEachLineHoweverNarrow) {
  EXPECT_THAT(Lines("abc", 0), ElementsAre("a", "b", "c"));
  EXPECT_THAT(Lines("a b", -1), ElementsAre("a ", "b"));
}

}  // namespace
}  // namespace zq::test
