// FreeSpaceWipe: wipes the free space of the chosen drive, from the question to the closing box.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Platform.h"
#include "wipe/SecureFileDeleteWizard.h"

namespace zq {

struct AppState;
struct Message;
class FreeSpaceStatusWindow;
class MainWindow;

// The driver and the handlers of the engine's events that serve it.
class FreeSpaceWipe {
 public:
  // `SFD1` is set by SetEngine before a run, since the engine in turn takes these handlers for its events.
  FreeSpaceWipe(AppState& state, Platform& platform, MainWindow& mainWindow,
                FreeSpaceStatusWindow& statusWindow)
      : state_(state), platform_(platform), mainWindow_(mainWindow), statusWindow_(statusWindow) {}

  void SetEngine(SecureFileDeleteWizard* engine) { SFD1 = engine; }

  // Wipes the free space of FreeSpaceDrive with the level FreeSpacePasses, if the user agrees.
  void RunFreeSpaceWipe();

  // The user's answer to a confirmed cancel: the engine stops.
  void CancelOperation();

  void SFD1_WipeError(std::int32_t errorCode, const std::string& errorText);
  void SFD1_FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                              std::int32_t kbTotal);

 private:
  void DoWork();
  void RunEngine();
  Message Outcome() const;

  AppState& state_;
  Platform& platform_;
  MainWindow& mainWindow_;
  FreeSpaceStatusWindow& statusWindow_;
  SecureFileDeleteWizard* SFD1 = nullptr;
  std::string WipeStartedAt;  // date and time as text
  std::string WipeEndedAt;
  std::int32_t FreeSpaceWipedKB = 0;  // the last total that the engine told, in this run or in one before
};

}  // namespace zq
