#include "jobs/JobList.h"

#include <utility>

#include "platform/Regional.h"
#include "platform/RunTimeError.h"

namespace zq {

void JobList::BringViewUpToDate() const {
  if (view_) view_->ShowPendingRows();
}

const JobRow& JobList::Row(int row) const {
  if (row < 1 || static_cast<std::size_t>(row) > rows_.size()) {
    throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
  }
  return rows_[static_cast<std::size_t>(row) - 1];
}

JobRow& JobList::MutableRow(int row) {
  return const_cast<JobRow&>(std::as_const(*this).Row(row));
}

std::int16_t JobList::RowLoopEnd() const {
  return ToInt16(static_cast<std::int64_t>(rows_.size()));
}

void JobList::Add(JobRow row) {
  std::string upperPath = regional_.UpperCase(row.NameAndLocation);
  rows_.push_back(std::move(row));
  ++rowsOfPath_[std::move(upperPath)];
  if (view_) view_->RowsChanged();
}

void JobList::Remove(int row) {
  // Counted, since a folder can be listed twice: the path stays listed until its last row goes. Not found
  // only if the user has changed the rules of letter case in between.
  const auto found = rowsOfPath_.find(regional_.UpperCase(Row(row).NameAndLocation));
  if (found != rowsOfPath_.end() && --found->second == 0) rowsOfPath_.erase(found);
  rows_.erase(rows_.begin() + (row - 1));
  if (selectedRow_ == row) {
    selectedRow_ = 0;
  } else if (selectedRow_ > row) {
    --selectedRow_;
  }
  if (view_) view_->RowsChanged();
}

void JobList::Clear() {
  rows_.clear();
  rowsOfPath_.clear();
  selectedRow_ = 0;
  if (view_) view_->RowsChanged();
}

void JobList::SetSmallIcon(int row, int smallIcon) {
  MutableRow(row).SmallIcon = smallIcon;
  if (view_) view_->RowChanged(row);
}

void JobList::SetSize(int row, std::string size) {
  MutableRow(row).Size = std::move(size);
  if (view_) view_->RowChanged(row);
}

void JobList::SetGhosted(int row, bool ghosted) {
  JobRow& changed = MutableRow(row);
  if (changed.Ghosted == ghosted) return;  // a wipe sets every row first: only the changes are repainted
  changed.Ghosted = ghosted;
  if (view_) view_->RowChanged(row);
}

void JobList::SetMask(int row, std::string mask, std::string subFolders) {
  JobRow& changed = MutableRow(row);
  changed.FolderMask = std::move(mask);
  changed.SubFolders = std::move(subFolders);
  if (view_) view_->RowChanged(row);
}

bool JobList::IsInJobList(std::string_view path) const {
  RowLoopEnd();
  return rowsOfPath_.contains(regional_.UpperCase(path));
}

int JobList::FindByPrefix(std::string_view prefix, int startRow) const {
  const std::string upperPrefix = regional_.UpperCase(prefix);
  const int count = static_cast<int>(rows_.size());
  for (int i = 0; i < count; ++i) {
    const int row = (startRow - 1 + i) % count + 1;
    const std::string upperPath = regional_.UpperCase(Row(row).NameAndLocation);
    const std::size_t name = upperPath.rfind('\\') + 1;  // 0 without a backslash
    if (upperPath.starts_with(upperPrefix) || upperPath.compare(name, upperPrefix.size(), upperPrefix) == 0)
      return row;
  }
  return 0;
}

void JobList::Select(int row) {
  if (row != 0) Row(row);
  selectedRow_ = row;
  if (view_) view_->SelectionChanged(row);
}

void JobList::Reveal(int first) const {
  if (view_) view_->RevealRows(first);
}

}  // namespace zq
