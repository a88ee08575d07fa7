#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/document/DocumentBuilder.h"
#include "controls/document/RtfWriter.h"
#include "support/document/RtfText.h"

namespace zq::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class RtfWriterTest : public testing::Test {
 protected:
  RtfWriterTest() { builder.StartDocument(); }
  std::string Rtf() { return ToRtf(builder.Content(), SetupFor(12240, 15840)); }
  DocumentBuilder builder;
};

TEST_F(RtfWriterTest, BeginsWithItsVersionCodePageAndFont) {
  EXPECT_THAT(
      Rtf(),
      StartsWith("{\\rtf1\\ansi\\ansicpg1252\\uc1\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Verdana;}}"));
}

TEST_F(RtfWriterTest, GivesThePage) {
  EXPECT_THAT(
      Rtf(),
      HasSubstr("\\paperw12240\\paperh15840\\margl1440\\margr1440\\margt1872\\margb1440\\headery1368"));
  EXPECT_THAT(Rtf(), Not(HasSubstr("landscape")));
  EXPECT_THAT(ToRtf(builder.Content(), SetupFor(15840, 12240)), HasSubstr("\\landscape"));
}

TEST_F(RtfWriterTest, HeaderHasThePagesNumberAsAField) {
  builder.SetPageHeader("a {b}||Page %d.");
  EXPECT_THAT(
      Rtf(), HasSubstr("{\\header\\pard\\plain\\tqc\\tx4680\\tqr\\tx9360\\f0\\fs20\\cf1 a \\{b\\}\\tab \\tab "
                       "Page {\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}.\\par}"));
}

TEST_F(RtfWriterTest, TextHasItsSizeWeightAndColour) {
  builder.SetFontSize(8);
  builder.SetFontBold(true);
  builder.AppendText("title\r\n");
  EXPECT_THAT(Rtf(), HasSubstr("\\pard\\plain\\f0\\fs16\\b\\cf1 title\\par"));
}

TEST_F(RtfWriterTest, TableHasItsBorderWidthAndColours) {
  builder.SetFontSize(12);
  builder.StartTable();
  builder.TableCell(TableSetting::Columns, 1);
  builder.TableCell(TableSetting::Rows, 1);
  builder.TableCell(TableSetting::ColumnWidth, 1, "6.5in");
  builder.TableCell(TableSetting::Text, 1, 1, "Heading:");
  builder.TableCell(TableSetting::TextColour, 1, 1, 0xFF0000);
  builder.TableCell(TableSetting::Bold, 1, 1, true);
  builder.SetTableBorder(kTableBorderAll);
  builder.EndTable();
  const std::string rtf = Rtf();
  EXPECT_THAT(
      rtf,
      HasSubstr("{\\colortbl ;\\red0\\green0\\blue0;\\red0\\green0\\blue255;\\red255\\green255\\blue255;}"));
  EXPECT_THAT(rtf, HasSubstr("\\clbrdrt\\brdrs\\brdrw15\\brdrcf1\\clbrdrl"));
  EXPECT_THAT(
      rtf,
      HasSubstr("\\clcbpat3\\cellx9360\r\n\\pard\\plain\\intbl\\f0\\fs24\\b\\cf2 Heading:\\cell\\row\r\n"));
  EXPECT_THAT(rtf, HasSubstr("\\row\r\n\\pard\\plain\\f0\\par")) << "a table isn't the last thing of a file";
}

TEST_F(RtfWriterTest, PictureIsThePngInAFrameOfItsOwn) {
  auto data = std::make_shared<PictureData>();
  data->png = "\x89PNG";
  data->width = 300;
  data->height = 60;
  data->naturalWidth = 4500;
  data->naturalHeight = 900;
  builder.DrawPicture(data, "1in", ".3in", "100%", "100%");
  builder.AppendText("a");
  const std::string rtf = Rtf();
  EXPECT_THAT(rtf, HasSubstr("\\phpg\\pvpg\\posx1440\\posy432\\absw4500\\absh900"));
  EXPECT_THAT(rtf, HasSubstr("{\\pict\\pngblip\\picw300\\pich60\\picwgoal4500\\pichgoal900\r\n89504e47}"));
  EXPECT_EQ(RtfText(rtf).Pictures(), 1U);
}

TEST_F(RtfWriterTest, EachCharacterComesBack) {
  std::string all;
  for (char32_t c = 0x20; c <= 0x10FFFF; c += c < 0x3100 ? 1 : 997) {
    if (c == 0x7F || (c >= 0xD800 && c <= 0xDFFF)) continue;
    AppendUtf8(all, c);
  }
  builder.AppendText(all);
  EXPECT_EQ(RtfText(Rtf()).Text(), all + "\n");
}

TEST_F(RtfWriterTest, CharactersAtTheEdgesOfAUnitComeBack) {
  std::string all;
  for (const char32_t c : {0x7EU, 0x80U, 0x7FFFU, 0x8000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) AppendUtf8(all, c);
  builder.AppendText(all);
  EXPECT_EQ(RtfText(Rtf()).Text(), all + "\n");
}

TEST_F(RtfWriterTest, StyleEndsWhereTheNextBegins) {
  builder.SetFontSize(8.5F);
  builder.SetFontBold(true);
  builder.AppendText("a");
  builder.SetFontBold(false);
  builder.AppendText("b\n\n");
  EXPECT_THAT(Rtf(), HasSubstr("\\pard\\plain\\f0\\fs17\\b\\cf1 a\\f0\\fs17\\b0\\cf1 b\\par\r\n"
                               "\\pard\\plain\\f0\\fs17\\b0\\cf1 \\par\r\n"))
      << "an empty line has a height, too";
}

TEST_F(RtfWriterTest, RowHasAllThatTheLayoutGivesIt) {
  builder.StartTable();
  builder.TableCell(TableSetting::Rows, 1);
  builder.TableCell(TableSetting::Columns, 2);
  builder.TableCell(TableSetting::ColumnWidth, 1, "1in");
  builder.TableCell(TableSetting::ColumnWidth, 2, "2in");
  builder.TableCell(TableSetting::TextColour, 1, 1, 0x123456);
  builder.SetTableBorder(kTableBorderAll);
  builder.EndTable();
  const std::string border =
      "\\clbrdrt\\brdrs\\brdrw15\\brdrcf1\\clbrdrl\\brdrs\\brdrw15\\brdrcf1"
      "\\clbrdrb\\brdrs\\brdrw15\\brdrcf1\\clbrdrr\\brdrs\\brdrw15\\brdrcf1";
  const std::string rtf = Rtf();
  EXPECT_THAT(rtf, HasSubstr("\\nowidctlpar\r\n"));
  EXPECT_THAT(rtf, HasSubstr("\\red86\\green52\\blue18;"));
  EXPECT_THAT(rtf, HasSubstr("\\trowd\\trgaph108\\trleft0\\trpaddl108\\trpaddfl3\\trpaddr108\\trpaddfr3"
                             "\\trpaddt15\\trpaddft3\\trpaddb15\\trpaddfb3\\trkeep" +
                             border + "\\clcbpat3\\cellx1440" + border + "\\clcbpat3\\cellx4320\r\n"));
}

TEST_F(RtfWriterTest, PictureBehindAllTextIsThereInLinesOfBoundedLength) {
  auto data = std::make_shared<PictureData>();
  data->png = std::string(200, '\x5A');
  data->naturalWidth = data->naturalHeight = 900;
  builder.AppendText("a\n");
  builder.DrawPicture(data, "1in", ".3in", "100%", "100%");
  const std::string rtf = Rtf();
  EXPECT_EQ(RtfText(rtf).Pictures(), 1U);
  EXPECT_THAT(rtf, HasSubstr("\\absh900\\dxfrtext0\\dfrmtxtx0\\dfrmtxty0\r\n{\\pict"));
  for (std::size_t at = 0; at < rtf.size(); at = rtf.find("\r\n", at) + 2)
    EXPECT_LE(rtf.find("\r\n", at) - at, 255U);
}

TEST_F(RtfWriterTest, LinesAndCellsComeBackInTheirOrder) {
  builder.AppendText("\r\na\\b {c}\r\n\r\n");
  builder.StartTable();
  builder.TableCell(TableSetting::Rows, 1);
  builder.TableCell(TableSetting::Columns, 2);
  builder.TableCell(TableSetting::Text, 1, 1, "x");
  builder.TableCell(TableSetting::Text, 1, 2, "y");
  builder.EndTable();
  builder.AppendText("1 after\r\n");
  EXPECT_EQ(RtfText(Rtf()).Text(), "\na\\b {c}\n\nx\ty\t\n1 after\n");
}

TEST_F(RtfWriterTest, NothingIsAFileToo) {
  EXPECT_EQ(RtfText(Rtf()).Text(), "\n");
}

}  // namespace
}  // namespace zq::test
