// SFD1: the engine control of a window, the engine behind the program's interface to it.
#pragma once

#include <exception>
#include <functional>
#include <memory>

#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/SecureDelete.h"
#include "engine/SeedSource.h"
#include "wipe/SecureFileDeleteWizard.h"

namespace zq {

// Each instance has its own engine; they share no state.
class SFD1 final : public SecureFileDeleteWizard, public WholeWipes, private engine::EngineEvents {
 public:
  // `device`: what it destroys on; tests give one in memory.
  explicit SFD1(WipeEvents& events, std::unique_ptr<engine::Device> device = engine::MakeSystemDevice());

  // A failure that a handler raises stops the engine and is raised again from the member.
  bool WipeFile(const std::string& path, std::int32_t level) override;
  bool WipeFolder(const std::string& path, std::int32_t level) override;
  bool WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                       std::int32_t level) override;
  bool WipeFreeSpace(const std::string& drive, std::int32_t level) override;
  std::string GetLastErrorText() override { return engine_.LastErrorText(); }
  void CancelOperation() override { engine_.CancelOperation(); }

  void BeginWhole() override { engine_.BeginWhole(); }
  bool EndWhole() noexcept override;

 private:
  void WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                    const engine::Item& item) override;
  void ItemEnded(const engine::Item& item, const engine::ItemEnd& end) override;
  void WipeError(std::int32_t errorCode, const std::string& errorText) override;
  void FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                         std::int32_t kbTotal) override;

  void Raise(const std::function<void()>& handler);
  bool Finish(bool result);

  WipeEvents& events_;
  std::unique_ptr<engine::Device> device_;
  engine::SystemSeed seeds_;
  engine::SteadyClock clock_;
  engine::SecureDelete engine_;
  std::exception_ptr raised_;
};

}  // namespace zq
