// FakeToolStates: tools and panels that remember what they were set to. A line in the log for each:
// "+WipeNow", "-WipeNow", "x mnuFileNew" checked, "o mnuFileNew" not, "Static3=0 Items".
#pragma once

#include <map>
#include <string>

#include "controls/ToolStates.h"
#include "platform/RunTimeError.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeToolStates final : public ToolStates {
 public:
  explicit FakeToolStates(EventLog& log) : log_(log) {}

  void SetEnabled(std::string_view toolName, bool enabled) override {
    if (toolName == missingTool) throw RunTimeError(ErrorNumber::ElementNotFound);
    log_.push_back((enabled ? "+" : "-") + std::string(toolName));
    enabledTools[std::string(toolName)] = enabled;
  }
  void SetChecked(std::string_view toolName, bool checked) override {
    log_.push_back((checked ? "x " : "o ") + std::string(toolName));
    checkedTools[std::string(toolName)] = checked;
  }
  void SetPanelText(std::string_view panelName, const std::string& text) override {
    log_.push_back(std::string(panelName) + "=" + text);
    panels[std::string(panelName)] = text;
  }

  std::string_view missingTool;
  std::map<std::string, bool> enabledTools;
  std::map<std::string, bool> checkedTools;
  std::map<std::string, std::string> panels;

 private:
  EventLog& log_;
};

}  // namespace zq::test
