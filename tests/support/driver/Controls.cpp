#include "support/driver/Controls.h"

#include "support/driver/Text.h"

namespace zq::test {
namespace {

constexpr std::size_t kTextUnits = 4096;

HTREEITEM ToItem(LRESULT result) {
  return reinterpret_cast<HTREEITEM>(result);
}

bool IsComboBox(Window list) {
  return list.ClassName().find("Combo") != std::string::npos;
}

}  // namespace

RemoteMemory::RemoteMemory(Window window, std::size_t bytes) {
  process_ =
      ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, window.ProcessId());
  if (process_ != nullptr) {
    address_ = ::VirtualAllocEx(process_, nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  }
  if (address_ == nullptr) {
    if (process_ != nullptr) ::CloseHandle(process_);
    throw DriverError("no memory in the process of " + window.Describe());
  }
}

RemoteMemory::~RemoteMemory() {
  ::VirtualFreeEx(process_, address_, 0, MEM_RELEASE);
  ::CloseHandle(process_);
}

void RemoteMemory::Write(std::size_t offset, const void* data, std::size_t bytes) const {
  if (::WriteProcessMemory(process_, static_cast<char*>(address_) + offset, data, bytes, nullptr) == 0) {
    throw DriverError("can't write into the other process");
  }
}

void RemoteMemory::Read(std::size_t offset, void* data, std::size_t bytes) const {
  if (::ReadProcessMemory(process_, static_cast<char*>(address_) + offset, data, bytes, nullptr) == 0) {
    throw DriverError("can't read from the other process");
  }
}

std::string RemoteMemory::ReadText(std::size_t offset, std::size_t units) const {
  std::wstring text(units, L'\0');
  Read(offset, text.data(), units * sizeof(wchar_t));
  return ToUtf8(std::wstring_view(text.c_str()));
}

LVITEMW ListView::Item(int row, int column, UINT mask, std::string* text) const {
  const RemoteMemory memory(window_, sizeof(LVITEMW) + kTextUnits * sizeof(wchar_t));
  LVITEMW item{};
  item.mask = mask;
  item.iItem = row;
  item.iSubItem = column;
  item.stateMask = ~0u;
  item.pszText = reinterpret_cast<wchar_t*>(memory.Param(sizeof(LVITEMW)));
  item.cchTextMax = static_cast<int>(kTextUnits);
  memory.Write(0, &item, sizeof item);
  if (window_.Send(LVM_GETITEMW, 0, memory.Param()) == 0) {
    throw DriverError("no row " + std::to_string(row) + " in " + window_.Describe());
  }
  memory.Read(0, &item, sizeof item);
  if (text != nullptr) {
    // The list may point to a text of its own instead of filling ours.
    const auto own = reinterpret_cast<LPARAM>(item.pszText);
    if (own == memory.Param(sizeof(LVITEMW))) {
      *text = memory.ReadText(sizeof(LVITEMW), kTextUnits);
    } else {
      throw DriverError("the text of row " + std::to_string(row) + " is out of reach");
    }
  }
  return item;
}

std::string ListView::Text(int row, int column) const {
  std::string text;
  Item(row, column, LVIF_TEXT, &text);
  return text;
}

std::vector<std::string> ListView::Columns() const {
  const Window header(reinterpret_cast<HWND>(window_.Send(LVM_GETHEADER)));
  const auto count = static_cast<int>(header.Send(HDM_GETITEMCOUNT));
  std::vector<std::string> columns;
  const RemoteMemory memory(header, sizeof(HDITEMW) + kTextUnits * sizeof(wchar_t));
  for (int i = 0; i < count; ++i) {
    HDITEMW item{};
    item.mask = HDI_TEXT;
    item.pszText = reinterpret_cast<wchar_t*>(memory.Param(sizeof(HDITEMW)));
    item.cchTextMax = static_cast<int>(kTextUnits);
    memory.Write(0, &item, sizeof item);
    header.Send(HDM_GETITEMW, static_cast<WPARAM>(i), memory.Param());
    columns.push_back(memory.ReadText(sizeof(HDITEMW), kTextUnits));
  }
  return columns;
}

std::vector<std::string> ListView::Row(int row) const {
  const Window header(reinterpret_cast<HWND>(window_.Send(LVM_GETHEADER)));
  const auto count = static_cast<int>(header.Send(HDM_GETITEMCOUNT));
  std::vector<std::string> texts;
  for (int column = 0; column < count; ++column) texts.push_back(Text(row, column));
  return texts;
}

UINT ListView::State(int row) const {
  return Item(row, 0, LVIF_STATE, nullptr).state;
}
int ListView::Image(int row) const {
  return Item(row, 0, LVIF_IMAGE, nullptr).iImage;
}

int ListView::Selected() const {
  return static_cast<int>(window_.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void ListView::Select(int row) const {
  const RemoteMemory memory(window_, sizeof(LVITEMW));
  LVITEMW item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  memory.Write(0, &item, sizeof item);
  window_.Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), memory.Param());
  item.state = LVIS_SELECTED | LVIS_FOCUSED;
  memory.Write(0, &item, sizeof item);
  window_.Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), memory.Param());
}

POINT ListView::RowPoint(int row) const {
  const RemoteMemory memory(window_, sizeof(RECT));
  RECT rect{};
  rect.left = LVIR_LABEL;
  memory.Write(0, &rect, sizeof rect);
  if (window_.Send(LVM_GETITEMRECT, static_cast<WPARAM>(row), memory.Param()) == 0) {
    throw DriverError("no row " + std::to_string(row) + " in " + window_.Describe());
  }
  memory.Read(0, &rect, sizeof rect);
  POINT point{rect.left + 8, (rect.top + rect.bottom) / 2};
  ::ClientToScreen(window_.Handle(), &point);
  return point;
}

int ListView::Find(std::string_view text) const {
  const int rows = Rows();
  for (int row = 0; row < rows; ++row) {
    if (Text(row) == text) return row;
  }
  return -1;
}

void ListView::WaitRows(int rows, Limit limit) const {
  Await(
      std::to_string(rows) + " rows in " + window_.Describe(), [&] { return Rows() == rows; }, limit);
}

std::vector<std::string> StatusPanels(Window statusBar) {
  const auto count = static_cast<WPARAM>(statusBar.Send(SB_GETPARTS));
  const RemoteMemory memory(statusBar, kTextUnits * sizeof(wchar_t));
  std::vector<std::string> panels;
  for (WPARAM i = 0; i < count; ++i) {
    const LRESULT length = statusBar.Send(SB_GETTEXTLENGTHW, i);
    if (LOWORD(length) >= kTextUnits || (HIWORD(length) & SBT_OWNERDRAW) != 0) {
      throw DriverError("the text of panel " + std::to_string(i) + " is out of reach");
    }
    statusBar.Send(SB_GETTEXTW, i, memory.Param());
    panels.push_back(memory.ReadText(0, LOWORD(length) + 1u));
  }
  return panels;
}

ProgressState ReadProgress(Window progressBar) {
  return {static_cast<int>(progressBar.Send(PBM_GETPOS)), static_cast<int>(progressBar.Send(PBM_GETRANGE, 1)),
          static_cast<int>(progressBar.Send(PBM_GETRANGE, 0))};
}

std::vector<ToolButton> ToolButtons(Window toolBar) {
  const auto count = static_cast<WPARAM>(toolBar.Send(TB_BUTTONCOUNT));
  const RemoteMemory memory(toolBar, sizeof(TBBUTTON) + kTextUnits * sizeof(wchar_t));
  std::vector<ToolButton> buttons;
  for (WPARAM i = 0; i < count; ++i) {
    TBBUTTON button{};
    toolBar.Send(TB_GETBUTTON, i, memory.Param());
    memory.Read(0, &button, sizeof button);
    ToolButton tool{};
    tool.command = button.idCommand;
    tool.enabled = (button.fsState & TBSTATE_ENABLED) != 0;
    tool.checked = (button.fsState & TBSTATE_CHECKED) != 0;
    tool.separator = (button.fsStyle & BTNS_SEP) != 0;
    const auto command = static_cast<WPARAM>(button.idCommand);
    if (!tool.separator && toolBar.Send(TB_GETBUTTONTEXTW, command, memory.Param(sizeof button)) > 0) {
      tool.caption = memory.ReadText(sizeof button, kTextUnits);
    }
    buttons.push_back(tool);
  }
  return buttons;
}

void WaitToolEnabled(Window toolBar, int command, bool enabled, Limit limit) {
  Await(
      "tool " + std::to_string(command) + (enabled ? " to be enabled" : " to be disabled"),
      [&] { return (toolBar.Send(TB_ISBUTTONENABLED, static_cast<WPARAM>(command)) != 0) == enabled; },
      limit);
}

std::vector<std::string> Entries(Window list) {
  const bool combo = IsComboBox(list);
  const auto count = list.Send(combo ? CB_GETCOUNT : LB_GETCOUNT);
  std::vector<std::string> entries;
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    const LRESULT length = list.Send(combo ? CB_GETLBTEXTLEN : LB_GETTEXTLEN, index);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    list.Send(combo ? CB_GETLBTEXT : LB_GETTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    entries.push_back(ToUtf8(std::wstring_view(text.c_str())));
  }
  return entries;
}

std::string SelectedEntry(Window list) {
  const LRESULT selected = list.Send(IsComboBox(list) ? CB_GETCURSEL : LB_GETCURSEL);
  return selected < 0 ? "" : Entries(list)[static_cast<std::size_t>(selected)];
}

void SelectEntry(Window list, std::string_view entry) {
  const bool combo = IsComboBox(list);
  const std::vector<std::string> entries = Entries(list);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i] != entry) continue;
    list.Send(combo ? CB_SETCURSEL : LB_SETCURSEL, i);
    // Choosing by message doesn't tell the parent, choosing by hand does.
    const WORD code = combo ? static_cast<WORD>(CBN_SELCHANGE) : static_cast<WORD>(LBN_SELCHANGE);
    Window(::GetParent(list.Handle()))
        .Send(WM_COMMAND, MAKEWPARAM(list.Id(), code), reinterpret_cast<LPARAM>(list.Handle()));
    return;
  }
  throw DriverError("no entry '" + std::string(entry) + "' in " + list.Describe());
}

int SelectedTab(Window tabs) {
  return static_cast<int>(tabs.Send(TCM_GETCURSEL));
}

HTREEITEM TreeView::FirstChild(HTREEITEM parent) const {
  if (parent == TVI_ROOT) return ToItem(window_.Send(TVM_GETNEXTITEM, TVGN_ROOT, 0));
  return ToItem(window_.Send(TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(parent)));
}

HTREEITEM TreeView::Next(HTREEITEM item) const {
  return ToItem(window_.Send(TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)));
}

std::string TreeView::Text(HTREEITEM item) const {
  const RemoteMemory memory(window_, sizeof(TVITEMW) + kTextUnits * sizeof(wchar_t));
  TVITEMW remote{};
  remote.mask = TVIF_TEXT | TVIF_HANDLE;
  remote.hItem = item;
  remote.pszText = reinterpret_cast<wchar_t*>(memory.Param(sizeof(TVITEMW)));
  remote.cchTextMax = static_cast<int>(kTextUnits);
  memory.Write(0, &remote, sizeof remote);
  if (window_.Send(TVM_GETITEMW, 0, memory.Param()) == 0) throw DriverError("no such tree item");
  return memory.ReadText(sizeof(TVITEMW), kTextUnits);
}

std::vector<std::string> TreeView::Children(HTREEITEM parent) const {
  std::vector<std::string> texts;
  for (HTREEITEM item = FirstChild(parent); item != nullptr; item = Next(item)) texts.push_back(Text(item));
  return texts;
}

HTREEITEM TreeView::Open(const std::vector<std::string>& texts) const {
  HTREEITEM parent = TVI_ROOT;
  for (const std::string& text : texts) {
    HTREEITEM found = nullptr;
    if (parent != TVI_ROOT) {
      window_.Send(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(parent));
    }
    Await("the tree's item '" + text + "'", [&] {
      for (HTREEITEM item = FirstChild(parent); item != nullptr && found == nullptr; item = Next(item)) {
        if (Text(item) == text) found = item;
      }
      return found != nullptr;
    });
    parent = found;
  }
  return parent;
}

void TreeView::Select(HTREEITEM item) const {
  window_.Send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
}

HTREEITEM TreeView::Selected() const {
  return ToItem(window_.Send(TVM_GETNEXTITEM, TVGN_CARET, 0));
}

}  // namespace zq::test
