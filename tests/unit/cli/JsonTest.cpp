#include <gtest/gtest.h>

#include "cli/Json.h"

namespace zq::cli {
namespace {

TEST(Json, EscapesWhatMustNotStandInAText) {
  EXPECT_EQ(JsonString("a b/é"), "\"a b/é\"");
  EXPECT_EQ(JsonString("\"\\/"), "\"\\\"\\\\/\"");
  EXPECT_EQ(JsonString(std::string_view("\n\t\x01\x1F\x7F\0", 6)),
            "\"\\u000a\\u0009\\u0001\\u001f\\u007f\\u0000\"");
  EXPECT_EQ(JsonString("\xF0\x9F\x98\x80"), "\"\xF0\x9F\x98\x80\"");
}

TEST(Json, ReplacesWhatIsNotUtf8) {
  EXPECT_EQ(JsonString("a\xFFz"), "\"a\xEF\xBF\xBDz\"");
  EXPECT_EQ(JsonString("\xED\xA0\x80"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"");
  EXPECT_EQ(JsonString("\xC3"), "\"\xEF\xBF\xBD\"");
}

TEST(Json, PutsCommasBetweenValuesAndNowhereElse) {
  JsonWriter json;
  json.BeginObject();
  json.Member("a", std::uint64_t{18446744073709551615u});
  json.Key("b");
  json.BeginArray();
  json.Value("x");
  json.Value(true);
  json.BeginObject();
  json.EndObject();
  json.BeginArray();
  json.EndArray();
  json.EndArray();
  json.BreakLine();
  json.Member("c", std::string("y"));
  json.Member("d", false);
  json.EndObject();
  EXPECT_EQ(json.Text(),
            "{\"a\": 18446744073709551615, \"b\": [\"x\", true, {}, []],\n\"c\": \"y\", \"d\": false}");
}

}  // namespace
}  // namespace zq::cli
