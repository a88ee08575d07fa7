// The report's way from the data file to pages and rich text: whatever the file holds, all of its text is
// laid out once and in order, no line leaves its page, and a reader of the rich text gets the same text.
#include <algorithm>
#include <string>

#include "controls/document/PreviewPlan.h"
#include "controls/document/RtfWriter.h"
#include "controls/document/TextSearch.h"
#include "fuzz/Fuzz.h"
#include "platform/RunTimeError.h"
#include "reports/ReportDocument.h"
#include "support/document/FakeMeasure.h"
#include "support/document/RtfText.h"

namespace zq::test {
namespace {

std::string Without(std::string text, char c) {
  std::erase(text, c);
  return text;
}

// A row of a table that is higher than the page is cut at its foot: `rowsFit` if none can be.
void CheckLayout(const Document& document, const PageSetup& setup, bool rowsFit) {
  FakeMeasure measure;
  const PageLayout layout = LayOut(document, setup, measure);
  Require(!layout.pages.empty());
  std::size_t nextLine = 0;
  std::string text;
  for (const LaidPage& page : layout.pages) {
    Require(page.firstLine == nextLine && page.endLine >= page.firstLine);
    nextLine = page.endLine;
    Twips top = setup.top;
    for (std::size_t i = page.firstLine; i < page.endLine; ++i) {
      const LaidLine& line = layout.lines[i];
      Require(line.top >= top && line.height > 0 && line.begin <= line.end);
      Require(line.top + line.height <= setup.TextBottom() || i == page.firstLine);
      top = line.top + line.height;
      text += document.text.substr(line.begin, line.end - line.begin);
    }
  }
  Require(nextLine == layout.lines.size());
  const std::string whole = Without(document.text, '\n');
  Require(rowsFit ? text == whole : text.size() <= whole.size());
  for (int page = 1; page <= 3; ++page) LayOutHeader(document, setup, page, measure);
}

void CheckReport(std::string_view bytes, std::int16_t fontSize) {
  ReportData report;
  try {
    report = DecodeReport(bytes);
  } catch (const RunTimeError&) {
    return;
  }
  auto logo = std::make_shared<PictureData>();
  logo->naturalWidth = logo->naturalHeight = 900;
  logo->png = "x";
  DocumentBuilder VS1;
  BuildReportDocument(VS1, report, fontSize, "C:\\", logo);
  const Document& document = VS1.Content();
  const auto size = static_cast<Twips>(bytes.size());
  CheckLayout(document, SetupFor(12240, 15840), true);
  CheckLayout(document, SetupFor(6000 + size % 500 * 12, 31680), true);
  CheckLayout(document, SetupFor(size * 31, 5000), false);
  // The logo stands in a paragraph of its own, in front of all.
  Require(Without(RtfText(ToRtf(document, SetupFor(12240, 15840))).Text(), '\t') == '\n' + document.text);
  const auto found =
      FindText(document, report.stamp, 0, false, [](std::string_view text) { return std::string(text); });
  if (found) Require(found->end <= document.text.size() && !found->Empty());
}

}  // namespace
}  // namespace zq::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq::test;
  const std::int16_t fontSize = size == 0 ? 8 : static_cast<std::int16_t>(data[0] * 131 - 5000);
  CheckReport(TextOf(data, size), fontSize);
  return 0;
}
