// FakeEngine: takes the place of the engine. It destroys nothing: it records what it was asked for, raises
// the events that the test lays down, and fails where the test says so.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "support/fakes/EventLog.h"
#include "wipe/SecureFileDeleteWizard.h"

namespace zq::test {

class FakeEngine final : public SecureFileDeleteWizard {
 public:
  FakeEngine(EventLog& log, WipeEvents& events) : log_(log), events_(events) {}

  std::map<std::string, std::string> failures;  // by path: the member returns false, with this text
  // Runs inside each wipe member, to raise events. Without it a file that is wiped raises ItemWiped.
  std::function<void(const std::string& path, WipeEvents& events)> work;

  std::function<void()> onCancel;  // runs inside CancelOperation
  std::string lastErrorText;       // what GetLastErrorText returns: of the latest failure

  bool WipeFile(const std::string& path, std::int32_t level) override {
    log_.push_back("WipeFile " + path + " " + std::to_string(level));
    const bool wiped = Run(path);
    if (!work && wiped) events_.SFD1_ItemWiped(path);
    return wiped;
  }
  bool WipeFolder(const std::string& path, std::int32_t level) override {
    log_.push_back("WipeFolder " + path + " " + std::to_string(level));
    return Run(path);
  }
  bool WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                       std::int32_t level) override {
    log_.push_back("WipeFolderFiles " + path + " " + mask + (includeSubFolders ? " deep " : " flat ") +
                   std::to_string(level));
    return Run(path);
  }
  bool WipeFreeSpace(const std::string& drive, std::int32_t level) override {
    log_.push_back("WipeFreeSpace " + drive + " " + std::to_string(level));
    return Run(drive);
  }
  std::string GetLastErrorText() override { return lastErrorText; }
  void CancelOperation() override {
    log_.push_back("CancelOperation");
    if (onCancel) onCancel();
  }

 private:
  bool Run(const std::string& path) {
    if (work) work(path, events_);
    const auto failure = failures.find(path);
    if (failure == failures.end()) return true;
    lastErrorText = failure->second;
    return false;
  }

  EventLog& log_;
  WipeEvents& events_;
};

// Records where a whole begins and ends.
class FakeWholeWipes final : public WholeWipes {
 public:
  explicit FakeWholeWipes(EventLog& log) : log_(log) {}
  void BeginWhole() override { log_.push_back("BeginWhole"); }
  bool EndWhole() noexcept override {
    log_.push_back("EndWhole");
    return ends;
  }

  bool ends = true;  // what EndWhole returns

 private:
  EventLog& log_;
};

}  // namespace zq::test
