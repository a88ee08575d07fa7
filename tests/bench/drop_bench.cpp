// drop_bench [FILES [RUNS]]: how long the QuickWipe Bin takes for a drop of 1,000 small files, and a job of
// as many rows for the same: the real windows, files and engine, taking turns. Medians, in milliseconds.
// drop_bench rows FOLDER: the seconds that a job takes of which each file beneath the folder is a row.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controls/MessageLoop.h"
#include "controls/SystemLongWork.h"
#include "core/main/frmMain.h"
#include "platform/win32/Win32Files.h"
#include "platform/win32/Win32Regional.h"
#include "quickbin/frmQuick.h"
#include "reports/frmPrintReport.h"
#include "support/driver/Scratch.h"
#include "support/fakes/FakePlatform.h"
#include "wipe/frmStatus.h"

namespace zq::test {
namespace {

// The program but for its boxes, which are answered, and its process, which doesn't end.
struct Program {
  explicit Program(const std::string& folder) {
    fake.process.applicationPath = folder;
    fake.process.onPump = [] { PumpBetweenSteps(); };
    Default<frmMain>::SetFactory([this] { return std::make_unique<frmMain>(state, platform); });
    Default<frmStatus>::SetFactory(
        [this] { return std::make_unique<frmStatus>(state, platform, Default<frmMain>::Touch().Driver()); });
    Default<frmPrintReport>::SetFactory([this] { return std::make_unique<frmPrintReport>(state, platform); });
    Default<frmQuick>::SetFactory([this] {
      frmMain& main = Default<frmMain>::Touch();
      return std::make_unique<frmQuick>(state, platform, main, main.DockStudio1, [] {
        return static_cast<Form&>(Default<frmMain>::Touch()).Handle();
      });
    });
  }

  AppState state;
  FakePlatform fake;
  Win32Files files;
  Win32Regional regional;
  SystemLongWork longWork{[] {
    return Default<frmMain>::IsLoaded() ? static_cast<Form&>(Default<frmMain>::Touch()).Handle() : nullptr;
  }};
  Platform platform{files, fake.boxes, fake.process, regional, fake.registry, longWork};
};

double MillisecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

std::vector<std::string> MakeFiles(const ScratchFolder& scratch, int count) {
  constexpr std::size_t kBytes = 4096;
  std::vector<std::string> paths;
  for (int i = 1; i <= count; ++i)
    paths.push_back(scratch.Make("files\\letter " + std::to_string(i) + ".doc", std::string(kBytes, 'x')));
  return paths;
}

// False where something has stayed: what was timed is no wipe then.
bool AllGone(const std::vector<std::string>& paths) {
  return std::none_of(paths.begin(), paths.end(), PathExists);
}

double Median(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

// What is measured of it, with its windows shown, in a folder of its own.
int WithProgram(const std::function<bool(Program&, const ScratchFolder&)>& measure) {
  const INITCOMMONCONTROLSEX classes{sizeof classes,
                                     ICC_WIN95_CLASSES | ICC_COOL_CLASSES | ICC_STANDARD_CLASSES};
  if (!::InitCommonControlsEx(&classes) || FAILED(::OleInitialize(nullptr))) return 1;
  const ScratchFolder scratch;
  scratch.Make("sfrun.dat", "");
  Program program(scratch.Path());
  Default<frmMain>::Touch().Show();
  PumpMessages();
  const bool done = measure(program, scratch);
  program.state.Settings.PromptToSave = 0;
  Default<frmMain>::Touch().Unload();
  Form::DestroyClosed();
  return done ? 0 : 1;
}

double MillisecondsOfJob(Program& program, const std::vector<std::string>& paths) {
  frmMain& main = Default<frmMain>::Touch();
  main.Jobs().Clear();
  for (const std::string& path : paths) {
    JobRow row;
    row.NameAndLocation = path;
    main.Jobs().Add(row);
  }
  PumpMessages();
  program.fake.boxes.answers = {MessageAnswer::Ok, MessageAnswer::No};
  return MillisecondsOf([&] { main.Driver().RunJobWipe(); });
}

bool CompareWithDrops(Program& program, const ScratchFolder& scratch, int count, int runs) {
  frmQuick& bin = Default<frmQuick>::Touch();
  bin.Show();
  PumpMessages();
  std::vector<double> drops;
  std::vector<double> jobs;
  for (int run = 0; run < runs; ++run) {
    const std::vector<std::string> dropped = MakeFiles(scratch, count);
    drops.push_back(MillisecondsOf([&] { bin.imgDrop_OLEDragDrop(dropped); }));
    const std::vector<std::string> rows = MakeFiles(scratch, count);
    jobs.push_back(MillisecondsOfJob(program, rows));
    if (!AllGone(dropped) || !AllGone(rows)) return false;
  }
  std::printf("%d files of 4 KiB, %d runs, milliseconds\n", count, runs);
  std::printf("%-30s %8.0f\n%-30s %8.0f\n", "dropped on the Bin", Median(drops), "rows of a job",
              Median(jobs));
  bin.Unload();
  return true;
}

bool TimeRows(Program& program, const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) paths.push_back(entry.path().string());
  }
  const double milliseconds = MillisecondsOfJob(program, paths);
  std::printf("%.3f s, %zu rows\n", milliseconds / 1000, paths.size());
  return !paths.empty() && AllGone(paths);
}

}  // namespace
}  // namespace zq::test

int main(int count, char** arguments) {
  using namespace zq::test;
  if (count == 3 && std::string(arguments[1]) == "rows") {
    return WithProgram(
        [&](Program& program, const ScratchFolder&) { return TimeRows(program, arguments[2]); });
  }
  const int files = count > 1 ? std::atoi(arguments[1]) : 1000;
  const int runs = count > 2 ? std::atoi(arguments[2]) : 5;
  return WithProgram([&](Program& program, const ScratchFolder& scratch) {
    return CompareWithDrops(program, scratch, files, runs);
  });
}
