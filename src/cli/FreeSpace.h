// The free space of a drive: whether it may be wiped, the engine's call for it, and what is told of it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/Options.h"
#include "cli/Record.h"
#include "cli/Runner.h"
#include "cli/Safety.h"

namespace zq::cli {

// Why the folder with this canonical path doesn't stand for a drive: free space is that of a whole file
// system, and who names a folder may mean the folder alone. Empty if it does.
std::string WhyNoDrive(const std::string& canonical, const Surroundings& surroundings);

struct SpaceResult {
  enum class Outcome { NotBegun, Overwritten, Failed, Cancelled };

  Outcome outcome = Outcome::NotBegun;
  std::uint64_t bytes = 0;  // of free space, as far as is known; all of them written if it is Overwritten
  std::string failure;
  std::string note;     // what the engine has to say beside
  std::string refusal;  // why it wasn't begun
};

class SpaceRunner final : private engine::EngineEvents {
 public:
  explicit SpaceRunner(Runner::Parts parts);

  SpaceResult Run(const std::string& drive, std::int32_t level);

 private:
  void LookForInterrupt();

  void WipeProgress(std::int32_t, std::int32_t, std::int32_t, const engine::Item&) override {
    LookForInterrupt();
  }
  void ItemEnded(const engine::Item&, const engine::ItemEnd&) override { LookForInterrupt(); }
  void WipeError(std::int32_t errorCode, const std::string& errorText) override;
  void FreeSpaceProgress(const std::string& drive, std::int32_t percent, std::int32_t kbDone,
                         std::int32_t kbTotal) override;

  Runner::Parts parts_;
  engine::SecureDelete engine_;
  SpaceResult result_;
  double share_ = 0;
  bool stopped_ = false;
};

struct SpaceFinished {
  const Options& options;
  const std::string& drive;
  const SpaceResult& result;
  const Record& record;
  std::string when;
};

ExitCode CodeOf(const SpaceResult& result);

// One object, ending in a line break: program, version, operation "free-space", drive, level, cancelled,
// exitCode, outcome "overwritten" | "failed" | "cancelled" | "refused", bytes, what WriteRecord says,
// failures, notes, refused.
std::string JsonReport(const SpaceFinished& finished);
std::string TextReport(const SpaceFinished& finished);
// "Overwritten: the free space of /mnt (210.0 MiB)."
std::string Summary(const SpaceFinished& finished);

}  // namespace zq::cli
