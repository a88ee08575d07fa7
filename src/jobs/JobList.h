// JobList: the rows of the open job, in the order in which they were added. The list view shows these
// rows and keeps none of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jobs/JobRow.h"

namespace zq {

class Regional;

// What the list's view has to know.
class JobListView {
 public:
  virtual ~JobListView() = default;
  virtual void RowsChanged() = 0;              // the number of rows, or which row stands where
  virtual void RowChanged(int row) = 0;        // cells or state of one row
  virtual void SelectionChanged(int row) = 0;  // selected by code; 0 for none
  virtual void RevealRows(int first) = 0;      // those from `first` on are to be seen
  // A view may gather changes; from here on it shows them all.
  virtual void ShowPendingRows() = 0;
};

// Rows are addressed by position, counted from 1. An access outside them raises SubscriptOutOfRange.
class JobList {
 public:
  explicit JobList(Regional& regional) : regional_(regional) {}
  JobList(const JobList&) = delete;
  JobList& operator=(const JobList&) = delete;

  void SetView(JobListView* view) { view_ = view; }
  void BringViewUpToDate() const;

  std::size_t Count() const { return rows_.size(); }
  const JobRow& Row(int row) const;

  // The row count as the 16-bit counter of a row loop. Raises Overflow beyond 32767.
  std::int16_t RowLoopEnd() const;

  void Add(JobRow row);
  void Remove(int row);
  void Clear();

  void SetSmallIcon(int row, int smallIcon);
  void SetSize(int row, std::string size);
  void SetGhosted(int row, bool ghosted);
  void SetMask(int row, std::string mask, std::string subFolders);

  // True if a row of either kind has this path, with case ignored. Raises Overflow beyond 32767 rows,
  // as the walk over them that this answers for.
  bool IsInJobList(std::string_view path) const;

  // The first row from `startRow` on, going round once, whose path begins with `prefix`, or the name at the
  // path's end, with case ignored; 0 for none.
  int FindByPrefix(std::string_view prefix, int startRow) const;

  // The selected row, 0 for none. The view tells what the user selects; `Select` is for the program.
  int SelectedRow() const { return selectedRow_; }
  void Select(int row);
  void UserSelected(int row) { selectedRow_ = row; }

  // Has the rows from `first` to the last shown, as many as there is room for.
  void Reveal(int first) const;

 private:
  JobRow& MutableRow(int row);

  Regional& regional_;
  JobListView* view_ = nullptr;
  std::vector<JobRow> rows_;
  std::unordered_map<std::string, int> rowsOfPath_;  // by upper-cased path
  int selectedRow_ = 0;
};

}  // namespace zq
