// FakeProcess: a process whose facts the test sets, and whose messages the test handles.
#pragma once

#include <functional>
#include <string>

#include "platform/Process.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeProcess final : public Process {
 public:
  explicit FakeProcess(EventLog& log) : log_(log) {}

  bool earlierInstanceRuns = false;
  std::string applicationPath = "C:\\Zeroquill";
  std::string commandLine;
  std::function<void()> onPump;  // what the waiting messages do
  bool startFails = false;       // of another program
  int looks = 0;                 // at messages that are left where they are

  bool EarlierInstanceRuns() override { return earlierInstanceRuns; }
  std::string ApplicationPath() override { return applicationPath; }
  std::string CommandLine() override { return commandLine; }
  void PumpMessages() override {
    log_.push_back("pump");
    if (onPump) onPump();
  }
  void LookAtMessages() override { ++looks; }
  bool StartProgram(const std::string& path) override {
    log_.push_back("start " + path);
    return !startFails;
  }
  void End() override { log_.push_back("end"); }

 private:
  EventLog& log_;
};

}  // namespace zq::test
