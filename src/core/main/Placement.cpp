#include "core/main/Placement.h"

#include "platform/Twips.h"

namespace zq {

WindowPlacement PlacementOf(const ScreenPlace& place, int systemDpi) {
  return PlacementFrom(PixelsToTwips(place.width, systemDpi), PixelsToTwips(place.height, systemDpi),
                       PixelsToTwips(place.left, systemDpi), PixelsToTwips(place.top, systemDpi));
}

ScreenPlace PlaceOf(const WindowPlacement& placement, int systemDpi) {
  return {.left = TwipsToPixels(placement.Left, systemDpi),
          .top = TwipsToPixels(placement.Top, systemDpi),
          .width = TwipsToPixels(placement.Width, systemDpi),
          .height = TwipsToPixels(placement.Height, systemDpi)};
}

ScreenPlace FromWorkArea(ScreenPlace place, const ScreenPlace& monitor, const ScreenPlace& workArea) {
  place.left += workArea.left - monitor.left;
  place.top += workArea.top - monitor.top;
  return place;
}

}  // namespace zq
