// FakeHelp: what the Help buttons and the Help menu ask for, a line in the log each.
#pragma once

#include <string>

#include "core/state/Help.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeHelp final : public Help {
 public:
  explicit FakeHelp(EventLog& log) : log_(log) {}

  void ShowTopic(int topicId) override { log_.push_back("help: topic " + std::to_string(topicId)); }
  void ShowContents() override { log_.push_back("help: contents"); }
  void ShowWebPage() override { log_.push_back("help: web page"); }

 private:
  EventLog& log_;
};

}  // namespace zq::test
