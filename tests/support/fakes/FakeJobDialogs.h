// FakeJobDialogs: the job dialogs, with a user whose doings the test lays down.
#pragma once

#include <functional>

#include "jobs/JobLifecycle.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeJobDialogs final : public JobDialogs {
 public:
  explicit FakeJobDialogs(EventLog& log) : log_(log) {}

  // What the user does in each; nothing is Cancel.
  std::function<void()> inSave;
  std::function<void()> inNew;
  std::function<void()> inOpenJob;

  void ShowSave() override { Show("frmSave", inSave); }
  void ShowNew() override { Show("frmNew", inNew); }
  void ShowOpenJob() override { Show("frmOpenJob", inOpenJob); }

 private:
  void Show(const char* form, const std::function<void()>& user) {
    log_.push_back(form);
    if (user) user();
  }

  EventLog& log_;
};

}  // namespace zq::test
