// ExplorerManager: the control of the companion program from the outside. Whether it starts with the system
// is a value in the registry, whether it runs is a window; it is started as a process and told to close by a
// message.
#pragma once

#include <string>

namespace zq {

struct AppState;
struct Platform;

class ExplorerManager {
 public:
  ExplorerManager(AppState& state, Platform& platform) : state_(state), platform_(platform) {}

  // Looks for its window: ManagerRunning tells.
  void Look();

  // Starts it, and tells when that fails.
  void LaunchManager();

  // Whether it starts with the system. What the registry refuses is not told: the next start reads what is
  // so.
  void WriteManagerRunValue();
  void DeleteManagerRunValue();

  // After it was registered: asks whether it is to run at once, unless it does.
  void OfferManagerLaunch();

  // After that was taken back: asks it to close, if it runs, and tells when it can't be asked.
  void ShutDownManager();

 private:
  std::string ManagerPath() const;

  AppState& state_;
  Platform& platform_;
};

}  // namespace zq
