#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/document/DocumentBuilder.h"
#include "support/ExpectRaises.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Paragraphs(const Document& document) {
  std::vector<std::string> texts;
  for (const Block& block : document.blocks) {
    texts.push_back((block.table >= 0 ? "table:" : "") +
                    document.text.substr(block.begin, block.end - block.begin));
  }
  return texts;
}

class DocumentBuilderTest : public testing::Test {
 protected:
  DocumentBuilderTest() { builder.StartDocument(); }
  std::vector<std::string> After(std::initializer_list<const char*> texts) {
    for (const char* text : texts) builder.AppendText(text);
    return Paragraphs(builder.Content());
  }
  void MakeTable(const char* text) {
    builder.StartTable();
    builder.TableCell(TableSetting::Columns, 1);
    builder.TableCell(TableSetting::Rows, 1);
    builder.TableCell(TableSetting::ColumnWidth, 1, "6.5in");
    builder.TableCell(TableSetting::Text, 1, 1, text);
    builder.EndTable();
  }
  DocumentBuilder builder;
};

TEST_F(DocumentBuilderTest, JoinsTextsUntilALineBreak) {
  EXPECT_THAT(After({"a", "b", "\r\n", "c"}), ElementsAre("ab", "c"));
}

TEST_F(DocumentBuilderTest, TakesEachKindOfLineBreakForOne) {
  EXPECT_THAT(After({"a\r\nb\nc\rd\r\n\r\n"}), ElementsAre("a", "b", "c", "d", ""));
}

TEST_F(DocumentBuilderTest, TakesAPairForOneLineBreakAcrossTwoTexts) {
  EXPECT_THAT(After({"a\r", "\nb", "\n", "\r\n"}), ElementsAre("a", "b", ""));
}

TEST_F(DocumentBuilderTest, HasNoParagraphBehindTheLastLineBreak) {
  EXPECT_THAT(After({"\r\n"}), ElementsAre(""));
  EXPECT_THAT(After({""}), ElementsAre(""));
}

TEST_F(DocumentBuilderTest, KeepsControlCharactersAndInvalidBytesOut) {
  EXPECT_THAT(After({"a\tb\x01\x7F"
                     "c\xFF\xC3"}),
              ElementsAre("a b\xEF\xBF\xBD\xEF\xBF\xBD"
                          "c\xEF\xBF\xBD\xEF\xBF\xBD"));
}

TEST_F(DocumentBuilderTest, RunsFollowSizeAndBold) {
  builder.SetFontSize(8);
  builder.AppendText("plain ");
  builder.SetFontBold(true);
  builder.AppendText("bold");
  builder.SetFontBold(false);
  builder.AppendText("\nplain");
  EXPECT_THAT(builder.Content().runs,
              ElementsAre(StyledRun{0, {8, false, kBlack}}, StyledRun{6, {8, true, kBlack}},
                          StyledRun{10, {8, false, kBlack}}));
}

TEST_F(DocumentBuilderTest, StyleWithoutTextLeavesNoRun) {
  builder.SetFontSize(8);
  builder.AppendText("a\r");
  builder.SetFontBold(true);
  builder.AppendText("\n");  // the rest of a pair that counts as one
  builder.SetFontBold(false);
  builder.AppendText("b");
  EXPECT_THAT(builder.Content().runs, ElementsAre(StyledRun{0, {8, false, kBlack}}));
}

TEST_F(DocumentBuilderTest, SizesThatNobodyCouldReadAreBroughtIntoBounds) {
  for (const auto& [given, taken] : {std::pair{0.0F, 4.0F}, {-3.0F, 4.0F}, {8.0F, 8.0F}, {32767.0F, 72.0F}}) {
    builder.SetFontSize(given);
    EXPECT_EQ(builder.FontSize(), taken);
  }
}

TEST_F(DocumentBuilderTest, HeaderHasThreePartsSplitByBars) {
  builder.SetPageHeader("title||%d");
  EXPECT_EQ(builder.Content().header.left, "title");
  EXPECT_EQ(builder.Content().header.centre, "");
  EXPECT_EQ(builder.Content().header.right, "%d");
  builder.SetPageHeader("alone");
  EXPECT_EQ(builder.Content().header.left, "alone");
  EXPECT_EQ(builder.Content().header.right, "");
}

TEST_F(DocumentBuilderTest, PageNumberReplacesItsMark) {
  EXPECT_EQ(WithPageNumber("%d", 12), "12");
  EXPECT_EQ(WithPageNumber("Page %d of %d%", 3), "Page 3 of 3%");
  EXPECT_EQ(WithPageNumber("50%", 3), "50%");
}

TEST_F(DocumentBuilderTest, TableStandsOnLinesOfItsOwn) {
  builder.AppendText("before");
  MakeTable("heading");
  builder.AppendText("after");
  EXPECT_THAT(Paragraphs(builder.Content()), ElementsAre("before", "table:heading", "after"));
  EXPECT_EQ(builder.Content().text, "before\nheading\nafter");
}

TEST_F(DocumentBuilderTest, LineFeedBehindATableIsALineOfItsOwn) {
  builder.AppendText("before\r");
  MakeTable("heading");
  builder.AppendText("\nafter");
  EXPECT_THAT(Paragraphs(builder.Content()), ElementsAre("before", "table:heading", "", "after"));
}

TEST_F(DocumentBuilderTest, TableKeepsWhatItsCellsWereGiven) {
  builder.SetFontSize(12);
  builder.StartTable();
  builder.TableCell(TableSetting::Columns, 2);
  builder.TableCell(TableSetting::Rows, 2);
  builder.TableCell(TableSetting::ColumnWidth, 1, "1in");
  builder.TableCell(TableSetting::ColumnWidth, 2, "2in");
  builder.TableCell(TableSetting::Text, 1, 2, "b");
  builder.TableCell(TableSetting::Text, 2, 1, "c\r\nd");
  builder.TableCell(TableSetting::TextColour, 1, 2, 0xFF0000);
  builder.TableCell(TableSetting::Bold, 1, 2, true);
  builder.TableCell(TableSetting::BackColour, 2, 2, 0x00FF00);
  builder.SetTableBorder(kTableBorderAll);
  builder.EndTable();
  const Document& document = builder.Content();
  EXPECT_EQ(document.text, "\tb\nc  d\t\n");
  ASSERT_EQ(document.tables.size(), 1U);
  const Table& table = document.tables[0];
  EXPECT_TRUE(table.border);
  EXPECT_THAT(table.columnWidths, ElementsAre(1440, 2880));
  EXPECT_THAT(table.cells, ElementsAre(TableCell{0, 0, kWhite}, TableCell{1, 2, kWhite},
                                       TableCell{3, 7, kWhite}, TableCell{8, 8, 0x00FF00}));
  EXPECT_EQ(StyleAt(document, 1), (TextStyle{12, true, 0xFF0000}));
  EXPECT_EQ(StyleAt(document, 3), (TextStyle{12, false, kBlack}));
}

TEST_F(DocumentBuilderTest, TableGrowsAndKeepsItsCells) {
  builder.StartTable();
  builder.TableCell(TableSetting::Rows, 1);
  builder.TableCell(TableSetting::Columns, 1);
  builder.TableCell(TableSetting::Text, 1, 1, "a");
  builder.TableCell(TableSetting::Columns, 2);
  builder.TableCell(TableSetting::Rows, 2);
  builder.EndTable();
  EXPECT_EQ(builder.Content().text, "a\t\n\t\n");
}

TEST_F(DocumentBuilderTest, RefusesMembersOutOfTheirOrder) {
  const auto refuses = [](auto action) { ExpectRaises(ErrorNumber::InvalidProcedureCall, action); };
  refuses([&] { builder.EndTable(); });
  refuses([&] { builder.SetTableBorder(kTableBorderAll); });
  refuses([&] { builder.TableCell(TableSetting::Rows, 1); });
  refuses([&] { builder.SetExportFormat(3); });
  builder.StartTable();
  refuses([&] { builder.StartTable(); });
  refuses([&] { builder.AppendText("a"); });
  refuses([&] { builder.EndTable(); });  // it has no cell
  refuses([&] { builder.EndDocument(); });
  refuses([&] { builder.SetTableBorder(3); });
  refuses([&] { builder.TableCell(TableSetting::Rows, -1); });
  refuses([&] { builder.TableCell(TableSetting::Rows, 1001); });
  refuses([&] { builder.TableCell(static_cast<TableSetting>(3), 1); });
  DocumentBuilder closed;
  refuses([&] { closed.AppendText("a"); });
  refuses([&] { closed.StartTable(); });
  refuses([&] { closed.EndDocument(); });
}

TEST_F(DocumentBuilderTest, RefusesCellsThatAreNotThereAndValuesOfAnotherKind) {
  builder.StartTable();
  builder.TableCell(TableSetting::Rows, 1);
  builder.TableCell(TableSetting::Columns, 1);
  ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { builder.TableCell(TableSetting::Text, 2, 1, "a"); });
  ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { builder.TableCell(TableSetting::Text, 1, 0, "a"); });
  ExpectRaises(ErrorNumber::SubscriptOutOfRange,
               [&] { builder.TableCell(TableSetting::ColumnWidth, 2, "1in"); });
  ExpectRaises(ErrorNumber::TypeMismatch, [&] { builder.TableCell(TableSetting::Text, 1, 1, 5); });
  ExpectRaises(ErrorNumber::TypeMismatch, [&] { builder.TableCell(TableSetting::Bold, 1, 1, 1); });
  ExpectRaises(ErrorNumber::TypeMismatch, [&] { builder.TableCell(TableSetting::Rows, "1"); });
}

TEST_F(DocumentBuilderTest, PictureTakesItsPartOfTheNaturalSize) {
  auto data = std::make_shared<PictureData>();
  data->naturalWidth = 4500;
  data->naturalHeight = 900;
  builder.AppendText("a\n");
  builder.DrawPicture(data, "1in", ".3in", "100%", "50%");
  ASSERT_EQ(builder.Content().pictures.size(), 1U);
  const Picture& picture = builder.Content().pictures[0];
  EXPECT_EQ(picture.left, 1440);
  EXPECT_EQ(picture.top, 432);
  EXPECT_EQ(picture.width, 4500);
  EXPECT_EQ(picture.height, 450);
  EXPECT_EQ(picture.block, 1U);
  ExpectRaises(ErrorNumber::ObjectVariableNotSet,
               [&] { builder.DrawPicture(nullptr, "1in", "1in", "1in", "1in"); });
}

TEST_F(DocumentBuilderTest, StartingAgainForgetsTheDocumentAndKeepsTheHeader) {
  builder.SetPageHeader("title||%d");
  builder.AppendText("a");
  MakeTable("b");
  builder.EndDocument();
  builder.StartDocument();
  EXPECT_EQ(builder.Content().text, "");
  EXPECT_THAT(builder.Content().blocks, IsEmpty());
  EXPECT_THAT(builder.Content().tables, IsEmpty());
  EXPECT_EQ(builder.Content().header.left, "title");
}

TEST_F(DocumentBuilderTest, StartingAgainIsNotBold) {
  builder.SetFontBold(true);
  builder.StartDocument();
  builder.AppendText("a");
  EXPECT_FALSE(StyleAt(builder.Content(), 0).bold);
}

TEST_F(DocumentBuilderTest, TakesNothingBehindItsEnd) {
  builder.EndDocument();
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { builder.AppendText("a"); });
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { builder.StartTable(); });
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { builder.EndDocument(); });
}

TEST_F(DocumentBuilderTest, NextTableHasNothingOfTheOneBefore) {
  MakeTable("a");
  builder.StartTable();
  ExpectRaises(ErrorNumber::SubscriptOutOfRange, [&] { builder.TableCell(TableSetting::Text, 1, 1, "b"); });
  ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { builder.EndTable(); });
}

TEST_F(DocumentBuilderTest, ControlCharactersStayOutOfCellsAndHeader) {
  MakeTable("a\x01\x7F");
  builder.SetPageHeader("b\x7F");
  EXPECT_EQ(builder.Content().text, "a\xEF\xBF\xBD\xEF\xBF\xBD\n");
  EXPECT_EQ(builder.Content().header.left, "b\xEF\xBF\xBD");
}

TEST_F(DocumentBuilderTest, PictureBelongsToTheParagraphThatItIsDrawnIn) {
  builder.AppendText("one\ntwo");
  builder.DrawPicture(std::make_shared<PictureData>(), "1in", "1in", "1in", "1in");
  builder.AppendText(" goes on\n");
  EXPECT_EQ(builder.Content().pictures[0].block, 1U);
}

}  // namespace
}  // namespace zq::test
