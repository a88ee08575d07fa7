// FolderTreeview: the shell's folders as a tree, with the names, the pictures and the order that Explorer
// shows. A folder's own folders are looked up when it is opened.
#pragma once

#include <windows.h>
#include <shlobj.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controls/Control.h"

namespace zq {

struct ItemIdListFree {
  void operator()(ITEMIDLIST* list) const { ::CoTaskMemFree(list); }
};
using UniqueItemIdList = std::unique_ptr<ITEMIDLIST, ItemIdListFree>;

class FolderTreeview : public Control {
 public:
  using Control::Control;

  // `text` is the folder's path for a folder of a file system, the name that the tree shows for any other,
  // such as the desktop; `fullPath` is "" where there is none. By the user or by code.
  std::function<void(const std::string& text, const std::string& fullPath)> SelectionChange;

  // Opens the tree down to a folder and selects it, also one that the shell doesn't list, such as a hidden
  // one. A path that is no folder of the shell's changes nothing.
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
  void GetDisplayInfo(TVITEMW& item) const;
  void TellSelection(const Node& node);

  std::vector<std::unique_ptr<Node>> nodes_;  // an item's lParam is its node
};

}  // namespace zq
