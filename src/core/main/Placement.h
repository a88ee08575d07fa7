// The main window's place: between the pixels of the screen and the twips of the saved record.
#pragma once

#include "core/state/Settings.h"

namespace zq {

// A window's place, in pixels of the desktop that all monitors share.
struct ScreenPlace {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  bool operator==(const ScreenPlace&) const = default;
};

// `systemDpi` is the one resolution that stands for all monitors, whichever the window is on: with that of
// its monitor, a place would come back as another one where the monitors differ. Raises Overflow outside
// 16 bits.
WindowPlacement PlacementOf(const ScreenPlace& place, int systemDpi);
ScreenPlace PlaceOf(const WindowPlacement& placement, int systemDpi);

// The place that the system tells of a minimised window counts from the corner of its monitor's work area,
// which a task bar at the left or at the top moves away from the monitor's own corner.
ScreenPlace FromWorkArea(ScreenPlace place, const ScreenPlace& monitor, const ScreenPlace& workArea);

}  // namespace zq
