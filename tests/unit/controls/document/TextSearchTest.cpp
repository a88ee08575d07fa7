#include <gtest/gtest.h>

#include "controls/document/DocumentBuilder.h"
#include "controls/document/TextSearch.h"
#include "support/fakes/FakeRegional.h"

namespace zq::test {
namespace {

class TextSearchTest : public testing::Test {
 protected:
  TextSearchTest() {
    builder.StartDocument();
    builder.AppendText("C:\\Old Papers\nC:\\old\\letter.doc\n");
    builder.StartTable();
    builder.TableCell(TableSetting::Rows, 1);
    builder.TableCell(TableSetting::Columns, 1);
    builder.TableCell(TableSetting::Text, 1, 1, "Errors");
    builder.EndTable();
    builder.AppendText("\nlast OLD");
  }
  std::string Found(std::string_view needle, std::size_t from, bool backwards = false) {
    const auto range = FindText(builder.Content(), needle, from, backwards,
                                [this](std::string_view text) { return regional.UpperCase(text); });
    if (!range) return "none";
    return std::to_string(range->begin) + ":" +
           builder.Content().text.substr(range->begin, range->end - range->begin);
  }
  FakeRegional regional;
  DocumentBuilder builder;
};

TEST_F(TextSearchTest, FindsOneAfterTheOtherWithoutRegardToCase) {
  EXPECT_EQ(Found("old", 0), "3:Old");
  EXPECT_EQ(Found("old", 4), "17:old");
  EXPECT_EQ(Found("old", 18), "45:OLD");
}

TEST_F(TextSearchTest, GoesOnAtTheOtherEnd) {
  EXPECT_EQ(Found("old", 46), "3:Old");
  EXPECT_EQ(Found("old", 5, true), "45:OLD");
}

TEST_F(TextSearchTest, SearchesBackwards) {
  EXPECT_EQ(Found("old", 45, true), "17:old");
  EXPECT_EQ(Found("old", 17, true), "3:Old");
}

TEST_F(TextSearchTest, TakesTheNearestOfALine) {
  builder.AppendText("\nab ab ab");
  const std::size_t line = builder.Content().text.size() - 8;
  EXPECT_EQ(Found("ab", line), std::to_string(line) + ":ab");
  EXPECT_EQ(Found("ab", line + 8, true), std::to_string(line + 6) + ":ab");
  EXPECT_EQ(Found("ab", line + 6, true), std::to_string(line + 3) + ":ab");
}

TEST_F(TextSearchTest, FindsTextInTables) {
  EXPECT_EQ(Found("errors", 0), "32:Errors");
}

TEST_F(TextSearchTest, FindsNothingWhereNothingIs) {
  EXPECT_EQ(Found("none of it", 0), "none");
  EXPECT_EQ(Found("", 0), "none");
  EXPECT_EQ(Found("Papers\nC:", 0), "none");
}

TEST_F(TextSearchTest, CopiesWithTheLineEndsOfTheSystem) {
  EXPECT_EQ(TextToCopy(builder.Content(), {27, 42}), ".doc\r\nErrors\r\n\r\nla");
  EXPECT_EQ(TextToCopy(builder.Content(), {47, 9999}), "D");
}

}  // namespace
}  // namespace zq::test
