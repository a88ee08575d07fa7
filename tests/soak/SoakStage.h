// One process of the program, and what is done in it over and over: jobs that are opened, wiped, cancelled
// and closed, drops on the Bin. All that each leaves, on the disc and in the reports, is looked at.
#pragma once

#include <cstddef>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "e2e/Wiping.h"
#include "reports/ReportData.h"
#include "soak/SoakJob.h"

namespace zq::test {

class SoakStage : public WipingTest {
 protected:
  explicit SoakStage(unsigned seed) : seed_(seed), random_(seed) {}
  void SetUp() override;
  void TearDown() override;

  // Makes a job's files, opens it, wipes it to its end, looks at what has become of them, and closes it. With
  // `cancel` it is cancelled at some moment first, if it isn't over by then (`cancels_` tells). A job of
  // mixed rows has a file that is held at first. The report is shown, except after jobs of one folder.
  void WipeAJob(SoakJob::Kind kind, int files, bool cancel);
  // Opens the Bin, drops files on it, the last time one that is held among them, and closes it.
  void DropOnTheBin(int drops);

  const unsigned seed_;
  std::mt19937 random_;  // of the moments of cancels
  std::unique_ptr<Program> program_;
  std::unique_ptr<MainWindow> main_;
  int jobs_ = 0;
  int runs_ = 0;
  int cancels_ = 0;
  int drops_ = 0;
  std::size_t files_ = 0;

 private:
  // A command of the menus by the name of its tool. Those of the tool bar are numbered behind them.
  void Command(std::string_view tool) const;
  void Open(const SoakJob& job) const;
  void CloseJob() const;

  bool ClosingBoxIsThere() const;
  bool CancelSomewhere();
  bool CancelWithin();
  bool Run(const SoakJob& job, bool cancel, const std::set<std::string>& heldPaths, bool showReport);
  ReportData ReadReportOf(const SoakJob& job, const StampWindow& stamps) const;
  void ExpectComplete(const SoakJob& job, const std::vector<SoakJob::Row>& live, const ReportData& report,
                      const std::set<std::string>& held);
  static void ExpectCancelled(const SoakJob& job, const std::vector<SoakJob::Row>& live,
                              const ReportData& report);
  void ExpectHeldLine(const std::string& line, const std::string& path);

  static Window DropPicture(Window bin);
  static void Drop(Window bin, const std::vector<std::string>& paths);
  void DropOnce(Window bin, bool withFolder, bool withHeld);
  void ExpectErrorList(Window bin, const std::string& heldPath);

  int latest_ = 6;  // changes of the status window before a cancel, at most
  std::string heldReason_;
  std::string rtf_;              // the last one's text
  bool reportIsLoaded_ = false;  // its window, hidden
};

}  // namespace zq::test
