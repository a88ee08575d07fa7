// The main window's list: the rows of the job, and their pictures.
#include <windows.h>
#include <shellapi.h>

#include <array>
#include <utility>

#include "core/main/frmMain.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr ListColumn kColumns[] = {
    {"Name & Location", LVCFMT_LEFT},
    {"Size", LVCFMT_RIGHT},
    {"Folder Mask", LVCFMT_LEFT},
    {"Sub Folders", LVCFMT_LEFT},
};

// A column takes this part of the list's width, in whole pixels: together some 97.6 per cent, which
// leaves room for a scroll bar.
constexpr std::array<int, std::size(kColumns)> kColumnDivisors{2, 7, 6, 6};

std::string CellOf(const JobRow& row, int column) {
  switch (column) {
    case 0:
      return row.NameAndLocation;
    case 1:
      return row.Size;
    case 2:
      return row.FolderMask;
    case 3:
      return row.SubFolders;
    default:
      return {};
  }
}

}  // namespace

void frmMain::ConnectList() {
  ListView1.CellText = [this](int row, int column) { return CellOf(jobList_.Row(row), column); };
  ListView1.RowPicture = [this](int row) { return jobList_.Row(row).SmallIcon; };
  ListView1.RowGhosted = [this](int row) { return jobList_.Row(row).Ghosted; };
  ListView1.SelectionChange = [this](int row) { jobList_.UserSelected(row); };
  ListView1.DblClick = [this] { commands_.ListDoubleClicked(); };
  ListView1.Return = [this] { commands_.ListDoubleClicked(); };
  ListView1.EmptyText = "Add files or folders to be wiped, or drop them here";
  ListView1.FindRow = [this](const std::string& prefix, int start) {
    return jobList_.FindByPrefix(prefix, start);
  };
}

void frmMain::ShowColumns() {
  ListView1.SetColumns(kColumns);
}

void frmMain::LoadRowPictures() {
  ImageList former;  // shown until the list has the new ones
  former.Swap(ImageList3);
  ImageList3.Create(ScaleForDpi(16, Dpi()));
  ImageList3.AddPicture("folder");
  ImageList3.AddPicture("file");
  const std::vector<DrawnIcon> drawn = std::exchange(drawnIcons_, {});
  for (const DrawnIcon& icon : drawn) {
    DrawFileIcon(icon.key, icon.flags);
    AddDrawnPicture();
  }
  ListView1.SetSmallIcons(ImageList3.Handle());
}

void frmMain::DockStudio1_ClientAreaChanged() {
  ListView1.Move(DockStudio1.ClientArea());
  const RECT list = ListView1.Place();
  const int width = list.right - list.left;
  for (std::size_t i = 0; i < kColumnDivisors.size(); ++i)
    ListView1.SetColumnWidth(static_cast<int>(i), width / kColumnDivisors[i]);
}

void frmMain::ListView1_OLEDragDrop(const DroppedPaths& paths) {
  addFiles_.AddDropped(paths);
  commands_.UpdateTools();
}

// The control is told the number of rows once for all that are added in one go. When rows go, it is told
// at once: it must never ask for one that isn't there.
void frmMain::RowsChanged() {
  if (static_cast<int>(jobList_.Count()) < ListView1.RowCount()) {
    rowsPending_ = true;
    ShowPendingRows();
    return;
  }
  if (rowsPending_) return;
  rowsPending_ = true;
  ::PostMessageW(Handle(), kShowRows, 0, 0);
}

void frmMain::ShowPendingRows() {
  if (!rowsPending_) return;
  rowsPending_ = false;
  ListView1.SetRowCount(static_cast<int>(jobList_.Count()));
  ListView1.SelectRow(jobList_.SelectedRow());
}

void frmMain::RowChanged(int row) {
  if (!rowsPending_) ListView1.RedrawRow(row);
}

void frmMain::SelectionChanged(int row) {
  if (!rowsPending_) ListView1.SelectRow(row);
}

void frmMain::RevealRows(int first) {
  ShowPendingRows();
  ListView1.RevealRows(first);
}

std::string frmMain::WindowsFolder() {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(::GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
  return FromWide(folder);
}

void frmMain::MeasureSmallIcon(const std::string& key, std::uint32_t flags) {
  SHFILEINFOW info{};
  const auto images = reinterpret_cast<HIMAGELIST>(
      ::SHGetFileInfoW(ToWide(key).c_str(), 0, &info, sizeof info, SHGFI_SYSICONINDEX | flags));
  if (images) ::ImageList_GetIconSize(images, &IconWidth, &IconHeight);
}

void frmMain::DrawFileIcon(const std::string& key, std::uint32_t flags) {
  drawnIcons_.push_back({key, flags});
  SHFILEINFOW info{};
  ::SHGetFileInfoW(ToWide(key).c_str(), FILE_ATTRIBUTE_NORMAL, &info, sizeof info, SHGFI_ICON | flags);
  drawnIcon_.Reset(info.hIcon);
}

void frmMain::AddDrawnPicture() {
  ImageList3.AddIcon(drawnIcon_.Get());
  drawnIcon_.Reset();
}

}  // namespace zq
