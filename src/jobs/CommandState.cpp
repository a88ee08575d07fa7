#include "jobs/CommandState.h"

#include "controls/ToolStates.h"
#include "core/state/AppState.h"
#include "jobs/JobList.h"
#include "jobs/ToolNames.h"
#include "platform/NumberFormat.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

// The tools that need something in the list.
constexpr std::string_view kToolsForRows[] = {
    "mnuFileClose", "WipeNow", "mnuActionsWipeNow", "mnuActionsRemove", "SaveJob", "mnuFileSave",
};

std::string ItemCountText(std::size_t count, Regional& regional) {
  if (count == 0) return "0 Items";
  if (count == 1) return "1 Item";
  return FormatGrouped(static_cast<std::int64_t>(count), regional) + " Items";
}

}  // namespace

void UpdateCommandState(const AppState& state, const JobList& jobList, ToolStates& tools,
                        Regional& regional) {
  // First, since who reads the number of items must find as many in the list.
  jobList.BringViewUpToDate();
  tools.SetEnabled("mnuFileDelete", !state.CurrentJobName.empty());
  for (std::string_view tool : kToolsForRows) tools.SetEnabled(tool, jobList.Count() > 0);
  tools.SetPanelText(kItemCountPanel, ItemCountText(jobList.Count(), regional));
  UpdateActionsMenu(jobList, tools);
}

void UpdateActionsMenu(const JobList& jobList, ToolStates& tools) {
  try {
    tools.SetEnabled("mnuActionsEdit", false);
    if (jobList.Count() > 0 && jobList.Row(jobList.SelectedRow()).IsFolderRow()) {
      tools.SetEnabled("mnuActionsEdit", true);
    }
  } catch (const RunTimeError&) {
    // No row is selected: Edit stays disabled.
  }
}

}  // namespace zq
