#include <gtest/gtest.h>

#include <vector>

#include "platform/FieldReader.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

std::vector<std::string> FieldsOf(std::string_view bytes) {
  std::vector<std::string> fields;
  for (FieldReader reader(bytes); !reader.AtEnd();) fields.push_back(reader.Next());
  return fields;
}

struct Case {
  std::string_view bytes;
  std::vector<std::string> fields;
};

void Check(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(FieldsOf(c.bytes), c.fields) << '<' << c.bytes << '>';
}

TEST(FieldReader, EndsAQuotedFieldAtItsClosingQuote) {
  Check({
      {"\"one\"\r\n\"two\"\r\n", {"one", "two"}},
      {"\"one\"", {"one"}},
      {"\"a, b\"\r\n\"c\"", {"a, b", "c"}},
      {"\"\"\r\n\"x\"\r\n", {"", "x"}},
      {"\"  inner blanks  \"", {"  inner blanks  "}},
      {"\"line\r\nbreak\",2", {"line\r\nbreak", "2"}},
  });
}

TEST(FieldReader, EndsABareFieldAtACommaOrAtTheLinesEnd) {
  Check({
      {"one,two\r\nthree", {"one", "two", "three"}},
      {"C:\\My Files\\a.txt\r\n", {"C:\\My Files\\a.txt"}},
      {"a,,b", {"a", "", "b"}},
      {",", {""}},
      {"a\"b\",c", {"a\"b\"", "c"}},
      {"\r\n\r\n", {"", ""}},
  });
}

TEST(FieldReader, TakesEachKindOfLineBreakAsOne) {
  Check({
      {"\"a\"\r\n\"b\"", {"a", "b"}},
      {"\"a\"\n\"b\"", {"a", "b"}},
      {"\"a\"\r\"b\"", {"a", "b"}},
      {"a\nb\rc\r\nd", {"a", "b", "c", "d"}},
      {"a\n\rb", {"a", "", "b"}},
      {"a\n\nb", {"a", "", "b"}},
  });
}

TEST(FieldReader, PassesOverBlanksAroundAField) {
  Check({
      {"   \"a\"  ,  \"b\"  \r\n  c  ,d", {"a", "b", "c", "d"}},
      {"a b , c", {"a b", "c"}},
      {"\ta\t", {"\ta\t"}},  // a tab is no blank
      {"   ", {""}},
      {"\"a\"   ", {"a"}},
  });
}

TEST(FieldReader, RunsToTheEndWithoutAClosingQuote) {
  Check({
      {"\"a, b\r\nc", {"a, b\r\nc"}},
      {"\"", {""}},
      {"\"a\"\r\n\"", {"a", ""}},
  });
}

TEST(FieldReader, BreaksAFieldThatHoldsAQuote) {
  Check({
      {"\"say \"hi\" now\"\r\n\"next\"", {"say ", "hi\" now\"", "next"}},
      {"\"a\"b\r\n", {"a", "b"}},
      {"\"\"\"\"", {"", ""}},
  });
}

TEST(FieldReader, KeepsNullsAndBytesBeyondAscii) {
  EXPECT_EQ(FieldsOf(std::string_view("\"a\0b\xFF\"", 6)),
            std::vector<std::string>{std::string("a\0b\xFF", 4)});
}

TEST(FieldReader, RaisesInputPastEndAtTheEnd) {
  for (std::string_view bytes : {"", "\"a\"", "\"a\"\r\n", "a"}) {
    FieldReader reader(bytes);
    while (!reader.AtEnd()) reader.Next();
    SCOPED_TRACE(bytes);
    test::ExpectRaises(ErrorNumber::InputPastEndOfFile, [&] { reader.Next(); });
  }
}

TEST(FieldReader, ReadsAPrefixOfAFileCutAtAnyByte) {
  const std::string whole =
      QuotedLine("N/A") + QuotedLine("C:\\Old, Papers") + QuotedLine("") + "bare , x\r\n";
  const std::vector<std::string> all = FieldsOf(whole);
  ASSERT_EQ(all, (std::vector<std::string>{"N/A", "C:\\Old, Papers", "", "bare", "x"}));
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const std::vector<std::string> some = FieldsOf(std::string_view(whole).substr(0, length));
    ASSERT_LE(some.size(), all.size()) << length;
    for (std::size_t i = 0; i < some.size(); ++i) {
      const std::string& field = some[i];
      if (i + 1 < some.size()) {
        EXPECT_EQ(field, all[i]) << length;
      } else {
        EXPECT_EQ(field, all[i].substr(0, field.size())) << length;  // the last one may be cut
      }
    }
  }
}

TEST(QuotedLine, IsReadBackWhole) {
  EXPECT_EQ(QuotedLine("C:\\a, b.txt"), "\"C:\\a, b.txt\"\r\n");
  EXPECT_EQ(QuotedLine(""), "\"\"\r\n");
  for (std::string text : {"", " ", ",", "\r\n", "a", "  a, b  ", "[FILES]", "\xC3\xA9"}) {
    EXPECT_EQ(FieldsOf(QuotedLine(text) + QuotedLine("next")), (std::vector<std::string>{text, "next"}));
  }
}

TEST(QuotedLine, EscapesNothing) {
  EXPECT_EQ(QuotedLine("say \"hi\""), "\"say \"hi\"\"\r\n");
}

}  // namespace
}  // namespace zq
