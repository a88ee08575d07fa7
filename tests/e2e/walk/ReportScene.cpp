#include "e2e/walk/ReportScene.h"

#include <cstdio>

#include "PostScriptPrinter.h"
#include "support/document/RtfText.h"

namespace zq::test {
namespace {

Window WaitReport(const Walk& walk) {
  const Window report = walk.Run().WaitWindow("Zeroquill Report", "#32770");
  walk.Main().window.WaitDisabled();
  Await("the report in front, with the focus",
        [&] { return ::GetForegroundWindow() == report.Handle() && report.HoldsFocus(); });
  return report;
}

void Close(const Walk& walk, Window report) {
  report.Close();
  report.WaitGone();
  walk.Main().window.WaitEnabled();
}

class HeldClipboard {
 public:
  HeldClipboard() {
    Await("the clipboard", [] { return ::OpenClipboard(nullptr) != FALSE; });
  }
  ~HeldClipboard() { ::CloseClipboard(); }
  HeldClipboard(const HeldClipboard&) = delete;
  HeldClipboard& operator=(const HeldClipboard&) = delete;
};

// Typed again if no box comes: on a busy machine Wine lost a key once in some hundred times.
void CopyWithoutAClipboard(Walk& walk, Window report) {
  const HeldClipboard held;
  constexpr Limit kOnce{5000};
  for (int times = 1; times <= 4 && walk.Run().Boxes().empty(); ++times) {
    if (times > 1) std::fprintf(stderr, "No box came; the keys are typed again.\n");
    TypeKey(report, 'A', {VK_CONTROL});
    TypeKey(report, 'C', {VK_CONTROL});
    WaitFor([&] { return !walk.Run().Boxes().empty(); }, kOnce);
  }
  walk.Answer("report-clipboard-in-use", "OK");
}

void Print(Walk& walk, Window report) {
  const Window print = report.Child("Print...");
  print.Press();
  walk.Answer("report-no-printer", "OK");
  report.WaitEnabled();

  const std::string path = walk.scratch / "printed.ps";
  const PostScriptPrinter printer(L"Walk's Printer", path, Colours::All);
  print.Press();
  const Window dialog = walk.Run().WaitWindow("Print", "#32770");
  walk.visits.See("PrintDialog", dialog);
  dialog.Child("OK").Press();
  dialog.WaitGone();
  // The file comes while the report waits for its printing to end.
  Await("the printed report", [&] { return PathExists(path) && report.IsEnabled(); });
  const std::string printed = ReadFileBytes(path);
  EXPECT_TRUE(printed.starts_with("%!PS")) << printed.substr(0, 20);
  EXPECT_NE(printed.find("%%Page: 1 "), std::string::npos);
  EXPECT_NE(printed.find("%%EOF"), std::string::npos);
}

// Each text of the data stands in the rich text, in their order.
void ExpectRichText(const Walk& walk) {
  const std::string rtf = ReadFileBytes(walk.richTextPath);
  EXPECT_TRUE(rtf.starts_with("{\\rtf1"));
  const std::string text = RtfText(rtf).Text();
  const std::string data = ReadFileBytes(walk.reportPath);
  std::size_t at = 0;
  for (std::size_t begin = 0; begin < data.size();) {
    const std::size_t end = data.find("\r\n", begin);
    const std::string field = data.substr(begin + 1, end - begin - 2);
    begin = end + 2;
    if (field.starts_with("[")) continue;
    const std::size_t found = text.find(field, at);
    EXPECT_NE(found, std::string::npos) << field << " is missing, or too early, in\n" << text;
    if (found != std::string::npos) at = found;
  }
}

}  // namespace

void SeeReport(Walk& walk, std::string_view part) {
  const Window report = WaitReport(walk);
  walk.visits.See("frmPrintReport", report, part);
  ExpectRichText(walk);
  Close(walk, report);
}

void ReadTheReport(Walk& walk) {
  const Window report = WaitReport(walk);
  walk.visits.See("frmPrintReport", report);
  ExpectRichText(walk);
  CopyWithoutAClipboard(walk, report);
  report.WaitEnabled();
  Print(walk, report);
  Close(walk, report);
}

}  // namespace zq::test
