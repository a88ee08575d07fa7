// report_bench [LINES [RUNS]]: how long the report's window takes to open a report of 30,000 lines, what of
// it is which step's, and how long a page takes that is scrolled to. Medians, in milliseconds by the clock
// and of this process's own processor time, and the first run's, which finds nothing warm.
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
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

struct Time {
  double clock = 0;      // milliseconds
  double processor = 0;  // of all threads of this process; the system counts in steps of some milliseconds

  Time operator+(const Time& other) const { return {clock + other.clock, processor + other.processor}; }
  Time operator/(int parts) const { return {clock / parts, processor / parts}; }
};

double ProcessorMilliseconds() {
  FILETIME created{};
  FILETIME ended{};
  FILETIME kernel{};
  FILETIME user{};
  if (!::GetProcessTimes(::GetCurrentProcess(), &created, &ended, &kernel, &user)) return 0;
  const auto milliseconds = [](const FILETIME& time) {
    constexpr double kPerMillisecond = 10000;
    return static_cast<double>(ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart) /
           kPerMillisecond;
  };
  return milliseconds(kernel) + milliseconds(user);
}

Time TimeOf(const std::function<void()>& step) {
  const double processor = ProcessorMilliseconds();
  const auto start = std::chrono::steady_clock::now();
  step();
  const std::chrono::duration<double, std::milli> clock = std::chrono::steady_clock::now() - start;
  return {clock.count(), ProcessorMilliseconds() - processor};
}

class Timings {
 public:
  void Add(const std::string& name, const Time& time) {
    for (Step& step : steps_) {
      if (step.name == name) return step.times.push_back(time);
    }
    steps_.push_back({name, {time}});
  }
  void Print() const {
    std::printf("%-40s %8s %10s %10s\n", "", "clock", "processor", "first run");
    for (const Step& step : steps_) {
      std::printf("%-40s %8.1f %10.1f %10.1f\n", step.name.c_str(), Median(step.times, &Time::clock),
                  Median(step.times, &Time::processor), step.times.front().clock);
    }
  }

 private:
  struct Step {
    std::string name;
    std::vector<Time> times;
  };
  static double Median(const std::vector<Time>& times, double Time::*which) {
    std::vector<double> values;
    for (const Time& time : times) values.push_back(time.*which);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
  }
  std::vector<Step> steps_;
};

struct Kind {
  const char* title;
  const char* folder;  // of each path
};

constexpr Kind kKinds[] = {
    {"paths that fit on a line", "C:\\Documents and Settings\\user\\My Documents\\folder "},
    {"paths of three lines",
     "C:\\Documents and Settings\\user\\My Documents\\Letters of the year before last that nobody has "
     "answered\\"
     "Letters of the year before last that nobody will answer any more, and what was sent with "
     "them\\folder "},
    // Hebrew and Arabic: the system shapes each line as a whole.
    {"paths that have to be shaped",
     "C:\\\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D\\"
     "\xD8\xB1\xD8\xB3\xD8\xA7\xD8\xA6\xD9\x84\\folder "},
};

std::string Data(const Kind& kind, int lines) {
  ReportData report{"Weekly papers", "11/16/2026 4:30:12 AM", {}, {}, {}};
  for (int i = 1; i <= lines; ++i)
    report.files.push_back(kind.folder + std::to_string(i % 97) + "\\letter " + std::to_string(i) + ".doc");
  return EncodeReport(report);
}

// Each step by itself, as the window does it.
void MeasureSteps(const std::string& data, const std::string& folder, Timings& timings) {
  ReportData report;
  timings.Add("  reading the data", TimeOf([&] { report = DecodeReport(data); }));
  DocumentBuilder builder;
  timings.Add("  making the document", TimeOf([&] {
                BuildReportDocument(builder, report, 8, folder, std::make_shared<PictureData>());
              }));
  PageSetup setup;
  timings.Add("  asking for the paper", TimeOf([&] { setup = PaperOfDefaultPrinter(); }));
  std::unique_ptr<GdiTextMeasure> measure;
  timings.Add("  fonts", TimeOf([&] {
                measure = std::make_unique<GdiTextMeasure>();
                measure->Metrics({builder.Content().fontName, 8, false});
              }));
  PageLayout layout;
  timings.Add("  layout", TimeOf([&] { layout = LayOut(builder.Content(), setup, *measure); }));
  std::string rtf;
  timings.Add("  rich text", TimeOf([&] { rtf = ToRtf(builder.Content(), setup); }));
  timings.Add("  rich text, onto the disk",
              TimeOf([&] { WriteExportFile(folder + "Report\\Step.rtf", rtf); }));
}

void MeasureWindow(AppState& state, FakePlatform& fake, Timings& timings) {
  Default<frmPrintReport>::SetFactory([&] { return std::make_unique<frmPrintReport>(state, fake.platform); });
  frmPrintReport* form = nullptr;
  const Time load = TimeOf([&] { form = &Default<frmPrintReport>::Touch(); });
  PreviewWindow& preview = form->VS1.Preview();
  const Time show = TimeOf([&] {
    form->Show();
    ::UpdateWindow(preview.Handle());
    ::GdiFlush();
  });
  timings.Add("the window is loaded", load);
  timings.Add("the window is shown", show);
  timings.Add("together", load + show);
  constexpr int kPages = 50;
  timings.Add("a page that is scrolled to", TimeOf([&] {
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
  for (const Kind& kind : kKinds) {
    const std::string data = Data(kind, lines);
    const std::string path = state.AppFolder + "Report\\Report.dat";
    fake.files.Delete(path);
    fake.files.AddFile(path, data);
    Timings timings;
    for (int i = 0; i < runs; ++i) {
      MeasureWindow(state, fake, timings);
      MeasureSteps(data, state.AppFolder, timings);
    }
    std::printf("%d %s, %d runs, milliseconds\n", lines, kind.title, runs);
    timings.Print();
  }
  return 0;
}

}  // namespace
}  // namespace zq::test

int main(int count, char** arguments) {
  return zq::test::Run(count > 1 ? std::atoi(arguments[1]) : 30000, count > 2 ? std::atoi(arguments[2]) : 5);
}
