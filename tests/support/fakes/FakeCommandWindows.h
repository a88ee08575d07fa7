// FakeCommandWindows: the windows that the commands open, with a user whose doings the test lays down. A line
// in the log for each.
#pragma once

#include <functional>
#include <string>

#include "core/main/Commands.h"
#include "jobs/AddFiles.h"
#include "jobs/JobRow.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeCommandWindows final : public CommandWindows, public FolderDialog {
 public:
  explicit FakeCommandWindows(EventLog& log) : log_(log) {}

  AddFilesChoice choice;                      // in the Add Files dialog
  std::function<void()> inFolder;             // what the user does in frmFolder; nothing is Cancel
  std::function<void(const JobRow&)> inEdit;  // and in frmEdit
  std::function<void()> inDriveWipe;          // and in frmDriveWipe

  AddFilesChoice ShowAddFiles(const std::string& initialFolder) override {
    log_.push_back("Add Files in " + initialFolder);
    return choice;
  }
  void ShowFor(const std::string& path) override {
    log_.push_back("frmFolder at \"" + path + "\"");
    if (inFolder) inFolder();
  }
  void ShowEdit(const JobRow& row) override {
    log_.push_back("frmEdit of " + row.NameAndLocation);
    if (inEdit) inEdit(row);
  }
  void ShowDriveWipe() override {
    log_.push_back("frmDriveWipe");
    if (inDriveWipe) inDriveWipe();
  }
  void ShowPreferences() override { log_.push_back("frmPreferences"); }
  void ShowAbout() override { log_.push_back("frmAbout"); }
  void CloseMainWindow() override { log_.push_back("main: close"); }
  void DoBusily(const std::function<void()>& work) override {
    log_.push_back("busy");
    work();
    log_.push_back("idle");
  }

 private:
  EventLog& log_;
};

}  // namespace zq::test
