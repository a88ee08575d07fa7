// One user's way through the program, from the first start to the last exit, in scenes that follow one
// another.
//
// A scene drives the real program and looks at its windows, its boxes and the files on the disc. It says with
// `visits` what it came by, and leaves the program as it says above its declaration. The settings with which
// the program runs are `settings`: scenes ask for them rather than for what they are at first.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "e2e/Zeroquill.h"
#include "e2e/walk/Visits.h"

namespace zq::test {

class Walk {
 public:
  Walk();
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;

  // Starts the program; waits for its main window; both.
  void Launch(const std::string& arguments = "");
  void WaitMain();
  void Start(const std::string& arguments = "");
  // Tells it to exit by the menu's command, without a question on the way, and looks at its files.
  void Exit();
  // Waits for its end, and looks at its files.
  void WaitExit(unsigned exitCode = 0);

  // A command of the table by its tool's name; a box is compared and answered.
  void Command(std::string_view tool) { visits.Command(Main(), tool); }
  void Answer(std::string_view box, std::string_view button) { visits.AnswerBox(Run(), box, button); }
  // A dialog of the program, waited for and looked at.
  Window Dialog(std::string_view id, std::string_view title, std::string_view part = "");

  const Program& Run() const;
  const MainWindow& Main() const;

  // Settings.dat holds `settings`, and Settings2.dat `placement`.
  void ExpectSettingsOnDisc() const;
  // A job's file holds these lines and nothing else.
  void ExpectJob(const std::string& name, const std::vector<std::string>& fields) const;
  // Nothing below the scratch folder holds `secret`, in a name or in a file.
  void ExpectNoTrace(std::string_view secret) const;
  std::string JobPath(const std::string& name) const { return folder + "\\Jobs\\" + name + ".zqj"; }

  const ScratchFolder scratch;
  const std::string folder = scratch.CopyIn("Zeroquill");
  const std::string exe = folder + "\\Zeroquill.exe";
  const std::string settingsPath = folder + "\\Settings.dat";
  const std::string placementPath = folder + "\\Settings2.dat";
  const std::string markerPath = folder + "\\sfrun.dat";
  const std::string layoutPath = folder + "\\Zeroquill.dsl";
  const std::string reportPath = folder + "\\Report\\Report.dat";
  const std::string richTextPath = folder + "\\Report\\Report.rtf";

  // What the program remembers, kept in step by the scenes: with these it exits.
  SettingsFile settings;
  PlacementFile placement;

  Visits visits;

 private:
  std::string layout_;  // the bars' file of the last exit
  std::optional<Program> program_;
  std::optional<MainWindow> main_;
};

}  // namespace zq::test
