#include "quickbin/DropWipe.h"

#include "controls/ToolStates.h"
#include "core/state/MainWindow.h"
#include "jobs/AddFiles.h"
#include "platform/NumberFormat.h"
#include "platform/PathPlace.h"
#include "platform/RunTimeError.h"
#include "wipe/RecursiveSearch.h"

namespace zq {
namespace {

constexpr const char* kNoPlaceToWipe =
    "It lies neither on a drive with a letter nor in a share of a server, and was not touched.";

}  // namespace

// What is raised on the way ends the process: the window needs no bringing back.
void DropWipe::Drop(const std::vector<std::string>& paths) {
  if (!SFD1) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);
  QuickFiles.Clear();
  QuickErrors.Clear();
  window_.SetCancelEnabled(false);
  window_.SetDropEnabled(false);
  window_.ShowStatusProgress(true);
  state_.QuickBinBusy = true;

  for (const std::string& path : paths) {
    if (PathKind(platform_.files, path) != kPathIsFolder) QuickFiles.Add(path);
  }
  WipeFiles();

  window_.SetMessage(QuickErrors.Count() < 1 ? kLastOperationSuccess : kLastOperationErrors);
  window_.ShowStatusProgress(false);
  window_.SetDropEnabled(true);
  state_.QuickBinBusy = false;
  window_.SetCancelEnabled(true);
}

void DropWipe::WipeFiles() {
  OneWhole whole(QuickFiles.Count() > 0 ? whole_ : nullptr);
  for (const std::string& path : QuickFiles.Items()) WipeOne(path);
  // It belongs to no file: they have been told as what they were then.
  if (!whole.End()) QuickErrors.Add(SFD1->GetLastErrorText());
}

void DropWipe::WipeOne(const std::string& path) {
  if (BeginsInAnotherNameSpace(path)) {
    QuickErrors.Add(path + " - " + kNoPlaceToWipe);
    return;
  }
  ClearAttributes(platform_.files, path);
  if (!SFD1->WipeFile(path, state_.Settings.Passes)) QuickErrors.Add(path + " - " + SFD1->GetLastErrorText());
}

// No message is handled here: nothing can come between two files of a drop.
void DropWipe::SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t /*unused*/,
                                 const std::string& itemName) {
  window_.SetMessage(itemName);
  if (bytesTotal == 0) return;
  window_.SetProgress(bytesTotal > bytesDone ? RoundToInt16(static_cast<double>(bytesDone) /
                                                            static_cast<double>(bytesTotal) * 100)
                                             : 100);
}

void DropWipe::SFD1_WorkElsewhere(const std::string& itemName) {
  window_.SetMessage(itemName);
}

void LeaveQuickBin(AppState& state, MainWindow& mainWindow, ToolStates& tools) {
  mainWindow.SetWindowState(state.SavedWindowState);
  state.QuickBinOpen = false;
  tools.SetChecked(kQuickWipeBinTool, false);
}

}  // namespace zq
