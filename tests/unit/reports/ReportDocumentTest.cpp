#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/document/RtfWriter.h"
#include "reports/ReportDocument.h"
#include "support/document/FakeMeasure.h"
#include "support/document/RtfText.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class EndedBuilder final : public DocumentBuilder {
 public:
  int ended = 0;

 private:
  void DocumentEnded() override { ++ended; }
};

class ReportDocumentTest : public testing::Test {
 protected:
  const Document& Build(std::int16_t fontSize = 8) {
    auto logo = std::make_shared<PictureData>();
    logo->naturalWidth = 4500;
    logo->naturalHeight = 900;
    BuildReportDocument(VS1, report, fontSize, "C:\\Zeroquill\\", logo);
    return VS1.Content();
  }
  ReportData report{"Untitled Job", "11/16/2026 4:30:12 AM", {}, {}, {}};
  EndedBuilder VS1;
};

TEST_F(ReportDocumentTest, HasItsTextsInTheirOrder) {
  report.folders = {"C:\\Old Papers", "D:\\x"};
  report.files = {"C:\\letter.doc"};
  report.errors = {"C:\\letter.doc - Access denied"};
  EXPECT_EQ(Build().text,
            "\n\n\n"
            "Zeroquill Report - Untitled Job - 11/16/2026 4:30:12 AM\n"
            "Folders Included In Operation:\n"
            "\nC:\\Old Papers\nD:\\x\n\n"
            "Individual Files Included In Operation:\n"
            "\nC:\\letter.doc\n\n"
            "Errors During Operation:\n"
            "\nC:\\letter.doc - Access denied\n\n");
  EXPECT_EQ(VS1.ended, 1);
  EXPECT_EQ(VS1.ExportFile(), "C:\\Zeroquill\\Report\\Report.rtf");
}

TEST_F(ReportDocumentTest, SaysWhereAListIsEmpty) {
  EXPECT_EQ(Build().text,
            "\n\n\n"
            "Zeroquill Report - Untitled Job - 11/16/2026 4:30:12 AM\n"
            "Folders Included In Operation:\n"
            "\nNo folders were included in current operation.\n"
            "Individual Files Included In Operation:\n"
            "\nNo individual files were included in current operation.\n"
            "Errors During Operation:\n"
            "\nNo errors were encountered in current operation.\n");
}

TEST_F(ReportDocumentTest, PageHeaderHasTheJobAndThePage) {
  report.jobName = "Weekly";
  const Document& document = Build(12);
  EXPECT_EQ(document.header.left, "Zeroquill Report - Weekly");
  EXPECT_EQ(document.header.centre, "");
  EXPECT_EQ(document.header.right, "%d");
  EXPECT_EQ(document.header.points, 10) << "whatever the size of the text";
}

TEST_F(ReportDocumentTest, LogoStandsAnInchFromTheLeft) {
  const Document& document = Build();
  ASSERT_THAT(document.pictures, SizeIs(1));
  EXPECT_EQ(document.pictures[0].left, 1440);
  EXPECT_EQ(document.pictures[0].top, 432);
  EXPECT_EQ(document.pictures[0].width, 4500);
  EXPECT_EQ(document.pictures[0].height, 900);
}

TEST_F(ReportDocumentTest, TitleAloneIsBoldAndHeadingsFollowTheSize) {
  for (const std::int16_t size : std::initializer_list<std::int16_t>{8, 10, 12}) {
    const auto points = static_cast<float>(size);
    EXPECT_THAT(
        Build(size).runs,
        ElementsAre(StyledRun{0, {points, false, kBlack}}, StyledRun{3, {points, true, kBlack}},
                    StyledRun{59, {points, true, 0xFF0000}}, StyledRun{90, {points, false, kBlack}},
                    StyledRun{138, {points, true, 0xFF0000}}, StyledRun{178, {points, false, kBlack}},
                    StyledRun{235, {points, true, 0x0000FF}}, StyledRun{260, {points, false, kBlack}}));
  }
}

TEST_F(ReportDocumentTest, HeadingsAreThreeTablesOfOneCell) {
  const Document& document = Build();
  ASSERT_THAT(document.tables, SizeIs(3));
  for (const Table& table : document.tables) {
    EXPECT_EQ(table.rows, 1);
    EXPECT_EQ(table.columns, 1);
    EXPECT_TRUE(table.border);
    EXPECT_THAT(table.columnWidths, ElementsAre(9360));
    EXPECT_EQ(table.cells[0].background, kWhite);
  }
}

TEST_F(ReportDocumentTest, EveryTextIsInTheLayoutAndInTheRichText) {
  report.jobName = "\xC3\x9C{ber}\\";
  report.folders = {"C:\\\xE6\xBC\xA2\xE5\xAD\x97", std::string("D:\\") + std::string(500, 'p')};
  report.errors.assign(32767, "C:\\a b\\\xF0\x9F\x98\x80.txt - Access denied");
  const Document& document = Build();
  FakeMeasure measure;
  const PageSetup setup = SetupFor(11906, 16838);
  const PageLayout layout = LayOut(document, setup, measure);
  std::string laid;
  for (const LaidLine& line : layout.lines) laid += document.text.substr(line.begin, line.end - line.begin);
  std::string text = document.text;
  std::erase(text, '\n');
  EXPECT_EQ(laid, text);

  std::string read = RtfText(ToRtf(document, setup)).Text();
  std::erase(read, '\t');
  EXPECT_EQ(read, document.text);
}

}  // namespace
}  // namespace zq::test
