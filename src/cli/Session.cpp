#include "cli/Session.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

#include "cli/Plan.h"
#include "cli/Print.h"
#include "cli/Progress.h"
#include "cli/Reports.h"
#include "cli/Runner.h"
#include "cli/Shown.h"
#include "cli/SpaceSession.h"
#include "cli/System.h"
#include "engine/SecureDelete.h"

namespace zq::cli {
namespace {

class Session {
 public:
  explicit Session(Options options) : options_(std::move(options)) {}

  ExitCode Run() {
    const Surroundings surroundings = FindSurroundings();
    plan_ = MakePlan(options_, surroundings, *device_, WasInterrupted);
    if (WasInterrupted()) return GiveUp("cancelled; nothing was destroyed", ExitCode::Cancelled);
    for (const std::string& refusal : plan_.refusals) Complain(refusal);
    if (!plan_.refusals.empty()) return GiveUp("nothing was destroyed", ExitCode::Usage);
    if (const std::string why = WhyNoReport(surroundings); !why.empty()) {
      return GiveUp(Shown(*options_.report) + ": " + why + "; nothing was destroyed", ExitCode::Usage);
    }

    const bool anythingToDo = Count(plan_, Outcome::Pending).Items() > 0;
    if (!options_.dryRun && anythingToDo && !options_.yes) {
      if (!CanAsk()) {
        return GiveUp(
            "there is nobody to confirm; give --yes to destroy without being asked; "
            "nothing was destroyed",
            ExitCode::Usage);
      }
      if (!Confirmed()) return GiveUp("cancelled; nothing was destroyed", ExitCode::Cancelled);
    }
    // Before the first byte is overwritten: a wipe whose report can't be written doesn't begin.
    if (options_.report) {
      std::string trouble;
      report_.reset(CreateNewFile(*options_.report, trouble));
      if (!report_) {
        return GiveUp(Shown(*options_.report) + ": " + trouble + "; nothing was destroyed", ExitCode::Usage);
      }
    }
    for (const Target& target : plan_.targets) AddDevice(record_, *device_, target.path);
    if (!options_.dryRun) result_ = Wipe();
    return Tell();
  }

 private:
  // Nothing has been destroyed.
  ExitCode GiveUp(const std::string& why, ExitCode code) {
    Complain(why);
    plan_.refusals.push_back(why);
    if (options_.json) WriteJson({options_, plan_, result_, code, LocalTime(), record_});
    return code;
  }

  static bool WriteJson(const Finished& finished) {
    bool written = true;
    JsonReport(finished, [&](std::string_view part) {
      written = written && std::fwrite(part.data(), 1, part.size(), stdout) == part.size();
    });
    return Write(stdout, {}) && written;
  }

  std::string WhyNoReport(const Surroundings& surroundings) const {
    if (!options_.report) return {};
    if (Exists(*options_.report)) return "the report is to be a new file, but it exists";
    const std::string canonical = Locate(*options_.report).canonical;
    if (canonical.empty()) return "its folder doesn't exist";
    for (const Target& target : plan_.targets) {
      if (target.kind != Target::Kind::Files &&
          IsWithin(canonical, Locate(target.path).canonical, surroundings.style)) {
        return "the report would lie in a folder that is being wiped";
      }
    }
    return {};
  }

  bool Confirmed() const {
    constexpr std::size_t kMostShown = 10;
    std::string text = "About to destroy " + ShownTotals(Count(plan_, Outcome::Pending)) +
                       ", so that nothing of it can be recovered:\n";
    std::vector<std::string> lines;
    for (const Target& target : plan_.targets) {
      if (target.kind == Target::Kind::Tree)
        lines.push_back(Shown(target.path) + " (the folder and all it holds)");
      if (target.kind == Target::Kind::Matching) {
        lines.push_back(Shown(target.path) + " (its files like " + Shown(*options_.mask) + ')');
      }
      for (std::size_t i = 0; i < target.files.size(); ++i) {
        lines.push_back(Shown(plan_.items[target.firstItem + i].path));
      }
    }
    for (std::size_t i = 0; i < std::min(kMostShown, lines.size()); ++i) text += "  " + lines[i] + '\n';
    if (lines.size() > kMostShown) text += "  and " + std::to_string(lines.size() - kMostShown) + " more\n";
    return AnswersYes(text + "Type yes to destroy them: ");
  }

  RunResult Wipe() {
    engine::SystemSeed seeds;
    engine::SteadyClock clock;
    ProgressLine progress(!options_.quiet && IsTerminal(stderr) ? stderr : nullptr, clock);
    Runner runner({*device_, seeds, clock, progress, WasInterrupted}, options_);
    record_.started = WorldTime();
    const Stopwatch watch(clock);
    RunResult result = runner.Run(plan_);
    record_.seconds = watch.Seconds();
    record_.verified = Count(plan_, Outcome::Wiped).Items() > 0;
    return result;
  }

  ExitCode Tell() {
    ExitCode code = CodeOf(options_, plan_, result_);
    const Finished finished{options_, plan_, result_, code, LocalTime(), record_};
    if (options_.dryRun && !options_.json) {
      for (const Item& item : plan_.items) {
        if (item.outcome == Outcome::Pending) Write(stdout, Shown(item.path) + '\n');
      }
    }
    for (const std::string& complaint : Complaints(finished)) Complain(complaint);

    bool told = true;
    if (options_.json) {
      told = WriteJson(finished);
    } else if (!options_.quiet || code == ExitCode::Cancelled) {
      // Beside the list of a dry run it would be one of its paths.
      std::string text = Summary(finished) + '\n';
      for (const std::string& note : result_.notes) text += Shown(note) + '\n';
      if (!options_.dryRun) {
        for (const std::string& warning : DeviceWarnings(record_)) text += warning + '\n';
      }
      told = Write(options_.dryRun ? stderr : stdout, text);
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

  const Options options_;
  std::unique_ptr<engine::Device> device_ =
      engine::MakeSystemDevice({.trustFileSystem = options_.trustFileSystem});
  Plan plan_;
  RunResult result_;
  Record record_;
  OwnedFile report_;
};

}  // namespace

ExitCode RunSession(std::vector<std::string> arguments) {
  PrepareStreams();
  Parsed parsed = ParseCommandLine(std::move(arguments));
  if (!parsed.options) {
    if (parsed.code == ExitCode::AllGone) {
      Write(stdout, parsed.text);
    } else {
      Complain(Shown(parsed.text) + "; see zqwipe --help");
    }
    return parsed.code;
  }
  CatchInterrupts();
  if (parsed.options->freeSpace) return RunSpaceSession(*parsed.options);
  return Session(std::move(*parsed.options)).Run();
}

}  // namespace zq::cli
