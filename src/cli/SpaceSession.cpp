#include "cli/SpaceSession.h"

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "cli/FreeSpace.h"
#include "cli/Print.h"
#include "cli/Progress.h"
#include "cli/Record.h"
#include "cli/Shown.h"
#include "cli/System.h"

namespace zq::cli {
namespace {

class SpaceSession {
 public:
  explicit SpaceSession(const Options& options) : options_(options), drive_(options.paths.front()) {}

  ExitCode Run() {
    const Surroundings surroundings = FindSurroundings();
    if (const std::string why = WhyNoDriveHere(surroundings); !why.empty()) {
      return Refuse(Shown(drive_) + ": " + why);
    }
    if (options_.report && Exists(*options_.report)) {
      return Refuse(Shown(*options_.report) + ": the report is to be a new file, but it exists");
    }
    engine::SpaceInfo space;
    if (const std::string why = LookAt(space); !why.empty()) return Refuse(Shown(drive_) + ": " + why);
    if (!options_.yes) {
      if (!CanAsk()) return Refuse("there is nobody to confirm; give --yes to begin without being asked");
      if (!Confirmed(space)) return EndBefore("cancelled", SpaceResult::Outcome::Cancelled);
    }
    if (options_.report) {
      std::string trouble;
      report_.reset(CreateNewFile(*options_.report, trouble));
      if (!report_) return Refuse(Shown(*options_.report) + ": " + trouble);
    }
    Wipe();
    return Tell();
  }

 private:
  // Links on the way to a drive are followed, and one that leads to it.
  std::string WhyNoDriveHere(const Surroundings& surroundings) {
    if (surroundings.style == PathStyle::Windows) {
      // "D:" alone would be the current folder of that drive.
      if (IsRoot(drive_, surroundings.style) && drive_.back() == ':') drive_ += '\\';
      if (IsRoot(drive_, surroundings.style)) return {};
    }
    const Located located = Locate(drive_);
    if (located.type == EntryType::Missing) return located.trouble;
    const bool isLink = located.type == EntryType::Link;
    return WhyNoDrive(
        Locate(isLink || surroundings.style == PathStyle::Posix ? drive_ + "/." : drive_).canonical,
        surroundings);
  }

  std::string LookAt(engine::SpaceInfo& space) {
    std::unique_ptr<engine::Folder> root;
    engine::Status status = device_->OpenFolder(drive_, root);
    if (status.Ok()) status = root->Space(space);
    if (!status.Ok()) return status.text;
    AddDevice(record_, *device_, drive_);
    return {};
  }

  bool Confirmed(const engine::SpaceInfo& space) const {
    return AnswersYes("About to overwrite the free space of " + Shown(drive_) + " (" +
                      ShownBytes(space.freeBytes) +
                      "), so that nothing of what was deleted there can be recovered.\n"
                      "The files on it stay. It is full for a moment meanwhile.\n"
                      "Type yes to overwrite it: ");
  }

  ExitCode Refuse(const std::string& why) { return EndBefore(why, SpaceResult::Outcome::NotBegun); }

  ExitCode EndBefore(const std::string& why, SpaceResult::Outcome outcome) {
    result_.outcome = outcome;
    result_.refusal = why + "; nothing was overwritten";
    Complain(result_.refusal);
    if (options_.json) Write(stdout, JsonReport(Finished()));
    return CodeOf(result_);
  }

  void Wipe() {
    engine::SystemSeed seeds;
    engine::SteadyClock clock;
    ProgressLine progress(!options_.quiet && IsTerminal(stderr) ? stderr : nullptr, clock);
    SpaceRunner runner({*device_, seeds, clock, progress, WasInterrupted});
    record_.started = WorldTime();
    const Stopwatch watch(clock);
    result_ = runner.Run(drive_, options_.level);
    record_.seconds = watch.Seconds();
    record_.verified = result_.outcome == SpaceResult::Outcome::Overwritten;
  }

  ExitCode Tell() {
    const SpaceFinished finished = Finished();
    const ExitCode code = CodeOf(result_);
    if (!result_.failure.empty()) Complain(Shown(result_.failure));
    bool told = true;
    if (options_.json) {
      told = Write(stdout, JsonReport(finished));
    } else if (!options_.quiet || code == ExitCode::Cancelled) {
      std::string text = Summary(finished) + '\n';
      if (!result_.note.empty()) text += Shown(result_.note) + '\n';
      for (const std::string& warning : DeviceWarnings(record_)) text += warning + '\n';
      told = Write(stdout, text);
    }
    if (!told) Complain("the outcome could not be printed");
    if (report_) {
      const bool written = Write(report_.get(), TextReport(finished));
      if (std::fclose(report_.release()) != 0 || !written) {
        Complain(Shown(*options_.report) + ": the report could not be written");
        told = false;
      }
    }
    return told || code != ExitCode::AllGone ? code : ExitCode::SomeKept;
  }

  SpaceFinished Finished() const { return {options_, drive_, result_, record_, LocalTime()}; }

  const Options& options_;
  std::string drive_;
  std::unique_ptr<engine::Device> device_ =
      engine::MakeSystemDevice({.trustFileSystem = options_.trustFileSystem});
  Record record_;
  SpaceResult result_;
  OwnedFile report_;
};

}  // namespace

ExitCode RunSpaceSession(const Options& options) {
  return SpaceSession(options).Run();
}

}  // namespace zq::cli
