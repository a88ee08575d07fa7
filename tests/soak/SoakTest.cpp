// One process of the program that wipes job after job and drop after drop, some of the jobs cancelled at any
// moment: what it has doesn't grow, and no report has a wrong byte.
//
// ZQ_SOAK_CYCLES (1), ZQ_SOAK_FILES (8, for each job), ZQ_SOAK_DROPS (2, for each cycle) and ZQ_SOAK_SEED (of
// the moments of cancels) tell how much. A cycle is a job of each kind, one of them cancelled and then wiped
// to its end, and the drops. One more cycle, before it is counted, warms up the program and the system's
// libraries.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "soak/Readings.h"
#include "soak/SoakStage.h"

namespace zq::test {
namespace {

int Setting(const char* name, int usual) {
  const char* const text = std::getenv(name);
  return text ? std::atoi(text) : usual;
}

struct Line {
  std::string when;
  Readings readings;
};

class Soak : public SoakStage {
 protected:
  Soak() : SoakStage(static_cast<unsigned>(Setting("ZQ_SOAK_SEED", 20261122))) {}

  // What the program has once it has handled what was sent and posted to it.
  Readings Now() const {
    for (int i = 0; i < 3; ++i) main_->window.Post(WM_NULL);
    main_->window.Send(WM_NULL);
    Readings readings = ReadSystem(program_->Handle());
    readings.merge(ReadCounters(program_->Id()));
    return readings;
  }

  // The same several times over: nothing is on its way any more.
  Readings AtRest() const {
    constexpr int kSame = 10;
    Readings last;
    int same = 0;
    Await("the program to be at rest", [&] {
      Readings now = Exact(Now());
      same = now == last ? same + 1 : 0;
      last = std::move(now);
      return same == kSame;
    });
    return Now();
  }

  // Those that have to come back to the same number each time: what we own ourselves.
  static Readings Exact(Readings readings) {
    std::erase_if(readings, [](const auto& reading) {
      return reading.first.starts_with("system: ")
                 ? reading.first != kSystemGdi && reading.first != kSystemWindows
                 : reading.first.find(" bytes") != std::string::npos ||
                       reading.first.starts_with("own: all heaps");
    });
    return readings;
  }

  // What has changed since the one before is told at once, for who waits.
  void Note(const std::string& when, Readings readings) {
    const Readings before = figures_.empty() ? Readings{} : figures_.back().readings;
    std::printf("-- %s: %d jobs, %d cancelled, %d drops, %llu files\n%s", when.c_str(), jobs_, cancels_,
                drops_, static_cast<unsigned long long>(files_), Differences(before, readings).c_str());
    figures_.push_back({when, std::move(readings)});
    WriteFigures();
  }

  // A table of all readings beside the pictures, which grows while the soak goes on.
  void WriteFigures() const {
    std::string table;
    for (const auto& [name, first] : figures_.front().readings) {
      table += name + ":";
      for (const Line& line : figures_) {
        const auto found = line.readings.find(name);
        table += " " + (found == line.readings.end() ? "-" : std::to_string(found->second));
      }
      table += "\n";
    }
    std::string summary = std::to_string(jobs_) + " jobs in " + std::to_string(runs_) + " runs, " +
                          std::to_string(cancels_) + " cancelled, " + std::to_string(drops_) + " drops, " +
                          std::to_string(files_) + " files, seed " + std::to_string(seed_) + "\n";
    const char* const pictures = std::getenv("ZQ_PICTURES");
    if (pictures) WriteFileBytes(std::string(pictures) + "\\figures.txt", summary + table);
  }

  void Cycle(int files, int drops) {
    const int cancelled = std::uniform_int_distribution<int>(0, SoakJob::kKinds - 1)(random_);
    for (int kind = 0; kind < SoakJob::kKinds; ++kind) {
      // One that came too late is made up for by the next jobs.
      const bool cancel = kind >= cancelled && cancels_ <= cycles_;
      WipeAJob(static_cast<SoakJob::Kind>(kind), files, cancel);
    }
    for (int more = 0; more < 10 && cancels_ <= cycles_; ++more) WipeAJob(SoakJob::Kind::Files, files, true);
    DropOnTheBin(drops);
    ++cycles_;
  }

  int cycles_ = 0;
  std::vector<Line> figures_;
};

TEST_F(Soak, OfOneProcessLeavesNothingBehind) {
#ifdef ZQ_COUNTERS
  ASSERT_TRUE(static_cast<bool>(FindCounters(program_->Id()))) << "it counts, and doesn't tell";
#else
  ASSERT_FALSE(static_cast<bool>(FindCounters(program_->Id()))) << "a release tells what it has";
#endif
  const int cycles = Setting("ZQ_SOAK_CYCLES", 1);
  const int files = Setting("ZQ_SOAK_FILES", 8);
  const int drops = Setting("ZQ_SOAK_DROPS", 2);
  std::printf("Seed %u\n", seed_);
  Note("at first", AtRest());
  Cycle(files, drops);
  const Readings before = AtRest();
  Note("warm", before);
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    Cycle(files, drops);
    // A reading that is higher than that of the first is waited for to come down.
    Readings now;
    WaitFor([&] { return Exact(now = Now()) == Exact(before); });
    Note(std::to_string(cycle), now);
    EXPECT_EQ(Differences(Exact(before), Exact(now)), "") << "after cycle " << cycle;
    if (HasFailure()) break;
  }
  EXPECT_GT(cancels_, cycles) << "one in each cycle, the first one included";
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  main_->window.Close();
  EXPECT_EQ(program_->WaitExit(), 0u);
}

}  // namespace
}  // namespace zq::test
