// Hands the plan to the engine and writes down what became of each item.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/Plan.h"
#include "cli/Progress.h"
#include "engine/SecureDelete.h"

namespace zq::cli {

struct RunResult {
  bool cancelled = false;              // and something was left over for that reason
  std::vector<std::string> failures;   // such as belong to no item of the plan
  std::vector<std::string> alsoWiped;  // paths of files that came into a folder after the plan was made
  std::vector<std::string> notes;      // what the engine has to say beside its results, each once
};

// The number of an item by its path, at a few bytes for each.
class ItemNumbers {
 public:
  // The items must outlive this, with their paths as they are.
  explicit ItemNumbers(const std::vector<Item>& items);

  std::optional<std::size_t> Find(const std::string& path) const;

 private:
  std::size_t PlaceOf(const std::string& path) const;

  const std::vector<Item>& items_;
  std::vector<std::uint32_t> places_;  // number + 1; 0: nothing there
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
  bool Wipe(const Target& target);
  std::vector<engine::SecureDelete::NamedFile> NamedFiles(const Target& target) const;
  void Settle(const Target& target, bool done);
  void ClearTraces();
  void TakeNote();
  void LookForInterrupt();

  void WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                    const engine::Item& item) override;
  void ItemEnded(const engine::Item& item, const engine::ItemEnd& end) override;
  void WipeError(std::int32_t errorCode, const std::string& errorText) override;
  void FreeSpaceProgress(const std::string&, std::int32_t, std::int32_t, std::int32_t) override {}

  Parts parts_;
  const Options& options_;
  engine::SecureDelete engine_;

  Plan* plan_ = nullptr;
  RunResult result_;
  std::optional<WorkShare> work_;
  std::optional<ItemNumbers> numbers_;
  std::vector<bool> begun_;  // by number
  // Of the running call:
  bool stopped_ = false;  // it has been told to stop
  bool anyFailure_ = false;
};

}  // namespace zq::cli
