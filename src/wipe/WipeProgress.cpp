#include "wipe/WipeProgress.h"

#include <algorithm>

#include "platform/LongWork.h"
#include "platform/NumberFormat.h"

namespace zq {
namespace {

std::int16_t Percent(double done, double total) {
  return RoundToInt16(done / total * 100);
}

}  // namespace

std::string ProgressStatus(std::int32_t bytesDone, std::int32_t bytesTotal, const std::string& itemName,
                           Regional& regional) {
  return "Processed " + FormatGrouped(bytesDone, regional) + " bytes of " +
         FormatGrouped(bytesTotal, regional) + " of " + itemName + "...";
}

ProgressUpdate ComputeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, const std::string& itemName,
                               const FixedPoint& processedWipeItems, const FixedPoint& totalWipeItems,
                               Regional& regional) {
  ProgressUpdate update;
  update.status = ProgressStatus(bytesDone, bytesTotal, itemName, regional);

  std::int16_t percent = 0;
  if (bytesTotal != 0) {
    percent = bytesTotal > bytesDone ? Percent(bytesDone, bytesTotal) : std::int16_t{100};
    update.setsCurrent = true;
    update.current = percent;
  }

  // A job of one file shows the file's progress in both bars. The count and the engine's events are two
  // independent sums: the engine may finish more files than were counted, or fewer.
  if (totalWipeItems != FixedPoint(1) && totalWipeItems != FixedPoint(0)) {
    percent = Percent(processedWipeItems.ToDouble(), totalWipeItems.ToDouble());
  }
  update.overall = percent;
  update.caption = std::to_string(percent) + "% - Wipe Operation";
  return update;
}

void ShowProgress(const ProgressUpdate& update, WipeStatusWindow& statusWindow, LongWork& longWork) {
  statusWindow.SetStatus(update.status);
  if (update.setsCurrent) statusWindow.SetCurrent(update.current);
  statusWindow.SetOverall(update.overall);
  statusWindow.SetCaption(update.caption);
  longWork.ShowPercent(std::clamp<int>(update.overall, 0, 100));
}

}  // namespace zq
