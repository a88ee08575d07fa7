#include "wipe/FreeSpaceProgress.h"

#include "platform/NumberFormat.h"

namespace zq {
namespace {

std::string Caption(std::int32_t percent, const std::string& drive) {
  return std::to_string(percent) + "% - Wipe Drive Free Space (" + drive + ")";
}

}  // namespace

FreeSpaceUpdate ComputeFreeSpaceProgress(std::int32_t percent, std::int32_t kbDone, std::int32_t kbTotal,
                                         const std::string& drive, Regional& regional) {
  FreeSpaceUpdate update;
  if (percent > 100) {
    // The figure follows without a blank.
    update.status =
        "Drive contents changed.  Now including any additional free space in the wipe operation.  Please "
        "wait..." +
        std::to_string(percent) + "%...";
    update.current = 100;
    update.caption = Caption(100, drive);
    return update;
  }
  if (kbDone != 0) {
    update.status =
        "Wiped " + FormatGrouped(kbDone, regional) + " KB of " + FormatGrouped(kbTotal, regional) + " KB...";
  }
  update.current = percent;
  update.caption = Caption(percent, drive);
  return update;
}

}  // namespace zq
