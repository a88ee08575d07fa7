// Wipe progress: the texts and percentages that follow a job wipe.
#pragma once

#include <cstdint>
#include <string>

#include "platform/FixedPoint.h"

namespace zq {

class LongWork;
class Regional;

// What the user reads who ends the session meanwhile.
inline constexpr const char* kFilesReasonToStay =
    "Files are being wiped.  What is in work would be left half done.  Cancel the wipe operation first, or "
    "let it come to its end.";

// The progress window as the driver and the handlers see it. A closed window isn't an error: touching
// it brings up a fresh, hidden one.
class WipeStatusWindow {
 public:
  virtual ~WipeStatusWindow() = default;
  virtual void Show() = 0;    // without a modal state, repainted
  virtual void Unload() = 0;  // by the program: raises no question
  virtual void SetCancelEnabled(bool enabled) = 0;
  virtual void SetStatus(const std::string& text) = 0;
  virtual void Repaint() = 0;
  virtual void SetCurrent(int percent) = 0;
  virtual void SetOverall(int percent) = 0;  // takes values beyond 100 as they come
  virtual void SetCaption(const std::string& text) = 0;
};

// A running wipe as its progress window sees it.
class CancellableWipe {
 public:
  virtual ~CancellableWipe() = default;
  virtual void CancelOperation() = 0;
};

// What a handler of the engine's WipeProgress event shows.
struct ProgressUpdate {
  std::string status;
  bool setsCurrent = false;  // the bar of the current item is left alone for an empty file
  std::int16_t current = 0;
  std::int16_t overall = 0;
  std::string caption;

  bool operator==(const ProgressUpdate&) const = default;
};

// The line of the item in work.
std::string ProgressStatus(std::int32_t bytesDone, std::int32_t bytesTotal, const std::string& itemName,
                           Regional& regional);

// Overall percentages count files, not bytes, and aren't clamped. Raises Overflow for a percentage
// outside 16 bits.
ProgressUpdate ComputeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, const std::string& itemName,
                               const FixedPoint& processedWipeItems, const FixedPoint& totalWipeItems,
                               Regional& regional);

// Shows it in the progress window and on the task bar, which takes no more than 100.
void ShowProgress(const ProgressUpdate& update, WipeStatusWindow& statusWindow, LongWork& longWork);

}  // namespace zq
