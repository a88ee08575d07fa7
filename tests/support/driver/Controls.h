// The system's controls in another process, whose structures have to be carried over.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <string_view>
#include <vector>

#include "support/driver/Window.h"

namespace zq::test {

// Memory in the process of a window, freed with this object.
class RemoteMemory {
 public:
  RemoteMemory(Window window, std::size_t bytes);
  ~RemoteMemory();
  RemoteMemory(const RemoteMemory&) = delete;
  RemoteMemory& operator=(const RemoteMemory&) = delete;

  void* Address() const { return address_; }
  LPARAM Param(std::size_t offset = 0) const {
    return reinterpret_cast<LPARAM>(static_cast<char*>(address_) + offset);
  }
  void Write(std::size_t offset, const void* data, std::size_t bytes) const;
  void Read(std::size_t offset, void* data, std::size_t bytes) const;
  // Text in UTF-16 up to its zero, of at most `units`.
  std::string ReadText(std::size_t offset, std::size_t units) const;

 private:
  HANDLE process_ = nullptr;
  void* address_ = nullptr;
};

// SysListView32. Rows and columns count from 0.
class ListView {
 public:
  explicit ListView(Window window) : window_(window) {}

  Window TheWindow() const { return window_; }
  int Rows() const { return static_cast<int>(window_.Send(LVM_GETITEMCOUNT)); }
  std::vector<std::string> Columns() const;
  std::string Text(int row, int column = 0) const;
  std::vector<std::string> Row(int row) const;
  // LVIS_ bits; LVIS_CUT is a ghosted row. A virtual list keeps only selection and focus.
  UINT State(int row) const;
  int Image(int row) const;
  int Selected() const;  // the first selected row, -1 if none
  void Select(int row) const;
  // The row's place on the screen, for the mouse.
  POINT RowPoint(int row) const;
  // The row with this text in column 0, -1 if none.
  int Find(std::string_view text) const;
  void WaitRows(int rows, Limit limit = kPatience) const;

 private:
  LVITEMW Item(int row, int column, UINT mask, std::string* text) const;
  Window window_;
};

// msctls_statusbar32: the texts of its panels.
std::vector<std::string> StatusPanels(Window statusBar);

struct ProgressState {
  int position;
  int low;
  int high;
};
ProgressState ReadProgress(Window progressBar);

struct ToolButton {
  int command;
  std::string caption;
  bool enabled;
  bool checked;
  bool separator;
};
// ToolbarWindow32: its buttons in their order. WaitToolEnabled waits for a state by command id.
std::vector<ToolButton> ToolButtons(Window toolBar);
void WaitToolEnabled(Window toolBar, int command, bool enabled, Limit limit = kPatience);

// ComboBox and ListBox: entries, and the selected one, "" if none. SelectEntry also tells the parent,
// as a user's choice does, and throws when there is no such entry.
std::vector<std::string> Entries(Window list);
std::string SelectedEntry(Window list);
void SelectEntry(Window list, std::string_view entry);

// SysTabControl32.
int SelectedTab(Window tabs);

// SysTreeView32, by the texts from the root down.
class TreeView {
 public:
  explicit TreeView(Window window) : window_(window) {}

  std::string Text(HTREEITEM item) const;
  // The texts of the items below `parent`; TVI_ROOT for the roots.
  std::vector<std::string> Children(HTREEITEM parent) const;
  // Opens one item after another and gives the last; waits for each, throws when one doesn't come.
  HTREEITEM Open(const std::vector<std::string>& texts) const;
  void Select(HTREEITEM item) const;
  HTREEITEM Selected() const;

 private:
  HTREEITEM FirstChild(HTREEITEM parent) const;
  HTREEITEM Next(HTREEITEM item) const;
  Window window_;
};

}  // namespace zq::test
