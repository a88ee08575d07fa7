// The report's document: the order of what stands in it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "controls/document/DocumentBuilder.h"
#include "reports/ReportData.h"

namespace zq {

// The last report as rich text, in the program's folder.
inline constexpr const char* kReportTextFile = "Report\\Report.rtf";

// Makes the whole document in `VS1`, which writes the rich text file under `appFolder` at its end. `fontSize`
// is the body's, in points; `Image1` is the logo.
void BuildReportDocument(DocumentBuilder& VS1, const ReportData& report, std::int16_t fontSize,
                         const std::string& appFolder, std::shared_ptr<const PictureData> Image1);

}  // namespace zq
