// JobWipe: carries out the open job, from the command to the last message.
#pragma once

#include <cstdint>
#include <string>

#include "platform/FixedPoint.h"
#include "platform/Platform.h"
#include "reports/ReportViewer.h"
#include "wipe/SecureFileDeleteWizard.h"
#include "wipe/WipeProgress.h"

namespace zq {

struct AppState;
struct JobRow;
class JobList;
class MainWindow;

// The driver and the handlers of the engine's events that serve it.
class JobWipe final : public WipeEvents, public CancellableWipe {
 public:
  // `reportViewer` may be null: the closing question is asked all the same. `SFD1` is set by SetEngine before
  // a run, since the engine in turn takes this object for its events.
  JobWipe(AppState& state, JobList& jobList, Platform& platform, MainWindow& mainWindow,
          WipeStatusWindow& statusWindow, ReportViewer* reportViewer)
      : state_(state),
        jobList_(jobList),
        platform_(platform),
        mainWindow_(mainWindow),
        statusWindow_(statusWindow),
        reportViewer_(reportViewer) {}

  // `whole` may be null.
  void SetEngine(SecureFileDeleteWizard* engine, WholeWipes* whole = nullptr) {
    SFD1 = engine;
    whole_ = whole;
  }

  // Raises what fails on the way: there is no handler here, and the process ends with its report.
  void RunJobWipe();

  // The user's answer to a confirmed cancel: the engine stops, the driver ends after the present row.
  void CancelOperation() override;

  void SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t unused,
                         const std::string& itemName) override;
  void SFD1_WorkElsewhere(const std::string& itemName) override;
  void SFD1_ItemWiped(const std::string& itemName) override;

 private:
  bool CheckRows();
  void DoWork();
  void CountRows();
  void CountRow(const JobRow& row);
  void WipeRows();
  void WipeFolderRow(int row);
  void WipeFileRow(int row);
  void AddErrorLine(const std::string& path, const std::string& reason);
  void WriteReport();
  void ClearReportLists();

  AppState& state_;
  JobList& jobList_;
  Platform& platform_;
  MainWindow& mainWindow_;
  WipeStatusWindow& statusWindow_;
  ReportViewer* reportViewer_;
  SecureFileDeleteWizard* SFD1 = nullptr;
  WholeWipes* whole_ = nullptr;
  FixedPoint ProcessedWipeItems;
};

}  // namespace zq
