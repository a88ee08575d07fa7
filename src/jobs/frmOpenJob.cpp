#include "jobs/frmOpenJob.h"

#include "core/state/DataFolder.h"
#include "core/state/Help.h"
#include "jobs/JobLifecycle.h"
#include "platform/Regional.h"

namespace zq {
namespace {

constexpr ListColumn kColumns[] = {
    {"Job Name", LVCFMT_LEFT},
    {"Last Wiping", LVCFMT_LEFT},
};

}  // namespace

frmOpenJob::frmOpenJob(AppState& state, Platform& platform, Help* help)
    : Form(IDD_frmOpenJob), state_(state), platform_(platform), help_(help) {
  CloseOnEsc();
  ListView1.CellText = [this](int row, int column) {
    const SavedJob& job = jobs_.at(static_cast<std::size_t>(row - 1));
    return column == 0 ? job.name : job.lastWiping;
  };
  ListView1.EmptyText = "No job has been saved yet";
  ListView1.RowPicture = [](int) { return 1; };
  // A click beside the rows leaves none selected.
  ListView1.SelectionChange = [this](int row) { cmdOK.SetEnabled(row > 0); };
  ListView1.FindRow = [this](const std::string& prefix, int start) { return FindJob(prefix, start); };
  ListView1.DblClick = [this] { ListView1_DblClick(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { Unload(); };
  cmdHelp.Click = [this] { cmdHelp_Click(); };
}

void frmOpenJob::Load() {
  LoadPictures();
  ListView1.SetColumns(kColumns);
  jobs_ = ListSavedJobs(DataFolder(platform_.files, state_));
  ListView1.SetRowCount(static_cast<int>(jobs_.size()));
  SizeColumns();
  if (!jobs_.empty()) ListView1.SelectRow(1);
  cmdOK.SetEnabled(!jobs_.empty());
}

void frmOpenJob::LoadPictures() {
  ImageList former;  // shown until the list has the new one
  former.Swap(ImageList1);
  ImageList1.Create(ScaleForDpi(16, Dpi()));
  ImageList1.AddPicture("job");
  ListView1.SetSmallIcons(ImageList1.Handle());
}

void frmOpenJob::DpiChanged() {
  LoadPictures();
  SizeColumns();
}

void frmOpenJob::SizeColumns() {
  RECT list{};
  ::GetClientRect(ListView1.Handle(), &list);
  const int room = list.right - ::GetSystemMetricsForDpi(SM_CXVSCROLL, static_cast<UINT>(Dpi()));
  ListView1.SetColumnWidth(0, room * 3 / 5);
  ListView1.SetColumnWidth(1, room - room * 3 / 5);
}

// The first job from row `start` on, once round, whose name begins with what was typed; 0 for none.
int frmOpenJob::FindJob(const std::string& prefix, int start) const {
  const std::string wanted = platform_.regional.UpperCase(prefix);
  const auto count = static_cast<int>(jobs_.size());
  for (int i = 0; i < count; ++i) {
    const int row = (start - 1 + i) % count + 1;
    const std::string& name = jobs_[static_cast<std::size_t>(row - 1)].name;
    if (platform_.regional.UpperCase(name).starts_with(wanted)) return row;
  }
  return 0;
}

void frmOpenJob::ListView1_DblClick() {
  if (ListView1.SelectedRow() > 0) cmdOK_Click();
}

void frmOpenJob::cmdOK_Click() {
  ChooseSavedJob(state_, jobs_.at(static_cast<std::size_t>(ListView1.SelectedRow() - 1)).name);
  Unload();
}

void frmOpenJob::cmdHelp_Click() {
  if (help_) help_->ShowTopic(kHelpOnOpenJob);
}

}  // namespace zq
