// The stage for tests of the report's window: a report in a folder of the test's own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Driving.h"
#include "controls/document/Characters.h"
#include "core/state/AppState.h"
#include "platform/win32/Wide.h"
#include "reports/ReportData.h"
#include "reports/frmPrintReport.h"
#include "support/driver/Driver.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {

class ReportStage : public testing::Test {
 protected:
  void SetUp() override {
    state.AppFolder = scratch.Path() + "\\";
    state.Settings.ReportFontSize = 8;
    scratch.Make("Report\\keep", "");
    Default<frmPrintReport>::SetFactory(
        [this] { return std::make_unique<frmPrintReport>(state, fake.platform); });
  }
  void TearDown() override {
    if (Default<frmPrintReport>::IsLoaded()) Default<frmPrintReport>::Touch().Unload();
    Form::DestroyClosed();
  }

  void WriteReport(const ReportData& report) {
    fake.files.Delete(DataPath());
    fake.files.AddFile(DataPath(), EncodeReport(report));
  }
  std::string DataPath() const { return state.AppFolder + "Report\\Report.dat"; }
  std::string RtfPath() const { return state.AppFolder + "Report\\Report.rtf"; }

  static ReportData Example() {
    return {"Weekly papers",
            "11/16/2026 4:30:12 AM",
            {"C:\\Old Papers",
             "D:\\\xC3\x9C"
             "berholt\\R&D"},
            {"C:\\letter.doc",
             "C:\\\xE6\xBC\xA2\xE5\xAD\x97\\\xD0\x9F\xD0\xB8\xD1\x81\xD1\x8C\xD0\xBC\xD0\xBE.txt"},
            {"C:\\letter.doc - Access denied"}};
  }
  static ReportData Long(int lines) {
    ReportData report = Example();
    report.files.clear();
    for (int i = 1; i <= lines; ++i)
      report.files.push_back("C:\\Documents and Settings\\user\\My Documents\\folder " +
                             std::to_string(i % 97) + "\\letter " + std::to_string(i) + ".doc");
    return report;
  }

  // Each character of Unicode's first 0x3000 that isn't a control, a quote or an end of line, and some of
  // each block and plane above.
  static std::vector<std::string> LinesOfCharacters() {
    std::vector<std::string> lines;
    for (char32_t first = 0x20; first < 0x110000; first += 64) {
      if (first >= 0x3000 && first < 0x10000 && (first & 0x7C0) != 0) continue;
      if (first >= 0x10000 && (first & 0xFFFF) >= 64) continue;
      std::string line;
      for (char32_t c = first; c < first + 64; ++c) {
        const bool quoteOrControl = c == '"' || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
        const bool noCharacter =
            (c >= 0xD800 && c < 0xE000) || (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE;
        if (!quoteOrControl && !noCharacter) AppendUtf8(line, c);
      }
      if (!line.empty()) lines.push_back(line);
    }
    return lines;
  }

  // As the bar's button or the keyboard does it.
  static void Key(VSPrinter& printer, WPARAM key) {
    ::SendMessageW(printer.Preview().Handle(), WM_KEYDOWN, key, 0);
  }
  static void PressBar(VSPrinter& printer, PreviewBarId id) {
    ::SendMessageW(printer.Bar().Item(id), BM_CLICK, 0, 0);
  }
  static bool Translate(VSPrinter& printer, HWND focus, WPARAM key) {
    MSG message{};
    message.hwnd = focus;
    message.message = WM_KEYDOWN;
    message.wParam = key;
    return printer.TranslateKey(message);
  }

  const ScratchFolder scratch;
  FakePlatform fake;
  AppState state;
};

}  // namespace zq::test
