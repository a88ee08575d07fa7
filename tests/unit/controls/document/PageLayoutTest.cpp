#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/document/DocumentBuilder.h"
#include "controls/document/PageLayout.h"
#include "support/document/FakeMeasure.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Twips kLineHeight = 240;  // of 10 points in the fake font

class PageLayoutTest : public testing::Test {
 protected:
  PageLayoutTest() {
    builder.SetFontSize(10);
    builder.StartDocument();
  }
  PageLayout LayOutIt() { return LayOut(builder.Content(), setup, measure); }
  std::string TextOf(const LaidLine& line) const {
    return builder.Content().text.substr(line.begin, line.end - line.begin);
  }
  int LinesPerPage() const { return (setup.TextBottom() - setup.top) / kLineHeight; }
  int CharactersPerLine() const { return setup.TextWidth() / FakeMeasure::CharacterWidth(10); }
  void AppendLines(int count) {
    for (int i = 1; i <= count; ++i) builder.AppendText("line " + std::to_string(i) + "\n");
  }
  void MakeTable(const std::string& text, const char* width = "6.5in") {
    builder.StartTable();
    builder.TableCell(TableSetting::Columns, 1);
    builder.TableCell(TableSetting::Rows, 1);
    builder.TableCell(TableSetting::ColumnWidth, 1, width);
    builder.TableCell(TableSetting::Text, 1, 1, text);
    builder.EndTable();
  }

  FakeMeasure measure;
  PageSetup setup = SetupFor(12240, 15840);
  DocumentBuilder builder;
};

TEST_F(PageLayoutTest, LetterGivesTheTextSixAndAHalfInches) {
  EXPECT_EQ(setup.left, 1440);
  EXPECT_EQ(setup.TextWidth(), 9360);
}

TEST_F(PageLayoutTest, A4LetsTheRightMarginGiveWaySoThatHeadingsFit) {
  const PageSetup a4 = SetupFor(11906, 16838);
  EXPECT_EQ(a4.left, 1440);
  EXPECT_EQ(a4.TextWidth(), 9360);
}

TEST_F(PageLayoutTest, OtherPapersKeepAMargin) {
  EXPECT_EQ(SetupFor(20160, 12240).right, 1440);
  EXPECT_EQ(SetupFor(8391, 11906).right, 720) << "A5 is narrower than a heading";
  for (const Twips size : {-5, 0, 100, 1 << 30}) {
    const PageSetup odd = SetupFor(size, size);
    EXPECT_GT(odd.TextWidth(), 0);
    EXPECT_GT(odd.TextBottom(), odd.top);
  }
}

TEST_F(PageLayoutTest, NothingIsOnePage) {
  const PageLayout layout = LayOutIt();
  EXPECT_THAT(layout.pages, SizeIs(1));
  EXPECT_THAT(layout.lines, IsEmpty());
}

TEST_F(PageLayoutTest, OneLineStandsAtTheTop) {
  builder.AppendText("one");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.lines, SizeIs(1));
  EXPECT_EQ(layout.lines[0].left, setup.left);
  EXPECT_EQ(layout.lines[0].top, setup.top);
  EXPECT_EQ(layout.lines[0].height, kLineHeight);
}

TEST_F(PageLayoutTest, EmptyLinesTakeTheirRoom) {
  builder.AppendText("\n\n\na");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.lines, SizeIs(4));
  EXPECT_EQ(layout.lines[3].top, setup.top + 3 * kLineHeight);
}

TEST_F(PageLayoutTest, ThirtyThousandLinesFillTheirPages) {
  AppendLines(30000);
  const PageLayout layout = LayOutIt();
  EXPECT_THAT(layout.lines, SizeIs(30000));
  const auto perPage = static_cast<std::size_t>(LinesPerPage());
  ASSERT_THAT(layout.pages, SizeIs((30000 + perPage - 1) / perPage));
  for (std::size_t page = 0; page < layout.pages.size(); ++page) {
    EXPECT_EQ(layout.pages[page].firstLine, page * perPage);
    EXPECT_EQ(layout.pages[page].endLine, std::min<std::size_t>((page + 1) * perPage, 30000));
    EXPECT_EQ(layout.lines[page * perPage].top, setup.top);
  }
  EXPECT_EQ(PageOfLine(layout, perPage), 1U);
  EXPECT_EQ(PageOfLine(layout, perPage - 1), 0U);
  EXPECT_EQ(TextOf(layout.lines[LineAt(layout, layout.lines[12345].begin + 2)]), "line 12346");
}

TEST_F(PageLayoutTest, LastLineThatFitsStaysOnThePage) {
  AppendLines(LinesPerPage());
  EXPECT_THAT(LayOutIt().pages, SizeIs(1));
  AppendLines(1);
  EXPECT_THAT(LayOutIt().pages, SizeIs(2));
}

TEST_F(PageLayoutTest, PathLongerThanALineGoesOnBelow) {
  const std::string path = "C:\\" + std::string(static_cast<std::size_t>(CharactersPerLine()) * 2, 'x');
  builder.AppendText(path + "\nnext");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.lines, SizeIs(4));
  EXPECT_EQ(TextOf(layout.lines[0]) + TextOf(layout.lines[1]) + TextOf(layout.lines[2]), path);
  EXPECT_EQ(layout.lines[0].end - layout.lines[0].begin, static_cast<std::size_t>(CharactersPerLine()));
  EXPECT_EQ(TextOf(layout.lines[3]), "next");
}

TEST_F(PageLayoutTest, BoldIsMeasuredAsBold) {
  builder.SetFontBold(true);
  builder.AppendText("ab");
  builder.SetFontBold(false);
  builder.AppendText("cd");
  std::vector<Twips> edges;
  MeasureRange(builder.Content(), 0, 4, measure, edges);
  const Twips bold = FakeMeasure::CharacterWidth(10, true);
  const Twips plain = FakeMeasure::CharacterWidth(10);
  EXPECT_THAT(edges, ElementsAre(bold, 2 * bold, 2 * bold + plain, 2 * bold + 2 * plain));
}

TEST_F(PageLayoutTest, LineIsAsHighAsItsLargestText) {
  builder.AppendText("small");
  builder.SetFontSize(20);
  builder.AppendText("large\nlarge");
  builder.SetFontSize(10);
  builder.AppendText("small");
  const PageLayout layout = LayOutIt();
  for (const LaidLine& line : layout.lines) {
    EXPECT_EQ(line.height, 480);
    EXPECT_EQ(line.ascent, 400);
  }
}

TEST_F(PageLayoutTest, LineHigherThanAPageHasAPageOfItsOwn) {
  setup.height = setup.top + setup.bottom + kLineHeight / 2;
  AppendLines(3);
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.pages, SizeIs(3));
  EXPECT_EQ(layout.pages[0].endLine, 1U);
}

// Whatever a document holds, each byte of it is given to the font once.
TEST_F(PageLayoutTest, MeasuresEachTextOnce) {
  class Counting final : public TextMeasure {
   public:
    LineMetrics Metrics(const FontChoice& font) override { return font_.Metrics(font); }
    void Edges(const FontChoice& font, std::string_view text, std::vector<Twips>& edges) override {
      bytes += text.size();
      font_.Edges(font, text, edges);
    }
    std::size_t bytes = 0;

   private:
    FakeMeasure font_;
  };
  AppendLines(500);
  builder.AppendText(std::string(5000, 'x') + "\n");
  Counting counting;
  const PageLayout layout = LayOut(builder.Content(), setup, counting);
  EXPECT_EQ(counting.bytes, builder.Content().text.size() - 501) << "all but the line feeds";
}

TEST_F(PageLayoutTest, TableIsAsWideAsItWasMade) {
  builder.AppendText("before\n");
  MakeTable("heading");
  builder.AppendText("after");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.cells, SizeIs(1));
  const LaidCell& cell = layout.cells[0];
  EXPECT_EQ(cell.left, setup.left);
  EXPECT_EQ(cell.right, setup.left + 9360);
  EXPECT_EQ(cell.top, setup.top + kLineHeight);
  EXPECT_EQ(cell.bottom, cell.top + kLineHeight + 2 * kCellPaddingY);
  ASSERT_THAT(layout.lines, SizeIs(3));
  EXPECT_EQ(layout.lines[1].left, cell.left + kCellPaddingX);
  EXPECT_EQ(layout.lines[1].top, cell.top + kCellPaddingY);
  EXPECT_EQ(layout.lines[2].top, cell.bottom);
}

TEST_F(PageLayoutTest, TextWrapsInsideItsCell) {
  MakeTable("one two", "0.5in");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.lines, SizeIs(2));
  EXPECT_EQ(TextOf(layout.lines[1]), "two");
  EXPECT_EQ(layout.cells[0].bottom - layout.cells[0].top, 2 * kLineHeight + 2 * kCellPaddingY);
}

TEST_F(PageLayoutTest, CellsTextHasTheRoomBetweenItsMargins) {
  const Twips width = 7 * FakeMeasure::CharacterWidth(10) + 2 * kCellPaddingX;
  MakeTable("one two", std::to_string(width).c_str());
  EXPECT_THAT(LayOutIt().lines, SizeIs(1));
  MakeTable("one two", std::to_string(width - 1).c_str());
  EXPECT_THAT(LayOutIt().lines, SizeIs(1 + 2));
}

TEST_F(PageLayoutTest, CellsOfARowStandSideBySideAndAreAsHighAsTheHighest) {
  builder.StartTable();
  builder.TableCell(TableSetting::Rows, 2);
  builder.TableCell(TableSetting::Columns, 2);
  builder.TableCell(TableSetting::ColumnWidth, 1, "0.5in");
  builder.TableCell(TableSetting::ColumnWidth, 2, "1in");
  builder.TableCell(TableSetting::Text, 1, 1, "one two");
  builder.TableCell(TableSetting::Text, 1, 2, "b");
  builder.EndTable();
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.cells, SizeIs(4));
  EXPECT_EQ(layout.cells[1].left, setup.left + 720);
  EXPECT_EQ(layout.cells[1].right, setup.left + 720 + 1440);
  EXPECT_EQ(layout.cells[1].bottom, setup.top + 2 * kLineHeight + 2 * kCellPaddingY);
  EXPECT_EQ(layout.cells[2].left, setup.left);
  EXPECT_EQ(layout.cells[2].top, layout.cells[1].bottom);
  ASSERT_THAT(layout.lines, SizeIs(3 + 2));
  EXPECT_EQ(layout.lines[2].left, layout.cells[1].left + kCellPaddingX);
  EXPECT_EQ(layout.lines[2].top, layout.lines[0].top);
}

TEST_F(PageLayoutTest, EachPageHasItsOwnCells) {
  MakeTable("first");
  AppendLines(LinesPerPage());
  MakeTable("second");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.pages, SizeIs(2));
  EXPECT_EQ(layout.pages[0].endCell, 1U);
  EXPECT_EQ(layout.pages[1].firstCell, 1U);
  EXPECT_EQ(layout.pages[1].endCell, 2U);
}

TEST_F(PageLayoutTest, RowThatDoesNotFitGoesToTheNextPageWhole) {
  AppendLines(LinesPerPage() - 1);
  MakeTable("heading");  // higher than the line that is left
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.pages, SizeIs(2));
  EXPECT_EQ(layout.pages[1].firstCell, 0U);
  EXPECT_EQ(layout.pages[1].endCell, 1U);
  EXPECT_EQ(layout.cells[0].top, setup.top);
  EXPECT_EQ(PageOfLine(layout, layout.pages[1].firstLine), 1U);
}

TEST_F(PageLayoutTest, RowHigherThanAPageIsCutOff) {
  MakeTable(std::string(60000, 'x'));
  builder.AppendText("after");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.pages, SizeIs(2));
  EXPECT_LE(layout.cells[0].bottom, setup.TextBottom());
  const LaidLine& last = layout.lines[layout.pages[0].endLine - 1];
  EXPECT_LE(last.top + last.height, layout.cells[0].bottom);
  EXPECT_EQ(TextOf(layout.lines.back()), "after");
}

TEST_F(PageLayoutTest, PictureIsOnThePageWhereTheTextStands) {
  auto data = std::make_shared<PictureData>();
  builder.DrawPicture(data, "1in", ".3in", "1in", "1in");
  AppendLines(LinesPerPage());
  builder.DrawPicture(data, "1in", ".3in", "1in", "1in");
  AppendLines(1);
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.pictures, SizeIs(2));
  EXPECT_EQ(layout.pictures[0].page, 0U);
  EXPECT_EQ(layout.pictures[1].page, 1U);
}

TEST_F(PageLayoutTest, PictureBehindAllTextIsOnTheLastPage) {
  AppendLines(LinesPerPage() + 1);
  builder.DrawPicture(std::make_shared<PictureData>(), "1in", ".3in", "1in", "1in");
  const PageLayout layout = LayOutIt();
  ASSERT_THAT(layout.pictures, SizeIs(1));
  EXPECT_EQ(layout.pictures[0].page, 1U);
}

TEST_F(PageLayoutTest, HeaderHasItsPartsAtBothEnds) {
  builder.SetPageHeader("left|middle|%d");
  const std::vector<HeaderText> header = LayOutHeader(builder.Content(), setup, 12, measure);
  ASSERT_THAT(header, SizeIs(3));
  EXPECT_EQ(header[0].text, "left");
  EXPECT_EQ(header[0].left, setup.left);
  EXPECT_EQ(header[0].top, setup.header);
  EXPECT_EQ(header[1].text, "middle");
  EXPECT_EQ(header[1].left + 3 * FakeMeasure::CharacterWidth(10), setup.left + setup.TextWidth() / 2);
  EXPECT_EQ(header[2].text, "12");
  EXPECT_EQ(header[2].left + 2 * FakeMeasure::CharacterWidth(10), setup.left + setup.TextWidth());
}

TEST_F(PageLayoutTest, HeaderKeepsItsSizeWhateverTheTextHas) {
  builder.SetPageHeaderFontSize(10);
  builder.SetFontSize(12);
  builder.SetPageHeader("||%d");
  EXPECT_EQ(LayOutHeader(builder.Content(), setup, 1, measure)[0].ascent, 200);
}

TEST_F(PageLayoutTest, LongHeaderIsCutInFrontOfThePageNumber) {
  builder.SetPageHeader(std::string(300, 'x') + "||%d");
  const std::vector<HeaderText> header = LayOutHeader(builder.Content(), setup, 7, measure);
  ASSERT_THAT(header, SizeIs(2));
  EXPECT_TRUE(header[0].text.ends_with("\xE2\x80\xA6"));
  const auto rightOf = [](const HeaderText& text) {
    const auto characters = static_cast<Twips>(text.text.size() - 2);
    return text.left + characters * FakeMeasure::CharacterWidth(10);
  };
  EXPECT_LE(rightOf(header[0]), header[1].left - kLineHeight);
  EXPECT_GT(rightOf(header[0]), header[1].left - kLineHeight - 2 * FakeMeasure::CharacterWidth(10));

  builder.SetPageHeader(std::string(300, 'x') + "|middle|%d");
  const std::vector<HeaderText> withCentre = LayOutHeader(builder.Content(), setup, 7, measure);
  ASSERT_THAT(withCentre, SizeIs(3));
  EXPECT_LE(rightOf(withCentre[0]), withCentre[1].left - kLineHeight);
}

TEST(TextMeasure, KnowsWhatTheSystemHasToShape) {
  EXPECT_FALSE(
      NeedsShaping("C:\\Gr\xC3\xBC\xC3\x9F"
                   "e\\\xD0\x96\\\xE6\xBC\xA2 \xE2\x82\xAC"));
  EXPECT_TRUE(NeedsShaping("e\xCC\x81"));         // a mark
  EXPECT_TRUE(NeedsShaping("\xD7\xA9\xD7\x9C"));  // Hebrew
  EXPECT_TRUE(NeedsShaping("\xE0\xA4\x95"));      // Devanagari
  EXPECT_TRUE(NeedsShaping("\xF0\x9F\x98\x80"));  // a sign of two units
  EXPECT_TRUE(
      NeedsShaping("a\xE2\x80\xAE"
                   "b"));  // text turned round
}

}  // namespace
}  // namespace zq::test
