#include "wipe/FreeSpaceWipe.h"

#include <algorithm>

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "core/state/MainWindow.h"
#include "platform/MessageBoxes.h"
#include "platform/NumberFormat.h"
#include "platform/Process.h"
#include "platform/Regional.h"
#include "platform/RunTimeError.h"
#include "wipe/FillerRecord.h"
#include "wipe/FreeSpaceProgress.h"

namespace zq {
namespace {

constexpr const char* kLineBreak = "\r\n";
constexpr const char* kReasonToStay =
    "Free space is being wiped.  Cancel the wipe operation first, or let it come to its end.";

Message Confirmation(const std::string& drive) {
  return {.text = "This operation will securely wipe the free space on drive " + drive +
                  ".  The operation can take some time for larger drives." + kTwoLineBreaks +
                  "Are you sure you wish to continue?",
          .title = "Wipe Operation",
          .icon = MessageIcon::Question,
          .buttons = MessageButtons::OkCancel};
}

}  // namespace

// There is no handler for what is raised on the way: the process ends with its report.
void FreeSpaceWipe::RunFreeSpaceWipe() {
  if (!SFD1) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);
  if (platform_.messageBoxes.Show(Confirmation(state_.FreeSpaceDrive)) != MessageAnswer::Ok) return;

  state_.FreeSpaceActive = true;  // until the next job wipe
  state_.FreeSpaceError = "";
  state_.CancelRequested = false;
  WipeStartedAt = platform_.regional.Now();
  DoWork();
  platform_.longWork.CallUser();
  WipeEndedAt = platform_.regional.Now();
  platform_.messageBoxes.Show(Outcome());
}

// From the main window to the progress window, and back.
void FreeSpaceWipe::DoWork() {
  const LongWorkScope work(platform_.longWork, kReasonToStay);
  // Before the main window goes: a program without a window loses the front to another one.
  statusWindow_.Show();
  mainWindow_.Hide();

  RunEngine();

  mainWindow_.Show();
  // After a cancel the user has closed the window: this is a hidden one that the last events have brought up.
  statusWindow_.Unload();
}

// What a kill leaves is found by the next start of the program, and so is what a failure may have left.
void FreeSpaceWipe::RunEngine() {
  const FillerRecord record{DataFolder(platform_.files, state_)};
  record.Add(state_.FreeSpaceDrive);
  // Its result tells nothing: a failure comes as an event, and whether the user has cancelled is known.
  static_cast<void>(SFD1->WipeFreeSpace(state_.FreeSpaceDrive, state_.FreeSpacePasses));
  if (state_.FreeSpaceError.empty()) record.Drop(state_.FreeSpaceDrive);
}

Message FreeSpaceWipe::Outcome() const {
  const std::string& drive = state_.FreeSpaceDrive;
  if (state_.CancelRequested)
    return {.text = "The drive wipe operation was cancelled.", .title = "Cancelled"};
  if (!state_.FreeSpaceError.empty()) {
    return {.text = "An error was encountered wiping drive " + drive + "." + kTwoLineBreaks +
                    "Error Details: " + state_.FreeSpaceError,
            .title = "Error"};
  }
  return {.text = "Drive " + drive + " has been successfully wiped." + kTwoLineBreaks +
                  "Details:" + kTwoLineBreaks + "Wipe Started:  " + WipeStartedAt + kLineBreak +
                  "Wipe Ended:  " + WipeEndedAt + kLineBreak +
                  "Security Level:  " + std::to_string(state_.FreeSpacePasses) + kLineBreak +
                  "Free Space Wiped:  " + FormatGrouped(FreeSpaceWipedKB, platform_.regional) + " KB",
          .title = "Free Space Wipe Complete"};
}

void FreeSpaceWipe::CancelOperation() {
  if (!SFD1) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);
  SFD1->CancelOperation();
  state_.CancelRequested = true;
}

void FreeSpaceWipe::SFD1_WipeError(std::int32_t errorCode, const std::string& errorText) {
  // A job wipe asks for the text when a member has failed; a free-space wipe has this event alone.
  if (errorCode != 0 && state_.FreeSpaceActive) state_.FreeSpaceError = errorText;
}

void FreeSpaceWipe::SFD1_FreeSpaceProgress(const std::string& /*itemName*/, std::int32_t percent,
                                           std::int32_t kbDone, std::int32_t kbTotal) {
  FreeSpaceWipedKB = kbTotal;
  const FreeSpaceUpdate update =
      ComputeFreeSpaceProgress(percent, kbDone, kbTotal, state_.FreeSpaceDrive, platform_.regional);
  if (update.status) statusWindow_.SetStatus(*update.status);
  statusWindow_.SetCurrent(update.current);
  statusWindow_.SetCaption(update.caption);
  platform_.longWork.ShowPercent(std::clamp<int>(update.current, 0, 100));
  // A click on Cancel gets through here alone.
  platform_.process.PumpMessages();
}

}  // namespace zq
