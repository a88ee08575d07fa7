// How long adding many files and loading and saving many rows takes, on a file system that answers at once:
// what is left is our own work. The time per row has to stay flat from 1,000 rows to 30,000.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "jobs/AddFiles.h"
#include "jobs/FileIcons.h"
#include "jobs/FileMask.h"
#include "jobs/JobFile.h"
#include "jobs/JobList.h"
#include "platform/Platform.h"
#include "support/Rows.h"
#include "support/fakes/FakeIconPainter.h"
#include "support/fakes/FakeMessageBoxes.h"
#include "support/fakes/FakeProcess.h"
#include "support/fakes/FakeRegional.h"
#include "support/fakes/FakeRegistry.h"
#include "support/fakes/FakeToolStates.h"
#include "support/fakes/OneSizeFiles.h"

namespace zq {
namespace {

// A program with an empty job.
struct Program {
  test::OneSizeFiles files;
  test::FakeRegional regional;
  test::FakeIconPainter painter;
  AppState state;
  JobList jobList{regional};
  FileIcons icons{painter, regional};
  AddFiles adding{state, jobList, files, icons, regional, nullptr};
  test::EventLog log;
  test::FakeMessageBoxes boxes{log};
  test::FakeProcess process{log};
  test::FakeRegistry registry;
  test::FakeToolStates tools{log};
  Platform platform{files, boxes, process, regional, registry};
  JobFile jobFile{state, jobList, platform, icons, tools};
};

constexpr const char* kFolder = "C:\\Users\\someone\\Documents\\Accounts 2026\\";
constexpr const char* kExtensions[] = {".doc", ".txt", ".jpg", ".xls", ".jpeg", ""};

std::vector<std::string> Names(std::size_t count) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < count; ++i) {
    names.push_back("Letter to the bank " + std::to_string(i) + kExtensions[i % std::size(kExtensions)]);
  }
  return names;
}

std::vector<std::string> Paths(std::size_t count) {
  std::vector<std::string> paths = Names(count);
  for (std::string& path : paths) path.insert(0, kFolder);
  return paths;
}

std::string DialogResult(std::size_t count) {
  std::string result = kFolder;
  for (const std::string& name : Names(count)) result += '\0' + name;
  return result;
}

// Measures `add`, which takes a program that `prepare` has readied.
template <typename Prepare, typename Add>
void Measure(benchmark::State& run, Prepare prepare, Add add) {
  const auto rows = static_cast<std::size_t>(run.range(0));
  for (auto _ : run) {
    run.PauseTiming();
    {
      Program program;
      prepare(program);
      run.ResumeTiming();
      add(program);
      run.PauseTiming();
      if (program.jobList.Count() != rows) run.SkipWithError("not every file is in the list");
    }
    run.ResumeTiming();
  }
  run.SetComplexityN(run.range(0));
  using benchmark::Counter;
  run.counters["time/row"] =
      Counter(static_cast<double>(rows), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

constexpr auto kNothing = [](Program&) {};

void AddDropped(benchmark::State& run) {
  const std::vector<std::string> paths = Paths(static_cast<std::size_t>(run.range(0)));
  Measure(run, kNothing, [&](Program& program) { program.adding.AddDropped(paths); });
}

void AddDroppedThatAreListed(benchmark::State& run) {
  const std::vector<std::string> paths = Paths(static_cast<std::size_t>(run.range(0)));
  const auto add = [&](Program& program) { program.adding.AddDropped(paths); };
  Measure(run, add, add);
}

void AddDialogResult(benchmark::State& run) {
  const std::string result = DialogResult(static_cast<std::size_t>(run.range(0)));
  Measure(run, kNothing, [&](Program& program) { program.adding.AddDialogResult(result); });
}

// A job's rows, three in four of them files.
void AddJob(Program& program, std::size_t rows) {
  program.state.CurrentJobName = "Job";
  std::size_t i = 0;
  for (const std::string& path : Paths(rows)) {
    program.jobList.Add(i++ % 4 == 0 ? MakeFolderRow(path, "*.*", true) : test::FileRow(path));
  }
}

void LoadJob(benchmark::State& run) {
  const auto prepare = [&](Program& program) {
    AddJob(program, static_cast<std::size_t>(run.range(0)));
    program.jobFile.SaveJob();
    program.jobList.Clear();
  };
  Measure(run, prepare, [](Program& program) { program.jobFile.LoadJob(); });
}

void SaveJob(benchmark::State& run) {
  const auto prepare = [&](Program& program) { AddJob(program, static_cast<std::size_t>(run.range(0))); };
  Measure(run, prepare, [](Program& program) { program.jobFile.SaveJob(); });
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond)->Complexity();
}

BENCHMARK(AddDropped)->Apply(Sizes);
BENCHMARK(AddDroppedThatAreListed)->Apply(Sizes);
BENCHMARK(AddDialogResult)->Apply(Sizes);
BENCHMARK(LoadJob)->Apply(Sizes);
BENCHMARK(SaveJob)->Apply(Sizes);

}  // namespace
}  // namespace zq
