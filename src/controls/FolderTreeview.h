// FolderTreeview: the shell's folders as a tree, with the names, the pictures and the order that Explorer
// shows. A folder's own folders are looked up when it is opened.
#pragma once

#include <windows.h>
#include <shlobj.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/Control.h"

namespace zq {

struct ItemIdListFree {
  void operator()(ITEMIDLIST* list) const { ::CoTaskMemFree(list); }
};
using UniqueItemIdList = std::unique_ptr<ITEMIDLIST, ItemIdListFree>;

// Negative, zero or positive, as the shell orders two of a folder's items. Nothing if it can't tell: they
// are not the same then.
std::optional<int> CompareItems(IShellFolder& folder, LPARAM rule, PCUIDLIST_RELATIVE a,
                                PCUIDLIST_RELATIVE b);

// Folders outside the drives with a letter and the shares of servers, such as Wine's way to the files of the
// system below it, aren't in the tree.
class FolderTreeview : public Control {
 public:
  using Control::Control;

  // `text` is the folder's path for a folder on a drive or a share, the name that the tree shows for any
  // other, such as the desktop, whose `fullPath` is "". By the user or by code.
  std::function<void(const std::string& text, const std::string& fullPath)> SelectionChange;

  // Opens the tree down to a folder and selects it, also one that the shell doesn't list, such as a hidden
  // one. A path that isn't full is made so by the current folder. One that the tree can't show changes
  // nothing.
  void SelectPath(const std::string& path);

  // Selects the tree's root.
  void SelectDesktop();

 protected:
  void Attached() override;
  bool OnNotify(const NMHDR& header, LRESULT& result) override;

 private:
  struct Node {
    UniqueItemIdList folder;  // from the desktop on
    bool filled = false;      // its folders are in the tree
  };

  HTREEITEM Insert(HTREEITEM parent, HTREEITEM after, UniqueItemIdList folder);
  void Fill(HTREEITEM item);
  void InsertFolders(HTREEITEM item, IShellFolder& folder, IEnumIDList& folders);
  HTREEITEM FindOrInsert(HTREEITEM parent, PCUITEMID_CHILD wanted);
  Node& NodeOf(HTREEITEM item) const;
  static LRESULT CALLBACK TreeProcedure(HWND tree, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                        DWORD_PTR treeView);
  void GetDisplayInfo(TVITEMW& item) const;
  LRESULT CustomDraw(NMTVCUSTOMDRAW& draw) const;
  void TellSelection(const Node& node);

  std::vector<std::unique_ptr<Node>> nodes_;  // an item's lParam is its node
};

}  // namespace zq
