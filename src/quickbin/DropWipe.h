// DropWipe: wipes the files that are dropped on the QuickWipe Bin, at once and without a question.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "platform/Platform.h"
#include "wipe/SecureFileDeleteWizard.h"

namespace zq {

class MainWindow;
class ToolStates;

inline constexpr const char* kLastOperationSuccess = "Last Operation: Success";
inline constexpr const char* kLastOperationErrors = "Last Operation: Errors";
inline constexpr const char* kQuickWipeBinTool = "mnuFileQuickWipeBin";

// The Bin's window as the wipe sees it. Nothing of it handles messages: what changes is painted at once.
class QuickBinWindow {
 public:
  virtual ~QuickBinWindow() = default;
  virtual void SetCancelEnabled(bool enabled) = 0;
  virtual void SetDropEnabled(bool enabled) = 0;
  virtual void ShowStatusProgress(bool show) = 0;
  virtual void SetMessage(const std::string& text) = 0;  // in the first panel
  virtual void SetProgress(int percent) = 0;
};

class DropWipe final : public WipeEvents {
 public:
  DropWipe(AppState& state, Platform& platform, QuickBinWindow& window)
      : state_(state), platform_(platform), window_(window) {}

  // The files of a drop are one operation to the engine; `whole` may be null.
  void SetEngine(SecureFileDeleteWizard* engine, WholeWipes* whole) {
    SFD1 = engine;
    whole_ = whole;
  }

  // Wipes those of the paths that aren't folders, in their order. Raises Overflow for more than 32,767 files,
  // before the first is touched.
  void Drop(const std::vector<std::string>& paths);

  // One line for each file of the last drop that isn't wiped.
  const std::vector<std::string>& Errors() const { return QuickErrors.Items(); }

  void SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t unused,
                         const std::string& itemName) override;
  void SFD1_WorkElsewhere(const std::string& itemName) override;

 private:
  void WipeFiles();
  void WipeOne(const std::string& path);

  AppState& state_;
  Platform& platform_;
  QuickBinWindow& window_;
  SecureFileDeleteWizard* SFD1 = nullptr;
  WholeWipes* whole_ = nullptr;
  ReportList QuickFiles;
  ReportList QuickErrors;
};

// What the closing of the Bin brings back: the main window as it was at its opening, and the tool.
void LeaveQuickBin(AppState& state, MainWindow& mainWindow, ToolStates& tools);

}  // namespace zq
