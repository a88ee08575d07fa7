// Command state: keeps the tools' enabled state and the item count in step with the job.
#pragma once

#include <string>
#include <string_view>

namespace zq {

struct AppState;
class JobList;
class Regional;

// The tools as the command state sees them, by name.
class ToolStates {
 public:
  virtual ~ToolStates() = default;
  virtual void SetEnabled(std::string_view toolName, bool enabled) = 0;
  virtual void SetPanelText(std::string_view panelName, const std::string& text) = 0;
};

// Run after anything that can change the job's name or the number of rows.
void UpdateCommandState(const AppState& state, const JobList& jobList, ToolStates& tools, Regional& regional);

// Run when the menu `mnuActions` opens: Edit is for a selected folder row alone.
void UpdateActionsMenu(const JobList& jobList, ToolStates& tools);

}  // namespace zq
