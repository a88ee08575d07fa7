// Command state: keeps the tools' enabled state and the item count in step with the job.
#pragma once

namespace zq {

struct AppState;
class JobList;
class Regional;
class ToolStates;

// Run after anything that can change the job's name or the number of rows.
void UpdateCommandState(const AppState& state, const JobList& jobList, ToolStates& tools, Regional& regional);

// Run when the menu `mnuActions` opens: Edit is for a selected folder row alone.
void UpdateActionsMenu(const JobList& jobList, ToolStates& tools);

}  // namespace zq
