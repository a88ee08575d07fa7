// FakeShellDrops: a shell whose drops reach the windows or don't, and each call for them as a line in the
// log.
#pragma once

#include <sstream>

#include "platform/ShellDrops.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeShellDrops final : public ShellDrops {
 public:
  explicit FakeShellDrops(EventLog& log) : log_(log) {}

  bool heldBack = false;
  std::uint32_t refused = 0;  // this message isn't let through
  WindowHandle window = 0;    // of the last call

  bool HeldBack() override { return heldBack; }
  bool AllowMessage(WindowHandle asked, std::uint32_t message) override {
    window = asked;
    std::ostringstream line;
    line << "allow " << std::hex << message;
    log_.push_back(line.str());
    return message != refused;
  }
  void AcceptFiles(WindowHandle asked, bool accept) override {
    window = asked;
    log_.push_back(accept ? "accept files" : "accept no files");
  }

 private:
  EventLog& log_;
};

}  // namespace zq::test
