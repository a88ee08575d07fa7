#include "preferences/ExplorerManager.h"

#include "core/state/AppState.h"
#include "core/state/ManagerNames.h"
#include "platform/MessageBoxes.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/Registry.h"
#include "preferences/MFindPartLoop.h"

namespace zq {
namespace {

constexpr const char* kLaunchFailed =
    "An error was encountered trying to lauch the Zeroquill Explorer Manager.";
constexpr const char* kOffer = "Do you wish to launch the Zeroquill Explorer Manager now?";
constexpr const char* kOfferedLaunchFailed =
    "An error was encountered trying to load the Zeroquill Explorer Manager.  The Manager should be loaded "
    "the "
    "next time you restart your system.";
constexpr const char* kShutDownFailed =
    "Zeroquill was unable to shut down the Explorer Manager automatically for this session of Windows.  To "
    "shut down the Manager from your System Tray, you can right click the Manager icon and choose the Exit "
    "option.";

Message LoadError(const char* text) {
  return {.text = text, .title = "Error Loading", .icon = MessageIcon::Exclamation};
}

}  // namespace

std::string ExplorerManager::ManagerPath() const {
  return state_.AppFolder + kManagerProgram;
}

void ExplorerManager::Look() {
  FindWindowByTitlePart(kManagerTitle, kTitleBeginsWith, state_, platform_);
}

void ExplorerManager::LaunchManager() {
  if (!platform_.process.StartProgram(ManagerPath())) platform_.messageBoxes.Show(LoadError(kLaunchFailed));
}

// The path stands without quotes around it.
void ExplorerManager::WriteManagerRunValue() {
  platform_.registry.WriteString(RegistryHive::LocalMachine, kRunKey, kManagerRunValue, ManagerPath());
}

void ExplorerManager::DeleteManagerRunValue() {
  platform_.registry.DeleteValue(RegistryHive::LocalMachine, kRunKey, kManagerRunValue);
}

void ExplorerManager::OfferManagerLaunch() {
  Look();
  if (state_.ManagerRunning) return;
  const MessageAnswer answer = platform_.messageBoxes.Show({.text = kOffer,
                                                            .title = "Explorer Manager",
                                                            .icon = MessageIcon::Question,
                                                            .buttons = MessageButtons::YesNo});
  if (answer != MessageAnswer::Yes) return;
  if (!platform_.process.StartProgram(ManagerPath()))
    platform_.messageBoxes.Show(LoadError(kOfferedLaunchFailed));
}

void ExplorerManager::ShutDownManager() {
  Look();
  if (!state_.ManagerRunning) return;
  // The look is content with the beginning of a title, which may be another program's: only the companion
  // itself is closed.
  const WindowHandle window = platform_.windows.FindByTitle(kManagerTitle);
  if (window == 0) return;
  if (!platform_.windows.PostClose(window))
    platform_.messageBoxes.Show(
        {.text = kShutDownFailed, .title = "Error", .icon = MessageIcon::Exclamation});
}

}  // namespace zq
