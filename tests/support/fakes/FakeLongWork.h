// FakeLongWork: each call is a line in the log.
#pragma once

#include <string>

#include "platform/LongWork.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeLongWork final : public LongWork {
 public:
  explicit FakeLongWork(EventLog& log) : log_(log) {}

  void Begin(const std::string& reason) override { log_.push_back("work: begin: " + reason); }
  void ShowUncounted() override { log_.push_back("work: uncounted"); }
  void ShowPercent(int percent) override { log_.push_back("work: " + std::to_string(percent)); }
  void End() noexcept override { log_.emplace_back("work: end"); }
  void CallUser() override { log_.push_back("work: call"); }

 private:
  EventLog& log_;
};

}  // namespace zq::test
