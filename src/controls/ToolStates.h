// ToolStates: the tools and panels of the bars by name, as the program sets them.
#pragma once

#include <string>
#include <string_view>

namespace zq {

class ToolStates {
 public:
  virtual ~ToolStates() = default;
  virtual void SetEnabled(std::string_view toolName, bool enabled) = 0;
  virtual void SetChecked(std::string_view toolName, bool checked) = 0;
  virtual void SetPanelText(std::string_view panelName, const std::string& text) = 0;
};

}  // namespace zq
