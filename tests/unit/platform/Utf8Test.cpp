#include <gtest/gtest.h>

#include "platform/Utf8.h"

namespace zq {
namespace {

TEST(Utf8, TakesForACharacterOnlyWhatIsValid) {
  const auto isValid = [](std::string_view text) {
    const Character character = FirstCharacter(text);
    return character.isValid && character.sizeBytes == text.size();
  };
  for (const char* text : {"a", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                           "\xEE\x80\x80", "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isValid(text)) << text;
  }
  for (const char* text :
       {"\x80", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xC3\xC3", "\xE0\x80\x80", "\xE0\x9F\xBF",
        "\xE2\x82", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF9\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(FirstCharacter(text).isValid) << text;
    EXPECT_EQ(FirstCharacter(text).sizeBytes, 1u);
  }
  // What lies behind the end of the text isn't looked at.
  EXPECT_FALSE(FirstCharacter(std::string_view("\xE2\x82\xAC").substr(0, 2)).isValid);
  EXPECT_EQ(FirstCharacter("\xC3\xA9").value, U'\u00E9');
  EXPECT_EQ(FirstCharacter("\xE2\x82\xAC").value, U'\u20AC');
  EXPECT_EQ(FirstCharacter("\xF0\x9F\x98\x80").value, U'\U0001F600');
}

TEST(Utf8, CountsTheBytesOfTheLastCharacter) {
  for (const char* text : {"a", "ba", "\xC3\xA9z"}) EXPECT_EQ(LastCharacterBytes(text), 1u) << text;
  EXPECT_EQ(LastCharacterBytes("a\xC3\xA9"), 2u);
  EXPECT_EQ(LastCharacterBytes("\xC3\xA9\xE2\x82\xAC"), 3u);
  EXPECT_EQ(LastCharacterBytes("a\xF0\x9F\x98\x80"), 4u);
  for (const char* text : {"\x80", "a\x80", "\xC3\xA9\x80", "\x80\x80\x80\x80\x80", "\xE2\x82"})
    EXPECT_EQ(LastCharacterBytes(text), 1u) << text;
}

}  // namespace
}  // namespace zq
