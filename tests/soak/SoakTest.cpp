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

// Threads without work end after some seconds.
constexpr Limit kLongestRest{120000};

// Above what the system's libraries take meanwhile, which is told in docs/performance.md.
constexpr long long kCommittedRoomKb = 4096;

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

  // Those that have to come back to the same number each time: what we own ourselves.
  static Readings Exact(Readings readings) {
    std::erase_if(readings, [](const auto& reading) {
      return !reading.first.starts_with("own: ") || reading.first.starts_with("own: all heaps") ||
             reading.first.find(" bytes") != std::string::npos;
    });
    return readings;
  }

  // With nothing on its way: the same several times over.
  Readings Settled() const {
    constexpr int kSame = 10;
    Readings last;
    int same = 0;
    Await("the program to settle", [&] {
      Readings now = Exact(Now());
      same = now == last ? same + 1 : 0;
      last = std::move(now);
      return same == kSame;
    });
    return Now();
  }

  // When the system has ended the threads that it keeps for a while for more work, each with its stack. They
  // are the most of what a busy program has of memory.
  Readings AtRest() const {
    Settled();
    WaitFor([this] { return Now()[kSystemThreads] <= threadsAtFirst_; }, kLongestRest);
    return Now();
  }

  void ExpectNoMore(const Readings& before, const Readings& now, const char* name, long long room) const {
    EXPECT_LE(now.at(name), before.at(name) + room) << name;
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
  long long threadsAtFirst_ = 0;
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
  const Readings atFirst = Settled();
  threadsAtFirst_ = atFirst.at(kSystemThreads);
  Note("at first", atFirst);
  Cycle(files, drops);
  const Readings before = AtRest();
  Note("warm", before);
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    Cycle(files, drops);
    // What is still on its way is waited for.
    Readings now;
    WaitFor([&] { return Exact(now = Now()) == Exact(before); });
    Note("cycle " + std::to_string(cycle), now);
    EXPECT_EQ(Differences(Exact(before), Exact(now)), "") << "after cycle " << cycle;
    if (HasFailure()) break;
  }
  const Readings after = AtRest();
  Note("at rest", after);
  // The system keeps some for later, of what it draws and sends with. Whatever a job or a drop lost each time
  // would be more: a cycle has four jobs or more.
  ExpectNoMore(before, after, kSystemHandles, 12);
  ExpectNoMore(before, after, kSystemGdi, 12);
  ExpectNoMore(before, after, kSystemWindows, 0);
  ExpectNoMore(before, after, kCommittedKb, kCommittedRoomKb);
#ifdef ZQ_COUNTERS
  // Texts keep the room of the longest one that they have had.
  ExpectNoMore(before, after, "own: heap bytes", 2048);
#endif
  EXPECT_GT(cancels_, cycles) << "one in each cycle, the first one included";
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  main_->window.Close();
  EXPECT_EQ(program_->WaitExit(), 0u);
}

}  // namespace
}  // namespace zq::test
