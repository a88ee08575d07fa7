#include "preferences/MFindPartLoop.h"

#include <set>

#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "platform/Regional.h"

namespace zq {
namespace {

bool Matches(const std::string& title, const std::string& part, std::int16_t mode) {
  switch (mode) {
    case kTitleBeginsWith:
      return title.starts_with(part);
    case kTitleContains:
      return title.find(part) != std::string::npos;
    default:
      return false;
  }
}

}  // namespace

WindowHandle FindWindowByTitlePart(const std::string& part, std::int16_t mode, AppState& state,
                                   Platform& platform) {
  state.ManagerRunning = false;
  WindowList& windows = platform.windows;
  // Other programs move their windows while we walk: one that comes a second time ends the walk, which might
  // go round for ever.
  std::set<WindowHandle> seen;
  for (WindowHandle window = windows.First(); window != 0 && seen.insert(window).second;
       window = windows.Next(window)) {
    if (windows.ParentOf(window) != 0) continue;
    const std::string title = windows.TitleOf(window);
    if (title.empty()) continue;
    if (Matches(platform.regional.UpperCase(title), platform.regional.UpperCase(part), mode)) {
      state.ManagerRunning = true;
      return window;
    }
  }
  return 0;
}

}  // namespace zq
