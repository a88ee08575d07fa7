#include "reports/ReportDocument.h"

#include <string_view>
#include <utility>
#include <vector>

namespace zq {
namespace {

constexpr std::string_view kLineBreak = "\r\n";
constexpr std::string_view kLineFeed = "\n";
constexpr std::int32_t kPureBlue = 0xFF0000;
constexpr std::int32_t kPureRed = 0x0000FF;
constexpr std::int32_t kPureWhite = 0xFFFFFF;
constexpr float kPageHeaderPoints = 10.0F;

struct Section {
  const char* heading;
  std::int32_t colour;
  const char* nothing;  // what stands there when the list is empty
};

constexpr Section kFolders{"Folders Included In Operation:", kPureBlue,
                           "No folders were included in current operation."};
constexpr Section kFiles{"Individual Files Included In Operation:", kPureBlue,
                         "No individual files were included in current operation."};
constexpr Section kErrors{"Errors During Operation:", kPureRed,
                          "No errors were encountered in current operation."};

// The table that was started for it becomes the heading; the entries follow as plain text, so that long lists
// page by themselves.
void AppendSection(DocumentBuilder& VS1, const Section& section, const std::vector<std::string>& entries) {
  VS1.TableCell(TableSetting::Columns, 1);
  VS1.TableCell(TableSetting::Rows, 1);
  VS1.TableCell(TableSetting::ColumnWidth, 1, "6.5in");
  VS1.TableCell(TableSetting::Text, 1, 1, section.heading);
  VS1.TableCell(TableSetting::TextColour, 1, 1, section.colour);
  VS1.TableCell(TableSetting::Bold, 1, 1, true);
  VS1.TableCell(TableSetting::BackColour, 1, 1, kPureWhite);
  VS1.SetTableBorder(kTableBorderAll);
  VS1.EndTable();
  if (entries.empty()) {
    VS1.AppendText(kLineBreak);
    VS1.AppendText(section.nothing);
  } else {
    VS1.AppendText(kLineFeed);
    for (const std::string& entry : entries) VS1.AppendText(entry + '\n');
  }
  VS1.AppendText(kLineBreak);
}

}  // namespace

void BuildReportDocument(DocumentBuilder& VS1, const ReportData& report, std::int16_t fontSize,
                         const std::string& appFolder, std::shared_ptr<const PictureData> Image1) {
  const std::string title = "Zeroquill Report - " + report.jobName;
  VS1.SetFontSize(static_cast<float>(fontSize));
  VS1.SetPageHeaderFontSize(kPageHeaderPoints);
  VS1.SetPageHeader(title + "||%d");
  VS1.SetExportFile(appFolder + kReportTextFile);
  VS1.SetExportFormat(kExportRichText);

  VS1.StartDocument();
  VS1.DrawPicture(std::move(Image1), "1in", ".3in", "100%", "100%");
  VS1.AppendText("\r\n\r\n\r\n");  // clears the logo
  VS1.SetFontBold(true);
  VS1.AppendText(title + " - " + report.stamp + "\r\n");
  VS1.SetFontBold(false);

  VS1.StartTable();
  AppendSection(VS1, kFolders, report.folders);
  VS1.StartTable();
  AppendSection(VS1, kFiles, report.files);
  VS1.StartTable();
  AppendSection(VS1, kErrors, report.errors);
  VS1.EndDocument();
}

}  // namespace zq
