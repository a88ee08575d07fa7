#include "controls/FolderTreeview.h"

#include <shellapi.h>
#include <shlwapi.h>

#include <algorithm>

#include "controls/RowColours.h"
#include "controls/SystemColours.h"
#include "controls/WaitCursor.h"
#include "platform/PathPlace.h"
#include "platform/win32/LongPath.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr DWORD kLongestPath = 32768;  // UTF-16 units that a path of the system can have

// No box of the system's about a drive without a disk, while it lives.
class QuietDrives {
 public:
  QuietDrives() { ::SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before_); }
  ~QuietDrives() { ::SetThreadErrorMode(before_, nullptr); }
  QuietDrives(const QuietDrives&) = delete;
  QuietDrives& operator=(const QuietDrives&) = delete;

 private:
  DWORD before_ = 0;
};

// The folder behind a list of ids; null if it can't be had.
ComPointer<IShellFolder> BindFolder(PCIDLIST_ABSOLUTE list) {
  IShellFolder* desktopRaw = nullptr;
  if (FAILED(::SHGetDesktopFolder(&desktopRaw))) return {};
  ComPointer<IShellFolder> desktop(desktopRaw);
  if (list->mkid.cb == 0) return desktop;
  void* folder = nullptr;
  if (FAILED(desktop->BindToObject(list, nullptr, IID_IShellFolder, &folder))) return {};
  return ComPointer<IShellFolder>(static_cast<IShellFolder*>(folder));
}

// The folder that holds the last id of a list, and that id. Null if it can't be had.
ComPointer<IShellFolder> BindParent(PCIDLIST_ABSOLUTE list, PCUITEMID_CHILD& child) {
  void* parent = nullptr;
  if (FAILED(::SHBindToParent(list, IID_IShellFolder, &parent, &child))) return {};
  return ComPointer<IShellFolder>(static_cast<IShellFolder*>(parent));
}

bool IsDesktop(PCIDLIST_ABSOLUTE list) {
  return list->mkid.cb == 0;
}

// Those of the attributes `wanted` that the folder has.
SFGAOF AttributesOf(PCIDLIST_ABSOLUTE list, SFGAOF wanted) {
  // The desktop has no parent to be asked. It stands for all that is below it, and for no path.
  if (IsDesktop(list)) return wanted & (SFGAO_FOLDER | SFGAO_HASSUBFOLDER);
  PCUITEMID_CHILD child = nullptr;
  const ComPointer<IShellFolder> parent = BindParent(list, child);
  SFGAOF attributes = wanted;
  if (!parent || FAILED(parent->GetAttributesOf(1, &child, &attributes))) return 0;
  return attributes & wanted;
}

// As the tree shows it; "" if it can't be had.
std::wstring NameOf(PCIDLIST_ABSOLUTE list) {
  if (IsDesktop(list)) {
    SHFILEINFOW info{};
    ::SHGetFileInfoW(reinterpret_cast<LPCWSTR>(list), 0, &info, sizeof info, SHGFI_PIDL | SHGFI_DISPLAYNAME);
    return info.szDisplayName;
  }
  PCUITEMID_CHILD child = nullptr;
  const ComPointer<IShellFolder> parent = BindParent(list, child);
  STRRET text{};
  if (!parent || FAILED(parent->GetDisplayNameOf(child, SHGDN_INFOLDER, &text))) return {};
  PWSTR raw = nullptr;
  if (FAILED(::StrRetToStrW(&text, child, &raw))) return {};
  std::wstring name(raw);
  ::CoTaskMemFree(raw);
  return name;
}

// "" for what has none.
std::string PathOf(PCIDLIST_ABSOLUTE list) {
  std::wstring path(kLongestPath, L'\0');
  if (!::SHGetPathFromIDListEx(list, path.data(), kLongestPath, GPFIDL_DEFAULT)) return {};
  return FromWide(path.c_str());
}

// Whether the first of two items is known to stand before the second.
bool StandsBefore(IShellFolder& folder, PCUIDLIST_RELATIVE a, PCUIDLIST_RELATIVE b) {
  const std::optional<int> order = CompareItems(folder, 0, a, b);
  return order && *order < 0;
}

// Which folders Explorer lists, by the user's own choice there.
SHCONTF ListedFolders() {
  SHELLSTATE state{};
  ::SHGetSetSettings(&state, SSF_SHOWALLOBJECTS | SSF_SHOWSUPERHIDDEN, FALSE);
  SHCONTF folders = SHCONTF_FOLDERS;
  if (state.fShowAllObjects) folders |= SHCONTF_INCLUDEHIDDEN;
  if (state.fShowSuperHidden) folders |= SHCONTF_INCLUDESUPERHIDDEN;
  return folders;
}

int PictureOf(PCIDLIST_ABSOLUTE list, UINT flags) {
  SHFILEINFOW info{};
  ::SHGetFileInfoW(reinterpret_cast<LPCWSTR>(list), 0, &info, sizeof info,
                   SHGFI_PIDL | SHGFI_SYSICONINDEX | SHGFI_SMALLICON | flags);
  return info.iIcon;
}

}  // namespace

std::optional<int> CompareItems(IShellFolder& folder, LPARAM rule, PCUIDLIST_RELATIVE a,
                                PCUIDLIST_RELATIVE b) {
  const HRESULT result = folder.CompareIDs(rule, a, b);
  if (FAILED(result)) return std::nullopt;
  return static_cast<short>(HRESULT_CODE(result));
}

void FolderTreeview::Attached() {
  TreeView_SetUnicodeFormat(Handle(), TRUE);
  ::SetWindowSubclass(Handle(), &TreeProcedure, 0, 0);
  ::SendMessageW(Handle(), TVM_SETEXTENDEDSTYLE, TVS_EX_DOUBLEBUFFER, TVS_EX_DOUBLEBUFFER);
  SHFILEINFOW info{};
  const auto images = reinterpret_cast<HIMAGELIST>(
      ::SHGetFileInfoW(L"folder", FILE_ATTRIBUTE_DIRECTORY, &info, sizeof info,
                       SHGFI_USEFILEATTRIBUTES | SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
  TreeView_SetImageList(Handle(), images, TVSIL_NORMAL);  // the system's own, which stays its own

  PIDLIST_ABSOLUTE desktop = nullptr;
  if (FAILED(::SHGetSpecialFolderLocation(nullptr, CSIDL_DESKTOP, &desktop))) return;
  const HTREEITEM root = Insert(TVI_ROOT, TVI_LAST, UniqueItemIdList(desktop));
  if (root) TreeView_Expand(Handle(), root, TVE_EXPAND);
}

void FolderTreeview::SelectDesktop() {
  TreeView_SelectItem(Handle(), TreeView_GetRoot(Handle()));
}

void FolderTreeview::SelectPath(const std::string& path) {
  // The shell's parser takes the desktop for the current folder.
  const std::string name = FullPath(path);
  HTREEITEM item = TreeView_GetRoot(Handle());
  if (!BeginsOnADriveOrShare(name) || !item) return;
  const WaitCursor wait;
  const QuietDrives quiet;
  PIDLIST_ABSOLUTE raw = nullptr;
  SFGAOF attributes = SFGAO_FOLDER;
  if (FAILED(::SHParseDisplayName(ToWide(name).c_str(), nullptr, &raw, attributes, &attributes))) return;
  const UniqueItemIdList list(raw);
  if (!(attributes & SFGAO_FOLDER)) return;

  for (PCUIDLIST_RELATIVE rest = list.get(); rest->mkid.cb != 0; rest = ::ILGetNext(rest)) {
    const UniqueItemIdList step(::ILCloneFirst(rest));
    Fill(item);
    item = FindOrInsert(item, step.get());
    if (!item) return;
  }
  TreeView_SelectItem(Handle(), item);
  TreeView_EnsureVisible(Handle(), item);
}

// The key * opens all that is below the selected folder, which may be a whole drive, and until every folder
// is read the user can't stop it. Here it opens the one folder.
LRESULT CALLBACK FolderTreeview::TreeProcedure(HWND tree, UINT message, WPARAM wParam, LPARAM lParam,
                                               UINT_PTR id, DWORD_PTR) {
  switch (message) {
    case WM_KEYDOWN:
      if (wParam != VK_MULTIPLY) break;
      if (const HTREEITEM selected = TreeView_GetSelection(tree)) TreeView_Expand(tree, selected, TVE_EXPAND);
      return 0;
    case WM_CHAR:
      if (wParam == L'*') return 0;  // no folder's name begins with it
      break;
    case WM_NCDESTROY:
      ::RemoveWindowSubclass(tree, &TreeProcedure, id);
      break;
    default:
      break;
  }
  return ::DefSubclassProc(tree, message, wParam, lParam);
}

// The chosen folder stands out while the focus is elsewhere, too: it is the one that will be added.
LRESULT FolderTreeview::CustomDraw(NMTVCUSTOMDRAW& draw) const {
  if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  const auto item = reinterpret_cast<HTREEITEM>(draw.nmcd.dwItemSpec);
  const bool chosen = (TreeView_GetItemState(Handle(), item, TVIS_SELECTED) & TVIS_SELECTED) != 0;
  if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && chosen && ::GetFocus() != Handle()) {
    const RowColours colours = ColoursOf(SystemPalette(), RowState::ChosenElsewhere, false);
    draw.clrText = colours.text;
    draw.clrTextBk = colours.background;
  }
  return CDRF_DODEFAULT;
}

bool FolderTreeview::OnNotify(const NMHDR& header, LRESULT& result) {
  auto& mutableHeader = const_cast<NMHDR&>(header);
  switch (header.code) {
    case TVN_GETDISPINFOW:
      GetDisplayInfo(reinterpret_cast<NMTVDISPINFOW&>(mutableHeader).item);
      return true;
    case NM_CUSTOMDRAW:
      result = CustomDraw(reinterpret_cast<NMTVCUSTOMDRAW&>(mutableHeader));
      return true;
    case TVN_ITEMEXPANDINGW: {
      const auto& expanding = reinterpret_cast<const NMTREEVIEWW&>(header);
      if (expanding.action & TVE_EXPAND) Fill(expanding.itemNew.hItem);
      return true;
    }
    case TVN_SELCHANGEDW: {
      const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
      if (change.itemNew.hItem) TellSelection(NodeOf(change.itemNew.hItem));
      return true;
    }
    default:
      return false;
  }
}

FolderTreeview::Node& FolderTreeview::NodeOf(HTREEITEM item) const {
  TVITEMW info{};
  info.mask = TVIF_PARAM;
  info.hItem = item;
  ::SendMessageW(Handle(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&info));
  return *reinterpret_cast<Node*>(info.lParam);
}

// Null for a folder without a name, which nobody could choose.
HTREEITEM FolderTreeview::Insert(HTREEITEM parent, HTREEITEM after, UniqueItemIdList folder) {
  std::wstring name = NameOf(folder.get());
  if (name.empty()) return nullptr;
  const bool ghosted = AttributesOf(folder.get(), SFGAO_GHOSTED) != 0;
  nodes_.push_back(std::make_unique<Node>());
  nodes_.back()->folder = std::move(folder);
  TVINSERTSTRUCTW insert{};
  insert.hParent = parent;
  insert.hInsertAfter = after;
  TVITEMW& item = insert.item;
  item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_CHILDREN | TVIF_PARAM | TVIF_STATE;
  item.pszText = name.data();
  // Pictures and the button to open it are looked up once the item is on the screen.
  item.iImage = I_IMAGECALLBACK;
  item.iSelectedImage = I_IMAGECALLBACK;
  item.cChildren = I_CHILDRENCALLBACK;
  item.stateMask = TVIS_CUT;
  item.state = ghosted ? TVIS_CUT : 0;
  item.lParam = reinterpret_cast<LPARAM>(nodes_.back().get());
  return reinterpret_cast<HTREEITEM>(
      ::SendMessageW(Handle(), TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

// A folder that can't be read just now, as on a drive without a disk, is asked again the next time.
void FolderTreeview::Fill(HTREEITEM item) {
  Node& node = NodeOf(item);
  if (node.filled) return;
  const WaitCursor wait;
  const QuietDrives quiet;
  const ComPointer<IShellFolder> folder = BindFolder(node.folder.get());
  if (!folder) return;
  IEnumIDList* foldersRaw = nullptr;
  // Without a window to show it in, the shell asks nothing.
  const HRESULT listed = folder->EnumObjects(nullptr, ListedFolders(), &foldersRaw);
  const ComPointer<IEnumIDList> folders(foldersRaw);
  if (FAILED(listed)) return;
  node.filled = true;
  if (folders) InsertFolders(item, *folder, *folders);

  TVITEMW info{};
  info.mask = TVIF_CHILDREN;
  info.hItem = item;
  info.cChildren = TreeView_GetChild(Handle(), item) ? 1 : 0;
  ::SendMessageW(Handle(), TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&info));
}

void FolderTreeview::InsertFolders(HTREEITEM item, IShellFolder& folder, IEnumIDList& folders) {
  std::vector<UniqueItemIdList> ids;
  PITEMID_CHILD raw = nullptr;
  while (folders.Next(1, &raw, nullptr) == S_OK) {
    UniqueItemIdList id(raw);
    PCUITEMID_CHILD child = id.get();
    // An archive that the shell opens like a folder is a file all the same.
    SFGAOF attributes = SFGAO_FOLDER | SFGAO_STREAM;
    const bool known = SUCCEEDED(folder.GetAttributesOf(1, &child, &attributes));
    if (known && (attributes & SFGAO_FOLDER) && (attributes & SFGAO_STREAM)) continue;
    ids.push_back(std::move(id));
  }
  // An order given by foreign code may contradict itself; a stable sort stays inside its range then.
  std::stable_sort(ids.begin(), ids.end(), [&](const UniqueItemIdList& a, const UniqueItemIdList& b) {
    return StandsBefore(folder, a.get(), b.get());
  });
  const PCIDLIST_ABSOLUTE parent = NodeOf(item).folder.get();
  const bool onADrive = !IsDesktop(parent) && BeginsOnADriveOrShare(PathOf(parent));
  for (const UniqueItemIdList& id : ids) {
    UniqueItemIdList list(::ILCombine(parent, id.get()));
    if (!onADrive && BeginsInAnotherNameSpace(PathOf(list.get()))) continue;
    Insert(item, TVI_LAST, std::move(list));
  }
}

// The child of `parent` with this id. One that the shell hasn't listed takes its place among the others.
HTREEITEM FolderTreeview::FindOrInsert(HTREEITEM parent, PCUITEMID_CHILD wanted) {
  const PCIDLIST_ABSOLUTE parentList = NodeOf(parent).folder.get();
  const ComPointer<IShellFolder> folder = BindFolder(parentList);
  if (!folder) return nullptr;
  HTREEITEM before = TVI_FIRST;
  for (HTREEITEM item = TreeView_GetChild(Handle(), parent); item;
       item = TreeView_GetNextSibling(Handle(), item)) {
    const PCUITEMID_CHILD id = ::ILFindLastID(NodeOf(item).folder.get());
    if (CompareItems(*folder, SHCIDS_CANONICALONLY, id, wanted) == 0) return item;
    if (StandsBefore(*folder, id, wanted)) before = item;
  }
  return Insert(parent, before, UniqueItemIdList(::ILCombine(parentList, wanted)));
}

void FolderTreeview::GetDisplayInfo(TVITEMW& item) const {
  const QuietDrives quiet;
  const PCIDLIST_ABSOLUTE folder = reinterpret_cast<const Node*>(item.lParam)->folder.get();
  if (item.mask & TVIF_IMAGE) item.iImage = PictureOf(folder, 0);
  if (item.mask & TVIF_SELECTEDIMAGE) item.iSelectedImage = PictureOf(folder, SHGFI_OPENICON);
  if (item.mask & TVIF_CHILDREN) item.cChildren = AttributesOf(folder, SFGAO_HASSUBFOLDER) ? 1 : 0;
  item.mask |= TVIF_DI_SETITEM;
}

void FolderTreeview::TellSelection(const Node& node) {
  if (!SelectionChange) return;
  const std::string path = PathOf(node.folder.get());
  const bool inFileSystem = AttributesOf(node.folder.get(), SFGAO_FILESYSTEM) != 0;
  if (inFileSystem && BeginsOnADriveOrShare(path)) {
    SelectionChange(path, path);
  } else {
    SelectionChange(FromWide(NameOf(node.folder.get())), "");
  }
}

}  // namespace zq
