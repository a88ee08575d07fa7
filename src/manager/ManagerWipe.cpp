#include "manager/ManagerWipe.h"

#include <algorithm>
#include <utility>

#include "core/state/DataFolder.h"
#include "jobs/mdlSize.h"
#include "platform/MessageBoxes.h"
#include "platform/NumberFormat.h"
#include "platform/Process.h"
#include "platform/Regional.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr const char* kSettingsFile = "Settings.dat";
constexpr const char* kLineBreak = "\r\n";
constexpr const char* kNotRecoverable = "Once the wipe operation is complete, they will not be recoverable.";
constexpr const char* kSureToContinue = "Are you sure you wish to continue?";
constexpr const char* kThereMayBeMore = "Not all of it could be looked into, so there may be more.";
constexpr const char* kComplete = "The wipe operation is now complete.";
constexpr const char* kCancelled =
    "The wipe operation was cancelled so all items may not have been completely processed.";
constexpr const char* kEnded = "The wipe operation has ended.";
constexpr const char* kStillThere =
    "Some items could not be wiped.  The list that follows tells which, and why.";

// "no files", "1 file", "2,345 files"
std::string CountOf(const FixedPoint& count, const char* one, const char* many, Regional& regional) {
  if (count.Whole() == 0) return std::string("no ") + many;
  if (count.Whole() == 1) return std::string("1 ") + one;
  return FormatGrouped(count.Whole(), regional) + " " + many;
}

// What, how much, how thoroughly, and whether.
Message Question(const std::string& what, const char* title, const Measured& measured, std::int32_t level,
                 Regional& regional) {
  std::string text = what + kTwoLineBreaks;
  text += "Contents: " + CountOf(measured.files, "file", "files", regional) + ", " +
          CountOf(measured.folders, "folder", "folders", regional) + kLineBreak;
  text += "Size: " + FormatFileSize(static_cast<double>(measured.bytes), regional) + kLineBreak;
  text += "Security level: " + std::to_string(level) + " (equal to " + std::to_string(3 * level) +
          " data writes per byte)" + kTwoLineBreaks;
  if (!measured.isComplete) text += std::string(kThereMayBeMore) + kTwoLineBreaks;
  text += std::string(kNotRecoverable) + kTwoLineBreaks + kSureToContinue;
  return {std::move(text), title, MessageIcon::Question, MessageButtons::OkCancel};
}

// A box holds no more than a screen does. Lines that are broken have a blank one between them.
void AddSome(std::string& text, const std::vector<std::string>& lines) {
  constexpr std::size_t kMost = 5;
  for (std::size_t i = 0; i < std::min(lines.size(), kMost); ++i) text += kTwoLineBreaks + lines[i];
  if (lines.size() > kMost)
    text += std::string(kTwoLineBreaks) + "... and " + std::to_string(lines.size() - kMost) + " more";
}

}  // namespace

SettingsRecord SettingsLeftIn(const DataFolder& folder) {
  SettingsRecord settings;
  try {
    settings = DecodeSettings(folder.Read(kSettingsFile));
  } catch (const RunTimeError&) {
  }
  const std::int32_t level = settings.Passes;
  if (level != 3 && level != 5 && level != 7) settings.Passes = SettingsRecord{}.Passes;
  return settings;
}

Message SelectionQuestion(const Selection& selection, std::int32_t level, Regional& regional) {
  const std::size_t count = selection.items.size();
  const std::string what = count == 1 ? "This operation will securely wipe:" + std::string(kTwoLineBreaks) +
                                            selection.items.front().shownAs
                                      : "This operation will securely wipe the " +
                                            FormatGrouped(static_cast<std::int64_t>(count), regional) +
                                            " selected items.";
  return Question(what, kWipeFilesTitle, selection.measured, level, regional);
}

Message SelectionRefused(const Selection& selection) {
  std::string text = "Nothing of the selection was wiped, because of:";
  AddSome(text, selection.refusals);
  return {std::move(text), kWipeFilesTitle, MessageIcon::Exclamation, MessageButtons::Ok};
}

Message BinQuestion(const BinContents& contents, std::int32_t level, Regional& regional) {
  const std::size_t count = contents.items.size();
  const std::string what = count == 1 ? "This operation will securely wipe the 1 item in your Recycle Bin:" +
                                            std::string(kTwoLineBreaks) + contents.items.front().shownAs
                                      : "This operation will securely wipe the " +
                                            FormatGrouped(static_cast<std::int64_t>(count), regional) +
                                            " items in your Recycle Bin.";
  return Question(what, kWipeBinTitle, contents.measured, level, regional);
}

Message BinIsEmpty(const BinContents& contents) {
  if (contents.refusals.empty())
    return {"Your Recycle Bin is empty.", kWipeBinTitle, MessageIcon::Information, MessageButtons::Ok};
  std::string text = "Nothing that could be wiped was found in your Recycle Bin.";
  AddSome(text, contents.refusals);
  return {std::move(text), kWipeBinTitle, MessageIcon::Exclamation, MessageButtons::Ok};
}

bool ManagerWipe::WipeSelection(const Selection& selection) {
  if (!selection.refusals.empty()) {
    platform_.messageBoxes.Show(SelectionRefused(selection));
    return false;
  }
  if (selection.items.empty()) return false;
  if (!Ask(SelectionQuestion(selection, state_.Settings.Passes, platform_.regional))) return false;
  Run(selection.items, selection.measured, {});
  Tell(kWipeFilesTitle);
  return true;
}

bool ManagerWipe::WipeBin(const BinContents& contents) {
  if (contents.items.empty()) {
    platform_.messageBoxes.Show(BinIsEmpty(contents));
    return false;
  }
  if (!Ask(BinQuestion(contents, state_.Settings.Passes, platform_.regional))) return false;
  Run(contents.items, contents.measured, contents.refusals);
  // Before the user is told: the bin doesn't look full behind the box that says it is done.
  for (const std::string& folder : contents.folders) notices_.FolderChanged(folder);
  notices_.BinsChanged();
  Tell(kWipeBinTitle);
  return true;
}

bool ManagerWipe::Ask(const Message& question) {
  if (!SFD1) throw RunTimeError(ErrorNumber::ObjectVariableNotSet);
  return platform_.messageBoxes.Show(question) == MessageAnswer::Ok;
}

void ManagerWipe::Run(const std::vector<WipeItem>& items, const Measured& measured,
                      std::vector<std::string> notDone) {
  state_.CancelRequested = false;
  state_.TotalWipeItems = measured.files;
  ProcessedWipeItems = FixedPoint();
  failures_ = std::move(notDone);
  {
    const LongWorkScope work(platform_.longWork, kFilesReasonToStay);
    statusWindow_.Show();
    statusWindow_.SetCancelEnabled(true);
    WipeItems(items);
    // After a cancel the user has closed the window: a fresh, hidden one takes this.
    statusWindow_.Unload();
  }
  platform_.longWork.CallUser();
}

// All items are one operation to the engine, however the run ends.
void ManagerWipe::WipeItems(const std::vector<WipeItem>& items) {
  OneWhole whole(whole_);
  for (const WipeItem& item : items) {
    WipeOne(item);
    platform_.process.PumpMessages();
    if (state_.CancelRequested) break;
  }
  if (!whole.End()) failures_.push_back(SFD1->GetLastErrorText());
}

void ManagerWipe::WipeOne(const WipeItem& item) {
  const std::int32_t level = state_.Settings.Passes;
  const bool wiped = item.isFolder ? SFD1->WipeFolder(item.path, level) : SFD1->WipeFile(item.path, level);
  if (!wiped) {
    // The record stays, too: with it the shell still knows what is left, and can bring it back.
    failures_.push_back(item.shownAs + " - " + SFD1->GetLastErrorText());
    return;
  }
  if (item.record.empty()) return;
  // It was counted with its item.
  const FixedPoint processed = ProcessedWipeItems;
  if (!SFD1->WipeFile(item.record, level))
    failures_.push_back(item.record + " - " + SFD1->GetLastErrorText());
  ProcessedWipeItems = processed;
}

void ManagerWipe::Tell(const char* title) {
  const char* const cancelled = state_.CancelRequested ? kCancelled : nullptr;
  if (failures_.empty()) {
    platform_.messageBoxes.Show(
        {cancelled ? cancelled : kComplete, title, MessageIcon::Information, MessageButtons::Ok});
    return;
  }
  platform_.messageBoxes.Show({std::string(cancelled ? cancelled : kEnded) + kTwoLineBreaks + kStillThere,
                               title, MessageIcon::Exclamation, MessageButtons::Ok});
  lines_.Show(title, failures_);
}

void ManagerWipe::CancelOperation() {
  SFD1->CancelOperation();
  state_.CancelRequested = true;
}

void ManagerWipe::SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t /*unused*/,
                                    const std::string& itemName) {
  // More than was counted may lie in a folder by now.
  const FixedPoint processed = std::min(ProcessedWipeItems, state_.TotalWipeItems);
  const ProgressUpdate update =
      ComputeProgress(bytesDone, bytesTotal, itemName, processed, state_.TotalWipeItems, platform_.regional);
  ShowProgress(update, statusWindow_, platform_.longWork);
  // While a file is in work, a click on Cancel gets through here alone.
  platform_.process.PumpMessages();
}

void ManagerWipe::SFD1_WorkElsewhere(const std::string& itemName) {
  statusWindow_.SetStatus(ProgressStatus(0, 0, itemName, platform_.regional));
  platform_.process.PumpMessages();
}

void ManagerWipe::SFD1_ItemWiped(const std::string& /*itemName*/) {
  ++ProcessedWipeItems;
}

}  // namespace zq
