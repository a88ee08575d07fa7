// ManagerWipe: asks whether what was chosen is to be wiped, wipes it behind the progress window, and tells
// how it went.
#pragma once

#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "manager/RecycleBin.h"
#include "manager/Selection.h"
#include "platform/Platform.h"
#include "wipe/SecureFileDeleteWizard.h"
#include "wipe/WipeProgress.h"

namespace zq {

class DataFolder;
struct Message;

inline constexpr const char* kWipeFilesTitle = "Wipe with Zeroquill";
inline constexpr const char* kWipeBinTitle = "Wipe Recycle Bin";

// The settings that the program was left with. What can't be read, and a level that is none, is what the
// program would start with. Nothing is written.
SettingsRecord SettingsLeftIn(const DataFolder& folder);

// The questions, and what is said where there is nothing to ask.
Message SelectionQuestion(const Selection& selection, std::int32_t level, Regional& regional);
Message SelectionRefused(const Selection& selection);
Message BinQuestion(const BinContents& contents, std::int32_t level, Regional& regional);
Message BinIsEmpty(const BinContents& contents);

// Shows lines of which there may be many.
class LineList {
 public:
  virtual ~LineList() = default;
  virtual void Show(const std::string& title, const std::vector<std::string>& lines) = 0;
};

// Tells the shell's windows what has changed.
class ShellNotices {
 public:
  virtual ~ShellNotices() = default;
  // Of a folder, with a backslash at its end, what is in it.
  virtual void FolderChanged(const std::string& folder) = 0;
  // How full the Recycle Bin is, as its icon shows.
  virtual void BinsChanged() = 0;
};

class ManagerWipe final : public WipeEvents, public CancellableWipe {
 public:
  // `state`: its folder, its settings, and whether a cancel is asked for.
  ManagerWipe(AppState& state, Platform& platform, WipeStatusWindow& statusWindow, LineList& lines,
              ShellNotices& notices)
      : state_(state), platform_(platform), statusWindow_(statusWindow), lines_(lines), notices_(notices) {}

  // `whole` may be null. Set before the first wipe, since the engine in turn takes this object for its
  // events.
  void SetEngine(SecureFileDeleteWizard* engine, WholeWipes* whole) {
    SFD1 = engine;
    whole_ = whole;
  }

  // Each asks first, and does nothing without a yes. True if anything was begun.
  bool WipeSelection(const Selection& selection);
  bool WipeBin(const BinContents& contents);

  // The user's answer to a confirmed cancel: the engine stops, and what is left stays.
  void CancelOperation() override;

  void SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t unused,
                         const std::string& itemName) override;
  void SFD1_WorkElsewhere(const std::string& itemName) override;
  void SFD1_ItemWiped(const std::string& itemName) override;

 private:
  bool Ask(const Message& question);
  void Run(const std::vector<WipeItem>& items, const Measured& measured, std::vector<std::string> notDone);
  void WipeItems(const std::vector<WipeItem>& items);
  void WipeOne(const WipeItem& item);
  void Tell(const char* title);

  AppState& state_;
  Platform& platform_;
  WipeStatusWindow& statusWindow_;
  LineList& lines_;
  ShellNotices& notices_;
  SecureFileDeleteWizard* SFD1 = nullptr;
  WholeWipes* whole_ = nullptr;
  FixedPoint ProcessedWipeItems;
  std::vector<std::string> failures_;
};

}  // namespace zq
