// The stage for tests of the job wipe: an engine that destroys nothing, and fakes that all write into one
// log, so that the order of a run is checked as a whole.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "core/state/AppState.h"
#include "jobs/JobList.h"
#include "support/ExpectRaises.h"
#include "support/Rows.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"
#include "wipe/JobWipe.h"

namespace zq::test {

inline constexpr const char* kReport = "C:\\Zeroquill\\Report\\Report.dat";
inline constexpr const char* kFormerReport = "the report of a former run";

inline const Message kNothingFound{
    "All listed items in your current Job were not found at their defined locations and may have been "
    "previously wiped.  The wipe operation cannot continue.",
    "No Items Found", MessageIcon::Information, MessageButtons::Ok};
inline const Message kConfirmation{
    "This operation will securely wipe all available files and based on the settings, available folders "
    "contents as well.  Once the wipe operation is complete, the files will not be recoverable.\r\n\r\n"
    "Are you sure you wish to continue?",
    "Wipe Operation", MessageIcon::Question, MessageButtons::OkCancel};
inline const Message kComplete{
    "The wipe operation is now complete.\r\n\r\n"
    "Do you wish to review the report for the current operation?",
    "Wipe Operation", MessageIcon::Question, MessageButtons::YesNo};
inline const Message kCancelled{
    "The wipe operation was cancelled so all items may not have been completely processed.  You can review "
    "the report for more details.\r\n\r\n"
    "Do you wish to review the report for the current operation?",
    "Wipe Operation", MessageIcon::Question, MessageButtons::YesNo};
inline constexpr const char* kCancelLine =
    "\"User cancelled wipe operation.  Listed items may or may not have finished processing.\"\r\n";

class JobWipeTest : public ::testing::Test, protected FakePlatform {
 protected:
  JobWipeTest() {
    wipe.SetEngine(&engine);
    state.AppFolder = "C:\\Zeroquill\\";
    files.AddFile(kReport, kFormerReport);
  }

  void AddFile(const std::string& path, std::uint32_t attributes = kAttributeArchive) {
    files.AddFile(path, "secret", attributes);
    jobList.Add(FileRow(path, "6 Bytes"));
  }

  // A run in which the user says OK, and No to the report.
  void Run() {
    boxes.answers = {MessageAnswer::Ok, MessageAnswer::No};
    wipe.RunJobWipe();
  }

  // The user presses Cancel while the engine works on `path`, and confirms.
  void CancelWhileIn(const std::string& path) {
    engine.work = [this, path](const std::string& inWork, WipeEvents& events) {
      cancelPressed = inWork == path;
      events.SFD1_WipeProgress(1, 6, 0, inWork);
      cancelPressed = false;
    };
    process.onPump = [this] {
      if (cancelPressed) wipe.CancelOperation();
    };
  }

  // The lines of the log that begin with `start`.
  std::vector<std::string> LogOf(const std::string& start) const {
    std::vector<std::string> lines;
    std::copy_if(log.begin(), log.end(), std::back_inserter(lines),
                 [&](const std::string& line) { return line.starts_with(start); });
    return lines;
  }

  std::string Report() const { return files.Find(kReport)->content; }

  // Not one file was touched and the windows stayed as they were.
  void ExpectNothingDestroyed() {
    EXPECT_THAT(LogOf("Wipe"), testing::IsEmpty());
    EXPECT_THAT(LogOf("attributes"), testing::IsEmpty());
    EXPECT_THAT(LogOf("main"), testing::IsEmpty());
    EXPECT_THAT(LogOf("status"), testing::IsEmpty());
    EXPECT_EQ(Report(), kFormerReport);
  }

  bool cancelPressed = false;
  AppState state;
  JobList jobList{regional};
  FakeMainWindow mainWindow{log};
  FakeStatusWindow statusWindow{log};
  FakeReportViewer reportViewer{log};
  JobWipe wipe{state, jobList, platform, mainWindow, statusWindow, &reportViewer};
  FakeEngine engine{log, wipe};
};

}  // namespace zq::test
