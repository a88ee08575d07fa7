// report_bench [LINES [RUNS]]: how long the report's window takes to open a report of 30,000 lines, what of
// it is which step's, and how long a page takes that is scrolled to. Medians, in milliseconds.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controls/ExportFile.h"
#include "controls/GdiTextMeasure.h"
#include "controls/Printer.h"
#include "controls/document/RtfWriter.h"
#include "core/state/AppState.h"
#include "reports/ReportData.h"
#include "reports/ReportDocument.h"
#include "reports/frmPrintReport.h"
#include "support/driver/Scratch.h"
#include "windows/FakePlatform.h"

namespace zq::test {
namespace {

double Milliseconds(const std::function<void()>& step) {
  const auto start = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

class Timings {
 public:
  void Add(const std::string& name, double milliseconds) {
    for (Step& step : steps_) {
      if (step.name == name) return step.times.push_back(milliseconds);
    }
    steps_.push_back({name, {milliseconds}});
  }
  void Print() {
    for (Step& step : steps_) {
      std::sort(step.times.begin(), step.times.end());
      std::printf("%-40s %8.1f\n", step.name.c_str(), step.times[step.times.size() / 2]);
    }
  }

 private:
  struct Step {
    std::string name;
    std::vector<double> times;
  };
  std::vector<Step> steps_;
};

std::string Data(int lines) {
  ReportData report{"Weekly papers", "11/16/2026 4:30:12 AM", {}, {}, {}};
  for (int i = 1; i <= lines; ++i)
    report.files.push_back("C:\\Documents and Settings\\user\\My Documents\\folder " +
                           std::to_string(i % 97) + "\\letter " + std::to_string(i) + ".doc");
  return EncodeReport(report);
}

// Each step by itself, as the window does it.
void MeasureSteps(const std::string& data, const std::string& folder, Timings& timings) {
  ReportData report;
  timings.Add("  reading the data", Milliseconds([&] { report = DecodeReport(data); }));
  DocumentBuilder builder;
  timings.Add("  making the document", Milliseconds([&] {
                BuildReportDocument(builder, report, 8, folder, std::make_shared<PictureData>());
              }));
  PageSetup setup;
  timings.Add("  asking for the paper", Milliseconds([&] { setup = PaperOfDefaultPrinter(); }));
  std::unique_ptr<GdiTextMeasure> measure;
  timings.Add("  fonts", Milliseconds([&] {
                measure = std::make_unique<GdiTextMeasure>();
                measure->Metrics({builder.Content().fontName, 8, false});
              }));
  PageLayout layout;
  timings.Add("  layout", Milliseconds([&] { layout = LayOut(builder.Content(), setup, *measure); }));
  std::string rtf;
  timings.Add("  rich text", Milliseconds([&] { rtf = ToRtf(builder.Content(), setup); }));
  timings.Add("  rich text, onto the disk",
              Milliseconds([&] { WriteExportFile(folder + "Report\\Step.rtf", rtf); }));
}

void MeasureWindow(AppState& state, FakePlatform& fake, Timings& timings) {
  Default<frmPrintReport>::SetFactory([&] { return std::make_unique<frmPrintReport>(state, fake.platform); });
  frmPrintReport* form = nullptr;
  const double load = Milliseconds([&] { form = &Default<frmPrintReport>::Touch(); });
  PreviewWindow& preview = form->VS1.Preview();
  const double show = Milliseconds([&] {
    form->Show();
    ::UpdateWindow(preview.Handle());
    ::GdiFlush();
  });
  timings.Add("the window is loaded", load);
  timings.Add("the window is shown", show);
  timings.Add("together", load + show);
  constexpr int kPages = 50;
  timings.Add("a page that is scrolled to", Milliseconds([&] {
                                              for (int i = 1; i <= kPages; ++i) {
                                                preview.GoToPage(preview.PageCount() * i / kPages);
                                                ::UpdateWindow(preview.Handle());
                                                ::GdiFlush();
                                              }
                                            }) / kPages);
  form->Unload();
  Form::DestroyClosed();
}

int Run(int lines, int runs) {
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES | ICC_COOL_CLASSES};
  if (!::InitCommonControlsEx(&classes) || FAILED(::OleInitialize(nullptr))) return 1;
  const ScratchFolder scratch;
  scratch.Make("Report\\keep", "");
  AppState state;
  state.AppFolder = scratch.Path() + "\\";
  state.Settings.ReportFontSize = 8;
  FakePlatform fake;
  const std::string data = Data(lines);
  fake.files.AddFile(state.AppFolder + "Report\\Report.dat", data);
  Timings timings;
  for (int i = 0; i < runs; ++i) {
    MeasureWindow(state, fake, timings);
    MeasureSteps(data, state.AppFolder, timings);
  }
  std::printf("%d lines, %d runs, milliseconds\n", lines, runs);
  timings.Print();
  return 0;
}

}  // namespace
}  // namespace zq::test

int main(int count, char** arguments) {
  return zq::test::Run(count > 1 ? std::atoi(arguments[1]) : 30000, count > 2 ? std::atoi(arguments[2]) : 5);
}
