#include <gtest/gtest.h>

#include "reports/ReportData.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

const ReportData kExample{
    .jobName = "Untitled Job",
    .stamp = "11/16/2026 4:30:12 AM",
    .folders = {"C:\\Old Papers"},
    .files = {"C:\\letter.doc"},
    .errors = {"C:\\letter.doc - Access denied"},
};

constexpr std::string_view kExampleBytes =
    "\"Untitled Job\"\r\n"
    "\"11/16/2026 4:30:12 AM\"\r\n"
    "\"[FOLDERS]\"\r\n"
    "\"C:\\Old Papers\"\r\n"
    "\"[FILES]\"\r\n"
    "\"C:\\letter.doc\"\r\n"
    "\"[ERRORS]\"\r\n"
    "\"C:\\letter.doc - Access denied\"\r\n";

void ExpectRoundTrip(const ReportData& report) {
  EXPECT_EQ(DecodeReport(EncodeReport(report)), report);
}

TEST(ReportData, StandsInTheFileByteForByte) {
  EXPECT_EQ(EncodeReport(kExample), kExampleBytes);
  EXPECT_EQ(DecodeReport(kExampleBytes), kExample);
}

TEST(ReportData, WritesAnEmptySectionAsItsMarkAlone) {
  EXPECT_EQ(EncodeReport({.jobName = "a", .stamp = "b", .folders = {}, .files = {}, .errors = {}}),
            "\"a\"\r\n\"b\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"[ERRORS]\"\r\n");
}

TEST(ReportData, ReadsBackWhatItWrote) {
  ExpectRoundTrip({});
  ExpectRoundTrip({.jobName = "a", .stamp = "b", .folders = {"C:\\One"}, .files = {}, .errors = {}});
  ExpectRoundTrip({.jobName = "a", .stamp = "b", .folders = {}, .files = {"x", "y"}, .errors = {}});
  ExpectRoundTrip({.jobName = "a", .stamp = "b", .folders = {}, .files = {}, .errors = {"x - y"}});
  ExpectRoundTrip({.jobName = "Job, of commas",
                   .stamp = "16.11.2026, 04:30",
                   .folders = {"C:\\a, b", "  C:\\blanks  ", ""},
                   .files = {"C:\\été\\日本.txt", "C:\\same", "C:\\same"},
                   .errors = {"C:\\a, b - Denied, again"}});
  // A mark is a mark only where sections stand.
  ExpectRoundTrip(
      {.jobName = "[FILES]", .stamp = "[ERRORS]", .folders = {"[FOLDERS]"}, .files = {}, .errors = {}});
}

TEST(ReportData, TakesTheThirdFieldForTheFoldersMarkWhateverItSays) {
  for (std::string mark : {"[FOLDERS]", "[FILES]", "[ERRORS]", "", "x"}) {
    const ReportData report = DecodeReport("\"a\"\r\n\"b\"\r\n\"" + mark + "\"\r\n\"C:\\One\"\r\n");
    EXPECT_EQ(report.folders, std::vector<std::string>{"C:\\One"}) << mark;
    EXPECT_TRUE(report.files.empty()) << mark;
    EXPECT_TRUE(report.errors.empty()) << mark;
  }
}

TEST(ReportData, KnowsMarksByTheirExactTextAlone) {
  const ReportData report = DecodeReport(
      "\"a\"\r\n\"b\"\r\n\"[FOLDERS]\"\r\n\"[files]\"\r\n\"[FILES] \"\r\n\"[FOLDERS]\"\r\n"
      "\"[FILES]\"\r\n\"[Errors]\"\r\n\"[FILES]\"\r\n\"[ERRORS]\"\r\n\"e\"\r\n\"[FILES]\"\r\n\"f\"\r\n");
  EXPECT_EQ(report.folders, (std::vector<std::string>{"[files]", "[FILES] ", "[FOLDERS]"}));
  EXPECT_EQ(report.files, (std::vector<std::string>{"[Errors]", "f"}));
  EXPECT_EQ(report.errors, std::vector<std::string>{"e"});
}

TEST(ReportData, TakesALaterMarkOfTheSameSectionForAMarkToo) {
  const ReportData report = DecodeReport(
      "\"a\"\r\n\"b\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"f\"\r\n\"[FILES]\"\r\n\"g\"\r\n"
      "\"[ERRORS]\"\r\n\"one\"\r\n\"[ERRORS]\"\r\n\"two\"\r\n");
  EXPECT_EQ(report.files, (std::vector<std::string>{"f", "g"}));
  EXPECT_EQ(report.errors, (std::vector<std::string>{"one", "two"}));
}

TEST(ReportData, BreaksAFieldAtAQuoteInsideIt) {
  ReportData report = kExample;
  report.errors = {"C:\\x - he said \"no\""};
  EXPECT_EQ(DecodeReport(EncodeReport(report)).errors,
            (std::vector<std::string>{"C:\\x - he said ", "no\"\""}));
}

TEST(ReportData, FailsAtTheEndOfAFileOfFewerThanThreeFields) {
  for (std::string_view bytes :
       {"", "\"a\"", "\"a\"\r\n", "\"a\"\r\n\"b\"", "\"a\"\r\n\"b\"\r\n", "a,b", "\r\n"}) {
    SCOPED_TRACE(bytes);
    test::ExpectRaises(ErrorNumber::InputPastEndOfFile, [&] { DecodeReport(bytes); });
  }
  EXPECT_EQ(DecodeReport("\"a\"\r\n\"b\"\r\n\"c\"").stamp, "b");
}

// What stands before the cut is read as it was; the entry under the cut may be a part of itself.
TEST(ReportData, ReadsAFileCutAtAnyByteOrRefusesIt) {
  const std::size_t thirdField = kExampleBytes.find("\"[FOLDERS]");
  for (std::size_t length = 0; length < kExampleBytes.size(); ++length) {
    const std::string_view bytes = kExampleBytes.substr(0, length);
    if (length <= thirdField) {
      SCOPED_TRACE(length);
      test::ExpectRaises(ErrorNumber::InputPastEndOfFile, [&] { DecodeReport(bytes); });
      continue;
    }
    const ReportData report = DecodeReport(bytes);
    EXPECT_EQ(report.jobName, kExample.jobName) << length;
    EXPECT_EQ(report.stamp, kExample.stamp) << length;
    std::vector<std::string> entries = report.folders;
    entries.insert(entries.end(), report.files.begin(), report.files.end());
    entries.insert(entries.end(), report.errors.begin(), report.errors.end());
    for (const std::string& entry : entries) {
      EXPECT_NE(kExampleBytes.find(entry), std::string_view::npos) << length << ' ' << entry;
    }
    EXPECT_LE(entries.size(), 3U) << length;
  }
}

TEST(ReportData, Holds32767EntriesInEachSection) {
  ReportData report = kExample;
  report.folders.assign(32767, "C:\\a");
  report.files.assign(32767, "C:\\b");
  report.errors.assign(32767, "C:\\c - d");
  ExpectRoundTrip(report);
  for (std::vector<std::string> ReportData::*section :
       {&ReportData::folders, &ReportData::files, &ReportData::errors}) {
    ReportData tooLong = kExample;
    (tooLong.*section).assign(32768, "x");
    test::ExpectRaises(ErrorNumber::Overflow, [&] { DecodeReport(EncodeReport(tooLong)); });
  }
}

}  // namespace
}  // namespace zq
