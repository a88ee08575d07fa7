// Report.dat: any bytes are read or refused, what was read without a quote in it is written and read
// back the same, and so is a report made of the input's lines.
#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"
#include "platform/RunTimeError.h"
#include "reports/ReportData.h"

namespace zq::test {
namespace {

bool HoldsQuote(const ReportData& report) {
  const auto holdsQuote = [](const std::string& text) { return text.find('"') != std::string::npos; };
  const auto inSection = [&](const std::vector<std::string>& section) {
    return std::any_of(section.begin(), section.end(), holdsQuote);
  };
  return holdsQuote(report.jobName) || holdsQuote(report.stamp) || inSection(report.folders) ||
         inSection(report.files) || inSection(report.errors);
}

void CheckReading(std::string_view bytes) {
  try {
    const ReportData report = DecodeReport(bytes);
    if (!HoldsQuote(report)) Require(DecodeReport(EncodeReport(report)) == report);
  } catch (const RunTimeError& error) {
    Require(error.Number() == ErrorNumber::InputPastEndOfFile || error.Number() == ErrorNumber::Overflow);
  }
}

// Each line is an entry, in a section that its length picks.
void CheckWriting(std::string_view text) {
  ReportData report;
  while (!text.empty()) {
    const auto [line, rest] = FirstLineAndRest(text);
    text = rest;
    std::string entry(line);
    std::erase(entry, '"');
    if (entry == "[FILES]" || entry == "[ERRORS]") continue;  // marks to any reader
    auto& section = entry.size() % 3 == 0   ? report.folders
                    : entry.size() % 3 == 1 ? report.files
                                            : report.errors;
    section.push_back(std::move(entry));
  }
  Require(DecodeReport(EncodeReport(report)) == report);
}

}  // namespace
}  // namespace zq::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq::test;
  CheckReading(TextOf(data, size));
  CheckWriting(TextOf(data, size));
  return 0;
}
