// Hands the plan to the engine and writes down what became of each item.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/Ledger.h"
#include "cli/Plan.h"
#include "cli/Progress.h"
#include "engine/SecureDelete.h"

namespace zq::cli {

struct RunResult {
  bool cancelled = false;              // and something was left over for that reason
  std::vector<std::string> failures;   // such as belong to no single item
  std::vector<std::string> alsoWiped;  // names of files that came into a folder after the plan was made
  std::vector<std::string> notes;      // what the engine has to say beside its results, each once
};

class Runner final : private engine::EngineEvents {
 public:
  struct Parts {
    engine::Device& device;
    engine::SeedSource& seeds;
    engine::Clock& clock;
    ProgressLine& progress;
    std::function<bool()> interrupted;  // looked at in every event of the engine
  };

  Runner(Parts parts, const Options& options);

  // Afterwards no item is Pending.
  RunResult Run(Plan& plan);

 private:
  void RunTarget(const Target& target);
  void RunFiles(std::size_t first, std::size_t end);  // of plan_->targets
  void RunFile(const Target& target);
  void Settle(const Ledger& ledger, bool done, Ledger::Ending ifNot);
  void LookForInterrupt();

  void WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                    const engine::Item& item) override;
  void ItemEnded(const engine::Item& item, const engine::ItemEnd& end) override;
  void WipeError(std::int32_t errorCode, const std::string& errorText) override;
  void FreeSpaceProgress(const std::string&, std::int32_t, std::int32_t, std::int32_t) override {}

  Parts parts_;
  const Options& options_;
  engine::SecureDelete engine_;
  std::set<std::string> wantedNames_;  // what a call for files of one folder takes
  bool takesWantedNames_ = false;

  Plan* plan_ = nullptr;
  RunResult result_;
  std::optional<WorkShare> work_;
  Ledger* ledger_ = nullptr;  // of the running call
  bool stopped_ = false;      // the running call has been told to stop
};

}  // namespace zq::cli
